#pragma once

#include <array>
#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// The neighbours of each atom of the atom table, by its index.
using Links = std::vector<std::vector<int>>;
Links LinksOfAll();

// Angstrom.
using Vector = std::array<Double, 3>;
Vector Between(int From, int To);
Double Dot(const Vector& A, const Vector& B);

}  // namespace zelvanor
