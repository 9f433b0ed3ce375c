#include "nmrcalc/fit/CutModelLines.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>

#include "nmrcalc/spins/BinnedLines.h"
#include "nmrcalc/spins/ClusterLines.h"
#include "nmrcalc/spins/ClusterPlan.h"
#include "nmrcalc/spins/Workers.h"

namespace nmrcalc {

namespace {

constexpr double Difference = 0.02;   // Hz, of a frequency or a coupling: far below the widths, far above rounding
constexpr double FaintestBin = 1e-6;  // of a site's area

// What the workers share.
struct CutTeam {
  const SpectrumInput& System;
  const LinePart& Part;
  const std::vector<LineDirection>& Directions;
  int Level = 0;
  const LineAxis& Axis;
  const Neighbourhood& Near;  // a little way off it is the same
  std::vector<ClusterPlan> Plans{};
  std::atomic<std::size_t> NextPlan{0};
  std::mutex Lock{};
  std::exception_ptr Error{};
  LineNodes& Target;
};

void AddPlan(const SpectrumInput& System, const ClusterPlan& Plan, const LineAxis& Axis, double Factor,
             std::vector<double>& Nodes) {
  StopSign NoStop;
  ClusterTask Task{.EndField = Plan.Fields.size()};
  SimulateCluster(System, Plan, Task, NoStop);
  for (std::size_t Core = 0; Core < Plan.Cores.size(); ++Core) {
    const double Area = System.Sites[Plan.Sites[Plan.Cores[Core]]].Degeneracy;
    for (const Line& Item : TakeLines(Task.Lines[Core], Area, FaintestBin)) {
      AddToNodes(Axis, Item.Frequency, Factor * Item.Intensity, 0.0, Nodes.data());
    }
  }
}

bool Acts(const LineDirection& Direction, const ClusterPlan& Plan) {
  const auto IsIn = [&Plan](std::size_t Site) {
    return std::binary_search(Plan.Sites.begin(), Plan.Sites.end(), Site);
  };
  return std::any_of(Direction.Offsets.begin(), Direction.Offsets.end(),
                     [&](const auto& Each) { return IsIn(Each.first); }) ||
         std::any_of(Direction.Pairs.begin(), Direction.Pairs.end(),
                     [&](const auto& Each) { return IsIn(Each.first) || IsIn(Each.second); });
}

// The system a little way along the direction; Unit takes how far that is in units of the parameter.
SpectrumInput Displace(const SpectrumInput& System, const LineDirection& Direction, double& Unit) {
  SpectrumInput Moved = System;
  const double Hz = Direction.Offsets.empty() ? 1.0 : Direction.Offsets.front().second;
  Unit = Difference / Hz;
  for (const auto& [Site, PerUnit] : Direction.Offsets) {
    Moved.Sites[Site].Frequency += Unit * PerUnit;
    Moved.Sites[Site].Shift += Unit * PerUnit / System.Field;
  }
  const std::size_t NumSites = System.Sites.size();
  for (const auto& [First, Second] : Direction.Pairs) {
    Moved.Coupling[First * NumSites + Second] += Unit;
    Moved.Coupling[Second * NumSites + First] += Unit;
  }
  return Moved;
}

// A plan of the same members in the displaced system; where others have come in, the change is not known.
void AddPlanChange(CutTeam& Team, const ClusterPlan& Plan, std::size_t Direction, const std::vector<double>& Base,
                   std::vector<double>& Nodes) {
  double Unit = 0.0;
  const SpectrumInput Moved = Displace(Team.System, Team.Directions[Direction], Unit);
  std::vector<std::vector<std::size_t>> Cores;
  for (const std::size_t Core : Plan.Cores) {
    const std::size_t Site = Plan.Sites[Core];
    for (const auto& Group : Team.Part.Cores) {
      if (Group.front() == Site) Cores.push_back(Group);
    }
  }
  auto Plans = PlanClusters(Moved, Team.Part.Part, Team.Near, Cores, Team.Level);
  if (Plans.size() != 1 || Plans[0].Sites != Plan.Sites || Plans[0].Cores != Plan.Cores) return;
  Plans[0].Groups = Plan.Groups;
  std::vector<double> Other(Nodes.size());
  AddPlan(Moved, Plans[0], Team.Axis, 1.0, Other);
  for (std::size_t K = 0; K < Nodes.size(); ++K) Nodes[K] += (Other[K] - Base[K]) / Unit;
}

void RunWorker(CutTeam& Team) {
  LineNodes Own{.Lines = std::vector<double>(Team.Axis.Size)};
  Own.Changes.assign(Team.Directions.size(), std::vector<double>());
  try {
    for (std::size_t Next = Team.NextPlan++; Next < Team.Plans.size(); Next = Team.NextPlan++) {
      const ClusterPlan& Plan = Team.Plans[Next];
      std::vector<double> Base(Team.Axis.Size);
      AddPlan(Team.System, Plan, Team.Axis, 1.0, Base);
      for (std::size_t K = 0; K < Base.size(); ++K) Own.Lines[K] += Base[K];
      for (std::size_t Direction = 0; Direction < Team.Directions.size(); ++Direction) {
        if (!Acts(Team.Directions[Direction], Plan)) continue;
        Own.Changes[Direction].resize(Team.Axis.Size);
        AddPlanChange(Team, Plan, Direction, Base, Own.Changes[Direction]);
      }
    }
  } catch (...) {
    const std::lock_guard<std::mutex> Guard(Team.Lock);
    Team.Error = std::current_exception();
    return;
  }
  const std::lock_guard<std::mutex> Guard(Team.Lock);
  const auto Add = [](const std::vector<double>& From, std::vector<double>& To) {
    for (std::size_t K = 0; K < From.size(); ++K) To[K] += From[K];
  };
  Add(Own.Lines, Team.Target.Lines);
  for (std::size_t K = 0; K < Own.Changes.size(); ++K) Add(Own.Changes[K], Team.Target.Changes[K]);
}

void RunTeam(const SpectrumInput& System, const LinePart& Part, const std::vector<LineDirection>& Directions, int Level,
             const LineAxis& Axis, LineNodes& Target) {
  const Neighbourhood Near = FindNeighbours(System, Part.Part);
  CutTeam Team{.System = System,
               .Part = Part,
               .Directions = Directions,
               .Level = Level,
               .Axis = Axis,
               .Near = Near,
               .Plans = PlanClusters(System, Part.Part, Near, Part.Cores, Level),
               .Target = Target};
  // The heaviest first, so that the cores end together.
  std::stable_sort(Team.Plans.begin(), Team.Plans.end(),
                   [](const ClusterPlan& A, const ClusterPlan& B) { return A.Operations > B.Operations; });
  ForEachWorker(std::min(NumUsableCores(), Team.Plans.size()), true, [&Team](std::size_t) { RunWorker(Team); });
  if (Team.Error) std::rethrow_exception(Team.Error);
}

}  // namespace

void AddCutPart(const SpectrumInput& System, const LinePart& Part, const std::vector<LineDirection>& Directions,
                int Level, const LineAxis& Axis, LineNodes& Target) {
  RunTeam(System, Part, {}, Level, Axis, Target);
  if (Directions.empty()) return;
  // A step needs its direction less exactly than its end, and smaller clusters are many times as fast.
  constexpr int LevelsLess = 2;
  LineNodes Changes{.Lines = std::vector<double>(Axis.Size), .Changes = std::move(Target.Changes)};
  RunTeam(System, Part, Directions, Level - LevelsLess, Axis, Changes);
  Target.Changes = std::move(Changes.Changes);
}

}  // namespace nmrcalc
