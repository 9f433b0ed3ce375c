#pragma once

#include "basic/Types.h"

namespace zelvanor {

// The file beside the result of stage 2 that tells which sites make each line: "map 1 N", then for each of the N lines
// "SITE:PERCENT ..." with the largest share first. A backend need not write it.
Text PeakMapPath();
// Takes away that of an earlier run.
void RemovePeakMap();
// Reads it for the spectrum that has just been read; where it is not there or makes no sense nothing is known.
void ReadPeakMap();

// The lines of the map as texts, for the document.
void AddPeakMapSection();

}  // namespace zelvanor
