#pragma once

#include "basic/Types.h"

namespace zelvanor {

// The error bars of the shieldings: a file that a backend may write beside nmrparam.out, a number a line, and a section
// of the document.

// Takes the file in, as far as there is one; what is no number above 0 counts as unknown.
void ReadShieldingErrors();

// Makes the section one that documents may have. Called once, at start-up.
void AddErrorBarSection();

}  // namespace zelvanor
