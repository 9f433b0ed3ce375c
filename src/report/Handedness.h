#pragma once

#include <map>
#include <utility>
#include <vector>

#include "report/FlatPlaces.h"

namespace zelvanor {

// The bonds, from a centre to a neighbour (indices of atoms), that have to be drawn towards the reader (true) or away
// from him, so that the drawing has the handedness of the molecules in space. Places stand beside Atoms.
std::map<std::pair<int, int>, bool> FindWedges(const std::vector<int>& Atoms, const std::vector<FlatPlace>& Places);

}  // namespace zelvanor
