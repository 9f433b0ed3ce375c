#pragma once

#include "basic/Types.h"

namespace zelvanor {

// The peak list as a file for other programs: comma-separated values with a header line, or JCAMP-DX for NMR,
// version 5.
Text BuildPeakCsv();
Text BuildPeakJcamp();

// The nucleus that the simulation observes, as "1H".
Text ObservedNucleus();

}  // namespace zelvanor
