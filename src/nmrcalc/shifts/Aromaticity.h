#pragma once

#include <vector>

#include "nmrcalc/input/Molecule.h"

namespace nmrcalc {

// Bonds as the shift model sees them: the same for aromatic marks and for drawn double bonds.
enum class BondKind { Single = 0, Double = 1, Triple = 2, Aromatic = 3, Delocalised = 4 };

struct BondPicture {
  // Both parallel to Molecule::Atoms[...].Neighbours.
  std::vector<std::vector<int>> Orders{};      // 1, 2, 3 of one drawn structure
  std::vector<std::vector<BondKind>> Kinds{};  // with rings of 4n + 2 electrons and equal terminal atoms put together
  std::vector<bool> Aromatic{};                // of each atom
};

// Draws double bonds where there are aromatic marks, then finds aromatic rings anew, so that programs which mark them
// differently lead to the same picture. Marks to which no drawing fits are kept as they are.
BondPicture PictureBonds(const Molecule& System);

}  // namespace nmrcalc
