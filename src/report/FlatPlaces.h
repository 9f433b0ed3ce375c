#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

struct FlatPlace {
  Double X = 0;
  Double Y = 0;  // up
};

// Places of these atoms (indices) on paper, in angstrom or another unit, beside the list.
std::vector<FlatPlace> FindFlatPlaces(const std::vector<int>& Atoms);

}  // namespace zelvanor
