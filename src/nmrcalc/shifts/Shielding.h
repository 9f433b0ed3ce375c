#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "nmrcalc/input/Molecule.h"
#include "nmrcalc/input/Tables.h"

namespace nmrcalc {

// Chemical shifts by additive increments of the bonded surroundings. They look at bonds alone, and at geometry only to
// tell cis from trans at a double bond, so equal surroundings give equal numbers in every conformation.

// An estimate and how it came about.
struct ShiftEstimate {
  double Shift = 0.0;    // ppm against the usual reference of the element
  bool Known = false;    // false: the tables say nothing of the element; Shift is 0
  std::string Origin{};  // for the log
};

// Tables and columns that the shift tables need to have.
const std::vector<RequiredTable>& RequiredShiftTables();

ShiftEstimate EstimateShift(const TableFile& Tables, const Molecule& System, std::size_t Center);

// Absolute shielding in ppm: the element's reference less the shift; 0 for an element without a reference.
double ShieldingFromShift(const TableFile& Tables, int AtomicNumber, const ShiftEstimate& Estimate);

// The estimates by element; Center has that element.
ShiftEstimate EstimateProtonShift(const TableFile& Tables, const Molecule& System, std::size_t Center);
ShiftEstimate EstimateCarbonShift(const TableFile& Tables, const Molecule& System, std::size_t Center);
ShiftEstimate EstimateHeteroShift(const TableFile& Tables, const Molecule& System, std::size_t Center);

// The kind of a hydrogen by what carries it, as the table H.other names it: "C", "O.alcohol", "N.amide", ...
std::string ProtonKind(const Molecule& System, std::size_t Proton);

// Sum of the increments of several substituents on one atom. The largest counts in full, the second and the further
// ones with the shares that their rows hold at SecondColumn and the column behind it: geminal substituents of high
// electronegativity act less than additively.
struct WeightedIncrement {
  double Value = 0.0;
  double SecondShare = 1.0;
  double FurtherShare = 1.0;
};
double SumIncrements(std::vector<WeightedIncrement> Increments);

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

// The partner in a double bond of the element; NoAtom when there is none.
inline constexpr std::size_t NoAtom = static_cast<std::size_t>(-1);
std::size_t DoubleBondPartner(const Molecule& System, std::size_t Center, int AtomicNumber);

}  // namespace nmrcalc
