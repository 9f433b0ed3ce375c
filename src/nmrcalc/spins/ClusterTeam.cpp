#include "nmrcalc/spins/ClusterTeam.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <exception>
#include <mutex>

#include "nmrcalc/Progress.h"
#include "nmrcalc/spins/BinnedLines.h"
#include "nmrcalc/spins/ClusterLines.h"

namespace nmrcalc {

namespace {

constexpr double FaintestBin = 1e-8;        // of a site's area
constexpr double LargestTaskShare = 0.125;  // of the work, so that the cores end together

// Cuts the field states of heavy plans, and puts the heaviest tasks first.
std::vector<ClusterTask> MakeTasks(const std::vector<ClusterPlan>& Plans, bool IsExact) {
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
      Tasks.push_back({Plans[K].Operations / double(Pieces),
                       {.Plan = K,
                        .FirstField = Piece * NumFields / Pieces,
                        .EndField = (Piece + 1) * NumFields / Pieces,
                        .IsExact = IsExact}});
    }
  }
  std::stable_sort(Tasks.begin(), Tasks.end(),
                   [](const Weighted& A, const Weighted& B) { return A.Operations > B.Operations; });
  std::vector<ClusterTask> Result;
  Result.reserve(Tasks.size());
  for (Weighted& Item : Tasks) Result.push_back(std::move(Item.Task));
  return Result;
}

struct ClusterTeam {
  const ClusterJob& Job;
  ClusterAnswer& Answer;
  std::vector<ClusterTask> Tasks{};
  std::vector<std::size_t> TasksLeft{};  // of each plan
  std::size_t NextTask = 0;
  std::size_t DoneTasks = 0;
  std::mutex Lock{};
  StopSign Stop{};
  std::exception_ptr Error{};
};

// The lists of a plan whose tasks are all done; tasks are added up in their order, so that the same numbers come out
// whichever core was the faster.
void FinishPlan(ClusterTeam& Team, std::size_t PlanIndex) {
  const ClusterPlan& Plan = Team.Job.Plans[PlanIndex];
  for (std::size_t Core = 0; Core < Plan.Cores.size(); ++Core) {
    BinnedLines Sum;
    for (ClusterTask& Task : Team.Tasks) {
      if (Task.Plan != PlanIndex) continue;
      AddBins(Sum, Task.Lines[Core]);
      Task.Lines[Core] = BinnedLines{};
    }
    const std::size_t Site = Plan.Sites[Plan.Cores[Core]];
    const double Area = CutNucleusIntensity * Team.Job.Input.Sites[Site].Degeneracy;
    Team.Answer.SiteLines[Site] = TakeLines(Sum, Area, FaintestBin);
  }
}

// The next task; nothing when there is none or the team has stopped.
std::optional<std::size_t> TakeTask(ClusterTeam& Team) {
  const std::lock_guard<std::mutex> Guard(Team.Lock);
  if (Team.Error || MustStop(Team.Stop) || Team.NextTask == Team.Tasks.size()) return std::nullopt;
  ReportProgress(static_cast<long>(Team.DoneTasks), static_cast<long>(Team.Tasks.size()), Team.Job.Doing);
  return Team.NextTask++;
}

void RunWorker(ClusterTeam& Team) {
  try {
    while (const auto Own = TakeTask(Team)) {
      ClusterTask& Task = Team.Tasks[*Own];
      const auto Start = RunClock::now();
      SimulateCluster(Team.Job.Input, Team.Job.Plans[Task.Plan], Task, Team.Stop);
      const double Seconds = std::chrono::duration<double>(RunClock::now() - Start).count();
      bool IsLast = false;
      {
        const std::lock_guard<std::mutex> Guard(Team.Lock);
        ++Team.DoneTasks;
        Team.Answer.Seconds[Task.Plan] += Seconds;
        IsLast = --Team.TasksLeft[Task.Plan] == 0;
      }
      if (IsLast && !Team.Stop.IsSet) FinishPlan(Team, Task.Plan);
    }
  } catch (...) {
    const std::lock_guard<std::mutex> Guard(Team.Lock);
    if (!Team.Error) Team.Error = std::current_exception();
    Team.Stop.IsSet = true;
  }
}

}  // namespace

std::optional<ClusterAnswer> RunClusters(const ClusterJob& Job) {
  ClusterAnswer Answer{.SiteLines = std::vector<std::vector<Line>>(Job.Input.Sites.size()),
                       .Seconds = std::vector<double>(Job.Plans.size())};
  ClusterTeam Team{.Job = Job, .Answer = Answer, .Tasks = MakeTasks(Job.Plans, Job.IsExact)};
  if (Job.MayStop) Team.Stop.Deadline = Job.Deadline;
  Team.TasksLeft.assign(Job.Plans.size(), 0);
  for (const ClusterTask& Task : Team.Tasks) ++Team.TasksLeft[Task.Plan];
  const std::size_t NumWorkers = std::min(NumUsableCores(), Team.Tasks.size());
  ForEachWorker(NumWorkers, NumWorkers > 1, [&Team](std::size_t) { RunWorker(Team); });
  if (Team.Error) std::rethrow_exception(Team.Error);
  if (Team.Stop.IsSet) return std::nullopt;
  return Answer;
}

}  // namespace nmrcalc
