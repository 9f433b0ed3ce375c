#include <algorithm>
#include <set>

#include "files/BondSearch.h"

namespace zelvanor {

namespace {

constexpr std::size_t LargestRing = 8;
// A graph that offers more ways than this is no molecule; its rings are not looked for.
constexpr std::size_t LargestWayCount = 1024;

using Way = std::vector<int>;

// All shortest ways from one end of a bond to the other that don't use the bond; none when they are longer than a ring
// allows.
std::vector<Way> ShortestWaysAround(const BondGraph& Graph, int From, int To) {
  std::vector<Way> Ways = {{From}};
  std::set<int> Seen = {From};
  for (std::size_t Length = 1; Length < LargestRing && !Ways.empty() && Ways.size() <= LargestWayCount; ++Length) {
    std::vector<Way> Longer;
    std::vector<Way> Closed;
    std::set<int> Reached;
    for (const Way& Known : Ways) {
      for (const auto& Link : Graph.At(Known.back())) {
        if ((Length == 1 && Link.Other == To) || Seen.contains(Link.Other)) continue;
        Way Extended = Known;
        Extended.push_back(Link.Other);
        if (Link.Other == To) {
          Closed.push_back(std::move(Extended));
        } else {
          Reached.insert(Link.Other);
          Longer.push_back(std::move(Extended));
        }
      }
    }
    if (!Closed.empty()) return Closed;
    Seen.insert(Reached.begin(), Reached.end());
    Ways = std::move(Longer);
  }
  return {};
}

}  // namespace

std::vector<std::vector<int>> FindRings(const BondGraph& Graph) {
  std::vector<Way> Rings;
  std::set<Way> Known;  // members sorted
  for (int Atom = 0; Atom < Graph.Count(); ++Atom) {
    for (const auto& Link : Graph.At(Atom)) {
      if (Link.Other < Atom) continue;
      for (Way& Ring : ShortestWaysAround(Graph, Atom, Link.Other)) {
        Way Members = Ring;
        std::sort(Members.begin(), Members.end());
        if (Known.insert(std::move(Members)).second) Rings.push_back(std::move(Ring));
      }
    }
  }
  return Rings;
}

}  // namespace zelvanor
