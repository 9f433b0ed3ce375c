#include "nmrcalc/spins/Cut.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <exception>
#include <mutex>
#include <numeric>

#include "nmrcalc/Progress.h"
#include "nmrcalc/spins/BinnedLines.h"
#include "nmrcalc/spins/ClusterLines.h"
#include "nmrcalc/spins/ClusterPlan.h"

namespace nmrcalc {

namespace {

constexpr int FirstLevel = 2;
constexpr int HighestLevel = 16;
constexpr double FaintestBin = 1e-8;          // of a site's area
constexpr double RoughChange = 0.06;          // of the area; where as much moves, errors of sites may not cancel
constexpr double ErrorMargin = 1.1;           // over what moves, which was 0.99 times the true error or more
constexpr double SteepestFall = 0.25;         // of the told error from a level to the next
constexpr double RateGrowth = 1.1;            // larger blocks run faster than is reckoned
constexpr double LeastRate = 5e9;             // operations in a second; the first levels take too little time to tell
constexpr int FirstRestLevel = 8;             // clusters stop growing where their cores have settled
constexpr double RestShare = 0.1;             // of the tolerance that all of those together may take
constexpr double LargestTaskShare = 0.125;    // of a level's work, so that the cores end together
constexpr double BytesPerSquare = 8.0 * 8.0;  // of the largest block: matrices of two levels and their moments

double SecondsUntil(RunClock::time_point Time) { return std::chrono::duration<double>(Time - RunClock::now()).count(); }

// Cuts the field states of heavy plans, and puts the heaviest tasks first.
std::vector<ClusterTask> MakeTasks(const std::vector<ClusterPlan>& Plans) {
  double Whole = 0.0;
  for (const ClusterPlan& Plan : Plans) Whole += Plan.Operations;
  struct Weighted {
    double Operations;
    ClusterTask Task;
  };
  std::vector<Weighted> Tasks;
  for (std::size_t K = 0; K < Plans.size(); ++K) {
    const std::size_t NumFields = Plans[K].Fields.size();
    const double Wanted = std::ceil(Plans[K].Operations / (LargestTaskShare * Whole));
    const auto Pieces = static_cast<std::size_t>(std::clamp(Wanted, 1.0, double(NumFields)));
    for (std::size_t Piece = 0; Piece < Pieces; ++Piece) {
      Tasks.push_back(
          {Plans[K].Operations / double(Pieces),
           {.Plan = K, .FirstField = Piece * NumFields / Pieces, .EndField = (Piece + 1) * NumFields / Pieces}});
    }
  }
  std::stable_sort(Tasks.begin(), Tasks.end(),
                   [](const Weighted& A, const Weighted& B) { return A.Operations > B.Operations; });
  std::vector<ClusterTask> Result;
  Result.reserve(Tasks.size());
  for (Weighted& Item : Tasks) Result.push_back(std::move(Item.Task));
  return Result;
}

// A level in work.
struct LevelTeam {
  const SpectrumInput& Input;
  const std::vector<ClusterPlan>& Plans;
  int Level = 0;
  RunClock::time_point Deadline{};
  bool MayStop = false;
  std::vector<ClusterTask> Tasks{};
  std::vector<std::size_t> TasksLeft{};              // of each plan
  std::vector<std::vector<BinnedLines>> Gathered{};  // of each plan, by core
  std::vector<std::vector<Line>> SiteLines{};        // by site of the input
  std::size_t NextTask = 0;
  std::size_t DoneTasks = 0;
  std::mutex Lock{};
  std::atomic<bool> Stop{false};
  std::exception_ptr Error{};
};

// The lists of a plan whose tasks are all done; tasks are added up in their order, so that the same numbers come out
// whichever core was the faster.
void FinishPlan(LevelTeam& Team, std::size_t PlanIndex) {
  const ClusterPlan& Plan = Team.Plans[PlanIndex];
  for (std::size_t Core = 0; Core < Plan.Cores.size(); ++Core) {
    BinnedLines Sum;
    for (ClusterTask& Task : Team.Tasks) {
      if (Task.Plan != PlanIndex) continue;
      AddBins(Sum, Task.Lines[Core]);
      Task.Lines[Core] = BinnedLines{};
    }
    const std::size_t Site = Plan.Sites[Plan.Cores[Core]];
    Team.SiteLines[Site] = TakeLines(Sum, CutNucleusIntensity * Team.Input.Sites[Site].Degeneracy, FaintestBin);
  }
}

void RunLevelWorker(LevelTeam& Team) {
  try {
    while (true) {
      std::size_t Own = 0;
      {
        const std::lock_guard<std::mutex> Guard(Team.Lock);
        if (Team.MayStop && SecondsUntil(Team.Deadline) < 0.0) Team.Stop = true;
        if (Team.Error || Team.Stop || Team.NextTask == Team.Tasks.size()) return;
        Own = Team.NextTask++;
        ReportProgress(static_cast<long>(Team.DoneTasks), static_cast<long>(Team.Tasks.size()),
                       "clusters as large as " + std::to_string(Team.Level) + " spins");
      }
      ClusterTask& Task = Team.Tasks[Own];
      SimulateCluster(Team.Input, Team.Plans[Task.Plan], Task, Team.Stop);
      bool IsLast = false;
      {
        const std::lock_guard<std::mutex> Guard(Team.Lock);
        ++Team.DoneTasks;
        IsLast = --Team.TasksLeft[Task.Plan] == 0;
      }
      if (IsLast && !Team.Stop) FinishPlan(Team, Task.Plan);
    }
  } catch (...) {
    const std::lock_guard<std::mutex> Guard(Team.Lock);
    if (!Team.Error) Team.Error = std::current_exception();
    Team.Stop = true;
  }
}

struct LevelResult {
  std::vector<ClusterPlan> Plans{};
  std::vector<std::vector<Line>> SiteLines{};  // by site of the input
};

// False when the time was up before all was done.
bool RunLevel(const SpectrumInput& Input, int Level, RunClock::time_point Deadline, bool MayStop, LevelResult& Result) {
  LevelTeam Team{.Input = Input, .Plans = Result.Plans, .Level = Level, .Deadline = Deadline, .MayStop = MayStop};
  Team.Tasks = MakeTasks(Result.Plans);
  Team.TasksLeft.assign(Result.Plans.size(), 0);
  for (const ClusterTask& Task : Team.Tasks) ++Team.TasksLeft[Task.Plan];
  Team.SiteLines.resize(Input.Sites.size());
  const std::size_t NumWorkers = std::min(NumUsableCores(), Team.Tasks.size());
  ForEachWorker(NumWorkers, NumWorkers > 1, [&Team](std::size_t) { RunLevelWorker(Team); });
  if (Team.Error) std::rethrow_exception(Team.Error);
  if (Team.Stop) return false;
  Result.SiteLines = std::move(Team.SiteLines);
  return true;
}

double OperationsOf(const std::vector<ClusterPlan>& Plans) {
  return std::accumulate(Plans.begin(), Plans.end(), 0.0,
                         [](double Sum, const ClusterPlan& Plan) { return Sum + Plan.Operations; });
}

// What a level needs for its largest block on every core.
double BytesOfLevel(int Level) {
  return double(NumUsableCores()) * BytesPerSquare * std::exp2(2.0 * Level) * 2.0 / (3.1416 * Level);
}

// What is known of the error of each site of the input.
struct KnownErrors {
  std::vector<double> Areas{};  // that may be misplaced
  // The lines from which it was found; none at the beginning, when all of the site is unknown.
  std::vector<std::vector<Line>> Before{};
  std::vector<std::vector<Line>> After{};
};

// What moves of each site between two levels. Where the site that matters most could not be taken in since, the two say
// nothing of each other, and what was known of the site before holds. Sites in a cluster that is the whole part are
// exact.
void UpdateErrors(const LevelResult& Upper, const LevelResult& Lower, KnownErrors& Errors) {
  std::vector<std::size_t> LowerRefused(Errors.Areas.size(), NoSite);
  for (const ClusterPlan& Plan : Lower.Plans) {
    for (const std::size_t Core : Plan.Cores) LowerRefused[Plan.Sites[Core]] = Plan.Refused;
  }
  for (const ClusterPlan& Plan : Upper.Plans) {
    for (const std::size_t Core : Plan.Cores) {
      const std::size_t Site = Plan.Sites[Core];
      if (Plan.IsWhole) {
        Errors.Areas[Site] = 0.0;
      } else if (Plan.Refused == NoSite || Plan.Refused != LowerRefused[Site]) {
        Errors.Areas[Site] = CompareLines(Upper.SiteLines[Site], Lower.SiteLines[Site], ErrorLineWidth);
        Errors.Before[Site] = Lower.SiteLines[Site];
        Errors.After[Site] = Upper.SiteLines[Site];
      }
    }
  }
}

// The area of the whole spectrum that may be misplaced. What one site has too much another has too little, so it is
// less than the sum over the sites; where much moves that is not relied on.
double SumErrors(const KnownErrors& Errors, double Area) {
  std::vector<Line> Before;
  std::vector<Line> After;
  double Unknown = 0.0;
  double Moved = 0.0;
  for (std::size_t Site = 0; Site < Errors.Areas.size(); ++Site) {
    if (Errors.Areas[Site] == 0.0) continue;
    (Errors.After[Site].empty() ? Unknown : Moved) += Errors.Areas[Site];
    Before.insert(Before.end(), Errors.Before[Site].begin(), Errors.Before[Site].end());
    After.insert(After.end(), Errors.After[Site].begin(), Errors.After[Site].end());
  }
  SortLines(Before);
  SortLines(After);
  const double Whole = CompareLines(After, Before, ErrorLineWidth);
  const double Roughness = std::min(1.0, Whole / (RoughChange * Area));
  return Unknown + ErrorMargin * (Whole + Roughness * std::max(0.0, Moved - Whole));
}

// Counts clusters into the result.
void TellClusters(const SpectrumInput& Input, const std::vector<ClusterPlan>& Plans, CutResult& Result) {
  for (const ClusterPlan& Plan : Plans) {
    std::size_t NumSpins = 0;
    for (const std::size_t Site : Plan.Sites) NumSpins += static_cast<std::size_t>(Input.Sites[Site].Degeneracy);
    const bool IsFirst = Result.NumClusters++ == 0;
    Result.SmallestCluster = IsFirst ? NumSpins : std::min(Result.SmallestCluster, NumSpins);
    Result.LargestCluster = std::max(Result.LargestCluster, NumSpins);
  }
}

// The clusters whose errors are the smallest, together no more than Allowed, grow no further: their cores leave the
// list, and the result counts them.
void RestClusters(const SpectrumInput& Input, const std::vector<double>& Errors, double& Allowed, LevelResult& Level,
                  std::vector<std::vector<std::size_t>>& Cores, CutResult& Result) {
  const auto ErrorOf = [&Errors](const ClusterPlan& Plan) {
    double Sum = 0.0;
    for (const std::size_t Core : Plan.Cores) Sum += Errors[Plan.Sites[Core]];
    return Sum;
  };
  std::stable_sort(Level.Plans.begin(), Level.Plans.end(),
                   [&](const ClusterPlan& A, const ClusterPlan& B) { return ErrorOf(A) > ErrorOf(B); });
  while (!Level.Plans.empty() && ErrorOf(Level.Plans.back()) <= Allowed) {
    const ClusterPlan& Plan = Level.Plans.back();
    Allowed -= ErrorOf(Plan);
    TellClusters(Input, {Plan}, Result);
    for (const std::size_t Place : Plan.Cores) {
      std::erase_if(Cores, [Site = Plan.Sites[Place]](const auto& Core) { return Core[0] == Site; });
    }
    Level.Plans.pop_back();
  }
}

}  // namespace

CutResult SimulateCut(const SpectrumInput& Input, const SpinPart& Part, const CutLimits& Limits) {
  const Neighbourhood Near = FindNeighbours(Input, Part);
  auto Cores = FindCores(Input, Part);  // that still grow
  std::vector<LevelResult> Levels;      // the last three
  CutResult Result;
  KnownErrors Errors{.Areas = std::vector<double>(Input.Sites.size()),
                     .Before = std::vector<std::vector<Line>>(Input.Sites.size()),
                     .After = std::vector<std::vector<Line>>(Input.Sites.size())};
  double Area = 0.0;
  for (const auto& Core : Cores) {
    for (const std::size_t Site : Core) {
      Errors.Areas[Site] = CutNucleusIntensity * Input.Sites[Site].Degeneracy;
      Area += Errors.Areas[Site];
    }
  }
  double Rate = 0.0;  // operations in a second, of the last level
  double Allowed = RestShare * Limits.Tolerance * Area;
  for (int Level = FirstLevel; Level <= HighestLevel; ++Level) {
    if (Limits.LastLevel > 0 && Level > Limits.LastLevel) break;
    if (Level > FirstLevel && BytesOfLevel(Level) > Limits.Bytes) break;
    LevelResult Next{.Plans = PlanClusters(Input, Part, Near, Cores, Level)};
    const double Operations = OperationsOf(Next.Plans);
    const double Left = SecondsUntil(Limits.Deadline);
    if (Level > FirstLevel) {
      const double Expected = Operations / std::max(RateGrowth * Rate, LeastRate);
      if (Expected > Left) break;
      if (Limits.ExactSeconds > 0.0 && (Expected > Limits.ExactSeconds || Expected + Limits.ExactSeconds > Left)) break;
    }
    const auto Start = RunClock::now();
    if (!RunLevel(Input, Level, Limits.Deadline, Level > FirstLevel, Next)) break;
    for (std::size_t Site = 0; !Levels.empty() && Site < Input.Sites.size(); ++Site) {
      if (Next.SiteLines[Site].empty()) Next.SiteLines[Site] = Levels.back().SiteLines[Site];
    }
    Rate = Operations / std::max(-SecondsUntil(Start), 1e-6);
    Levels.push_back(std::move(Next));
    Result.Level = Level;
    if (Levels.size() > 3) Levels.erase(Levels.begin());
    if (Levels.size() >= 2) {
      UpdateErrors(Levels.back(), Levels.front(), Errors);
      Result.Error = std::max(SumErrors(Errors, Area) / Area, SteepestFall * Result.Error);
    }
    if (Levels.size() == 3 && Result.Error <= Limits.Tolerance) break;
    if (Level >= FirstRestLevel) RestClusters(Input, Errors.Areas, Allowed, Levels.back(), Cores, Result);
  }
  TellClusters(Input, Levels.back().Plans, Result);
  for (const std::size_t Site : Part.Sites) Result.SiteLines.push_back(std::move(Levels.back().SiteLines[Site]));
  return Result;
}

}  // namespace nmrcalc
