#include "nmrcalc/spins/ClusterGrowth.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <queue>
#include <unordered_map>
#include <utility>

namespace nmrcalc {

namespace {

constexpr double SeenDistance = 1.0;     // Hz; less is not seen at the width of a line
constexpr double SeenSplitting = 2.0;    // Hz, of which half is seen
constexpr double ShareOfMixing = 0.3;    // of the amplitude that two sites mix by
constexpr double SmallestShare = 1e-9;   // of the core that is followed
constexpr double SmallestScore = 1e-12;  // of a coupling that is looked at
constexpr double SmallestIndirectMixing = 1e-3;
constexpr double ShareBeside = 0.2;      // of a coupling's score that goes to those beside it, times their mixing
constexpr double CoreWeight = 5.0;       // of the core's own couplings when groups join
constexpr double SlowSize = 1000.0;      // of blocks that are diagonalised at half the speed of the largest
constexpr double StateCost = 2e3;        // of a product state, where a multiplication of the largest block costs 1
constexpr double MostStates = 131072.0;  // product states of a cluster; groups of one make many blocks of little cost
constexpr double LargestCombination = 4096.0;

// The sites that each site is coupled to.
using Couplings = std::vector<std::vector<std::size_t>>;

// Sums over the blocks of the size, its square and its cube.
struct BlockSums {
  double States = 0.0;
  double Squares = 0.0;
  double Cubes = 0.0;
};

BlockSums SumBlocks(const std::vector<int>& TwiceSpins) {
  std::vector<double> Counts{1.0};
  for (const int TwiceSpin : TwiceSpins) {
    const auto Steps = static_cast<std::size_t>(TwiceSpin);
    std::vector<double> Next(Counts.size() + Steps);
    for (std::size_t K = 0; K < Counts.size(); ++K) {
      for (std::size_t Step = 0; Step <= Steps; ++Step) Next[K + Step] += Counts[K];
    }
    Counts = std::move(Next);
  }
  BlockSums Sums;
  for (const double Size : Counts) {
    Sums.States += Size;
    Sums.Squares += Size * Size;
    Sums.Cubes += Size * Size * Size;
  }
  return Sums;
}

// Over all choices of total spins.
BlockSums SumSystems(const std::vector<int>& Degeneracies) {
  std::vector<int> Choice = Degeneracies;
  double NumChoices = 1.0;
  for (const int Degeneracy : Degeneracies) NumChoices *= int{Degeneracy / 2 + 1};
  if (NumChoices > LargestCombination) {
    const BlockSums One = SumBlocks(Choice);
    return {.States = NumChoices * One.States, .Squares = NumChoices * One.Squares, .Cubes = NumChoices * One.Cubes};
  }
  BlockSums Sum;
  while (true) {
    const BlockSums Own = SumBlocks(Choice);
    Sum.States += Own.States;
    Sum.Squares += Own.Squares;
    Sum.Cubes += Own.Cubes;
    std::size_t K = 0;
    for (; K < Choice.size() && Choice[K] < 2; ++K) Choice[K] = Degeneracies[K];
    if (K == Choice.size()) return Sum;
    Choice[K] -= 2;
  }
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

// Couplings to be looked at, each once as long as no higher score of it turns up: dense networks have many of each.
struct CouplingQueue {
  std::size_t NumSites = 0;
  std::unordered_map<std::size_t, double> Scores{};  // by pair
  std::priority_queue<RankedCoupling> Open{};
};

std::size_t PairOf(const CouplingQueue& Queue, const RankedCoupling& Item) {
  return std::min(Item.A, Item.B) * Queue.NumSites + std::max(Item.A, Item.B);
}

void Offer(CouplingQueue& Queue, const RankedCoupling& Item) {
  if (Item.Score <= SmallestScore) return;
  double& Known = Queue.Scores[PairOf(Queue, Item)];
  if (Item.Score <= Known) return;
  Known = Item.Score;
  Queue.Open.push(Item);
}

// The couplings by what a share of the core sees of them; fills how much of each site is seen.
CouplingQueue RankCouplings(const SpectrumInput& Input, const Neighbourhood& Near, const std::vector<double>& Share,
                            std::vector<double>& Seen) {
  CouplingQueue Queue{.NumSites = Near.size()};
  for (std::size_t Site = 0; Site < Share.size(); ++Site) {
    if (Share[Site] == 0.0) continue;
    for (const MixedSite& Next : Near[Site]) {
      const double J = Input.J(Site, Next.Site);
      Offer(Queue, {Share[Site] * Next.Mixing, Site, Next.Site, Site});
      Seen[Next.Site] = std::max(Seen[Next.Site], Share[Site] * Visibility(J));
      for (const MixedSite& Third : Near[Next.Site]) {
        if (Third.Site == Site) continue;
        const double Splitting = J - Input.J(Site, Third.Site);
        Offer(Queue, {Share[Site] * Visibility(Splitting) * Third.Mixing, Next.Site, Third.Site, Site});
      }
    }
  }
  return Queue;
}

// All couplings that count for the core, those with the highest score first. A coupling lends a share of its score to
// those beside it.
std::vector<RankedCoupling> OrderCouplings(const Neighbourhood& Near, CouplingQueue Queue) {
  std::vector<RankedCoupling> Order;
  while (!Queue.Open.empty()) {
    const RankedCoupling Best = Queue.Open.top();
    Queue.Open.pop();
    if (Best.Score < Queue.Scores.at(PairOf(Queue, Best))) continue;
    Order.push_back(Best);
    for (const std::size_t End : {Best.A, Best.B}) {
      for (const MixedSite& Next : Near[End]) {
        Offer(Queue, {ShareBeside * Best.Score * Next.Mixing, End, Next.Site, End});
      }
    }
  }
  return Order;
}

// The same in the order in which they join groups.
std::vector<RankedCoupling> OrderJoins(std::vector<RankedCoupling> Order, const std::vector<std::size_t>& Core) {
  const auto IsCore = [&Core](std::size_t Site) { return std::find(Core.begin(), Core.end(), Site) != Core.end(); };
  for (RankedCoupling& Item : Order) {
    if (IsCore(Item.A) || IsCore(Item.B)) Item.Score *= CoreWeight;
  }
  std::stable_sort(Order.begin(), Order.end(), [](const RankedCoupling& A, const RankedCoupling& B) { return B < A; });
  return Order;
}

// A cluster that grows. Couplings join the groups of their ends, as far as they have come in.
struct GrowingCluster {
  std::vector<std::size_t> Sites{};
  std::vector<std::size_t> Groups{};  // as Sites
  std::vector<int> Degeneracies{};    // as Sites
  std::size_t NumJoins = 0;           // of the couplings in the order of joining
};

std::size_t PlaceOf(const GrowingCluster& Cluster, std::size_t Site) {
  const auto Place = std::find(Cluster.Sites.begin(), Cluster.Sites.end(), Site);
  return Place == Cluster.Sites.end() ? NoSite : static_cast<std::size_t>(Place - Cluster.Sites.begin());
}

void JoinGroups(GrowingCluster& Cluster, const RankedCoupling& Item) {
  const std::size_t A = PlaceOf(Cluster, Item.A);
  const std::size_t B = PlaceOf(Cluster, Item.B);
  if (A == NoSite || B == NoSite) return;
  const std::size_t Kept = std::min(Cluster.Groups[A], Cluster.Groups[B]);
  const std::size_t Joined = std::max(Cluster.Groups[A], Cluster.Groups[B]);
  std::replace(Cluster.Groups.begin(), Cluster.Groups.end(), Joined, Kept);
}

void AddSite(const SpectrumInput& Input, const std::vector<RankedCoupling>& Joins, std::size_t Site,
             GrowingCluster& Cluster) {
  Cluster.Sites.push_back(Site);
  Cluster.Degeneracies.push_back(Input.Sites[Site].Degeneracy);
  Cluster.Groups.push_back(Site + 1);
  for (std::size_t K = 0; K < Cluster.NumJoins; ++K) {
    if (Joins[K].A == Site || Joins[K].B == Site) JoinGroups(Cluster, Joins[K]);
  }
}

// Lets the couplings join that score no less.
void JoinDownTo(const std::vector<RankedCoupling>& Joins, double Least, GrowingCluster& Cluster) {
  for (; Cluster.NumJoins < Joins.size() && Joins[Cluster.NumJoins].Score >= Least; ++Cluster.NumJoins) {
    JoinGroups(Cluster, Joins[Cluster.NumJoins]);
  }
}

// The sites that come in with a coupling; nothing where one of them may not.
std::optional<std::vector<std::size_t>> FindWanted(const SpectrumInput& Input, const GrowingCluster& Cluster,
                                                   const RankedCoupling& Item) {
  std::vector<std::size_t> Wanted;
  for (const std::size_t Site : {Item.A, Item.B, Item.Seer}) {
    if (!Input.Sites[Site].Observed) return std::nullopt;
    const bool IsNew = PlaceOf(Cluster, Site) == NoSite;
    if (IsNew && std::find(Wanted.begin(), Wanted.end(), Site) == Wanted.end()) Wanted.push_back(Site);
  }
  return Wanted;
}

bool IsTooLarge(const GrowingCluster& Cluster, double LargestCost) {
  double NumStates = 1.0;
  for (const int Degeneracy : Cluster.Degeneracies) NumStates *= Degeneracy + 1.0;
  return NumStates > MostStates || GroupedCost(Cluster.Degeneracies, Cluster.Groups) > LargestCost;
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
  return GroupedCost(Degeneracies, std::vector<std::size_t>(Degeneracies.size()));
}

double GroupedCost(const std::vector<int>& Degeneracies, const std::vector<std::size_t>& Groups) {
  std::map<std::size_t, std::vector<int>> Sites;
  for (std::size_t K = 0; K < Degeneracies.size(); ++K) Sites[Groups[K]].push_back(Degeneracies[K]);
  BlockSums Product{.States = 1.0, .Squares = 1.0, .Cubes = 1.0};
  for (const auto& [Key, Group] : Sites) {
    const BlockSums Own = SumSystems(Group);
    Product.States *= Own.States;
    Product.Squares *= Own.Squares;
    Product.Cubes *= Own.Cubes;
  }
  return Product.Cubes + SlowSize * Product.Squares + StateCost * Product.States;
}

Growth GrowCluster(const SpectrumInput& Input, const Neighbourhood& Near, const std::vector<std::size_t>& Core,
                   double LargestCost) {
  const std::vector<double> Share = SpreadShare(Near, Core);
  std::vector<double> Seen = Share;
  const std::vector<RankedCoupling> Order = OrderCouplings(Near, RankCouplings(Input, Near, Share, Seen));
  const std::vector<RankedCoupling> Joins = OrderJoins(Order, Core);
  Growth Result{.Influence = std::vector<double>(Core.size(), 1.0)};
  GrowingCluster Cluster;
  for (const std::size_t Site : Core) AddSite(Input, Joins, Site, Cluster);
  std::fill(Cluster.Groups.begin(), Cluster.Groups.end(), std::size_t{0});
  for (const RankedCoupling& Best : Order) {
    const auto Wanted = FindWanted(Input, Cluster, Best);
    if (!Wanted) continue;
    GrowingCluster Grown = Cluster;
    for (const std::size_t Site : *Wanted) AddSite(Input, Joins, Site, Grown);
    JoinGroups(Grown, Best);
    if (Result.Refused == NoSite) JoinDownTo(Joins, Best.Score, Grown);
    const bool IsChanged = !Wanted->empty() || Grown.Groups != Cluster.Groups;
    if (IsChanged && IsTooLarge(Grown, LargestCost)) {
      if (Result.Refused == NoSite) Result.Refused = Wanted->empty() ? Best.A : Wanted->front();
      continue;
    }
    Cluster = std::move(Grown);
    for (const std::size_t Site : *Wanted) Result.Influence.push_back(std::max(Seen[Site], Best.Score));
  }
  // Nothing was too large, so all of it may be one.
  if (Result.Refused == NoSite && SimulationCost(Cluster.Degeneracies) <= LargestCost) {
    std::fill(Cluster.Groups.begin(), Cluster.Groups.end(), std::size_t{0});
  }
  Result.Sites = std::move(Cluster.Sites);
  Result.Groups = std::move(Cluster.Groups);
  return Result;
}

}  // namespace nmrcalc
