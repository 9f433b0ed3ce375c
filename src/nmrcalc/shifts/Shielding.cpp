#include "nmrcalc/shifts/Shielding.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "nmrcalc/shifts/Substituents.h"

namespace nmrcalc {

const std::vector<RequiredTable>& RequiredShiftTables() {
  static const std::vector<RequiredTable> Required = {{"reference", 1},
                                                      {"H.sp3.base", 1},
                                                      {"H.sp3.alpha", 5},
                                                      {"H.sp3.beta", 1},
                                                      {"H.sp3.ring", 1},
                                                      {"H.olefin", 3},
                                                      {"H.ring6", 3},
                                                      {"H.ring5", 2},
                                                      {"H.sp", 1},
                                                      {"H.formyl", 1},
                                                      {"H.other", 1},
                                                      {"C.sp3", 5},
                                                      {"C.sp3.steric", 4},
                                                      {"C.sp3.ring", 1},
                                                      {"C.olefin", 4},
                                                      {"C.ring6", 4},
                                                      {"C.ring5", 2},
                                                      {"C.carbonyl", 3},
                                                      {"C.alkyne", 2},
                                                      {"C.other", 1},
                                                      {"N", 1},
                                                      {"O", 1},
                                                      {"F", 1},
                                                      {"P", 1},
                                                      {"tensor", 2},
                                                      {"tensor.bond", 1}};
  return Required;
}

double SumIncrements(std::vector<WeightedIncrement> Increments) {
  std::sort(Increments.begin(), Increments.end(),
            [](const WeightedIncrement& A, const WeightedIncrement& B) { return A.Value > B.Value; });
  double Sum = 0.0;
  int Rank = 0;
  for (const WeightedIncrement& Item : Increments) {
    Sum += Item.Value * (Rank == 0 ? 1.0 : (Rank == 1 ? Item.SecondShare : Item.FurtherShare));
    if (std::fabs(Item.Value) > 0.0) ++Rank;
  }
  return Sum;
}

namespace {

std::string RingAtomClass(const Molecule& System, const std::vector<std::size_t>& Ring, std::size_t Member) {
  const Atom& Item = System.Atoms[Member];
  if (Item.AtomicNumber == 7 && Item.Neighbours.size() > 2) return "ringNH";
  if (Item.AtomicNumber != 6) return "ring" + SymbolOf(Item.AtomicNumber);
  std::string Class = "H";
  for (const Neighbour& Bond : Item.Neighbours) {
    if (std::find(Ring.begin(), Ring.end(), Bond.Atom) != Ring.end()) continue;
    const bool Fused = System.Atoms[Bond.Atom].Aromatic && SmallestRingOfBond(System, Member, Bond.Atom) != 0;
    Class = Fused ? "fused" : SubstituentClass(System, Bond.Atom, Member);
  }
  return Class;
}

std::vector<RingPosition> WalkRing(const Molecule& System, const std::vector<std::size_t>& Ring, std::size_t Center) {
  const auto Start = static_cast<std::size_t>(std::find(Ring.begin(), Ring.end(), Center) - Ring.begin());
  std::vector<RingPosition> Positions;
  for (std::size_t Step = 0; Step < Ring.size(); ++Step) {
    const std::size_t Member = Ring[(Start + Step) % Ring.size()];
    Positions.push_back(
        {Member, static_cast<int>(std::min(Step, Ring.size() - Step)), RingAtomClass(System, Ring, Member)});
  }
  return Positions;
}

std::vector<std::string> SortedClasses(const std::vector<RingPosition>& Positions) {
  std::vector<std::string> Classes;
  Classes.reserve(Positions.size());
  for (const RingPosition& Item : Positions) Classes.push_back(std::to_string(Item.Distance) + Item.Class);
  std::sort(Classes.begin(), Classes.end());
  return Classes;
}

}  // namespace

std::vector<RingPosition> WalkAromaticRing(const Molecule& System, std::size_t Center) {
  std::vector<RingPosition> Best;
  for (const std::size_t Number : System.Atoms[Center].InRings) {
    const auto& Ring = System.Rings[Number];
    if (Ring.size() != 5 && Ring.size() != 6) continue;
    if (!std::all_of(Ring.begin(), Ring.end(), [&](std::size_t Member) { return System.Atoms[Member].Aromatic; })) {
      continue;
    }
    std::vector<RingPosition> Positions = WalkRing(System, Ring, Center);
    if (Best.empty() || Positions.size() < Best.size() ||
        (Positions.size() == Best.size() && SortedClasses(Positions) < SortedClasses(Best))) {
      Best = std::move(Positions);
    }
  }
  return Best;
}

bool IsCis(const Molecule& System, std::size_t First, std::size_t Left, std::size_t Right, std::size_t Second) {
  return std::fabs(TorsionAngle(System, {First, Left, Right, Second})) < std::numbers::pi / 2.0;
}

const RingPosition* FindLender(const std::vector<RingPosition>& Ring) {
  if (Ring.size() != 5) return nullptr;
  const auto Lender = std::find_if(Ring.begin(), Ring.end(), [](const RingPosition& Item) {
    return Item.Class == "ringNH" || Item.Class == "ringO" || Item.Class == "ringS";
  });
  return Lender == Ring.end() ? nullptr : &*Lender;
}

std::size_t DoubleBondPartner(const Molecule& System, std::size_t Center, int AtomicNumber) {
  for (const Neighbour& Bond : System.Atoms[Center].Neighbours) {
    if (Bond.Order == BondOrder::Double && System.Atoms[Bond.Atom].AtomicNumber == AtomicNumber) return Bond.Atom;
  }
  return NoAtom;
}

ShiftEstimate EstimateShift(const TableFile& Tables, const Molecule& System, std::size_t Center) {
  switch (System.Atoms[Center].AtomicNumber) {
    case 1:
      return EstimateProtonShift(Tables, System, Center);
    case 6:
      return EstimateCarbonShift(Tables, System, Center);
    case 7:
    case 8:
    case 9:
    case 15:
      return EstimateHeteroShift(Tables, System, Center);
    default:
      return {.Origin = "no table for this element"};
  }
}

double ShieldingFromShift(const TableFile& Tables, int AtomicNumber, const ShiftEstimate& Estimate) {
  if (!Estimate.Known) return 0.0;
  return TableValue(Tables, "reference", SymbolOf(AtomicNumber)) - Estimate.Shift;
}

}  // namespace nmrcalc
