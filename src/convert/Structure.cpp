#include "convert/Structure.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

#include "basic/Elements.h"
#include "basic/NumberText.h"
#include "convert/Lines.h"
#include "files/BondSearch.h"
#include "files/MoleculeTree.h"

namespace zelvanor::convert {

namespace {

BondGraph GraphOf(const Structure& Whole) {
  BondGraph Graph;
  for (const StructureAtom& Atom : Whole.Atoms) {
    Graph.AtomicNumbers.push_back(Atom.Element);
    Graph.Places.push_back(Atom.Place);
  }
  Graph.Links.resize(Whole.Atoms.size());
  for (const StructureBond& Bond : Whole.Bonds) {
    Graph.At(Bond.First).push_back({Bond.Second, Bond.Order});
    Graph.At(Bond.Second).push_back({Bond.First, Bond.Order});
  }
  for (auto& Links : Graph.Links) {
    std::sort(Links.begin(), Links.end(), [](const auto& A, const auto& B) { return A.Other < B.Other; });
  }
  return Graph;
}

void TakeBonds(Structure& Whole, const BondGraph& Graph) {
  Whole.Bonds.clear();
  for (int Atom = 0; Atom < Graph.Count(); ++Atom) {
    for (const BondGraph::Link& Link : Graph.At(Atom)) {
      if (Link.Other > Atom) Whole.Bonds.push_back({Atom, Link.Other, Link.Order});
    }
  }
}

bool IsOneOf(int Value, std::initializer_list<int> Values) {
  return std::find(Values.begin(), Values.end(), Value) != Values.end();
}

// The formal charge of an atom with so many bonds, a double one counting two.
int ChargeFor(int Element, int Valence) {
  switch (Element) {
    case 5:  // B
      return Valence == 4 ? -1 : 0;
    case 7:   // N
    case 15:  // P
    case 33:  // As
      return Valence == 4 ? 1 : (Valence < 3 && Valence > 0 ? Valence - 3 : 0);
    case 8:  // O
      return Valence == 3 ? 1 : (Valence == 1 ? -1 : 0);
    case 16:  // S
    case 34:  // Se
      return IsOneOf(Valence, {3, 5}) ? 1 : (Valence == 1 ? -1 : 0);
    default:
      break;
  }
  if (Valence != 0) return 0;
  if (IsOneOf(Element, {9, 17, 35, 53})) return -1;
  if (IsOneOf(Element, {3, 11, 19, 37, 55})) return 1;
  return IsOneOf(Element, {4, 12, 20, 30, 38, 56}) ? 2 : 0;
}

Text ChargeText(int Charge) {
  const int Size = std::abs(Charge);
  return (Size > 1 ? GeneralForm(Long{Size}) : Text()) + (Charge > 0 ? "+" : "-");
}

std::vector<int> ValencesOf(const Structure& Whole) {
  std::vector<int> Valences(Whole.Atoms.size());
  for (const StructureBond& Bond : Whole.Bonds) {
    Valences[static_cast<std::size_t>(Bond.First)] += Bond.Order;
    Valences[static_cast<std::size_t>(Bond.Second)] += Bond.Order;
  }
  return Valences;
}

}  // namespace

bool HasHydrogens(const Structure& Whole) {
  const auto IsElement = [](int Element) { return [Element](const StructureAtom& A) { return A.Element == Element; }; };
  if (std::none_of(Whole.Atoms.begin(), Whole.Atoms.end(), IsElement(6))) return true;
  const bool Any = std::any_of(Whole.Atoms.begin(), Whole.Atoms.end(), IsElement(1));
  if (!Any || Whole.Bonds.empty()) return Any;
  // Those of water or of polar groups alone are not all.
  return std::any_of(Whole.Bonds.begin(), Whole.Bonds.end(), [&](const StructureBond& Bond) {
    const int First = Whole.Atoms[static_cast<std::size_t>(Bond.First)].Element;
    const int Second = Whole.Atoms[static_cast<std::size_t>(Bond.Second)].Element;
    return std::minmax(First, Second) == std::pair<const int&, const int&>(1, 6);
  });
}

void AddBonds(Structure& Whole) {
  BondGraph Found = GraphOf(Whole);
  FindBonds(Found);
  const std::vector<int> Given = ValencesOf(Whole);
  for (int Atom = 0; Atom < Found.Count(); ++Atom) {
    for (const BondGraph::Link& Link : Found.At(Atom)) {
      // An atom whose bonds the file gives has no others.
      const bool Told = Given[static_cast<std::size_t>(Atom)] > 0 || Given[static_cast<std::size_t>(Link.Other)] > 0;
      if (Link.Other > Atom && !Told) Whole.Bonds.push_back({Atom, Link.Other, SingleOrder});
    }
  }
}

void FindOrders(Structure& Whole) {
  BondGraph Graph = GraphOf(Whole);
  for (auto& Links : Graph.Links) {
    for (BondGraph::Link& Link : Links) Link.Order = SingleOrder;
  }
  FindLocalizedOrders(Graph);
  TakeBonds(Whole, Graph);
}

void FindCharges(Structure& Whole) {
  const std::vector<int> Valences = ValencesOf(Whole);
  const bool Given =
      std::any_of(Whole.Atoms.begin(), Whole.Atoms.end(), [](const StructureAtom& A) { return A.Charge != 0; });
  for (std::size_t Atom = 0; !Given && Atom < Valences.size(); ++Atom) {
    Whole.Atoms[Atom].Charge = ChargeFor(Whole.Atoms[Atom].Element, Valences[Atom]);
  }
}

void MarkAromatic(Structure& Whole) {
  BondGraph Graph = GraphOf(Whole);
  FindAromaticRings(Graph);
  TakeBonds(Whole, Graph);
}

void SumCharges(Structure& Whole) {
  Whole.Charge = std::accumulate(Whole.Atoms.begin(), Whole.Atoms.end(), 0,
                                 [](int Sum, const StructureAtom& Atom) { return Sum + Atom.Charge; });
}

void CheckPlaces(const Structure& Whole) {
  constexpr Double Nearest = 0.5;     // angstrom
  constexpr Double Farthest = 99999;  // what the columns of other programs hold
  std::vector<std::size_t> ByX(Whole.Atoms.size());
  std::iota(ByX.begin(), ByX.end(), std::size_t{0});
  for (const StructureAtom& Atom : Whole.Atoms) {
    for (const Double Coordinate : Atom.Place) {
      if (!(std::abs(Coordinate) <= Farthest)) throw Failure("a coordinate is no number of angstroms");
    }
  }
  std::sort(ByX.begin(), ByX.end(),
            [&](std::size_t A, std::size_t B) { return Whole.Atoms[A].Place[0] < Whole.Atoms[B].Place[0]; });
  for (std::size_t K = 0; K < ByX.size(); ++K) {
    const auto& One = Whole.Atoms[ByX[K]].Place;
    for (std::size_t L = K + 1; L < ByX.size(); ++L) {
      const auto& Other = Whole.Atoms[ByX[L]].Place;
      if (Other[0] - One[0] >= Nearest) break;
      if (std::hypot(One[0] - Other[0], One[1] - Other[1], One[2] - Other[2]) < Nearest) {
        const auto [First, Second] = std::minmax(ByX[K], ByX[L]);
        throw Failure("atoms " + std::to_string(First + 1) + " and " + std::to_string(Second + 1) +
                      " stand within 0.5 A of each other");
      }
    }
  }
}

std::vector<std::vector<int>> FindParts(const Structure& Whole) {
  std::vector<int> Head(Whole.Atoms.size());
  std::iota(Head.begin(), Head.end(), 0);
  const auto HeadOf = [&Head](int Atom) {
    while (Head[static_cast<std::size_t>(Atom)] != Atom) {
      Atom = Head[static_cast<std::size_t>(Atom)] =
          Head[static_cast<std::size_t>(Head[static_cast<std::size_t>(Atom)])];
    }
    return Atom;
  };
  for (const StructureBond& Bond : Whole.Bonds) {
    const auto [Low, High] = std::minmax({HeadOf(Bond.First), HeadOf(Bond.Second)});
    Head[static_cast<std::size_t>(High)] = Low;
  }
  std::map<int, std::vector<int>> Parts;
  for (int Atom = 0; Atom < Whole.Count(); ++Atom) Parts[HeadOf(Atom)].push_back(Atom);
  std::vector<std::vector<int>> Result;
  Result.reserve(Parts.size());
  for (auto& [First, Atoms] : Parts) Result.push_back(std::move(Atoms));
  return Result;
}

Text FormulaOf(const Structure& Whole) {
  std::map<Text, int> Counts;
  for (const StructureAtom& Atom : Whole.Atoms) {
    ++Counts[ElementSymbol(Atom.Element)];
    if (Atom.Hydrogens > 0) Counts["H"] += Atom.Hydrogens;
  }
  Text Formula;
  const auto Put = [&](const Text& Symbol) {
    const auto Found = Counts.find(Symbol);
    if (Found == Counts.end()) return;
    Formula += Symbol + (Found->second > 1 ? GeneralForm(Long{Found->second}) : Text());
    Counts.erase(Found);
  };
  if (Counts.contains("C")) {
    Put("C");
    Put("H");
  }
  while (!Counts.empty()) Put(Text(Counts.begin()->first));
  return Whole.Charge == 0 ? Formula : Formula + " " + ChargeText(Whole.Charge);
}

std::vector<Text> ReadFields(TextView Content) {
  constexpr std::size_t MostNotes = 500;
  LineWalk Walk{Content};
  std::vector<Text> Notes;
  bool Behind = false;
  Text Field;
  while (Walk.Next() && Notes.size() < MostNotes) {
    if (Walk.Line.starts_with("M  END")) Behind = true;
    if (!Behind) continue;
    if (Walk.Line.starts_with(">")) {
      const std::size_t Open = Walk.Line.find('<');
      const std::size_t Close = Walk.Line.rfind('>');
      Field = Open != TextView::npos && Close > Open ? Text(Walk.Line.substr(Open + 1, Close - Open - 1)) : Text("-");
    } else if (!Field.empty() && Walk.Line.find_first_not_of(LineSeparators) != TextView::npos) {
      Notes.push_back(Field + ": " + Text(Walk.Line));
    }
  }
  return Notes;
}

}  // namespace zelvanor::convert
