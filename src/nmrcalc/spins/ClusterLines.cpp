#include "nmrcalc/spins/ClusterLines.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <type_traits>

#include "nmrcalc/spins/Blocks.h"
#include "nmrcalc/spins/LinearAlgebra.h"
#include "nmrcalc/spins/OutsideFlips.h"
#include "nmrcalc/spins/SpinSystem.h"

namespace nmrcalc {

namespace {

// Of a transition, a first-order line of the system being 1. In single precision 3e-6 of the area are lost so.
template <class Number>
constexpr double FaintestMoment = std::is_same_v<Number, float> ? 1e-5 : 1e-7;

// A block in one state of the surroundings. Its storage is used again for the next one.
template <class Number>
struct SolvedBlock {
  std::vector<Number> Energies{};
  std::vector<Number> Vectors{};
  std::vector<double> Polarization{};  // <Iz>, spins x eigenstates
};

// Working storage of the matrices.
template <class Number>
struct MatrixSpace {
  std::vector<double> Hamiltonian{};
  std::vector<Number> Squares{};
  std::vector<Number> Polarization{};
  std::vector<Number> Reached{};
  std::vector<Number> Raised{};
  std::vector<Number> Whole{};
  std::vector<std::vector<Number>> Own{};  // intensities of each core spin
  std::vector<Number> Largest{};           // of them
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
};

// <Iz> of each spin in each eigenstate.
template <class Number>
void ComputePolarization(const ClusterWork& Work, std::size_t Level, MatrixSpace<Number>& Space,
                         SolvedBlock<Number>& Block) {
  const std::size_t Size = Block.Energies.size();
  const std::size_t NumSpins = Work.System.Size();
  Space.Squares.resize(Size * Size);
  for (std::size_t K = 0; K < Size * Size; ++K) Space.Squares[K] = Block.Vectors[K] * Block.Vectors[K];
  const std::vector<Number> Mz(Work.Mz[Level].begin(), Work.Mz[Level].end());
  Space.Polarization.resize(Size * NumSpins);
  MultiplyTransposed(Mz.data(), Space.Squares.data(), Space.Polarization.data(), NumSpins, Size, Size);
  Block.Polarization.assign(Space.Polarization.begin(), Space.Polarization.end());
}

BlockInField InField(const ClusterWork& Work, std::size_t Level, const FieldState& Field) {
  return {.System = Work.System,
          .Basis = Work.Basis,
          .States = Work.Basis.Chains[0][Level],
          .Outside = Work.Outside,
          .Field = Field};
}

template <class Number>
void SolveBlock(const ClusterWork& Work, std::size_t Level, const FieldState& Field, MatrixSpace<Number>& Space,
                SolvedBlock<Number>& Block) {
  const auto& States = Work.Basis.Chains[0][Level];
  Space.Hamiltonian = Work.Hamiltonians[Level];
  for (std::size_t K = 0; K < States.size(); ++K) {
    double& Diagonal = Space.Hamiltonian[K * States.size() + K];
    for (std::size_t Spin = 0; Spin < Work.System.Size(); ++Spin) {
      Diagonal += Field.Field[Work.System.Sites[Spin]] * Work.Mz[Level][Spin * States.size() + K];
    }
  }
  AddOutsideFlips(InField(Work, Level, Field), Space.Hamiltonian);
  Block.Vectors.assign(Space.Hamiltonian.begin(), Space.Hamiltonian.end());
  DiagonalizeSymmetric(Block.Vectors, States.size(), Block.Energies);
  if (!Work.Outside.empty()) ComputePolarization(Work, Level, Space, Block);
}

// V_upper^T I+ V_lower, columns by the lower states.
template <class Number>
void ComputeMoments(const std::vector<RaisingElement>& Raising, const SolvedBlock<Number>& Lower,
                    const SolvedBlock<Number>& Upper, std::vector<Number>& Raised, std::vector<Number>& Moments) {
  const std::size_t NumRows = Upper.Energies.size();
  const std::size_t NumColumns = Lower.Energies.size();
  Raised.assign(NumRows * NumColumns, 0);
  for (std::size_t Column = 0; Column < NumColumns; ++Column) {
    const Number* Source = Lower.Vectors.data() + Column * NumColumns;
    Number* Target = Raised.data() + Column * NumRows;
    for (const RaisingElement& Element : Raising) {
      Target[Element.To] += static_cast<Number>(Element.Value) * Source[Element.From];
    }
  }
  Moments.resize(NumRows * NumColumns);
  MultiplyTransposed(Upper.Vectors.data(), Raised.data(), Moments.data(), NumRows, NumColumns, NumRows);
}

// The same for one spin, whose raising operator takes each state to one other: half of the states have none to come
// from, and their rows take no part in the product.
template <class Number>
void ComputeMomentsOfSpin(const std::vector<RaisingElement>& Raising, const SolvedBlock<Number>& Lower,
                          const SolvedBlock<Number>& Upper, MatrixSpace<Number>& Space, std::vector<Number>& Moments) {
  const std::size_t NumRows = Upper.Energies.size();
  const std::size_t NumColumns = Lower.Energies.size();
  Space.Reached.resize(NumRows * Raising.size());
  Space.Raised.resize(NumColumns * Raising.size());
  Number* Target = Space.Reached.data();
  for (std::size_t Row = 0; Row < NumRows; ++Row) {
    const Number* Source = Upper.Vectors.data() + Row * NumRows;
    for (const RaisingElement& Element : Raising) *Target++ = Source[Element.To];
  }
  Target = Space.Raised.data();
  for (std::size_t Column = 0; Column < NumColumns; ++Column) {
    const Number* Source = Lower.Vectors.data() + Column * NumColumns;
    for (const RaisingElement& Element : Raising) *Target++ = static_cast<Number>(Element.Value) * Source[Element.From];
  }
  Moments.resize(NumRows * NumColumns);
  MultiplyTransposed(Space.Reached.data(), Space.Raised.data(), Moments.data(), NumRows, NumColumns, Raising.size());
}

template <class Number>
void AddLinesOfOutside(ClusterWork& Work, std::size_t Level, const FieldState& State, const SolvedBlock<Number>& Block,
                       ClusterTask& Task) {
  for (std::size_t Core = 0; Core < Work.CoreSpins.size(); ++Core) {
    AddOutsideLines(InField(Work, Level, State), Block.Polarization, Work.CoreSpins[Core],
                    Work.System.Weight * State.Weight, Task.Lines[Work.CorePlaces[Core]]);
  }
}

// The intensities of the core spins' lines from a block to the one above.
template <class Number>
void ComputeIntensities(const ClusterWork& Work, const FieldState& State, std::size_t Level,
                        const SolvedBlock<Number>& Lower, const SolvedBlock<Number>& Upper,
                        MatrixSpace<Number>& Space) {
  const auto& Raising = Work.Raising[Level];
  ComputeMoments(AddLean(InField(Work, Level, State), Raising), Lower, Upper, Space.Raised, Space.Whole);
  Space.Largest.assign(Space.Whole.size(), 0);
  Space.Own.resize(Work.CoreSpins.size());
  for (std::size_t Core = 0; Core < Work.CoreSpins.size(); ++Core) {
    std::vector<Number>& Intensities = Space.Own[Core];
    ComputeMomentsOfSpin(Raising[Work.CoreSpins[Core]], Lower, Upper, Space, Intensities);
    for (std::size_t Place = 0; Place < Space.Whole.size(); ++Place) {
      Intensities[Place] *= Space.Whole[Place];
      Space.Largest[Place] = std::max(Space.Largest[Place], std::abs(Intensities[Place]));
    }
  }
}

template <class Number>
void AddPairLines(ClusterWork& Work, const SolvedBlock<Number>& Lower, const SolvedBlock<Number>& Upper, double Weight,
                  const MatrixSpace<Number>& Space, ClusterTask& Task) {
  const std::size_t NumRows = Upper.Energies.size();
  for (std::size_t Column = 0; Column < Lower.Energies.size(); ++Column) {
    for (std::size_t Row = 0; Row < NumRows; ++Row) {
      const std::size_t Place = Column * NumRows + Row;
      if (Space.Largest[Place] < FaintestMoment<Number>) continue;
      const double Frequency =
          Work.Basis.ObservedCarrier + double(Upper.Energies[Row]) - double(Lower.Energies[Column]);
      for (std::size_t Core = 0; Core < Space.Own.size(); ++Core) {
        AddLine(Task.Lines[Work.CorePlaces[Core]], Frequency, double(Space.Own[Core][Place]) * Weight, Weight);
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

template <class Number>
void SimulateFields(ClusterWork& Work, ClusterTask& Task, const std::atomic<bool>& Stop) {
  MatrixSpace<Number> Space;
  SolvedBlock<Number> Lower;
  SolvedBlock<Number> Upper;
  for (std::size_t Field = Task.FirstField; Field < Task.EndField; ++Field) {
    const FieldState& State = Work.Plan.Fields[Field];
    SolveBlock(Work, 0, State, Space, Lower);
    AddLinesOfOutside(Work, 0, State, Lower, Task);
    for (std::size_t Level = 1; Level < Work.Basis.Chains[0].size(); ++Level) {
      if (Stop) return;
      SolveBlock(Work, Level, State, Space, Upper);
      AddLinesOfOutside(Work, Level, State, Upper, Task);
      ComputeIntensities(Work, State, Level - 1, Lower, Upper, Space);
      AddPairLines(Work, Lower, Upper, Work.System.Weight * State.Weight, Space, Task);
      std::swap(Lower, Upper);
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
  if (Task.IsExact) {
    SimulateFields<double>(Work, Task, Stop);
  } else {
    SimulateFields<float>(Work, Task, Stop);
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
