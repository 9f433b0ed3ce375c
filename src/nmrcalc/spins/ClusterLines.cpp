#include "nmrcalc/spins/ClusterLines.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "nmrcalc/spins/Blocks.h"
#include "nmrcalc/spins/LinearAlgebra.h"
#include "nmrcalc/spins/OutsideFlips.h"
#include "nmrcalc/spins/SpinSystem.h"

namespace nmrcalc {

namespace {

constexpr double FaintestMoment = 1e-7;     // of a transition, a first-order line of the system being 1
constexpr double FaintestSplit = 1e-4;      // fainter lines are not split by what acts in first order
constexpr double SmallestSplitting = 0.15;  // Hz; smaller ones are taken together by their second moment
constexpr double SmallestWidth = 0.005;     // Hz; less is not seen
constexpr std::size_t MostSplitLines = 64;  // of one line

// A block in one state of the surroundings.
struct SolvedBlock {
  std::vector<double> Energies{};
  std::vector<double> Vectors{};
  // The first-order shifts of the states by the surroundings: for each weak unit its states, each by eigenstates.
  std::vector<double> Shifts{};
  std::vector<double> Polarization{};  // <Iz>, spins x eigenstates
};

// What is the same in all states of the surroundings.
struct ClusterWork {
  const SpinSystem& System;
  const ClusterPlan& Plan;
  std::vector<OuterSite> Outside{};
  BlockBasis Basis{};
  // Of each block, what is the same in all states of the surroundings
  std::vector<std::vector<double>> Hamiltonians{};
  std::vector<std::vector<double>> Mz{};                            // states x spins
  std::vector<std::vector<std::vector<RaisingElement>>> Raising{};  // by spin
  std::vector<std::size_t> CoreSpins{};                             // spins of the system
  std::vector<std::size_t> CorePlaces{};                            // their places in Plan.Cores
  std::size_t NumWeakStates = 0;
  // Working storage of a line
  std::vector<Line> Split{};
  std::vector<Line> SplitNext{};
};

// <Iz> of each spin in each eigenstate, times the fields of the weak units.
void ComputeShifts(const ClusterWork& Work, std::size_t Level, const FieldState& Field, SolvedBlock& Block) {
  const std::size_t Size = Block.Energies.size();
  const std::size_t NumSpins = Work.System.Size();
  std::vector<double> Shares(Size * Size);
  for (std::size_t K = 0; K < Shares.size(); ++K) Shares[K] = Block.Vectors[K] * Block.Vectors[K];
  Block.Polarization.resize(Size * NumSpins);
  MultiplyTransposed(Work.Mz[Level].data(), Shares.data(), Block.Polarization.data(), NumSpins, Size, Size);
  Block.Shifts.assign(Size * Work.NumWeakStates, 0.0);
  for (std::size_t Own = 0; Own < Size; ++Own) {
    double* Target = Block.Shifts.data() + Own * Work.NumWeakStates;
    for (std::size_t K = 0; K < Work.Plan.Weak.size(); ++K) {
      const auto& Unit = Work.Plan.Weak[K];
      const FieldState& Base = Unit[Field.Base[K]];
      for (const FieldState& State : Unit) {
        for (std::size_t Spin = 0; Spin < NumSpins; ++Spin) {
          const std::size_t Site = Work.System.Sites[Spin];
          *Target += (State.Field[Site] - Base.Field[Site]) * Block.Polarization[Own * NumSpins + Spin];
        }
        ++Target;
      }
    }
  }
}

BlockInField InField(const ClusterWork& Work, std::size_t Level, const FieldState& Field) {
  return {.System = Work.System,
          .Basis = Work.Basis,
          .States = Work.Basis.Chains[0][Level],
          .Outside = Work.Outside,
          .Field = Field};
}

SolvedBlock SolveBlock(const ClusterWork& Work, std::size_t Level, const FieldState& Field) {
  const auto& States = Work.Basis.Chains[0][Level];
  SolvedBlock Block{.Vectors = Work.Hamiltonians[Level]};
  for (std::size_t K = 0; K < States.size(); ++K) {
    double& Diagonal = Block.Vectors[K * States.size() + K];
    for (std::size_t Spin = 0; Spin < Work.System.Size(); ++Spin) {
      Diagonal += Field.Field[Work.System.Sites[Spin]] * Work.Mz[Level][Spin * States.size() + K];
    }
  }
  AddOutsideFlips(InField(Work, Level, Field), Block.Vectors);
  DiagonalizeSymmetric(Block.Vectors, States.size(), Block.Energies);
  ComputeShifts(Work, Level, Field, Block);
  return Block;
}

// V_upper^T I+ V_lower, columns by the lower states.
std::vector<double> ComputeMoments(const std::vector<RaisingElement>& Raising, const SolvedBlock& Lower,
                                   const SolvedBlock& Upper) {
  const std::size_t NumRows = Upper.Energies.size();
  const std::size_t NumColumns = Lower.Energies.size();
  std::vector<double> Raised(NumRows * NumColumns);
  for (std::size_t Column = 0; Column < NumColumns; ++Column) {
    const double* Source = Lower.Vectors.data() + Column * NumColumns;
    double* Target = Raised.data() + Column * NumRows;
    for (const RaisingElement& Element : Raising) Target[Element.To] += Element.Value * Source[Element.From];
  }
  std::vector<double> Moments(NumRows * NumColumns);
  MultiplyTransposed(Upper.Vectors.data(), Raised.data(), Moments.data(), NumRows, NumColumns, NumRows);
  return Moments;
}

// The places and shares of a line that the weak units split: large splittings one by one, the small ones by two lines
// at the standard deviation of what they add up to.
const std::vector<Line>& SplitLine(ClusterWork& Work, double Frequency, const double* Upper, const double* Lower) {
  Work.Split.assign(1, {Frequency, 1.0, 1.0});
  double Variance = 0.0;
  for (const auto& Unit : Work.Plan.Weak) {
    double Lowest = 1e300;
    double Highest = -1e300;
    double Mean = 0.0;
    double Square = 0.0;
    for (std::size_t K = 0; K < Unit.size(); ++K) {
      const double Shift = Upper[K] - Lower[K];
      Lowest = std::min(Lowest, Shift);
      Highest = std::max(Highest, Shift);
      Mean += Unit[K].Weight * Shift;
      Square += Unit[K].Weight * Shift * Shift;
    }
    if (Highest - Lowest < SmallestSplitting || Work.Split.size() * Unit.size() > MostSplitLines) {
      Variance += std::max(0.0, Square - Mean * Mean);
      for (Line& Item : Work.Split) Item.Frequency += Mean;
    } else {
      Work.SplitNext.clear();
      for (const Line& Item : Work.Split) {
        for (std::size_t K = 0; K < Unit.size(); ++K) {
          Work.SplitNext.push_back({Item.Frequency + Upper[K] - Lower[K], Item.Intensity * Unit[K].Weight, 1.0});
        }
      }
      Work.Split.swap(Work.SplitNext);
    }
    Upper += Unit.size();
    Lower += Unit.size();
  }
  const double Width = std::sqrt(Variance);
  if (Width < SmallestWidth) return Work.Split;
  Work.SplitNext.clear();
  for (const Line& Item : Work.Split) {
    for (const double Side : {-Width, Width}) {
      Work.SplitNext.push_back({Item.Frequency + Side, 0.5 * Item.Intensity, 1.0});
    }
  }
  Work.Split.swap(Work.SplitNext);
  return Work.Split;
}

void AddLinesOfOutside(ClusterWork& Work, std::size_t Level, const FieldState& State, const SolvedBlock& Block,
                       ClusterTask& Task) {
  for (std::size_t Core = 0; Core < Work.CoreSpins.size(); ++Core) {
    AddOutsideLines(InField(Work, Level, State), Block.Polarization, Work.CoreSpins[Core],
                    Work.System.Weight * State.Weight, Task.Lines[Work.CorePlaces[Core]]);
  }
}

void AddPairLines(ClusterWork& Work, const FieldState& State, std::size_t Level, const SolvedBlock& Lower,
                  const SolvedBlock& Upper, double Weight, ClusterTask& Task) {
  const auto& Raising = Work.Raising[Level];
  const std::vector<double> Whole = ComputeMoments(AddLean(InField(Work, Level, State), Raising), Lower, Upper);
  std::vector<std::vector<double>> Own;  // intensities
  std::vector<double> Largest(Whole.size());
  for (const std::size_t Spin : Work.CoreSpins) {
    std::vector<double> Intensities = ComputeMoments(Raising[Spin], Lower, Upper);
    for (std::size_t Place = 0; Place < Whole.size(); ++Place) {
      Intensities[Place] *= Whole[Place];
      Largest[Place] = std::max(Largest[Place], std::fabs(Intensities[Place]));
    }
    Own.push_back(std::move(Intensities));
  }
  const std::size_t NumRows = Upper.Energies.size();
  for (std::size_t Column = 0; Column < Lower.Energies.size(); ++Column) {
    for (std::size_t Row = 0; Row < NumRows; ++Row) {
      const std::size_t Place = Column * NumRows + Row;
      if (Largest[Place] < FaintestMoment) continue;
      const double Frequency = Work.Basis.ObservedCarrier + Upper.Energies[Row] - Lower.Energies[Column];
      if (Work.NumWeakStates == 0 || Largest[Place] < FaintestSplit) {
        for (std::size_t Core = 0; Core < Own.size(); ++Core) {
          AddLine(Task.Lines[Work.CorePlaces[Core]], Frequency, Own[Core][Place] * Weight, Weight);
        }
        continue;
      }
      const std::vector<Line>& Split = SplitLine(Work, Frequency, Upper.Shifts.data() + Row * Work.NumWeakStates,
                                                 Lower.Shifts.data() + Column * Work.NumWeakStates);
      for (std::size_t Core = 0; Core < Own.size(); ++Core) {
        const double Intensity = Own[Core][Place] * Weight;
        for (const Line& Item : Split) {
          AddLine(Task.Lines[Work.CorePlaces[Core]], Item.Frequency, Item.Intensity * Intensity, Weight);
        }
      }
    }
  }
}

void PrepareBlocks(ClusterWork& Work) {
  for (const auto& States : Work.Basis.Chains[0]) {
    Work.Hamiltonians.push_back(BuildHamiltonian(Work.System, Work.Basis, States));
    Work.Mz.emplace_back();
    Work.Raising.emplace_back();
    for (std::size_t Spin = 0; Spin < Work.System.Size(); ++Spin) {
      for (const std::uint32_t State : States) Work.Mz.back().push_back(MzOf(Work.System, Work.Basis, State, Spin));
      Work.Raising.back().push_back(BuildRaisingOfSpin(Work.System, Work.Basis, States, Spin));
    }
  }
}

void SimulateSystem(const SpectrumInput& Input, const SpinSystem& System, const ClusterPlan& Plan, ClusterTask& Task,
                    const std::atomic<bool>& Stop) {
  ClusterWork Work{.System = System, .Plan = Plan, .Outside = FindOuterSites(Input, Plan, System)};
  for (std::size_t Spin = 0; Spin < System.Size(); ++Spin) {
    const auto Place = std::find(Plan.Cores.begin(), Plan.Cores.end(), System.Sites[Spin]);
    if (Place == Plan.Cores.end()) continue;
    Work.CoreSpins.push_back(Spin);
    Work.CorePlaces.push_back(static_cast<std::size_t>(Place - Plan.Cores.begin()));
  }
  if (Work.CoreSpins.empty()) return;
  Work.Basis = BuildBasis(System, false);
  PrepareBlocks(Work);
  const auto& Levels = Work.Basis.Chains[0];
  for (const auto& Unit : Plan.Weak) Work.NumWeakStates += Unit.size();
  for (std::size_t Field = Task.FirstField; Field < Task.EndField; ++Field) {
    const FieldState& State = Plan.Fields[Field];
    SolvedBlock Lower = SolveBlock(Work, 0, State);
    AddLinesOfOutside(Work, 0, State, Lower, Task);
    for (std::size_t Level = 1; Level < Levels.size(); ++Level) {
      if (Stop) return;
      SolvedBlock Upper = SolveBlock(Work, Level, State);
      AddLinesOfOutside(Work, Level, State, Upper, Task);
      AddPairLines(Work, State, Level - 1, Lower, Upper, System.Weight * State.Weight, Task);
      Lower = std::move(Upper);
    }
  }
}

}  // namespace

void SimulateCluster(const SpectrumInput& Input, const ClusterPlan& Plan, ClusterTask& Task,
                     const std::atomic<bool>& Stop) {
  const std::size_t NumSites = Plan.Sites.size();
  SpectrumInput Own;
  SpinPart Part;
  for (std::size_t I = 0; I < NumSites; ++I) {
    Own.Sites.push_back(Input.Sites[Plan.Sites[I]]);
    for (std::size_t K = 0; K < NumSites; ++K) {
      Own.Coupling.push_back(I == K ? 0.0 : Input.J(Plan.Sites[I], Plan.Sites[K]));
    }
    Part.Sites.push_back(I);
  }
  Task.Lines.resize(Plan.Cores.size());
  for (const SpinSystem& System : ReducePart(Own, Part)) SimulateSystem(Input, System, Plan, Task, Stop);
}

}  // namespace nmrcalc
