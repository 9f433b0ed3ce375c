#pragma once

#include "basic/Types.h"

namespace zelvanor {

// The peak list as a file for other programs: comma-separated values with a header line, or JCAMP-DX for NMR,
// version 5.
Text BuildPeakCsv();
Text BuildPeakJcamp();

}  // namespace zelvanor
