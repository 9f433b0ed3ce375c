#pragma once

#include <array>
#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// A molecule as elements in places with bonds, for finding what a Z-matrix leaves out. Atoms count from 0.
struct BondGraph {
  struct Link {
    int Other;
    int Order;  // BondOrder
  };
  std::vector<int> AtomicNumbers;
  std::vector<std::array<Double, 3>> Places;  // angstrom
  std::vector<std::vector<Link>> Links;       // of each atom, by rising index of the other one

  int Count() const { return static_cast<int>(AtomicNumbers.size()); }
  std::vector<Link>& At(int Atom) { return Links[static_cast<std::size_t>(Atom)]; }
  const std::vector<Link>& At(int Atom) const { return Links[static_cast<std::size_t>(Atom)]; }
  int Element(int Atom) const { return AtomicNumbers[static_cast<std::size_t>(Atom)]; }
  Double Distance(int First, int Second) const;
};

// Single bonds between atoms whose distance is at most the sum of their covalent radii and a tolerance. An atom with
// more bonds than its element takes loses those that are longest for their elements.
void FindBonds(BondGraph& Graph);
// The first pair of atoms that stand in one place, both -1 for none.
std::array<int, 2> FindClash(const BondGraph& Graph);

// Double and triple bonds from the elements' valences; all bonds are single before and the hydrogens have to be there.
void FindLocalizedOrders(BondGraph& Graph);
// The same, and aromatic ones.
void FindBondOrders(BondGraph& Graph);

// Makes the bonds of rings aromatic whose double bonds and lone pairs give them six electrons.
void FindAromaticRings(BondGraph& Graph);

// All rings of up to eight atoms that have no shorter way across, each once.
std::vector<std::vector<int>> FindRings(const BondGraph& Graph);

}  // namespace zelvanor
