#include "nmrcalc/shifts/Equivalence.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "nmrcalc/shifts/Geometry.h"

namespace nmrcalc {

namespace {

using Colour = std::uint64_t;

Colour Mix(Colour Left, Colour Right) {  // splitmix64's finaliser over both
  Colour Value = Left * 0x9E3779B97F4A7C15ULL + Right + 0x632BE59BD9B4E019ULL;
  Value = (Value ^ (Value >> 30)) * 0xBF58476D1CE4E5B9ULL;
  Value = (Value ^ (Value >> 27)) * 0x94D049BB133111EBULL;
  return Value ^ (Value >> 31);
}

std::size_t CountColours(const std::vector<Colour>& Colours) {
  return std::set<Colour>(Colours.begin(), Colours.end()).size();
}

// A sum of mixed values is the same in every order.
void AddEdges(const std::vector<ShiftEdge>& Edges, const std::vector<Colour>& Old, Colour Kind,
              std::vector<Colour>& Sums) {
  for (const ShiftEdge& Edge : Edges) {
    if (Edge.Weight == 1.0F && !Edge.InSpace) Sums[Edge.To] += Mix(Mix(Kind, Edge.Class), Old[Edge.From]);
  }
}

// Colours of the atoms: equal where no bond, side or face tells them apart.
std::vector<Colour> FindColours(const Molecule& System, const ShiftGraph& Graph) {
  std::vector<Colour> Nodes(Graph.HeavyAtoms.size());
  for (std::size_t Node = 0; Node < Nodes.size(); ++Node) {
    for (const std::uint16_t Row : Graph.Features[Node]) Nodes[Node] = Mix(Nodes[Node], Row);
  }
  std::size_t Count = CountColours(Nodes);
  for (;;) {
    std::vector<Colour> Sums(Nodes.size());
    AddEdges(Graph.Bonds, Nodes, 1, Sums);
    AddEdges(Graph.Pairs, Nodes, 2, Sums);
    for (std::size_t Node = 0; Node < Nodes.size(); ++Node) Nodes[Node] = Mix(Nodes[Node], Sums[Node]);
    const std::size_t Next = CountColours(Nodes);
    if (Next == Count) break;
    Count = Next;
  }
  std::vector<Colour> Sums(Graph.Hydrogens.size());
  AddEdges(Graph.HydrogenEdges, Nodes, 3, Sums);
  std::vector<Colour> All(System.Atoms.size());
  for (std::size_t Node = 0; Node < Nodes.size(); ++Node) All[Graph.HeavyAtoms[Node]] = Nodes[Node];
  for (std::size_t Hydrogen = 0; Hydrogen < Sums.size(); ++Hydrogen) {
    All[Graph.Hydrogens[Hydrogen]] = Mix(7, Sums[Hydrogen]);
  }
  return All;
}

// The handedness of every atom whose neighbours all differ once this one atom is told apart from all others, for the
// molecule and its mirror image alike.
Colour StereoSignature(const Molecule& System, std::vector<Colour> Colours, std::size_t Marked) {
  Colours[Marked] = Mix(Colours[Marked], 11);
  constexpr int NumRounds = 8;
  std::vector<Colour> Next(Colours.size());
  for (int Round = 0; Round < NumRounds; ++Round) {
    for (std::size_t Index = 0; Index < Colours.size(); ++Index) {
      Colour Sum = 0;
      for (const Neighbour& Bond : System.Atoms[Index].Neighbours) Sum += Mix(13, Colours[Bond.Atom]);
      Next[Index] = Mix(Colours[Index], Sum);
    }
    std::swap(Colours, Next);
  }
  Colour Left = 0;
  Colour Right = 0;
  for (std::size_t Index = 0; Index < Colours.size(); ++Index) {
    const auto& List = System.Atoms[Index].Neighbours;
    const int Z = System.Atoms[Index].AtomicNumber;
    if (List.size() != 4 && !(List.size() == 3 && (Z == 15 || Z == 16))) continue;
    std::vector<std::pair<Colour, std::size_t>> Sorted;
    Sorted.reserve(List.size());
    for (const Neighbour& Bond : List) Sorted.emplace_back(Colours[Bond.Atom], Bond.Atom);
    std::sort(Sorted.begin(), Sorted.end());
    bool Distinct = true;
    for (std::size_t K = 1; K < Sorted.size(); ++K) Distinct = Distinct && Sorted[K - 1].first != Sorted[K].first;
    if (!Distinct) continue;
    const double Volume = SpannedVolume(System, Index, Sorted[0].second, Sorted[1].second, Sorted[2].second);
    if (std::abs(Volume) < 0.05) continue;
    Left += Mix(Colours[Index], Volume > 0.0 ? 1 : 2);
    Right += Mix(Colours[Index], Volume > 0.0 ? 2 : 1);
  }
  return Mix(std::min(Left, Right), std::max(Left, Right));
}

}  // namespace

Equivalence FindEquivalence(const Molecule& System, const ShiftGraph& Graph) {
  std::vector<Colour> Colours = FindColours(System, Graph);
  if (Graph.HasGeometry && System.Atoms.size() <= LargestStereoCount) {
    std::map<Colour, int> Sizes;
    for (const Colour Value : Colours) ++Sizes[Value];
    std::vector<Colour> Finer = Colours;
    for (std::size_t Index = 0; Index < Colours.size(); ++Index) {
      if (Sizes[Colours[Index]] > 1) Finer[Index] = Mix(Colours[Index], StereoSignature(System, Colours, Index));
    }
    Colours = Finer;
  }
  Equivalence Groups;
  std::map<Colour, std::uint32_t> First;
  for (std::uint32_t Node = 0; Node < Graph.HeavyAtoms.size(); ++Node) {
    Groups.NodeGroup.push_back(First.emplace(Colours[Graph.HeavyAtoms[Node]], Node).first->second);
  }
  First.clear();
  for (std::uint32_t Hydrogen = 0; Hydrogen < Graph.Hydrogens.size(); ++Hydrogen) {
    Groups.HydrogenGroup.push_back(First.emplace(Colours[Graph.Hydrogens[Hydrogen]], Hydrogen).first->second);
  }
  return Groups;
}

}  // namespace nmrcalc
