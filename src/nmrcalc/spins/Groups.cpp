#include "nmrcalc/spins/Groups.h"

#include <algorithm>
#include <cmath>

#include "nmrcalc/spins/SpinSystem.h"

namespace nmrcalc {

namespace {

bool IsSame(double A, double B) { return std::fabs(A - B) < SameNumber; }

bool AreEquivalent(const SpectrumInput& Input, const SpinPart& Part, std::size_t A, std::size_t B) {
  if (!IsSame(Input.Sites[A].Shift, Input.Sites[B].Shift) || Input.Sites[A].Observed != Input.Sites[B].Observed) {
    return false;
  }
  return std::all_of(Part.Sites.begin(), Part.Sites.end(), [&](std::size_t Other) {
    return Other == A || Other == B || IsSame(Input.J(A, Other), Input.J(B, Other));
  });
}

}  // namespace

GroupedInput GroupEquivalentSites(const SpectrumInput& Input) {
  GroupedInput Result{.Input = Input};
  constexpr auto NoGroup = static_cast<std::size_t>(-1);
  std::vector<std::size_t> First(Input.Sites.size(), NoGroup);  // of the group that a site belongs to
  for (const SpinPart& Part : FindParts(Input)) {
    for (std::size_t K = 0; K < Part.Sites.size(); ++K) {
      const std::size_t Site = Part.Sites[K];
      if (First[Site] != NoGroup) continue;
      First[Site] = Site;
      int NumSpins = Input.Sites[Site].Degeneracy;
      for (std::size_t Next = K + 1; Next < Part.Sites.size(); ++Next) {
        const std::size_t Other = Part.Sites[Next];
        const int Sum = NumSpins + Input.Sites[Other].Degeneracy;
        if (First[Other] != NoGroup || Sum > LargestDegeneracy || !AreEquivalent(Input, Part, Site, Other)) continue;
        First[Other] = Site;
        NumSpins = Sum;
      }
    }
  }
  std::vector<std::size_t> GroupOf(Input.Sites.size());
  Result.Input.Sites.clear();
  for (std::size_t Site = 0; Site < Input.Sites.size(); ++Site) {
    if (First[Site] == Site) {
      GroupOf[Site] = Result.Members.size();
      Result.Members.push_back({Site});
      Result.Input.Sites.push_back(Input.Sites[Site]);
      continue;
    }
    GroupOf[Site] = GroupOf[First[Site]];
    Result.Members[GroupOf[Site]].push_back(Site);
    Result.Input.Sites[GroupOf[Site]].Degeneracy += Input.Sites[Site].Degeneracy;
  }
  const std::size_t NumGroups = Result.Members.size();
  Result.Input.Coupling.assign(NumGroups * NumGroups, 0.0);
  for (std::size_t Row = 0; Row < NumGroups; ++Row) {
    for (std::size_t Column = 0; Column < NumGroups; ++Column) {
      if (Row == Column) continue;
      Result.Input.Coupling[Row * NumGroups + Column] = Input.J(Result.Members[Row][0], Result.Members[Column][0]);
    }
  }
  return Result;
}

}  // namespace nmrcalc
