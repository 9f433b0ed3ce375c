// Bond orders from valences. Every atom has so many valences open as its element makes bonds beyond its single ones;
// a largest matching of the open valences along the bonds gives the double and triple bonds. What stays open after that
// is a charge: nitro groups, N-oxides, pyridinium and the like get their bond from a nitrogen or oxygen that can give
// one more. Rings with six electrons then become aromatic.

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <numeric>
#include <set>

#include "files/BondSearch.h"
#include "files/Matching.h"
#include "files/MoleculeTree.h"
#include "workspace/ElementData.h"

namespace zelvanor {

namespace {

enum Element { Boron = 5, Carbon = 6, Nitrogen = 7, Oxygen = 8, Silicon = 14, Phosphorus = 15, Sulphur = 16 };

bool IsOneOf(int Value, std::initializer_list<int> Values) {
  return std::find(Values.begin(), Values.end(), Value) != Values.end();
}
bool IsLikeSulphur(int Element) { return IsOneOf(Element, {Sulphur, 34, 52}); }
bool IsLikePhosphorus(int Element) { return IsOneOf(Element, {Phosphorus, 33, 51}); }

int NumLinks(const BondGraph& Graph, int Atom) { return static_cast<int>(Graph.At(Atom).size()); }

// Neighbours that are oxygens or sulphurs without further bonds.
int CountTerminalOxygens(const BondGraph& Graph, int Atom) {
  const auto& Links = Graph.At(Atom);
  return static_cast<int>(std::count_if(Links.begin(), Links.end(), [&](const BondGraph::Link& L) {
    return NumLinks(Graph, L.Other) == 1 && (Graph.Element(L.Other) == Oxygen || IsLikeSulphur(Graph.Element(L.Other)));
  }));
}

// Elements behind the second row widen their valence for oxygens: sulfoxides, sulfones, phosphates, perchlorates.
int WidenedValences(const BondGraph& Graph, int Atom) {
  const int Count = NumLinks(Graph, Atom);
  const int Oxygens = CountTerminalOxygens(Graph, Atom);
  const int Element = Graph.Element(Atom);
  if (IsLikePhosphorus(Element)) return Count == 4 ? 1 : (Count == 3 && Oxygens >= 2 ? 2 : std::max(3 - Count, 0));
  if (IsLikeSulphur(Element)) {
    if (Count == 1) return 1;
    if (Count == 2) return Oxygens == 2 ? 2 : 0;
    if (Count == 3) return Oxygens == 3 ? 3 : std::min(Oxygens, 1);
    return Count == 4 ? 2 : 0;
  }
  return Count > 1 && Oxygens == Count ? Count - 1 : 0;  // chlorine and its like
}

// How many bonds the atom makes beyond its single ones.
int OpenValences(const BondGraph& Graph, int Atom) {
  const int Count = NumLinks(Graph, Atom);
  if (Count == 0) return 0;
  switch (const int Element = Graph.Element(Atom)) {
    case Boron:
    case Carbon:
    case Nitrogen:
    case Oxygen:
    case Silicon:
      return std::clamp(CommonValence(Element) - Count, 0, 2);
    default:
      return IsLikePhosphorus(Element) || IsLikeSulphur(Element) || IsOneOf(Element, {17, 35, 53})
                 ? WidenedValences(Graph, Atom)
                 : 0;
  }
}

Double AngleAt(const BondGraph& Graph, int Atom, int First, int Second) {
  const Double A = Graph.Distance(Atom, First);
  const Double B = Graph.Distance(Atom, Second);
  const Double C = Graph.Distance(First, Second);
  return std::acos(std::clamp((A * A + B * B - C * C) / (2 * A * B), -1.0, 1.0)) * 180.0 / std::numbers::pi;
}

// Whether a nitrogen or oxygen can make one bond more and be positive: flat or stretched nitrogens, oxygens.
bool CanBePositive(const BondGraph& Graph, int Atom) {
  constexpr Double NearlyStraight = 150.0;
  constexpr Double NearlyFlat = 345.0;  // sum of the angles
  const auto& Links = Graph.At(Atom);
  if (Graph.Element(Atom) == Oxygen) return Links.size() <= 2;
  if (Graph.Element(Atom) != Nitrogen) return false;
  if (Links.size() == 2) return AngleAt(Graph, Atom, Links[0].Other, Links[1].Other) > NearlyStraight;
  if (Links.size() != 3) return false;
  return AngleAt(Graph, Atom, Links[0].Other, Links[1].Other) + AngleAt(Graph, Atom, Links[0].Other, Links[2].Other) +
             AngleAt(Graph, Atom, Links[1].Other, Links[2].Other) >
         NearlyFlat;
}

// The open valences as vertices of a matching.
struct Valences {
  Matching Pairs;
  std::vector<int> AtomOf;                // of a vertex
  std::vector<std::vector<int>> Open;     // vertices of an atom
  std::vector<int> Spare;                 // an atom's vertex for the positive state, -1 for none
  std::vector<std::array<int, 2>> Bonds;  // shortest for their elements first
};

std::vector<std::array<int, 2>> SortBonds(const BondGraph& Graph) {
  std::vector<std::pair<Double, std::array<int, 2>>> Sorted;
  for (int Atom = 0; Atom < Graph.Count(); ++Atom) {
    for (const auto& Link : Graph.At(Atom)) {
      if (Link.Other < Atom) continue;
      const Double Radii = CovalentRadius(Graph.Element(Atom)) + CovalentRadius(Graph.Element(Link.Other));
      // Equal bonds keep their order whatever the last digits are.
      Sorted.push_back({std::round((Graph.Distance(Atom, Link.Other) - Radii) * 1e3), {Atom, Link.Other}});
    }
  }
  std::sort(Sorted.begin(), Sorted.end());
  std::vector<std::array<int, 2>> Result;
  Result.reserve(Sorted.size());
  for (const auto& [Excess, Bond] : Sorted) Result.push_back(Bond);
  return Result;
}

Valences OpenAll(const BondGraph& Graph) {
  Valences V;
  V.Open.resize(Graph.AtomicNumbers.size());
  V.Spare.assign(Graph.AtomicNumbers.size(), -1);
  const auto Add = [&V](int Atom) {
    V.AtomOf.push_back(Atom);
    return static_cast<int>(V.AtomOf.size()) - 1;
  };
  for (int Atom = 0; Atom < Graph.Count(); ++Atom) {
    auto& Own = V.Open[static_cast<std::size_t>(Atom)];
    for (int N = OpenValences(Graph, Atom); N > 0; --N) Own.push_back(Add(Atom));
    if (CanBePositive(Graph, Atom)) V.Spare[static_cast<std::size_t>(Atom)] = Add(Atom);
  }
  StartMatching(V.Pairs, static_cast<int>(V.AtomOf.size()));
  V.Bonds = SortBonds(Graph);
  const auto VerticesOf = [&V](int Atom) {
    std::vector<int> All = V.Open[static_cast<std::size_t>(Atom)];
    const int Spare = V.Spare[static_cast<std::size_t>(Atom)];
    if (Spare >= 0) All.push_back(Spare);
    return All;
  };
  for (const auto& [First, Second] : V.Bonds) {
    for (const int One : VerticesOf(First)) {
      for (const int Other : VerticesOf(Second)) AddEdge(V.Pairs, One, Other);
    }
  }
  for (const int Spare : V.Spare) {
    if (Spare >= 0) V.Pairs.Closed[static_cast<std::size_t>(Spare)] = true;
  }
  return V;
}

int FreeVertex(const Valences& V, int Atom) {
  for (const int Vertex : V.Open[static_cast<std::size_t>(Atom)]) {
    if (V.Pairs.Mate[static_cast<std::size_t>(Vertex)] < 0) return Vertex;
  }
  return -1;
}

// Short bonds first, each at most once in a round, so that three short bonds are not one triple bond.
void PairShortBonds(Valences& V) {
  for (int Round = 0; Round < 2; ++Round) {
    for (const auto& [First, Second] : V.Bonds) {
      const int One = FreeVertex(V, First);
      const int Other = FreeVertex(V, Second);
      if (One < 0 || Other < 0) continue;
      V.Pairs.Mate[static_cast<std::size_t>(One)] = Other;
      V.Pairs.Mate[static_cast<std::size_t>(Other)] = One;
    }
  }
}

// A carbon that is left over takes the bond of an oxygen, sulphur or nitrogen, which becomes negative.
bool MakeNegative(const BondGraph& Graph, Valences& V) {
  for (const int Element : {int{Oxygen}, int{Sulphur}, int{Nitrogen}}) {
    for (const int Vertex : V.Pairs.Touched) {
      const auto Place = static_cast<std::size_t>(Vertex);
      const int Atom = V.AtomOf[Place];
      if (!V.Pairs.Outer[Place] || V.Pairs.Mate[Place] < 0 || Graph.Element(Atom) != Element) continue;
      if (Element != Nitrogen && NumLinks(Graph, Atom) != 1) continue;
      TakeMateFrom(V.Pairs, Vertex);
      return true;
    }
  }
  return false;
}

void OpenSpare(Valences& V, int Atom, bool Open) {
  const int Spare = V.Spare[static_cast<std::size_t>(Atom)];
  if (Spare >= 0 && V.Pairs.Mate[static_cast<std::size_t>(Spare)] < 0) {
    V.Pairs.Closed[static_cast<std::size_t>(Spare)] = !Open;
  }
}

void PairLeftOver(const BondGraph& Graph, Valences& V, int Vertex) {
  const int Atom = V.AtomOf[static_cast<std::size_t>(Vertex)];
  if (Graph.Element(Atom) == Carbon) {
    if (!FindMate(V.Pairs, Vertex) && MakeNegative(Graph, V)) return;
    for (int Other = 0; Other < Graph.Count(); ++Other) OpenSpare(V, Other, true);
    FindMate(V.Pairs, Vertex);
    for (int Other = 0; Other < Graph.Count(); ++Other) OpenSpare(V, Other, false);
    return;
  }
  // Others take it from a neighbour alone, as in a nitro group.
  for (const auto& Link : Graph.At(Atom)) OpenSpare(V, Link.Other, true);
  FindMate(V.Pairs, Vertex);
  for (const auto& Link : Graph.At(Atom)) OpenSpare(V, Link.Other, false);
}

void PairAll(const BondGraph& Graph, Valences& V) {
  PairShortBonds(V);
  std::vector<int> Left;
  const auto Vertices = static_cast<int>(V.AtomOf.size());
  const auto IsFree = [&V](int Vertex) {
    return !V.Pairs.Closed[static_cast<std::size_t>(Vertex)] && V.Pairs.Mate[static_cast<std::size_t>(Vertex)] < 0;
  };
  for (int Vertex = 0; Vertex < Vertices; ++Vertex) {
    if (IsFree(Vertex) && !FindMate(V.Pairs, Vertex)) Left.push_back(Vertex);
  }
  for (const bool Carbons : {true, false}) {
    for (const int Vertex : Left) {
      const int Element = Graph.Element(V.AtomOf[static_cast<std::size_t>(Vertex)]);
      const bool Counts = Carbons ? Element == Carbon : Element == Nitrogen || Element == Oxygen;
      if (Counts && IsFree(Vertex)) PairLeftOver(Graph, V, Vertex);
    }
  }
}

BondGraph::Link& LinkBetween(BondGraph& Graph, int Atom, int Other) {
  auto& Links = Graph.At(Atom);
  return *std::find_if(Links.begin(), Links.end(), [Other](const BondGraph::Link& L) { return L.Other == Other; });
}

using BondSet = std::set<std::array<int, 2>>;

std::array<int, 2> BondOf(int First, int Second) { return {std::min(First, Second), std::max(First, Second)}; }

template <class Routine>
void ForRingBonds(const std::vector<int>& Ring, Routine Visit) {
  for (std::size_t Place = 0; Place < Ring.size(); ++Place) Visit(Ring[Place], Ring[(Place + 1) % Ring.size()]);
}

// The electrons that a ring's member gives to it; -1 for one that no aromatic ring can have.
int ElectronsOf(const BondGraph& Graph, int Atom, const BondSet& RingBonds) {
  const int Count = NumLinks(Graph, Atom);
  for (const auto& Link : Graph.At(Atom)) {
    if (Link.Order == TripleOrder) return -1;
    if (Link.Order == AromaticOrder && (Graph.Element(Atom) == Carbon || Count == 2)) {
      return Graph.Element(Atom) == Carbon || Graph.Element(Atom) == Nitrogen ? 1 : 2;
    }
    // A double bond that leaves the rings keeps its electrons: quinones, pyridones, fulvenes.
    if (Link.Order == DoubleOrder) return RingBonds.contains(BondOf(Atom, Link.Other)) ? 1 : -1;
  }
  switch (Graph.Element(Atom)) {
    case Boron:
      return Count == 3 ? 0 : -1;
    case Carbon:  // negative
    case Nitrogen:
      return Count == 3 ? 2 : (Count == 2 && Graph.Element(Atom) == Nitrogen ? 2 : -1);
    case Oxygen:
    case Sulphur:
    case 34:
      return Count == 2 ? 2 : -1;
    default:
      return -1;
  }
}

bool IsAromatic(const BondGraph& Graph, const std::vector<int>& Ring, const BondSet& RingBonds) {
  if (Ring.size() != 5 && Ring.size() != 6) return false;
  int Electrons = 0;
  for (const int Atom : Ring) {
    const int Own = ElectronsOf(Graph, Atom, RingBonds);
    if (Own < 0) return false;
    Electrons += Own;
  }
  return Electrons == 6;
}

}  // namespace

void FindLocalizedOrders(BondGraph& Graph) {
  Valences V = OpenAll(Graph);
  PairAll(Graph, V);
  for (std::size_t Vertex = 0; Vertex < V.AtomOf.size(); ++Vertex) {
    const int Mate = V.Pairs.Mate[Vertex];
    if (Mate >= 0) ++LinkBetween(Graph, V.AtomOf[Vertex], V.AtomOf[static_cast<std::size_t>(Mate)]).Order;
  }
}

void FindBondOrders(BondGraph& Graph) {
  FindLocalizedOrders(Graph);
  FindAromaticRings(Graph);
}

void FindAromaticRings(BondGraph& Graph) {
  const auto Rings = FindRings(Graph);
  BondSet RingBonds;
  for (const auto& Ring : Rings) {
    ForRingBonds(Ring, [&](int A, int B) { RingBonds.insert(BondOf(A, B)); });
  }
  BondSet Aromatic;
  for (const auto& Ring : Rings) {
    if (!IsAromatic(Graph, Ring, RingBonds)) continue;
    ForRingBonds(Ring, [&](int A, int B) { Aromatic.insert(BondOf(A, B)); });
  }
  for (const auto& [First, Second] : Aromatic) {
    LinkBetween(Graph, First, Second).Order = LinkBetween(Graph, Second, First).Order = AromaticOrder;
  }
}

}  // namespace zelvanor
