#include "nmrcalc/input/Molecule.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "basic/TextTools.h"

namespace nmrcalc {

namespace {

constexpr std::size_t LargestRing = 8;
constexpr std::size_t LargestWayCount = 4096;  // a graph this dense is no molecule; its rings are not looked for

constexpr std::array<const char*, 105> Symbols = {
    "Lp", "H",  "He", "Li", "Be", "B",  "C",  "N",  "O",  "F",  "Ne", "Na", "Mg", "Al", "Si", "P",  "S",  "Cl",
    "Ar", "K",  "Ca", "Sc", "Ti", "V",  "Cr", "Mn", "Fe", "Co", "Ni", "Cu", "Zn", "Ga", "Ge", "As", "Se", "Br",
    "Kr", "Rb", "Sr", "Y",  "Zr", "Nb", "Mo", "Tc", "Ru", "Rh", "Pd", "Ag", "Cd", "In", "Sn", "Sb", "Te", "I",
    "Xe", "Cs", "Ba", "La", "Ce", "Pr", "Nd", "Pm", "Sm", "Eu", "Gd", "Tb", "Dy", "Ho", "Er", "Tm", "Yb", "Lu",
    "Hf", "Ta", "W",  "Re", "Os", "Ir", "Pt", "Au", "Hg", "Tl", "Pb", "Bi", "Po", "At", "Rn", "Fr", "Ra", "Ac",
    "Th", "Pa", "U",  "Np", "Pu", "Am", "Cm", "Bk", "Cf", "Es", "Fm", "Md", "No", "Lr", "??"};

// The shortest way from From to To that does not use their own bond; empty when it is longer than a ring allows.
// Every way of that length is a ring of its own, so all of them are returned.
std::vector<std::vector<std::size_t>> ShortestWaysAround(const Molecule& System, std::size_t From, std::size_t To) {
  std::vector<std::vector<std::size_t>> Ways{{From}};
  std::set<std::size_t> Seen{From};
  for (std::size_t Length = 1; Length < LargestRing && !Ways.empty(); ++Length) {
    std::vector<std::vector<std::size_t>> Longer;
    std::vector<std::vector<std::size_t>> Closed;
    std::set<std::size_t> Reached;
    for (const auto& Way : Ways) {
      for (const Neighbour& Next : System.Atoms[Way.back()].Neighbours) {
        if (Length == 1 && Next.Atom == To) continue;
        if (Seen.contains(Next.Atom)) continue;
        std::vector<std::size_t> Extended = Way;
        Extended.push_back(Next.Atom);
        if (Next.Atom == To) {
          Closed.push_back(std::move(Extended));
        } else {
          Reached.insert(Next.Atom);
          Longer.push_back(std::move(Extended));
        }
      }
    }
    if (!Closed.empty()) return Closed;
    Seen.insert(Reached.begin(), Reached.end());
    if (Longer.size() > LargestWayCount) return {};
    Ways = std::move(Longer);
  }
  return {};
}

void FindRings(Molecule& System) {
  std::set<std::vector<std::size_t>> Known;  // members sorted
  for (std::size_t First = 0; First < System.Atoms.size(); ++First) {
    for (const Neighbour& Bond : System.Atoms[First].Neighbours) {
      if (Bond.Atom < First) continue;
      for (auto& Ring : ShortestWaysAround(System, First, Bond.Atom)) {
        std::vector<std::size_t> Members = Ring;
        std::sort(Members.begin(), Members.end());
        if (Known.insert(Members).second) System.Rings.push_back(std::move(Ring));
      }
    }
  }
  for (std::size_t Number = 0; Number < System.Rings.size(); ++Number) {
    const auto& Ring = System.Rings[Number];
    for (const std::size_t Member : Ring) {
      System.Atoms[Member].InRings.push_back(Number);
      int& Smallest = System.Atoms[Member].SmallestRing;
      const int Size = static_cast<int>(Ring.size());
      Smallest = Smallest == 0 ? Size : std::min(Smallest, Size);
    }
  }
}

void FindHybridStates(Molecule& System) {
  for (Atom& Item : System.Atoms) {
    int Doubles = 0;
    for (const Neighbour& Bond : Item.Neighbours) {
      if (Bond.Order == BondOrder::Triple) Doubles = 2;
      if (Bond.Order == BondOrder::Double) ++Doubles;
      if (Bond.Order == BondOrder::Aromatic) Doubles = std::max(Doubles, 1);
    }
    Item.State = Doubles == 0 ? Hybrid::Sp3 : (Doubles == 1 ? Hybrid::Sp2 : Hybrid::Sp);
  }
}

// Six sp2 atoms whose double bonds all end in rings, or five with one N, O or S that lends its lone pair.
// Exocyclic C=O and the like end it: quinones and pyridones keep their double bonds.
bool IsAromaticRing(const Molecule& System, const std::vector<std::size_t>& Ring) {
  if (Ring.size() != 5 && Ring.size() != 6) return false;
  int LonePairs = 0;
  for (const std::size_t Member : Ring) {
    const Atom& Item = System.Atoms[Member];
    bool InRingSystem = false;
    for (const Neighbour& Bond : Item.Neighbours) {
      if (Bond.Order == BondOrder::Aromatic) InRingSystem = true;
      if (Bond.Order == BondOrder::Double) InRingSystem = System.Atoms[Bond.Atom].SmallestRing != 0;
    }
    if (InRingSystem) continue;
    const int Z = Item.AtomicNumber;
    if (Item.State != Hybrid::Sp3 || (Z != 7 && Z != 8 && Z != 16)) return false;
    ++LonePairs;
  }
  return LonePairs == 0 || (LonePairs == 1 && Ring.size() == 5);
}

}  // namespace

int AtomicNumberOf(std::string_view Symbol) {
  for (std::size_t Number = 0; Number < Symbols.size(); ++Number) {
    if (zelvanor::EqualsIgnoringCase(Symbol, Symbols[Number])) return static_cast<int>(Number);
  }
  return -1;
}

std::string SymbolOf(int AtomicNumber) { return Symbols[static_cast<std::size_t>(std::clamp(AtomicNumber, 0, 104))]; }

void AddBond(Molecule& System, std::size_t First, std::size_t Second, BondOrder Order) {
  if (First == Second) return;
  for (const auto& [Own, Other] : {std::pair{First, Second}, std::pair{Second, First}}) {
    auto& List = System.Atoms[Own].Neighbours;
    const auto Known =
        std::find_if(List.begin(), List.end(), [Wanted = Other](const Neighbour& Bond) { return Bond.Atom == Wanted; });
    if (Known == List.end()) {
      List.push_back({Other, Order});
    } else {
      Known->Order = std::max(Known->Order, Order);
    }
  }
}

void PerceiveStructure(Molecule& System) {
  FindHybridStates(System);
  FindRings(System);
  for (const auto& Ring : System.Rings) {
    if (!IsAromaticRing(System, Ring)) continue;
    for (const std::size_t Member : Ring) System.Atoms[Member].Aromatic = true;
  }
  for (Atom& Item : System.Atoms) {
    const bool Marked = std::any_of(Item.Neighbours.begin(), Item.Neighbours.end(),
                                    [](const Neighbour& Bond) { return Bond.Order == BondOrder::Aromatic; });
    if (Marked && Item.SmallestRing != 0) Item.Aromatic = true;
    if (Item.Aromatic && Item.State == Hybrid::Sp3) Item.State = Hybrid::Sp2;
  }
}

const Neighbour* FindBond(const Molecule& System, std::size_t First, std::size_t Second) {
  for (const Neighbour& Bond : System.Atoms[First].Neighbours) {
    if (Bond.Atom == Second) return &Bond;
  }
  return nullptr;
}

int CountNeighbours(const Molecule& System, std::size_t Center, int AtomicNumber) {
  const auto& List = System.Atoms[Center].Neighbours;
  return static_cast<int>(std::count_if(List.begin(), List.end(), [&](const Neighbour& Bond) {
    return System.Atoms[Bond.Atom].AtomicNumber == AtomicNumber;
  }));
}

int SmallestRingOfBond(const Molecule& System, std::size_t First, std::size_t Second) {
  std::size_t Smallest = 0;
  for (const std::size_t Number : System.Atoms[First].InRings) {
    const auto& Ring = System.Rings[Number];
    const auto Index = static_cast<std::size_t>(std::find(Ring.begin(), Ring.end(), First) - Ring.begin());
    const bool Beside =
        Ring[(Index + 1) % Ring.size()] == Second || Ring[(Index + Ring.size() - 1) % Ring.size()] == Second;
    if (Beside && (Smallest == 0 || Ring.size() < Smallest)) Smallest = Ring.size();
  }
  return static_cast<int>(Smallest);
}

Vector3 Difference(const Vector3& Left, const Vector3& Right) {
  return {Left[0] - Right[0], Left[1] - Right[1], Left[2] - Right[2]};
}

Vector3 Cross(const Vector3& Left, const Vector3& Right) {
  return {Left[1] * Right[2] - Left[2] * Right[1], Left[2] * Right[0] - Left[0] * Right[2],
          Left[0] * Right[1] - Left[1] * Right[0]};
}

double Dot(const Vector3& Left, const Vector3& Right) {
  return Left[0] * Right[0] + Left[1] * Right[1] + Left[2] * Right[2];
}

Vector3 Direction(const Vector3& Value) {
  const double Length = std::sqrt(Dot(Value, Value));
  if (!(Length > 1e-6)) return {};
  return {Value[0] / Length, Value[1] / Length, Value[2] / Length};
}

double TorsionAngle(const Molecule& System, const std::array<std::size_t, 4>& Path) {
  const Vector3 First = Difference(System.Atoms[Path[1]].Place, System.Atoms[Path[0]].Place);
  const Vector3 Axis = Difference(System.Atoms[Path[2]].Place, System.Atoms[Path[1]].Place);
  const Vector3 Last = Difference(System.Atoms[Path[3]].Place, System.Atoms[Path[2]].Place);
  const Vector3 Left = Direction(Cross(First, Axis));
  const Vector3 Right = Direction(Cross(Axis, Last));
  const double Sine = Dot(Cross(Left, Right), Direction(Axis));
  const double Cosine = Dot(Left, Right);
  return (Sine == 0.0 && Cosine == 0.0) ? 0.0 : std::atan2(Sine, Cosine);
}

}  // namespace nmrcalc
