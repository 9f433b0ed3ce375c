#include "nmrcalc/spins/ClusterGrowth.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
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
constexpr double SmallestIndirectMixing = 1e-3;
constexpr double SlowSize = 1000.0;  // of blocks that are diagonalised at half the speed of the largest
constexpr double LargestCombination = 4096.0;

// The sites that each site is coupled to.
using Couplings = std::vector<std::vector<std::size_t>>;

double SimulationCostOf(const std::vector<int>& TwiceSpins) {
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
  for (const double Size : Counts) Sum += Size * Size * (Size + SlowSize);
  return Sum;
}

// How much two sites mix by a coupling in the mean over the states of all others.
double MixingOf(const SpectrumInput& Input, const Couplings& All, std::size_t A, std::size_t B, double J) {
  // Where eight equal parts of a normal distribution have their middles.
  constexpr std::array Quantiles{-1.534, -0.887, -0.489, -0.157, 0.157, 0.489, 0.887, 1.534};
  double Variance = 0.0;
  const auto AddSpread = [&](std::size_t Site) {
    const double Difference = Input.J(A, Site) - Input.J(B, Site);
    if (Site != A && Site != B) Variance += 0.25 * Input.Sites[Site].Degeneracy * Difference * Difference;
  };
  for (const std::size_t Site : All[A]) AddSpread(Site);
  for (const std::size_t Site : All[B]) {
    if (Input.J(A, Site) == 0.0) AddSpread(Site);
  }
  double Sum = 0.0;
  for (const double Quantile : Quantiles) {
    const double Distance = Input.Sites[A].Frequency - Input.Sites[B].Frequency + Quantile * std::sqrt(Variance);
    Sum += J * J / (Distance * Distance + J * J + SeenDistance * SeenDistance);
  }
  return Sum / double(Quantiles.size());
}

// What couples a site to others through a third one, to second order, in Hz.
std::map<std::size_t, double> FindIndirectCouplings(const SpectrumInput& Input, const Couplings& All, std::size_t A) {
  std::map<std::size_t, double> Result;
  for (const std::size_t Between : All[A]) {
    for (const std::size_t B : All[Between]) {
      if (B == A || Input.J(A, B) != 0.0) continue;
      const double Distance =
          0.5 * (Input.Sites[A].Frequency + Input.Sites[B].Frequency) - Input.Sites[Between].Frequency;
      const double Product = Input.J(A, Between) * Input.J(Between, B);
      Result[B] += 0.5 * Product * Distance / (Distance * Distance + std::fabs(Product));
    }
  }
  return Result;
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
  std::size_t Seer = 0;  // the third site by whose couplings it is seen, or an end
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
      Couplings.push_back({Share[Site] * Next.Mixing, Site, Next.Site, Site});
      Seen[Next.Site] = std::max(Seen[Next.Site], Share[Site] * Visibility(J));
      for (const MixedSite& Third : Near[Next.Site]) {
        if (Third.Site == Site) continue;
        const double Splitting = J - Input.J(Site, Third.Site);
        Couplings.push_back({Share[Site] * Visibility(Splitting) * Third.Mixing, Next.Site, Third.Site, Site});
      }
    }
  }
  return {Couplings.begin(), Couplings.end()};
}

}  // namespace

Neighbourhood FindNeighbours(const SpectrumInput& Input, const SpinPart& Part) {
  Couplings All(Input.Sites.size());
  for (const std::size_t Site : Part.Sites) {
    for (const std::size_t Other : Part.Sites) {
      if (Other != Site && Input.J(Site, Other) != 0.0) All[Site].push_back(Other);
    }
  }
  Neighbourhood Result(Input.Sites.size());
  for (const std::size_t Site : Part.Sites) {
    for (const std::size_t Other : All[Site]) {
      Result[Site].push_back({Other, Input.J(Site, Other), MixingOf(Input, All, Site, Other, Input.J(Site, Other))});
    }
    for (const auto& [Other, J] : FindIndirectCouplings(Input, All, Site)) {
      const double Mixing = MixingOf(Input, All, Site, Other, J);
      if (Mixing > SmallestIndirectMixing) Result[Site].push_back({Other, J, Mixing});
    }
  }
  return Result;
}

double SimulationCost(const std::vector<int>& Degeneracies) {
  std::vector<int> Choice = Degeneracies;
  double Sum = 0.0;
  double NumChoices = 1.0;
  for (const int Degeneracy : Degeneracies) NumChoices *= int{Degeneracy / 2 + 1};
  if (NumChoices > LargestCombination) return NumChoices * SimulationCostOf(Choice);
  while (true) {
    Sum += SimulationCostOf(Choice);
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
    const auto IsIn = [](const std::vector<std::size_t>& Sites, std::size_t Site) {
      return std::find(Sites.begin(), Sites.end(), Site) != Sites.end();
    };
    for (const std::size_t End : {Best.A, Best.B}) {
      for (const MixedSite& Next : Near[End]) Open.push({Best.Score * Next.Mixing, End, Next.Site, End});
    }
    for (const std::size_t Site : {Best.A, Best.B, Best.Seer}) {
      MayComeIn = MayComeIn && Input.Sites[Site].Observed;
      if (IsIn(Result.Sites, Site) || IsIn(Wanted, Site)) continue;
      Wanted.push_back(Site);
      Degeneracies.push_back(Input.Sites[Site].Degeneracy);
    }
    const double Cost = MayComeIn && !Wanted.empty() ? SimulationCost(Degeneracies) : 0.0;
    if (Cost == 0.0 || Cost > LargestCost) {
      if (Cost > 0.0 && Result.Refused == NoSite) Result.Refused = Wanted[0];
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
