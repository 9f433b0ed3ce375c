#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// Allocates the seven entries of the reference tables and fills 0..5 with H, C, N, O, F, P; their shieldings are 0.
void InitReferenceElements();

// Fills entries 0..5 of ReferenceElement once more.
void FillReferenceElements();

// The names of the entries that are shown.
std::vector<Text> ListReferenceNames();

}  // namespace zelvanor
