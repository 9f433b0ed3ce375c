#include "nmrcalc/spins/Exact.h"

#include <algorithm>
#include <cmath>
#include <condition_variable>
#include <exception>
#include <limits>
#include <memory>
#include <mutex>
#include <utility>

#include "basic/Failure.h"
#include "nmrcalc/Progress.h"
#include "nmrcalc/spins/Blocks.h"
#include "nmrcalc/spins/LinearAlgebra.h"
#include "nmrcalc/spins/Workers.h"

namespace nmrcalc {

namespace {

constexpr double BytesPerNumber = 8.0;
constexpr std::size_t LinesPerThread = 5000;        // fewer are sorted sooner than a thread is started
constexpr double LargestStateCount = 2147483648.0;  // codes of states have 32 bits
constexpr double LineShare = 0.25;                  // of the memory, for lines; sorting and growing take as much again
constexpr double OperationsPerThread = 3e7;         // less is done sooner than a thread is started
constexpr double OperationsPerCube = 5.0;           // of the eigenvectors, measured
constexpr double OperationsPerMoment = 2.0;         // for each product of moments
constexpr std::size_t PanelColumns = 128;           // columns of transition moments formed at a time
constexpr std::size_t LinesBeforeMerge = 4000000;   // per worker
constexpr double LargestUnordered = 32.0 * 1024.0 * 1024.0;  // bytes of eigenvectors of a system
constexpr double TellingShare = 0.1;                         // of the work, from which its speed is known
constexpr double NoiseWidth = 1e-7;  // Hz; transitions nearer than this differ by rounding alone

// The eigenstates of a block, kept until both neighbours have met it.
struct BlockStates {
  std::vector<double> Energies;
  std::vector<double> Vectors;
  bool Solved = false;
  int PairsLeft = 0;
};

// A system in work. Created with its first block and dropped after its last.
struct SystemWork {
  BlockBasis Basis;
  std::vector<std::vector<BlockStates>> Blocks;  // as Basis.Chains
};

struct BlockTask {
  std::size_t System = 0;
  std::size_t Chain = 0;
  std::size_t Level = 0;
  double Size = 0.0;
};

// What one worker has found.
struct WorkerLines {
  std::vector<Line> Lines{};
  IntensityCells Cells{};
  LineOrigins Origins{};
};

struct Team {
  const std::vector<SpinSystem>& Systems;
  const ExactLimits& Limits;
  std::vector<BlockTask> Tasks{};
  std::vector<std::shared_ptr<SystemWork>> Works{};
  std::vector<std::size_t> TasksLeft{};  // per system
  std::size_t NumTransitions = 0;        // a first guess of the number of lines
  std::vector<WorkerLines> Found{};
  std::mutex Lock{};
  std::condition_variable Changed{};
  std::size_t NextTask = 0;
  double BytesInUse = 0.0;
  int Solving = 0;
  std::size_t NumSolved = 0;
  RunClock::time_point Start = RunClock::now();
  double Operations = 0.0;  // of all blocks and their moments
  double DoneOperations = 0.0;
  double RunningOperations = 0.0;  // of the blocks that are being solved
  bool IsLate = false;
  std::exception_ptr Error{};
};

bool TakesFarApart(const SpinSystem& System) { return FarSplittingError(System) < LargestSplittingError; }

double VectorBytes(double Size) { return BytesPerNumber * Size * Size; }
double WorkspaceBytes(double Size) { return 2.0 * BytesPerNumber * Size * Size; }

// Two neighbouring blocks as the product of the moments sees them: one side is contracted densely and gives the rows.
struct BlockPair {
  const BlockStates& Rows;
  const BlockStates& Columns;
  double Sign = 1.0;     // -1 where the columns are the upper block
  double Carrier = 0.0;  // Hz
  double Weight = 1.0;
};

void CheckLineMemory(const Team& Group, std::vector<Line>& Lines) {
  const auto TooMany = [&Group, &Lines] {
    return double(Lines.size() * sizeof(Line)) * double(Group.Found.size()) > LineShare * Group.Limits.Bytes;
  };
  if (Lines.size() < LinesBeforeMerge || !TooMany()) return;
  SortAndMerge(Lines, NoiseWidth);
  if (TooMany()) {
    throw zelvanor::Failure("The spectrum has too many lines for the free memory; raise the minimal intensity");
  }
}

// Adds the lines of NumColumns columns of moments, from FirstColumn on.
void AddLines(const Team& Group, const BlockPair& Pair, std::size_t FirstColumn, std::size_t NumColumns,
              const std::vector<double>& Moments, WorkerLines& Found) {
  const std::size_t NumRows = Pair.Rows.Energies.size();
  const double Faintest = Group.Limits.FaintestIntensity / Pair.Weight;
  const double FarFrequency =
      Group.Limits.FarFrequency > 0.0 ? Group.Limits.FarFrequency : std::numeric_limits<double>::infinity();
  for (std::size_t Column = 0; Column < NumColumns; ++Column) {
    const double* Moment = Moments.data() + Column * NumRows;
    const double ColumnEnergy = Pair.Columns.Energies[FirstColumn + Column];
    for (std::size_t Row = 0; Row < NumRows; ++Row) {
      const double Intensity = Moment[Row] * Moment[Row];
      if (Intensity < Faintest) continue;
      const double Frequency = Pair.Carrier + Pair.Sign * (Pair.Rows.Energies[Row] - ColumnEnergy);
      if (std::fabs(Frequency) > FarFrequency) continue;
      Found.Lines.push_back({Frequency, Intensity * Pair.Weight, Pair.Weight});
      AddToCells(Found.Cells, Frequency, Intensity * Pair.Weight);
    }
  }
  CheckLineMemory(Group, Found.Lines);
}

// A column of moments whose transitions are to be told apart by spins.
struct OriginColumn {
  const SpinSystem& System;
  const std::vector<std::vector<RaisingElement>>& Raising;  // of each observed spin
  const std::vector<std::size_t>& Spins;
  bool ColumnsAreLower = true;
};

// Which spins the strong transitions of a column come from: spin k has the share <a|I+k|b><b|I-|a> of the intensity, so
// that over the spectrum every spin has its area.
void AddOrigins(const Team& Group, const BlockPair& Pair, const OriginColumn& Context, std::size_t Column,
                const double* Moment, WorkerLines& Found) {
  const std::size_t NumRows = Pair.Rows.Energies.size();
  const std::size_t NumSpins = Context.Spins.size();
  const double Faintest = Group.Limits.FaintestOrigin / Pair.Weight;
  std::vector<std::size_t> Rows;
  for (std::size_t Row = 0; Row < NumRows; ++Row) {
    if (Moment[Row] * Moment[Row] >= Faintest) Rows.push_back(Row);
  }
  if (Rows.empty()) return;
  const double* Source = Pair.Columns.Vectors.data() + Column * Pair.Columns.Energies.size();
  std::vector<double> Raised(NumRows * NumSpins);
  for (std::size_t K = 0; K < NumSpins; ++K) {
    double* Target = Raised.data() + K * NumRows;
    for (const RaisingElement& Element : Context.Raising[K]) {
      if (Context.ColumnsAreLower) {
        Target[Element.To] += Element.Value * Source[Element.From];
      } else {
        Target[Element.From] += Element.Value * Source[Element.To];
      }
    }
  }
  std::vector<double> Vectors(NumRows * Rows.size());
  for (std::size_t K = 0; K < Rows.size(); ++K) {
    std::copy_n(Pair.Rows.Vectors.data() + Rows[K] * NumRows, NumRows, Vectors.data() + K * NumRows);
  }
  std::vector<double> Own(NumSpins * Rows.size());
  MultiplyTransposed(Raised.data(), Vectors.data(), Own.data(), NumSpins, Rows.size(), NumRows);
  for (std::size_t K = 0; K < Rows.size(); ++K) {
    const double Frequency = Pair.Carrier + Pair.Sign * (Pair.Rows.Energies[Rows[K]] - Pair.Columns.Energies[Column]);
    for (std::size_t Spin = 0; Spin < NumSpins; ++Spin) {
      AddShare(Found.Origins, Context.System.Sites[Context.Spins[Spin]],
               Own[K * NumSpins + Spin] * Moment[Rows[K]] * Pair.Weight);
    }
    EndOrigin(Found.Origins, Frequency);
  }
}

double SolveOperations(double Size) { return OperationsPerCube * Size * Size * Size; }

// Of the moments between two blocks.
double MomentOperations(double A, double B) { return OperationsPerMoment * A * B * std::min(A, B); }

// Whether the work will not be done by the deadline at the speed so far. The first blocks are too small to tell.
bool WillBeLate(const Team& Group) {
  if (Group.Limits.Deadline == RunClock::time_point::max()) return false;
  const auto Now = RunClock::now();
  if (Now > Group.Limits.Deadline) return true;
  const double Done = Group.DoneOperations + 0.5 * Group.RunningOperations;
  if (Done < TellingShare * Group.Operations) return false;
  return (Now - Group.Start) * (Group.Operations / Done) > Group.Limits.Deadline - Group.Start;
}

// Counts moments that have been formed; false when the rest is in vain.
bool CountMoments(Team& Group, double Operations) {
  const std::lock_guard<std::mutex> Guard(Group.Lock);
  Group.DoneOperations += Operations;
  Group.IsLate = Group.IsLate || WillBeLate(Group);
  return !Group.IsLate;
}

// Moments of all transitions from the block at Level to the one above it: V_upper^T I+ V_lower, in panels of columns.
// The side that is contracted densely is the smaller one.
void ComputeTransitions(Team& Group, const SpinSystem& System, const SystemWork& Work, std::size_t Chain,
                        std::size_t Level, WorkerLines& Found) {
  const BlockStates& Lower = Work.Blocks[Chain][Level];
  const BlockStates& Upper = Work.Blocks[Chain][Level + 1];
  const auto Raising = BuildRaising(System, Work.Basis, Work.Basis.Chains[Chain][Level]);
  const bool ColumnsAreLower = Upper.Energies.size() <= Lower.Energies.size();
  const BlockPair Pair{.Rows = ColumnsAreLower ? Upper : Lower,
                       .Columns = ColumnsAreLower ? Lower : Upper,
                       .Sign = ColumnsAreLower ? 1.0 : -1.0,
                       .Carrier = Work.Basis.ObservedCarrier,
                       .Weight = System.Weight};
  const std::size_t NumRows = Pair.Rows.Energies.size();
  const std::size_t NumColumns = Pair.Columns.Energies.size();
  std::vector<std::vector<RaisingElement>> OwnRaising;
  std::vector<std::size_t> Spins;
  for (std::size_t Spin = 0; Spin < System.Size(); ++Spin) {
    if (!System.Observed[Spin]) continue;
    Spins.push_back(Spin);
    OwnRaising.push_back(BuildRaisingOfSpin(System, Work.Basis, Work.Basis.Chains[Chain][Level], Spin));
  }
  const OriginColumn Context{
      .System = System, .Raising = OwnRaising, .Spins = Spins, .ColumnsAreLower = ColumnsAreLower};
  std::vector<double> Raised;
  std::vector<double> Moments(NumRows * std::min(NumColumns, PanelColumns));
  for (std::size_t First = 0; First < NumColumns; First += PanelColumns) {
    const std::size_t Width = std::min(PanelColumns, NumColumns - First);
    Raised.assign(NumRows * Width, 0.0);
    for (std::size_t Column = 0; Column < Width; ++Column) {
      const double* Source = Pair.Columns.Vectors.data() + (First + Column) * NumColumns;
      double* Target = Raised.data() + Column * NumRows;
      if (ColumnsAreLower) {
        for (const RaisingElement& Element : Raising) Target[Element.To] += Element.Value * Source[Element.From];
      } else {
        for (const RaisingElement& Element : Raising) Target[Element.From] += Element.Value * Source[Element.To];
      }
    }
    MultiplyTransposed(Pair.Rows.Vectors.data(), Raised.data(), Moments.data(), NumRows, Width, NumRows);
    AddLines(Group, Pair, First, Width, Moments, Found);
    for (std::size_t Column = 0; Column < Width; ++Column) {
      AddOrigins(Group, Pair, Context, First + Column, Moments.data() + Column * NumRows, Found);
    }
    const double Share = double(Width) / double(NumColumns);
    if (!CountMoments(Group, Share * MomentOperations(double(NumRows), double(NumColumns)))) return;
  }
}

// Creates the work of a system; called with the lock held.
std::shared_ptr<SystemWork> StartSystem(const SpinSystem& System) {
  auto Work = std::make_shared<SystemWork>();
  Work->Basis = BuildBasis(System, TakesFarApart(System));
  for (const auto& Chain : Work->Basis.Chains) {
    std::vector<BlockStates> Blocks(Chain.size());
    for (std::size_t Level = 0; Level < Chain.size(); ++Level) {
      Blocks[Level].PairsLeft = (Level > 0 ? 1 : 0) + (Level + 1 < Chain.size() ? 1 : 0);
    }
    Work->Blocks.push_back(std::move(Blocks));
  }
  return Work;
}

// Waits until there is memory for the next block or nobody is solving one; nothing when no task is left or time is up.
const BlockTask* TakeTask(Team& Group, std::shared_ptr<SystemWork>& Work) {
  std::unique_lock<std::mutex> Guard(Group.Lock);
  Group.Changed.wait(Guard, [&Group] {
    if (Group.Error || Group.IsLate || Group.NextTask == Group.Tasks.size() || Group.Solving == 0) return true;
    const double Size = Group.Tasks[Group.NextTask].Size;
    return Group.BytesInUse + VectorBytes(Size) + WorkspaceBytes(Size) <= Group.Limits.Bytes;
  });
  Group.IsLate = Group.IsLate || (Group.NextTask < Group.Tasks.size() && WillBeLate(Group));
  if (Group.Error || Group.IsLate || Group.NextTask == Group.Tasks.size()) return nullptr;
  const BlockTask& Task = Group.Tasks[Group.NextTask++];
  Group.BytesInUse += VectorBytes(Task.Size) + WorkspaceBytes(Task.Size);
  Group.RunningOperations += SolveOperations(Task.Size);
  ++Group.Solving;
  if (!Group.Works[Task.System]) Group.Works[Task.System] = StartSystem(Group.Systems[Task.System]);
  Work = Group.Works[Task.System];
  return &Task;
}

// Stores the solved block and tells the lower levels of the pairs that are complete by it.
std::vector<std::size_t> StoreBlock(Team& Group, const BlockTask& Task, SystemWork& Work, BlockStates& Solved) {
  const std::lock_guard<std::mutex> Guard(Group.Lock);
  std::vector<BlockStates>& Chain = Work.Blocks[Task.Chain];
  Chain[Task.Level].Energies = std::move(Solved.Energies);
  Chain[Task.Level].Vectors = std::move(Solved.Vectors);
  Chain[Task.Level].Solved = true;
  Group.BytesInUse -= WorkspaceBytes(Task.Size);
  --Group.Solving;
  Group.RunningOperations -= SolveOperations(Task.Size);
  Group.DoneOperations += SolveOperations(Task.Size);
  ReportProgress(static_cast<long>(++Group.NumSolved), static_cast<long>(Group.Tasks.size()), "blocks of states");
  Group.Changed.notify_all();
  std::vector<std::size_t> Ready;
  if (Task.Level > 0 && Chain[Task.Level - 1].Solved) Ready.push_back(Task.Level - 1);
  if (Task.Level + 1 < Chain.size() && Chain[Task.Level + 1].Solved) Ready.push_back(Task.Level);
  return Ready;
}

void ReleasePair(Team& Group, const BlockTask& Task, SystemWork& Work, std::size_t LowerLevel) {
  const std::lock_guard<std::mutex> Guard(Group.Lock);
  for (const std::size_t Level : {LowerLevel, LowerLevel + 1}) {
    BlockStates& Block = Work.Blocks[Task.Chain][Level];
    if (--Block.PairsLeft > 0) continue;
    Group.BytesInUse -= VectorBytes(double(Block.Energies.size()));
    Block.Vectors = std::vector<double>();
    Block.Energies = std::vector<double>();
  }
  Group.Changed.notify_all();
}

void FinishTask(Team& Group, const BlockTask& Task) {
  const std::lock_guard<std::mutex> Guard(Group.Lock);
  if (--Group.TasksLeft[Task.System] == 0) Group.Works[Task.System].reset();
}

void RunWorker(Team& Group, std::size_t Worker) {
  try {
    std::shared_ptr<SystemWork> Work;
    while (const BlockTask* Task = TakeTask(Group, Work)) {
      const SpinSystem& System = Group.Systems[Task->System];
      const auto& States = Work->Basis.Chains[Task->Chain][Task->Level];
      BlockStates Solved;
      Solved.Vectors = BuildHamiltonian(System, Work->Basis, States);
      DiagonalizeSymmetric(Solved.Vectors, States.size(), Solved.Energies);
      for (const std::size_t Level : StoreBlock(Group, *Task, *Work, Solved)) {
        ComputeTransitions(Group, System, *Work, Task->Chain, Level, Group.Found[Worker]);
        ReleasePair(Group, *Task, *Work, Level);
      }
      FinishTask(Group, *Task);
    }
  } catch (...) {
    const std::lock_guard<std::mutex> Guard(Group.Lock);
    if (!Group.Error) Group.Error = std::current_exception();
    Group.Changed.notify_all();
  }
}

// Lists the blocks in the order in which they are to be solved and returns the operations of all. Systems that fit
// into the cache's neighbourhood start with their largest blocks, which balances the cores best; the others go from
// level to level, so that only neighbours are in memory at a time.
double PlanTasks(Team& Group) {
  double Operations = 0.0;
  double Transitions = 0.0;
  for (std::size_t System = 0; System < Group.Systems.size(); ++System) {
    const auto Counts = CountBlocks(Group.Systems[System], TakesFarApart(Group.Systems[System]));
    const auto First = static_cast<std::ptrdiff_t>(Group.Tasks.size());
    double Bytes = 0.0;
    for (std::size_t Chain = 0; Chain < Counts.size(); ++Chain) {
      for (std::size_t Level = 0; Level < Counts[Chain].size(); ++Level) {
        const double Size = Counts[Chain][Level];
        Group.Tasks.push_back({System, Chain, Level, Size});
        Operations += SolveOperations(Size);
        Bytes += VectorBytes(Size);
        if (Level == 0) continue;
        Transitions += Size * Counts[Chain][Level - 1];
        Operations += MomentOperations(Size, Counts[Chain][Level - 1]);
      }
    }
    if (Bytes < LargestUnordered) {
      std::stable_sort(Group.Tasks.begin() + First, Group.Tasks.end(),
                       [](const BlockTask& A, const BlockTask& B) { return A.Size > B.Size; });
    }
    Group.TasksLeft.push_back(Group.Tasks.size() - static_cast<std::size_t>(First));
  }
  Group.Works.resize(Group.Systems.size());
  Group.NumTransitions = static_cast<std::size_t>(std::min(Transitions, double(LinesBeforeMerge)));
  return Operations;
}

// One list of what all workers have found, sorted, without the hopeless lines.
std::vector<Line> GatherLines(Team& Group) {
  std::size_t NumLines = 0;
  for (const WorkerLines& Found : Group.Found) NumLines += Found.Lines.size();
  IntensityCells& Cells = Group.Found[0].Cells;
  for (std::size_t Worker = 1; Worker < Group.Found.size(); ++Worker) MergeCells(Cells, Group.Found[Worker].Cells);
  ForEachWorker(Group.Found.size(), NumLines > LinesPerThread, [&Group, &Cells](std::size_t Worker) {
    DropHopelessLines(Group.Found[Worker].Lines, Cells);
    SortLines(Group.Found[Worker].Lines);
  });
  std::vector<Line> All = std::move(Group.Found[0].Lines);
  for (std::size_t Worker = 1; Worker < Group.Found.size(); ++Worker) {
    MergeSortedLines(All, Group.Found[Worker].Lines);
    Group.Found[Worker].Lines = std::vector<Line>();
  }
  return All;
}

std::size_t ChooseWorkerCount(double Operations) {
  const double Worthwhile = std::clamp(Operations / OperationsPerThread, 1.0, 64.0);
  return std::min(NumUsableCores(), static_cast<std::size_t>(Worthwhile));
}

}  // namespace

ExactCost EstimateExactCost(const std::vector<SpinSystem>& Systems) {
  ExactCost Cost;
  for (const SpinSystem& System : Systems) {
    double States = 0.0;
    double Largest = 0.0;
    for (const auto& Chain : CountBlocks(System, TakesFarApart(System))) {
      double Below = 0.0;
      for (const double Size : Chain) {
        Cost.Transitions += Size * std::exchange(Below, Size);
        States += Size;
        Largest = std::max(Largest, Size);
        Cost.Operations += SolveOperations(Size) + OperationsPerMoment * Size * Size * Size;
      }
    }
    if (States > LargestStateCount) Cost.Bytes = std::numeric_limits<double>::infinity();
    // Two neighbours and the block in work, its workspace, the basis.
    const double Bytes = 3.0 * VectorBytes(Largest) + WorkspaceBytes(Largest) + States * (20.0 + double(System.Size()));
    Cost.Bytes = std::max(Cost.Bytes, Bytes);
    Cost.LargestBlock = std::max(Cost.LargestBlock, Largest);
  }
  return Cost;
}

std::optional<std::vector<Line>> SimulateExact(const std::vector<SpinSystem>& Systems, const ExactLimits& Limits,
                                               LineOrigins& Origins) {
  Team Group{.Systems = Systems, .Limits = Limits};
  Group.Operations = PlanTasks(Group);
  const std::size_t NumWorkers = ChooseWorkerCount(Group.Operations);
  Group.Found.resize(NumWorkers);
  for (WorkerLines& Found : Group.Found) {
    Found.Lines.reserve(Group.NumTransitions / NumWorkers);
    Found.Cells = MakeCells(Group.NumTransitions, Limits.MinimalIntensity);
  }
  ForEachWorker(NumWorkers, true, [&Group](std::size_t Worker) { RunWorker(Group, Worker); });
  if (Group.Error) std::rethrow_exception(Group.Error);
  if (Group.IsLate) return std::nullopt;
  for (WorkerLines& Found : Group.Found) AddOriginsOf(Origins, std::move(Found.Origins));
  return GatherLines(Group);
}

}  // namespace nmrcalc
