#pragma once

#include "basic/Types.h"

namespace zelvanor {

// The two result files of the backend. The first line may begin "ERRMSG:", one more character and the text of the
// backend's own failure, which is shown. Each reader reports its failures, rolls nothing back and closes the file.
Flag ReadParamResults(const Text& Path);
Flag ReadSpectResults(const Text& Path);

// Gives the members of each equivalent set their mean shielding and mean couplings.
void AverageEquivalentResults();

}  // namespace zelvanor
