#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Makes the first record of an SD file that has signals as NMReData the document: its structure, and the measured
// shifts and couplings in place of computed ones. The question about unsaved work comes first. Reports its failures;
// false: nothing was taken.
bool OpenNmreData(const Text& Path);

// Takes the shifts and couplings of a record for the molecule that the document holds. Throws a Failure.
void TakeNmreData(const Text& Record);

}  // namespace zelvanor
