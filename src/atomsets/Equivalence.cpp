// Classes by refinement: atoms begin with element, isotope and number of neighbours, and are told apart by the classes
// of their neighbours until nothing changes any more. Orders of bonds are left out, since resonance forms differ in
// them; with all hydrogens there the rest tells atoms apart.

#include "atomsets/Equivalence.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>

#include "atomsets/AtomLinks.h"
#include "atomsets/RingSides.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr int LargestSet = 20;

// Ranks of keys in their order, which is that of what they say and not of the atoms.
template <class Key>
int Rank(const std::vector<Key>& Keys, std::vector<int>& Ranks) {
  std::map<Key, int> Places;
  for (const Key& One : Keys) Places.emplace(One, 0);
  int Place = 0;
  for (auto& [One, Number] : Places) Number = ++Place;
  Ranks.clear();
  for (const Key& One : Keys) Ranks.push_back(Places[One]);
  return Place;
}

std::vector<int> Refine(const Links& All) {
  std::vector<std::array<int, 3>> Start;
  Start.reserve(All.size());
  for (int Atom = 0; Atom < W.NumAtoms; ++Atom) {
    Start.push_back({int(W.AtomicNumber[Atom]), W.AtomicNumber[Atom] == 1 && IsLabelled(Atom + 1) ? 1 : 0,
                     static_cast<int>(All[static_cast<std::size_t>(Atom)].size())});
  }
  std::vector<int> Ranks;
  int Count = Rank(Start, Ranks);
  for (int Before = 0; Before != Count;) {
    Before = Count;
    std::vector<std::vector<int>> Keys;
    for (std::size_t Atom = 0; Atom < All.size(); ++Atom) {
      std::vector<int> Key;
      for (const int Other : All[Atom]) Key.push_back(Ranks[static_cast<std::size_t>(Other)]);
      std::sort(Key.begin(), Key.end());
      Key.insert(Key.begin(), Ranks[Atom]);
      Keys.push_back(std::move(Key));
    }
    Count = Rank(Keys, Ranks);
  }
  return Ranks;
}

// The part of a vector that stands across the bond.
Vector Across(const Vector& Value, const Vector& Bond) {
  const Double Length = Dot(Bond, Bond);
  const Double Share = Length > 0 ? Dot(Value, Bond) / Length : 0;
  return {Value[0] - Share * Bond[0], Value[1] - Share * Bond[1], Value[2] - Share * Bond[2]};
}

bool IsDoubleBond(int Atom, int Other) {
  for (int N = 0; N < W.AtomCoordination[Atom]; ++N) {
    if (W.AtomNeighbour(Atom, N) == Other) return W.AtomBondType(Atom, N).Trimmed() == "d";
  }
  return false;
}

// The hydrogens of a =CH2 whose other end has two different groups: the one on the side of the higher group gets a
// class of its own.
void TellCisFromTrans(const Links& All, std::vector<int>& Ranks) {
  const std::vector<int> Before = Ranks;
  const auto RankOf = [&](int Atom) { return Before[static_cast<std::size_t>(Atom)]; };
  for (int Carbon = 0; Carbon < W.NumAtoms; ++Carbon) {
    const auto& Own = All[static_cast<std::size_t>(Carbon)];
    if (W.AtomicNumber[Carbon] != 6 || Own.size() != 3) continue;
    std::vector<int> Hydrogens;
    int Other = -1;
    for (const int Next : Own) {
      if (W.AtomicNumber[Next] == 1) Hydrogens.push_back(Next);
      if (W.AtomicNumber[Next] == 6 && IsDoubleBond(Carbon, Next)) Other = Next;
    }
    if (Other < 0 || Hydrogens.size() != 2) continue;
    std::vector<int> Groups = All[static_cast<std::size_t>(Other)];
    std::erase(Groups, Carbon);
    if (Groups.size() != 2 || RankOf(Groups[0]) == RankOf(Groups[1])) continue;
    const Vector Bond = Between(Carbon, Other);
    const int Higher = RankOf(Groups[0]) > RankOf(Groups[1]) ? Groups[0] : Groups[1];
    const Vector Side = Across(Between(Other, Higher), Bond);
    const auto Near = [&](int Hydrogen) { return Dot(Across(Between(Carbon, Hydrogen), Bond), Side); };
    const int Cis = Near(Hydrogens[0]) > Near(Hydrogens[1]) ? Hydrogens[0] : Hydrogens[1];
    Ranks[static_cast<std::size_t>(Cis)] += W.NumAtoms;
  }
}

// Bonds to every other atom; the largest number where there is no way.
std::vector<int> DistancesFrom(const Links& All, int Start) {
  constexpr int None = std::numeric_limits<int>::max();
  std::vector<int> Distances(All.size(), None);
  std::vector<int> Reached = {Start};
  Distances[static_cast<std::size_t>(Start)] = 0;
  for (std::size_t Place = 0; Place < Reached.size(); ++Place) {
    for (const int Next : All[static_cast<std::size_t>(Reached[Place])]) {
      int& Distance = Distances[static_cast<std::size_t>(Next)];
      if (Distance != None) continue;
      Distance = Distances[static_cast<std::size_t>(Reached[Place])] + 1;
      Reached.push_back(Next);
    }
  }
  return Distances;
}

}  // namespace

std::vector<int> FindConstitutionalClasses() { return Refine(LinksOfAll()); }

std::vector<int> FindAtomClasses() {
  const Links All = LinksOfAll();
  std::vector<int> Ranks = Refine(All);
  TellCisFromTrans(All, Ranks);
  TellSidesOfRings(All, Ranks);
  // Numbered as they come.
  std::map<int, int> Numbers;
  for (int& One : Ranks) One = Numbers.emplace(One, static_cast<int>(Numbers.size()) + 1).first->second;
  return Ranks;
}

std::vector<std::vector<int>> FindEquivalentSets(const std::vector<int>& Classes, int Most) {
  const Links All = LinksOfAll();
  // The class and the distances to all NMR atoms of other classes.
  std::map<std::vector<int>, std::vector<int>> Groups;
  for (int Entry = 0; Entry < W.NumNMRAtoms; ++Entry) {
    const int Atom = W.NMRAtom[Entry] - 1;
    const int Class = Classes.at(static_cast<std::size_t>(Atom));
    const std::vector<int> Distances = DistancesFrom(All, Atom);
    std::vector<int> Key = {Class};
    for (int Other = 0; Other < W.NumNMRAtoms; ++Other) {
      const auto Place = static_cast<std::size_t>(W.NMRAtom[Other] - 1);
      if (Classes.at(Place) != Class) Key.push_back(Distances[Place]);
    }
    Groups[Key].push_back(Atom + 1);
  }
  std::vector<std::vector<int>> Sets;
  for (auto& [Key, Members] : Groups) {
    std::sort(Members.begin(), Members.end());
    if (Members.size() >= 2 && Members.size() <= LargestSet) Sets.push_back(Members);
  }
  std::sort(Sets.begin(), Sets.end(),
            [](const auto& A, const auto& B) { return A.size() != B.size() ? A.size() > B.size() : A[0] < B[0]; });
  if (static_cast<int>(Sets.size()) > Most) Sets.resize(static_cast<std::size_t>(Most));
  return Sets;
}

void TakeEquivalentSets(const std::vector<std::vector<int>>& Sets) {
  W.NumEquivalentSets = static_cast<int>(Sets.size());
  for (int Set = 0; Set < NumSavedSets; ++Set) {
    const bool There = Set < static_cast<int>(Sets.size());
    W.EquivalentSetSize[Set] = There ? static_cast<int>(Sets[static_cast<std::size_t>(Set)].size()) : 0;
    for (int Member = 0; Member < W.EquivalentSetSize[Set]; ++Member) {
      W.EquivalentAtom(Set, Member) = Sets[static_cast<std::size_t>(Set)][static_cast<std::size_t>(Member)];
    }
  }
}

}  // namespace zelvanor
