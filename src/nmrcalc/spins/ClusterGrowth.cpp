#include "nmrcalc/spins/ClusterGrowth.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <queue>
#include <set>
#include <utility>

namespace nmrcalc {

namespace {

constexpr double SeenDistance = 1.0;     // Hz; less is not seen at the width of a line
constexpr double SeenSplitting = 2.0;    // Hz, of which half is seen
constexpr double ShareOfMixing = 0.3;    // of the amplitude that two sites mix by
constexpr double SmallestShare = 1e-9;   // of the core that is followed
constexpr double SmallestScore = 1e-12;  // of a coupling that is looked at
constexpr double LargestCombination = 4096.0;

double SumOfCubesOf(const std::vector<int>& TwiceSpins) {
  std::vector<double> Counts{1.0};
  for (const int TwiceSpin : TwiceSpins) {
    const auto Steps = static_cast<std::size_t>(TwiceSpin);
    std::vector<double> Next(Counts.size() + Steps);
    for (std::size_t K = 0; K < Counts.size(); ++K) {
      for (std::size_t Step = 0; Step <= Steps; ++Step) Next[K + Step] += Counts[K];
    }
    Counts = std::move(Next);
  }
  double Sum = 0.0;
  for (const double Size : Counts) Sum += Size * Size * Size;
  return Sum;
}

double MixingOf(const SpectrumInput& Input, const Neighbourhood& Near, std::size_t A, std::size_t B) {
  // Where eight equal parts of a normal distribution have their middles.
  constexpr std::array Quantiles{-1.534, -0.887, -0.489, -0.157, 0.157, 0.489, 0.887, 1.534};
  double Variance = 0.0;
  const auto AddSpread = [&](std::size_t Site) {
    const double Difference = Input.J(A, Site) - Input.J(B, Site);
    if (Site != A && Site != B) Variance += 0.25 * Input.Sites[Site].Degeneracy * Difference * Difference;
  };
  for (const MixedSite& Next : Near[A]) AddSpread(Next.Site);
  for (const MixedSite& Next : Near[B]) {
    if (Input.J(A, Next.Site) == 0.0) AddSpread(Next.Site);
  }
  const double J = Input.J(A, B);
  double Sum = 0.0;
  for (const double Quantile : Quantiles) {
    const double Distance = Input.Sites[A].Frequency - Input.Sites[B].Frequency + Quantile * std::sqrt(Variance);
    Sum += J * J / (Distance * Distance + J * J + SeenDistance * SeenDistance);
  }
  return Sum / double(Quantiles.size());
}

// How much is seen of a splitting.
double Visibility(double Splitting) {
  const double X = Splitting / SeenSplitting;
  return X * X / (1.0 + X * X);
}

// The share of the core that stands at each site: the best product along a path from it.
std::vector<double> SpreadShare(const Neighbourhood& Near, const std::vector<std::size_t>& Core) {
  std::vector<double> Best(Near.size());
  std::priority_queue<std::pair<double, std::size_t>> Open;
  for (const std::size_t Site : Core) Open.emplace(Best[Site] = 1.0, Site);
  while (!Open.empty()) {
    const auto [Value, Site] = Open.top();
    Open.pop();
    if (Value < Best[Site]) continue;
    for (const MixedSite& Next : Near[Site]) {
      const double Own = Value * ShareOfMixing * std::sqrt(Next.Mixing);
      if (Own <= Best[Next.Site] || Own < SmallestShare) continue;
      Best[Next.Site] = Own;
      Open.emplace(Own, Next.Site);
    }
  }
  return Best;
}

struct RankedCoupling {
  double Score = 0.0;
  std::size_t A = 0;
  std::size_t B = 0;
  bool operator<(const RankedCoupling& Other) const { return Score < Other.Score; }
};
using CouplingQueue = std::priority_queue<RankedCoupling>;

// The couplings by what a share of the core sees of them; fills how much of each site is seen.
CouplingQueue RankCouplings(const SpectrumInput& Input, const Neighbourhood& Near, const std::vector<double>& Share,
                            std::vector<double>& Seen) {
  std::vector<RankedCoupling> Couplings;
  for (std::size_t Site = 0; Site < Share.size(); ++Site) {
    if (Share[Site] == 0.0) continue;
    for (const MixedSite& Next : Near[Site]) {
      const double J = Input.J(Site, Next.Site);
      Couplings.push_back({Share[Site] * Next.Mixing, Site, Next.Site});
      Seen[Next.Site] = std::max(Seen[Next.Site], Share[Site] * Visibility(J));
      for (const MixedSite& Third : Near[Next.Site]) {
        if (Third.Site == Site) continue;
        const double Splitting = J - Input.J(Site, Third.Site);
        Couplings.push_back({Share[Site] * Visibility(Splitting) * Third.Mixing, Next.Site, Third.Site});
      }
    }
  }
  return {Couplings.begin(), Couplings.end()};
}

}  // namespace

Neighbourhood FindNeighbours(const SpectrumInput& Input, const SpinPart& Part) {
  Neighbourhood Result(Input.Sites.size());
  for (const std::size_t Site : Part.Sites) {
    for (const std::size_t Other : Part.Sites) {
      if (Other != Site && Input.J(Site, Other) != 0.0) Result[Site].push_back({.Site = Other});
    }
  }
  for (const std::size_t Site : Part.Sites) {
    for (MixedSite& Next : Result[Site]) Next.Mixing = MixingOf(Input, Result, Site, Next.Site);
  }
  return Result;
}

double SumOfCubes(const std::vector<int>& Degeneracies) {
  std::vector<int> Choice = Degeneracies;
  double Sum = 0.0;
  double NumChoices = 1.0;
  for (const int Degeneracy : Degeneracies) NumChoices *= int{Degeneracy / 2 + 1};
  if (NumChoices > LargestCombination) return NumChoices * SumOfCubesOf(Choice);
  while (true) {
    Sum += SumOfCubesOf(Choice);
    std::size_t K = 0;
    for (; K < Choice.size() && Choice[K] < 2; ++K) Choice[K] = Degeneracies[K];
    if (K == Choice.size()) return Sum;
    Choice[K] -= 2;
  }
}

Growth GrowCluster(const SpectrumInput& Input, const Neighbourhood& Near, const std::vector<std::size_t>& Core,
                   double LargestCost) {
  Growth Result{.Sites = Core, .Influence = std::vector<double>(Core.size(), 1.0)};
  std::vector<int> Degeneracies;
  Degeneracies.reserve(Core.size());
  for (const std::size_t Site : Core) Degeneracies.push_back(Input.Sites[Site].Degeneracy);
  const std::vector<double> Share = SpreadShare(Near, Core);
  std::vector<double> Seen = Share;
  CouplingQueue Open = RankCouplings(Input, Near, Share, Seen);
  std::set<std::pair<std::size_t, std::size_t>> Done;
  while (!Open.empty() && Open.top().Score > SmallestScore) {
    const RankedCoupling Best = Open.top();
    Open.pop();
    if (!Done.insert(std::minmax(Best.A, Best.B)).second) continue;
    std::vector<std::size_t> Wanted;
    bool MayComeIn = true;
    const std::size_t NumMembers = Degeneracies.size();
    for (const std::size_t End : {Best.A, Best.B}) {
      for (const MixedSite& Next : Near[End]) Open.push({Best.Score * Next.Mixing, End, Next.Site});
      MayComeIn = MayComeIn && Input.Sites[End].Observed;
      if (std::find(Result.Sites.begin(), Result.Sites.end(), End) != Result.Sites.end()) continue;
      Wanted.push_back(End);
      Degeneracies.push_back(Input.Sites[End].Degeneracy);
    }
    if (!MayComeIn || Wanted.empty() || SumOfCubes(Degeneracies) > LargestCost) {
      if (MayComeIn && !Wanted.empty() && Result.Refused == NoSite) Result.Refused = Wanted[0];
      Degeneracies.resize(NumMembers);
      continue;
    }
    for (const std::size_t Site : Wanted) {
      Result.Sites.push_back(Site);
      Result.Influence.push_back(std::max(Seen[Site], Best.Score));
    }
  }
  return Result;
}

}  // namespace nmrcalc
