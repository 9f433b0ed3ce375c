#include "nmrcalc/spins/Cut.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>
#include <set>

#include "nmrcalc/spins/ClusterPlan.h"
#include "nmrcalc/spins/ClusterTeam.h"
#include "nmrcalc/spins/SpectrumDifference.h"

namespace nmrcalc {

namespace {

constexpr int FirstLevel = 2;
constexpr int CommonLevel = 5;  // to which all clusters grow; before, what moves says little
constexpr int HighestLevel = 16;
constexpr double RoundShare = 0.05;        // of the work so far that a round adds at least, so that rounds are few
constexpr double RoughChange = 0.06;       // of the area; where as much moves, errors of sites may not cancel
constexpr double UsualShare = 0.37;        // of what moves that is true, in the middle of many networks
constexpr double ShareScatter = 2.34;      // of its logarithm by one cluster: 2.3 times the standard deviation
constexpr double LargestMargin = 1.35;     // at most 1.14 times what was told with 1.1 was true, 1.04 times with 1.25
constexpr double SteepestFall = 0.25;      // of the told error from a round to the next
constexpr double SteepestCoreFall = 0.5;   // of what moves of a core from a level to the next; more may be chance
constexpr double NothingNew = 3e-4;        // of what moved before; less, and what came in does not matter to the core
constexpr double RateGrowth = 1.1;         // larger blocks run faster than is reckoned
constexpr double LeastRate = 5e9;          // operations in a second; the first levels take too little time to tell
constexpr double SinglePrecision = 0.001;  // of the area; a larger tolerance does not see its error
constexpr double BytesPerSquare = 8.0 * 8.0;  // of the largest block: matrices of two levels and their moments

double SecondsUntil(RunClock::time_point Time) { return std::chrono::duration<double>(Time - RunClock::now()).count(); }

// What a cluster of a level needs for its largest block on every core of the machine.
double BytesOfLevel(int Level) {
  return double(NumUsableCores()) * BytesPerSquare * std::exp2(2.0 * Level) * 2.0 / (3.1416 * Level);
}

// The sites that share a cluster, and what is known of them.
struct GrowingCore {
  std::vector<std::size_t> Sites{};  // of the input
  int Level = FirstLevel - 1;
  bool MayGrow = true;
  std::size_t NumStages = 0;  // clusters simulated
  // Of the cluster of this level
  std::vector<std::size_t> Members{};
  std::vector<std::size_t> Groups{};
  std::size_t NumFields = 0;
  double Operations = 0.0;
  bool IsWhole = false;
  // Of this level and the one below: the lines of each site, and the most influential site that was too large
  std::vector<std::vector<Line>> Lines{};
  std::vector<std::vector<Line>> LowerLines{};
  std::size_t Refused = NoSite;
  std::size_t LowerRefused = NoSite;
  // What moved of the sites in the last two levels: the sum of the areas, and the spectra; none at the beginning, when
  // all of them is unknown.
  double Moved = 0.0;
  std::vector<SpectrumDifference> Changes{};
  double Known = 0.0;    // what moved when last something did, halved for each level since
  double Promise = 0.0;  // what moved, with no fall that may be chance; clusters grow, and are told, by it
};

struct CutWork {
  const SpectrumInput& Input;
  const SpinPart& Part;
  const CutLimits& Limits;
  Neighbourhood Near{};
  RunClock::time_point Start{};
  std::vector<GrowingCore> Cores{};
  std::vector<std::size_t> CoreOf{};  // of each site of the input
  double Area = 0.0;
  double Operations = 0.0;  // so far
  struct Speed {
    double Operations = 0.0;
    double Seconds = 0.0;
  };
  std::map<int, Speed> Speeds{};  // of one core of the machine, by level
  CutResult Result{};
};

// The cores that grow next: all that are below the common level, then those whose spectrum moves most for the work.
std::vector<std::size_t> ChooseCores(const CutWork& Work) {
  std::vector<std::size_t> Open;
  int Lowest = HighestLevel;
  for (std::size_t K = 0; K < Work.Cores.size(); ++K) {
    if (!Work.Cores[K].MayGrow) continue;
    Open.push_back(K);
    Lowest = std::min(Lowest, Work.Cores[K].Level);
  }
  if (Lowest < CommonLevel) {
    std::erase_if(Open, [&](std::size_t K) { return Work.Cores[K].Level > Lowest; });
    return Open;
  }
  const auto Worth = [&](std::size_t K) { return Work.Cores[K].Promise / Work.Cores[K].Operations; };
  std::stable_sort(Open.begin(), Open.end(), [&](std::size_t A, std::size_t B) { return Worth(A) > Worth(B); });
  constexpr double Growth = 4.0;  // of the work from a level to the next
  double Sum = 0.0;
  std::size_t Count = 0;
  while (Count < Open.size() && Sum < RoundShare * Work.Operations)
    Sum += Growth * Work.Cores[Open[Count++]].Operations;
  Open.resize(Count);
  return Open;
}

struct LevelPlan {
  int Level = 0;
  ClusterPlan Plan{};
};

// The clusters of the next level of the cores, in the order in which they were chosen.
std::vector<LevelPlan> PlanRound(const CutWork& Work, const std::vector<std::size_t>& Chosen) {
  std::map<int, std::vector<std::vector<std::size_t>>> SitesOfLevel;
  std::map<std::size_t, std::size_t> Rank;  // by site
  for (std::size_t K = 0; K < Chosen.size(); ++K) {
    const GrowingCore& Core = Work.Cores[Chosen[K]];
    SitesOfLevel[Core.Level + 1].push_back(Core.Sites);
    for (const std::size_t Site : Core.Sites) Rank[Site] = K;
  }
  std::vector<LevelPlan> Plans;
  for (const auto& [Level, Cores] : SitesOfLevel) {
    for (ClusterPlan& Plan : PlanClusters(Work.Input, Work.Part, Work.Near, Cores, Level)) {
      Plans.push_back({Level, std::move(Plan)});
    }
  }
  const auto RankOf = [&](const LevelPlan& Item) {
    std::size_t First = Chosen.size();
    for (const std::size_t Core : Item.Plan.Cores) First = std::min(First, Rank.at(Item.Plan.Sites[Core]));
    return First;
  };
  std::stable_sort(Plans.begin(), Plans.end(),
                   [&](const LevelPlan& A, const LevelPlan& B) { return RankOf(A) < RankOf(B); });
  return Plans;
}

// The cores of a plan.
std::set<std::size_t> CoresOf(const CutWork& Work, const ClusterPlan& Plan) {
  std::set<std::size_t> Result;
  for (const std::size_t Core : Plan.Cores) Result.insert(Work.CoreOf[Plan.Sites[Core]]);
  return Result;
}

// Operations in a second of one core of the machine.
double RateOf(const CutWork& Work, int Level) {
  const auto Place = Work.Speeds.upper_bound(Level);
  if (Place == Work.Speeds.begin()) return LeastRate;
  const auto& [Known, Speed] = *std::prev(Place);
  const double Growth = Known < Level ? RateGrowth : 1.0;
  return std::max(LeastRate, Growth * Speed.Operations / std::max(Speed.Seconds, 1e-6));
}

// Takes away what does not fit into the time and memory that are left; its cores grow no further. False when it is
// better to grow no more at all.
bool KeepWhatFits(CutWork& Work, std::vector<LevelPlan>& Plans) {
  const double Left = SecondsUntil(Work.Limits.Deadline);
  double Expected = 0.0;
  std::vector<LevelPlan> Kept;
  for (LevelPlan& Item : Plans) {
    const double Seconds = Item.Plan.Operations / RateOf(Work, Item.Level) / double(NumUsableCores());
    if (Item.Level == FirstLevel || (Expected + Seconds <= Left && BytesOfLevel(Item.Level) <= Work.Limits.Bytes)) {
      Expected += Seconds;
      Kept.push_back(std::move(Item));
    } else {
      for (const std::size_t Core : CoresOf(Work, Item.Plan)) Work.Cores[Core].MayGrow = false;
    }
  }
  Plans = std::move(Kept);
  if (Work.Operations == 0.0) return true;  // there must be an answer
  const double Exact = Work.Limits.ExactSeconds;
  const double Spent = -SecondsUntil(Work.Start);
  return Exact <= 0.0 || (Spent + Expected <= Exact && Expected + Exact <= Left);
}

// Takes the lines of a core's new cluster. What has moved is seen against the level two below. Where the site that
// matters most could not be taken in since, the two say nothing of each other, and what was known of the core before
// holds. A cluster that is the whole part is exact.
void AdvanceCore(GrowingCore& Core, const ClusterPlan& Plan, std::vector<std::vector<Line>>& SiteLines) {
  std::vector<std::vector<Line>> Lines;
  for (const std::size_t Site : Core.Sites) Lines.push_back(std::move(SiteLines[Site]));
  const std::size_t LowerRefused = Core.NumStages < 2 ? Core.Refused : Core.LowerRefused;
  const auto& Lower = Core.NumStages < 2 ? Core.Lines : Core.LowerLines;
  const bool IsTold = Plan.Refused == NoSite || Plan.Refused != LowerRefused;
  if (Plan.IsWhole) {
    Core.Moved = Core.Promise = 0.0;
    Core.Changes.clear();
    Core.MayGrow = false;
  } else if (Core.NumStages > 0 && IsTold) {
    Core.Moved = 0.0;
    Core.Changes.assign(Core.Sites.size(), {});
    for (std::size_t K = 0; K < Core.Sites.size(); ++K) {
      AddLinesTo(Core.Changes[K], Lines[K], 1.0);
      AddLinesTo(Core.Changes[K], Lower[K], -1.0);
      Core.Moved += IntegrateDifference(Core.Changes[K]);
    }
    const double Least = Core.NumStages < 2 ? 0.0 : SteepestCoreFall * Core.Known;
    Core.Promise = Core.Moved > 0.0 ? std::max(Core.Moved, Least) : 0.0;
    Core.Known = Core.Moved > NothingNew * Core.Known ? Core.Moved : SteepestCoreFall * Core.Known;
    if (Core.Moved == 0.0) Core.MayGrow = false;
  }
  Core.LowerLines = std::move(Core.Lines);
  Core.Lines = std::move(Lines);
  Core.LowerRefused = Core.Refused;
  Core.Refused = Plan.Refused;
  Core.IsWhole = Plan.IsWhole;
  ++Core.NumStages;
}

// Clusters that a level leaves as they are need no second simulation.
void SkipUnchanged(CutWork& Work, std::vector<LevelPlan>& Plans) {
  std::erase_if(Plans, [&Work](const LevelPlan& Item) {
    const auto Cores = CoresOf(Work, Item.Plan);
    const auto IsSame = [&](std::size_t K) {
      const GrowingCore& Core = Work.Cores[K];
      return Core.NumStages > 1 && Item.Plan.Refused != NoSite && Core.Members == Item.Plan.Sites &&
             Core.Groups == Item.Plan.Groups && Core.NumFields == Item.Plan.Fields.size();
    };
    if (!std::all_of(Cores.begin(), Cores.end(), IsSame)) return false;
    for (const std::size_t Core : Cores) Work.Cores[Core].Level = Item.Level;
    return true;
  });
}

// Simulates the plans; false when the time was up before that.
bool RunRound(CutWork& Work, std::vector<LevelPlan>& Items) {
  std::vector<ClusterPlan> Plans;
  int Largest = FirstLevel;
  for (LevelPlan& Item : Items) {
    Plans.push_back(std::move(Item.Plan));
    Largest = std::max(Largest, Item.Level);
  }
  auto Answer = RunClusters({.Input = Work.Input,
                             .Plans = Plans,
                             .Deadline = Work.Limits.Deadline,
                             .MayStop = Largest > FirstLevel,
                             .IsExact = Work.Limits.Tolerance < SinglePrecision,
                             .Doing = "clusters as large as " + std::to_string(Largest) + " spins"});
  if (!Answer) return false;
  std::vector<std::pair<std::size_t, std::size_t>> Moves;  // core, plan
  for (std::size_t K = 0; K < Plans.size(); ++K) {
    CutWork::Speed& Speed = Work.Speeds[Items[K].Level];
    Speed.Operations += Plans[K].Operations;
    Speed.Seconds += Answer->Seconds[K];
    Work.Operations += Plans[K].Operations;
    const auto Cores = CoresOf(Work, Plans[K]);
    for (const std::size_t Core : Cores) {
      Moves.emplace_back(Core, K);
      Work.Cores[Core].Level = Items[K].Level;
      Work.Cores[Core].Members = Plans[K].Sites;
      Work.Cores[Core].Groups = Plans[K].Groups;
      Work.Cores[Core].NumFields = Plans[K].Fields.size();
      Work.Cores[Core].Operations = Plans[K].Operations / double(Cores.size());
    }
  }
  ForEachItem(Moves.size(), [&](std::size_t K) {
    AdvanceCore(Work.Cores[Moves[K].first], Plans[Moves[K].second], Answer->SiteLines);
  });
  return true;
}

// The area of the whole spectrum that may be misplaced. What one site has too much another has too little, so it is
// less than the sum over the sites; where much moves that is not relied on.
double SumErrors(const CutWork& Work) {
  SpectrumDifference Sum;
  double Unknown = 0.0;
  double Moved = 0.0;
  double Squares = 0.0;
  double Promised = 0.0;
  for (const GrowingCore& Core : Work.Cores) {
    Squares += Core.Moved * Core.Moved;
    if (!Core.Changes.empty()) Promised += Core.Promise;
    (Core.Changes.empty() ? Unknown : Moved) += Core.Moved;
    for (const SpectrumDifference& Change : Core.Changes) AddDifference(Sum, Change);
  }
  const double Whole = IntegrateDifference(Sum);
  const double NumIndependent = Moved * Moved / std::max(Squares, 1e-300);
  const double Scatter = std::exp(ShareScatter / std::sqrt(std::max(1.0, NumIndependent)));
  const double Margin = std::min(LargestMargin, UsualShare * Scatter);
  const double Roughness = Margin / LargestMargin * std::min(1.0, Whole / (RoughChange * Work.Area));
  return Unknown + Promised / std::max(Moved, 1e-300) * Margin * (Whole + Roughness * std::max(0.0, Moved - Whole));
}

// Grows until the tolerance is reached or the time is up.
void GrowClusters(CutWork& Work) {
  const int LastLevel = Work.Limits.LastLevel > 0 ? Work.Limits.LastLevel : HighestLevel;
  while (true) {
    const std::vector<std::size_t> Chosen = ChooseCores(Work);
    const bool IsAnswered = Work.Operations > 0.0;
    if (Chosen.empty() || (IsAnswered && SecondsUntil(Work.Limits.Deadline) <= 0.0)) return;
    std::vector<LevelPlan> Plans = PlanRound(Work, Chosen);
    SkipUnchanged(Work, Plans);
    if (!KeepWhatFits(Work, Plans)) return;
    if (!Plans.empty() && !RunRound(Work, Plans)) return;
    bool IsJudged = true;
    for (GrowingCore& Core : Work.Cores) {
      if (Core.Level >= LastLevel) Core.MayGrow = false;
      IsJudged = IsJudged && (Core.NumStages >= 3 || Core.IsWhole);
    }
    Work.Result.Error = std::max(SumErrors(Work) / Work.Area, SteepestFall * Work.Result.Error);
    if (IsJudged && Work.Result.Error <= Work.Limits.Tolerance) return;
  }
}

void TellClusters(const CutWork& Work, CutResult& Result) {
  std::set<std::vector<std::size_t>> Clusters;
  for (const GrowingCore& Core : Work.Cores) {
    if (!Clusters.insert(Core.Members).second) continue;
    std::size_t NumSpins = 0;
    for (const std::size_t Site : Core.Members) NumSpins += static_cast<std::size_t>(Work.Input.Sites[Site].Degeneracy);
    Result.SmallestCluster = Clusters.size() == 1 ? NumSpins : std::min(Result.SmallestCluster, NumSpins);
    Result.LargestCluster = std::max(Result.LargestCluster, NumSpins);
  }
  Result.NumClusters = Clusters.size();
}

}  // namespace

CutResult SimulateCut(const SpectrumInput& Input, const SpinPart& Part, const CutLimits& Limits) {
  CutWork Work{.Input = Input,
               .Part = Part,
               .Limits = Limits,
               .Near = FindNeighbours(Input, Part),
               .Start = RunClock::now(),
               .CoreOf = std::vector<std::size_t>(Input.Sites.size(), NoSite)};
  for (auto& Sites : FindCores(Input, Part)) {
    GrowingCore Core;
    for (const std::size_t Site : Sites) {
      Work.CoreOf[Site] = Work.Cores.size();
      Core.Moved += CutNucleusIntensity * Input.Sites[Site].Degeneracy;
    }
    Work.Area += Core.Moved;
    Core.Promise = Core.Known = Core.Moved;
    Core.Sites = std::move(Sites);
    Work.Cores.push_back(std::move(Core));
  }
  GrowClusters(Work);
  CutResult Result = Work.Result;
  TellClusters(Work, Result);
  for (const std::size_t Site : Part.Sites) {
    std::vector<Line> Lines;
    if (Work.CoreOf[Site] != NoSite) {
      GrowingCore& Core = Work.Cores[Work.CoreOf[Site]];
      const auto Place = std::find(Core.Sites.begin(), Core.Sites.end(), Site) - Core.Sites.begin();
      Lines = std::move(Core.Lines[static_cast<std::size_t>(Place)]);
    }
    Result.SiteLines.push_back(std::move(Lines));
  }
  return Result;
}

}  // namespace nmrcalc
