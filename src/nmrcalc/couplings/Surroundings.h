#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "nmrcalc/input/Molecule.h"

namespace nmrcalc {

// The surroundings of atoms as the coupling tables ask for them.

// The kind of a hydrogen by what carries it, as the table exchange names it: "C", "O.alcohol", "N.amide", ...
std::string ProtonKind(const Molecule& System, std::size_t Proton);

// An aromatic ring walked from one of its atoms: what stands at each atom beside and across.
struct RingPosition {
  std::size_t Atom = 0;
  int Distance = 0;     // 0 the atom itself, 1 ortho, 2 meta, 3 para
  std::string Class{};  // of the substituent; "ringN", "ringNH" (with a third neighbour), "ringO", "ringS" for a ring
                        // atom that is not carbon; "fused" where another aromatic ring begins; "H"
};
// The smallest aromatic ring (the first one by its sorted substituents where several are equal) that holds the atom.
// Empty when there is none of five or six atoms.
std::vector<RingPosition> WalkAromaticRing(const Molecule& System, std::size_t Center);

// The atom of a five-membered ring that lends its lone pair (furan O, pyrrole NH); null when there is none.
const RingPosition* FindLender(const std::vector<RingPosition>& Ring);

// Whether two atoms on the carbons of a double bond stand on the same side, by their torsion angle.
bool IsCis(const Molecule& System, std::size_t First, std::size_t Left, std::size_t Right, std::size_t Second);

}  // namespace nmrcalc
