#include "atomsets/RingSides.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <tuple>

#include "atomsets/AtomLinks.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr std::size_t LargestRing = 8;  // larger ones turn inside out
constexpr std::size_t MostRings = 8;    // of one size through one atom
constexpr Double LeastHeight = 0.2;     // angstrom; what lies nearer to the plane of the ring has no side

using Ring = std::vector<int>;
// Of each centre in the ring: its class, its distance in bonds, 1 where its higher group is on the same side.
using Sides = std::vector<std::tuple<int, int, int>>;

struct Pair {
  std::array<int, 2> Groups{};  // the two that are equal so far
  std::array<int, 2> Ends{};    // the neighbours in the ring
};

const std::vector<int>& Of(const Links& All, int Atom) { return All[static_cast<std::size_t>(Atom)]; }

bool IsEnd(const Links& All, int Atom) {
  const auto NumHeavy =
      std::count_if(Of(All, Atom).begin(), Of(All, Atom).end(), [](int Other) { return W.AtomicNumber[Other] != 1; });
  return NumHeavy == 1;
}

// Whether this carbon has two equal groups that end there, and two other neighbours.
bool FindPair(const Links& All, const std::vector<int>& Ranks, int Atom, Pair& Found) {
  const std::vector<int>& Own = Of(All, Atom);
  if (W.AtomicNumber[Atom] != 6 || Own.size() != 4) return false;
  std::vector<int> Groups;
  std::vector<int> Ends;
  for (const int Each : Own) {
    const auto Likes = std::count_if(Own.begin(), Own.end(), [&](int Other) {
      return Ranks[static_cast<std::size_t>(Other)] == Ranks[static_cast<std::size_t>(Each)];
    });
    (Likes == 2 && IsEnd(All, Each) ? Groups : Ends).push_back(Each);
  }
  if (Groups.size() != 2) return false;
  Found = {{Groups[0], Groups[1]}, {Ends[0], Ends[1]}};
  return true;
}

// All smallest rings through an atom and these two of its neighbours, from the atom on.
std::vector<Ring> FindRings(const Links& All, int Atom, const std::array<int, 2>& Ends) {
  std::vector<Ring> Open = {{Atom, Ends[0]}};
  while (!Open.empty() && Open.front().size() < LargestRing) {
    std::vector<Ring> Closed;
    std::vector<Ring> Longer;
    for (const Ring& Path : Open) {
      for (const int Next : Of(All, Path.back())) {
        if (std::find(Path.begin(), Path.end(), Next) != Path.end()) continue;
        auto& Target = Next == Ends[1] ? Closed : Longer;
        Target.push_back(Path);
        Target.back().push_back(Next);
      }
    }
    if (!Closed.empty()) return Closed.size() <= MostRings ? Closed : std::vector<Ring>();
    Open = std::move(Longer);
  }
  return {};
}

// The normal of the ring's mean plane, of length 1; which of the two depends on the order of the ring.
Vector NormalOf(const Ring& Atoms) {
  Vector Sum{};
  for (std::size_t K = 0; K < Atoms.size(); ++K) {
    const Vector A = Between(Atoms[0], Atoms[K]);
    const Vector B = Between(Atoms[0], Atoms[(K + 1) % Atoms.size()]);
    Sum[0] += A[1] * B[2] - A[2] * B[1];
    Sum[1] += A[2] * B[0] - A[0] * B[2];
    Sum[2] += A[0] * B[1] - A[1] * B[0];
  }
  const Double Length = std::sqrt(Dot(Sum, Sum));
  for (Double& Each : Sum) Each = Length > 0 ? Each / Length : 0;
  return Sum;
}

// How far the first atom lies above the second; 0 where that is too little to tell.
Double HeightOf(const Vector& Normal, int First, int Second) {
  const Double Height = Dot(Normal, Between(Second, First));
  return std::fabs(Height) < LeastHeight ? 0 : Height;
}

// The two groups of a stereo centre outside the ring, the higher class first; none for other atoms.
std::vector<int> GroupsOfCentre(const Links& All, const std::vector<int>& Ranks, const Ring& Atoms, int Centre) {
  const auto RankOf = [&](int Atom) { return Ranks[static_cast<std::size_t>(Atom)]; };
  std::set<int> Different;
  std::vector<int> Groups;
  for (const int Each : Of(All, Centre)) {
    Different.insert(RankOf(Each));
    if (std::find(Atoms.begin(), Atoms.end(), Each) == Atoms.end()) Groups.push_back(Each);
  }
  if (Different.size() != 4 || Groups.size() != 2) return {};
  if (RankOf(Groups[0]) < RankOf(Groups[1])) std::swap(Groups[0], Groups[1]);
  return Groups;
}

// What stands on the side of the first group, and on that of the second.
std::array<Sides, 2> FindSides(const Links& All, const std::vector<int>& Ranks, int Atom, const Pair& Equal) {
  std::array<Sides, 2> Found;
  for (const Ring& Atoms : FindRings(All, Atom, Equal.Ends)) {
    const Vector Normal = NormalOf(Atoms);
    const Double Own = HeightOf(Normal, Equal.Groups[0], Equal.Groups[1]);
    for (std::size_t K = 1; K < Atoms.size(); ++K) {
      const std::vector<int> Groups = GroupsOfCentre(All, Ranks, Atoms, Atoms[K]);
      if (Groups.empty()) continue;
      const Double Height = HeightOf(Normal, Groups[0], Groups[1]);
      if (Own == 0 || Height == 0) continue;
      const int Bonds = static_cast<int>(std::min(K, Atoms.size() - K));
      const int Same = (Own > 0) == (Height > 0) ? 1 : 0;
      Found[0].emplace_back(Ranks[static_cast<std::size_t>(Atoms[K])], Bonds, Same);
      Found[1].emplace_back(Ranks[static_cast<std::size_t>(Atoms[K])], Bonds, 1 - Same);
    }
  }
  for (Sides& Each : Found) std::sort(Each.begin(), Each.end());
  return Found;
}

}  // namespace

void TellSidesOfRings(const Links& All, std::vector<int>& Ranks) {
  const std::vector<int> Before = Ranks;
  std::map<std::pair<int, Sides>, std::vector<int>> Told;
  for (int Atom = 0; Atom < W.NumAtoms; ++Atom) {
    Pair Equal;
    if (!FindPair(All, Before, Atom, Equal)) continue;
    const std::array<Sides, 2> Found = FindSides(All, Before, Atom, Equal);
    if (Found[0] == Found[1]) continue;
    for (std::size_t K = 0; K < 2; ++K) {
      std::vector<int> Members = Of(All, Equal.Groups[K]);
      std::erase(Members, Atom);
      Members.push_back(Equal.Groups[K]);
      for (const int Each : Members) Told[{Before[static_cast<std::size_t>(Each)], Found[K]}].push_back(Each);
    }
  }
  int Last = Before.empty() ? 0 : *std::max_element(Before.begin(), Before.end());
  for (const auto& [Key, Members] : Told) {
    ++Last;
    for (const int Each : Members) Ranks[static_cast<std::size_t>(Each)] = Last;
  }
}

}  // namespace zelvanor
