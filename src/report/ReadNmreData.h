#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Makes the first record of an SD file that has signals as NMReData the document: its structure, and the measured
// shifts and couplings in place of computed ones. The question about unsaved work comes first. Reports its failures;
// false: nothing was taken.
bool OpenNmreData(const Text& Path);

}  // namespace zelvanor
