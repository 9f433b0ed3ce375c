#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Writes the input of stage 1: options, NMR and quantum atoms, the whole system. Reports its failures.
Flag WriteParamInput(const Text& Path);

}  // namespace zelvanor
