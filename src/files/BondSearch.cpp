#include "files/BondSearch.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "files/MoleculeTree.h"
#include "workspace/ElementData.h"

namespace zelvanor {

namespace {

// Bonds are longer than the sum of the radii by less than this, in angstrom; atoms nearer than the second are one.
constexpr Double Tolerance = 0.4;
constexpr Double SamePlace = 0.1;
// No molecule has so many atoms within a bond's length of one.
constexpr std::size_t LargestCrowd = 64;

// Atoms sorted into cubes, so that near ones are found without looking at all.
class PlaceGrid {
 public:
  PlaceGrid(const BondGraph& Graph, Double Side) : Graph(Graph), Side(Side) {
    for (int Atom = 0; Atom < Graph.Count(); ++Atom) Cubes[CubeOf(Atom)].push_back(Atom);
  }

  // Every pair once, the lower index first, in rising order of it.
  template <class Routine>
  void ForNearPairs(Routine Visit) const {
    for (int Atom = 0; Atom < Graph.Count(); ++Atom) {
      const Cube Own = CubeOf(Atom);
      for (int Near = 0; Near < 27; ++Near) {
        const auto Found = Cubes.find({Own[0] + Near % 3 - 1, Own[1] + Near / 3 % 3 - 1, Own[2] + Near / 9 - 1});
        if (Found == Cubes.end()) continue;
        for (const int Other : Found->second) {
          if (Other > Atom && !Visit(Atom, Other)) return;
        }
      }
    }
  }

 private:
  using Cube = std::array<int, 3>;

  Cube CubeOf(int Atom) const {
    Cube Result{};
    for (std::size_t C = 0; C < 3; ++C) {
      Result[C] = static_cast<int>(std::floor(Graph.Places[static_cast<std::size_t>(Atom)][C] / Side));
    }
    return Result;
  }

  const BondGraph& Graph;
  Double Side;
  std::map<Cube, std::vector<int>> Cubes;
};

// How much longer a bond is than the radii of its elements say.
Double Excess(const BondGraph& Graph, int First, int Second) {
  return Graph.Distance(First, Second) - CovalentRadius(Graph.Element(First)) - CovalentRadius(Graph.Element(Second));
}

void RemoveHalf(BondGraph& Graph, int Atom, int Other) {
  std::erase_if(Graph.At(Atom), [Other](const BondGraph::Link& L) { return L.Other == Other; });
}

// Two borons with two hydrogens between them are held by these alone.
void OpenBridgedBorons(BondGraph& Graph) {
  constexpr int Boron = 5;
  for (int Atom = 0; Atom < Graph.Count(); ++Atom) {
    if (Graph.Element(Atom) != Boron) continue;
    for (const BondGraph::Link& Link : std::vector<BondGraph::Link>(Graph.At(Atom))) {
      if (Link.Other < Atom || Graph.Element(Link.Other) != Boron) continue;
      const auto& Own = Graph.At(Atom);
      const auto Bridges = std::count_if(Own.begin(), Own.end(), [&](const BondGraph::Link& L) {
        const auto& Others = Graph.At(Link.Other);
        return Graph.Element(L.Other) == 1 &&
               std::any_of(Others.begin(), Others.end(), [&](const BondGraph::Link& M) { return M.Other == L.Other; });
      });
      if (Bridges < 2) continue;
      RemoveHalf(Graph, Atom, Link.Other);
      RemoveHalf(Graph, Link.Other, Atom);
    }
  }
}

void CutToLargestCoordination(BondGraph& Graph) {
  for (int Atom = 0; Atom < Graph.Count(); ++Atom) {
    auto& Links = Graph.At(Atom);
    std::size_t Largest = static_cast<std::size_t>(LargestCoordination(Graph.Element(Atom)));
    // Between two borons a hydrogen makes a bridge.
    if (Graph.Element(Atom) == 1 && std::all_of(Links.begin(), Links.end(), [&](const BondGraph::Link& L) {
          return CommonValence(Graph.Element(L.Other)) == 0 || Graph.Element(L.Other) == 5;
        })) {
      Largest = 2;
    }
    while (Links.size() > Largest) {
      const auto Longest = std::max_element(Links.begin(), Links.end(), [&](const auto& A, const auto& B) {
        return Excess(Graph, Atom, A.Other) < Excess(Graph, Atom, B.Other);
      });
      const int Other = Longest->Other;
      RemoveHalf(Graph, Atom, Other);
      RemoveHalf(Graph, Other, Atom);
    }
  }
}

}  // namespace

Double BondGraph::Distance(int First, int Second) const {
  const auto& A = Places[static_cast<std::size_t>(First)];
  const auto& B = Places[static_cast<std::size_t>(Second)];
  return std::hypot(A[0] - B[0], A[1] - B[1], A[2] - B[2]);
}

void FindBonds(BondGraph& Graph) {
  Graph.Links.assign(Graph.AtomicNumbers.size(), {});
  Double Largest = 0;
  for (const int Element : Graph.AtomicNumbers) Largest = std::max(Largest, Double{CovalentRadius(Element)});
  const PlaceGrid Grid(Graph, 2.0 * Largest + Tolerance);
  Grid.ForNearPairs([&](int First, int Second) {
    if (Excess(Graph, First, Second) <= Tolerance) {
      Graph.At(First).push_back({Second, SingleOrder});
      Graph.At(Second).push_back({First, SingleOrder});
      if (Graph.At(First).size() > LargestCrowd) throw Failure("The atoms stand too near to each other");
    }
    return true;
  });
  for (auto& Links : Graph.Links) {
    std::sort(Links.begin(), Links.end(), [](const auto& A, const auto& B) { return A.Other < B.Other; });
  }
  OpenBridgedBorons(Graph);
  CutToLargestCoordination(Graph);
}

std::array<int, 2> FindClash(const BondGraph& Graph) {
  std::array<int, 2> Found = {-1, -1};
  PlaceGrid(Graph, SamePlace).ForNearPairs([&](int First, int Second) {
    if (Graph.Distance(First, Second) >= SamePlace) return true;
    Found = {First, Second};
    return false;
  });
  return Found;
}

}  // namespace zelvanor
