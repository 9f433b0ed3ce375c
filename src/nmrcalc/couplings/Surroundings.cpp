#include "nmrcalc/couplings/Surroundings.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "nmrcalc/shifts/Substituents.h"

namespace nmrcalc {

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

std::string OxygenProtonKind(const Molecule& System, std::size_t Oxygen) {
  if (CountNeighbours(System, Oxygen, 1) >= 2) return "O.water";
  for (const Neighbour& Bond : System.Atoms[Oxygen].Neighbours) {
    const Atom& Carrier = System.Atoms[Bond.Atom];
    if (Carrier.AtomicNumber == 1) continue;
    if (IsCarbonyl(System, Bond.Atom)) return "O.acid";
    if (Carrier.Aromatic || Carrier.State == Hybrid::Sp2) return "O.phenol";
    if (Carrier.AtomicNumber == 15 || Carrier.AtomicNumber == 16) return "O.acid";
    if (Carrier.AtomicNumber == 7) return "O.oxime";
  }
  return "O.alcohol";
}

std::string NitrogenProtonKind(const Molecule& System, std::size_t Nitrogen) {
  const Atom& Parent = System.Atoms[Nitrogen];
  if (Parent.Neighbours.size() >= 4) return "N.ammonium";
  if (Parent.Aromatic) return "N.ring";
  if (Parent.State != Hybrid::Sp3) return "N.imine";
  std::string Kind = "N.amine";
  for (const Neighbour& Bond : Parent.Neighbours) {
    if (IsCarbonyl(System, Bond.Atom)) return "N.amide";
    if (System.Atoms[Bond.Atom].Aromatic) Kind = "N.aryl";
  }
  return Kind;
}

// What carries the hydrogen; of two neighbours (a bridge) the heavier one. NoAtom when there is none.
std::size_t CarrierOf(const Molecule& System, std::size_t Proton) {
  std::size_t Carrier = NoAtom;
  for (const Neighbour& Bond : System.Atoms[Proton].Neighbours) {
    if (Carrier == NoAtom || System.Atoms[Bond.Atom].AtomicNumber > System.Atoms[Carrier].AtomicNumber) {
      Carrier = Bond.Atom;
    }
  }
  return Carrier;
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

std::string ProtonKind(const Molecule& System, std::size_t Proton) {
  const std::size_t Carrier = CarrierOf(System, Proton);
  if (Carrier == NoAtom) return "bare";
  const auto& List = System.Atoms[Carrier].Neighbours;
  switch (System.Atoms[Carrier].AtomicNumber) {
    case 7:
      return NitrogenProtonKind(System, Carrier);
    case 8:
      return OxygenProtonKind(System, Carrier);
    case 16:
      return std::any_of(List.begin(), List.end(),
                         [&System](const Neighbour& Bond) { return System.Atoms[Bond.Atom].Aromatic; })
                 ? "S.aryl"
                 : "S.alkyl";
    default:
      return SymbolOf(System.Atoms[Carrier].AtomicNumber);
  }
}

}  // namespace nmrcalc
