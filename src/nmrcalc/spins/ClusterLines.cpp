#include "nmrcalc/spins/ClusterLines.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <set>
#include <type_traits>

#include "nmrcalc/spins/Blocks.h"
#include "nmrcalc/spins/DroppedFlips.h"
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
  std::vector<Number> Vectors{};  // eigenstates x product states, so that what operators do runs along the eigenstates
  std::vector<double> Polarization{};  // <Iz>, spins x eigenstates
};

// Working storage of the matrices.
template <class Number>
struct MatrixSpace {
  std::vector<double> Hamiltonian{};
  std::vector<Number> Matrix{};
  std::vector<Number> Squares{};
  std::vector<Number> Polarization{};
  std::vector<Number> Reached{};
  std::vector<Number> Raised{};
  std::vector<Number> Whole{};
  std::vector<std::vector<Number>> Own{};  // intensities of each core spin
  std::vector<Number> Largest{};           // of them
};

// Of a block, what is the same in all states of the surroundings.
struct PreparedBlock {
  const std::vector<std::uint32_t>& States;
  std::vector<double> Hamiltonian{};
  BlockResonances Resonances{};
};

// The transitions that raise a group: from a block to the one above.
struct BlockStep {
  std::size_t Lower = 0;
  std::size_t Upper = 0;
  std::vector<std::vector<RaisingElement>> Raising{};  // by spin; of those of the group
  std::vector<std::vector<RaisingElement>> Own{};      // of each core spin
};

// What is the same in all states of the surroundings.
struct ClusterWork {
  const SpinSystem& System;
  const ClusterPlan& Plan;
  std::vector<OuterSite> Outside{};
  std::vector<DroppedFlip> Dropped{};
  BlockBasis Basis{};
  std::vector<PreparedBlock> Blocks{};
  std::vector<BlockStep> Steps{};
  std::vector<std::size_t> LastStep{};    // of each block
  std::vector<std::size_t> CoreSpins{};   // spins of the system
  std::vector<std::size_t> CorePlaces{};  // their places in Plan.Cores
};

// <Iz> of each spin in each eigenstate.
template <class Number>
void ComputePolarization(const ClusterWork& Work, const PreparedBlock& Prepared, MatrixSpace<Number>& Space,
                         SolvedBlock<Number>& Block) {
  const std::size_t Size = Block.Energies.size();
  const std::size_t NumSpins = Work.System.Size();
  Space.Squares.resize(Size * Size);
  for (std::size_t K = 0; K < Size * Size; ++K) Space.Squares[K] = Block.Vectors[K] * Block.Vectors[K];
  const std::vector<Number> Mz(Prepared.Resonances.Mz.begin(), Prepared.Resonances.Mz.end());
  Space.Polarization.resize(Size * NumSpins);
  MultiplyByTransposed(Mz.data(), Space.Squares.data(), Space.Polarization.data(), NumSpins, Size, Size);
  Block.Polarization.assign(Space.Polarization.begin(), Space.Polarization.end());
}

BlockInField InField(const ClusterWork& Work, const PreparedBlock& Block, const FieldState& Field) {
  return {.System = Work.System,
          .Basis = Work.Basis,
          .States = Block.States,
          .Resonances = Block.Resonances,
          .Outside = Work.Outside,
          .Field = Field};
}

template <class Number>
void Transpose(const std::vector<Number>& Matrix, std::size_t Size, std::vector<Number>& Target) {
  Target.resize(Size * Size);
  for (std::size_t Row = 0; Row < Size; ++Row) {
    for (std::size_t Column = 0; Column < Size; ++Column) Target[Row * Size + Column] = Matrix[Column * Size + Row];
  }
}

template <class Number>
void SolveBlock(const ClusterWork& Work, const PreparedBlock& Prepared, const FieldState& Field,
                MatrixSpace<Number>& Space, SolvedBlock<Number>& Block) {
  const auto& States = Prepared.States;
  Space.Hamiltonian = Prepared.Hamiltonian;
  for (std::size_t K = 0; K < States.size(); ++K) {
    double& Diagonal = Space.Hamiltonian[K * States.size() + K];
    const double* Mz = Prepared.Resonances.Mz.data() + K * Work.System.Size();
    for (std::size_t Spin = 0; Spin < Work.System.Size(); ++Spin) {
      Diagonal += Field.Field[Work.System.Sites[Spin]] * Mz[Spin];
    }
  }
  AddOutsideFlips(InField(Work, Prepared, Field), Space.Hamiltonian);
  AddDroppedFlips(InField(Work, Prepared, Field), Work.Dropped, Space.Hamiltonian);
  Space.Matrix.assign(Space.Hamiltonian.begin(), Space.Hamiltonian.end());
  DiagonalizeSymmetric(Space.Matrix, States.size(), Block.Energies);
  Transpose(Space.Matrix, States.size(), Block.Vectors);
  if (!Work.Outside.empty()) ComputePolarization(Work, Prepared, Space, Block);
}

// V_upper^T I+ V_lower, columns by the lower states.
template <class Number>
void ComputeMoments(const std::vector<RaisingElement>& Raising, const SolvedBlock<Number>& Lower,
                    const SolvedBlock<Number>& Upper, std::vector<Number>& Raised, std::vector<Number>& Moments) {
  const std::size_t NumRows = Upper.Energies.size();
  const std::size_t NumColumns = Lower.Energies.size();
  Raised.assign(NumRows * NumColumns, 0);
  for (const RaisingElement& Element : Raising) {
    const Number* Source = Lower.Vectors.data() + Element.From * NumColumns;
    Number* Target = Raised.data() + Element.To * NumColumns;
    const auto Value = static_cast<Number>(Element.Value);
    for (std::size_t Column = 0; Column < NumColumns; ++Column) Target[Column] += Value * Source[Column];
  }
  Moments.resize(NumRows * NumColumns);
  MultiplyByTransposed(Upper.Vectors.data(), Raised.data(), Moments.data(), NumRows, NumColumns, NumRows);
}

// The same for few elements, such as those of one spin, whose raising operator takes each state to one other: half of
// the states have none to come from, and take no part in the product.
template <class Number>
void ComputeMomentsOfFew(const std::vector<RaisingElement>& Raising, const SolvedBlock<Number>& Lower,
                         const SolvedBlock<Number>& Upper, MatrixSpace<Number>& Space, std::vector<Number>& Moments) {
  const std::size_t NumRows = Upper.Energies.size();
  const std::size_t NumColumns = Lower.Energies.size();
  Space.Reached.resize(NumRows * Raising.size());
  Space.Raised.resize(NumColumns * Raising.size());
  Number* Reached = Space.Reached.data();
  Number* Raised = Space.Raised.data();
  for (const RaisingElement& Element : Raising) {
    Reached = std::copy_n(Upper.Vectors.data() + Element.To * NumRows, NumRows, Reached);
    const Number* Source = Lower.Vectors.data() + Element.From * NumColumns;
    const auto Value = static_cast<Number>(Element.Value);
    for (std::size_t Column = 0; Column < NumColumns; ++Column) *Raised++ = Value * Source[Column];
  }
  Moments.resize(NumRows * NumColumns);
  MultiplyByTransposed(Space.Reached.data(), Space.Raised.data(), Moments.data(), NumRows, NumColumns, Raising.size());
}

template <class Number>
void AddLinesOfOutside(const ClusterWork& Work, const PreparedBlock& Prepared, const FieldState& State,
                       const SolvedBlock<Number>& Block, ClusterTask& Task) {
  const BlockInField Own = InField(Work, Prepared, State);
  const double Weight = Work.System.Weight * State.Weight;
  for (std::size_t Core = 0; Core < Work.CoreSpins.size(); ++Core) {
    AddOutsideLines(Own, Block.Polarization, Work.CoreSpins[Core], Weight, Task.Lines[Work.CorePlaces[Core]]);
  }
}

// The intensities of the core spins' lines in a step.
template <class Number>
void ComputeIntensities(const ClusterWork& Work, const FieldState& State, const BlockStep& Step,
                        const SolvedBlock<Number>& Lower, const SolvedBlock<Number>& Upper,
                        MatrixSpace<Number>& Space) {
  const BlockInField Block = InField(Work, Work.Blocks[Step.Lower], State);
  ComputeMoments(AddLean(Block, Step.Raising), Lower, Upper, Space.Raised, Space.Whole);
  Space.Largest.assign(Space.Whole.size(), 0);
  Space.Own.resize(Work.CoreSpins.size());
  for (std::size_t Core = 0; Core < Work.CoreSpins.size(); ++Core) {
    std::vector<Number>& Intensities = Space.Own[Core];
    ComputeMomentsOfFew(Step.Own[Core], Lower, Upper, Space, Intensities);
    for (std::size_t Place = 0; Place < Space.Whole.size(); ++Place) {
      Intensities[Place] *= Space.Whole[Place];
      Space.Largest[Place] = std::max(Space.Largest[Place], std::abs(Intensities[Place]));
    }
  }
}

template <class Number>
void AddStepLines(const ClusterWork& Work, const SolvedBlock<Number>& Lower, const SolvedBlock<Number>& Upper,
                  double Weight, const MatrixSpace<Number>& Space, ClusterTask& Task) {
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

// The step from a block that raises a group; nothing where that is at its end or no core has a share in it.
void PrepareStep(ClusterWork& Work, std::size_t Lower, std::size_t Group) {
  const SpinSystem& System = Work.System;
  const auto& States = Work.Blocks[Lower].States;
  BlockStep Step{.Lower = Lower, .Raising = std::vector<std::vector<RaisingElement>>(System.Size())};
  bool AnyOwn = false;
  for (const std::size_t Core : Work.CoreSpins) {
    Step.Own.push_back(Group == 0 ? BuildRaisingOfSpin(System, Work.Basis, States, Core)
                                  : BuildShareInGroup(System, Work.Basis, States, Work.Dropped, Core, Group));
    AnyOwn = AnyOwn || !Step.Own.back().empty();
  }
  for (std::size_t Spin = 0; AnyOwn && Spin < System.Size(); ++Spin) {
    if (Work.Basis.Group[Spin] != Group) continue;
    Step.Raising[Spin] = BuildRaisingOfSpin(System, Work.Basis, States, Spin);
    if (Step.Raising[Spin].empty()) continue;
    Step.Upper = Work.Basis.Block[States[Step.Raising[Spin][0].From] + Work.Basis.Stride[Spin]];
    AddDroppedLean(System, Work.Basis, States, Work.Dropped, Spin, Step.Raising[Spin]);
  }
  if (Step.Upper == 0) return;
  Work.LastStep[Step.Lower] = Work.LastStep[Step.Upper] = Work.Steps.size();
  Work.Steps.push_back(std::move(Step));
}

void PrepareBlocks(ClusterWork& Work) {
  for (const auto& Chain : Work.Basis.Chains) {
    for (const auto& States : Chain) {
      Work.Blocks.push_back(PreparedBlock{.States = States,
                                          .Hamiltonian = BuildHamiltonian(Work.System, Work.Basis, States),
                                          .Resonances = FindResonances(Work.System, Work.Basis, States)});
    }
  }
  Work.LastStep.resize(Work.Blocks.size());
  const std::set<std::size_t> Groups(Work.Basis.Group.begin(), Work.Basis.Group.end());
  for (std::size_t Block = 0; Block < Work.Blocks.size(); ++Block) {
    for (const std::size_t Group : Groups) PrepareStep(Work, Block, Group);
  }
}

// Blocks are solved when a step needs them first, and their storage goes to others after the last one.
template <class Number>
void SimulateFields(const ClusterWork& Work, ClusterTask& Task, StopSign& Stop) {
  MatrixSpace<Number> Space;
  std::vector<SolvedBlock<Number>> Solved(Work.Blocks.size());
  std::vector<SolvedBlock<Number>> Spare;
  for (std::size_t Field = Task.FirstField; Field < Task.EndField; ++Field) {
    const FieldState& State = Work.Plan.Fields[Field];
    for (std::size_t K = 0; K < Work.Steps.size(); ++K) {
      if (MustStop(Stop)) return;
      const BlockStep& Step = Work.Steps[K];
      for (const std::size_t Block : {Step.Lower, Step.Upper}) {
        if (!Solved[Block].Energies.empty()) continue;
        if (!Spare.empty()) {
          std::swap(Solved[Block], Spare.back());
          Spare.pop_back();
        }
        SolveBlock(Work, Work.Blocks[Block], State, Space, Solved[Block]);
        AddLinesOfOutside(Work, Work.Blocks[Block], State, Solved[Block], Task);
      }
      ComputeIntensities(Work, State, Step, Solved[Step.Lower], Solved[Step.Upper], Space);
      AddStepLines(Work, Solved[Step.Lower], Solved[Step.Upper], Work.System.Weight * State.Weight, Space, Task);
      for (const std::size_t Block : {Step.Lower, Step.Upper}) {
        if (Work.LastStep[Block] != K) continue;
        Spare.push_back(std::move(Solved[Block]));
        Solved[Block] = {};
      }
    }
  }
}

void SimulateSystem(const SpectrumInput& Input, const SpinSystem& System, const ClusterPlan& Plan, ClusterTask& Task,
                    StopSign& Stop) {
  ClusterWork Work{.System = System, .Plan = Plan, .Outside = FindOuterSites(Input, Plan, System)};
  for (std::size_t Spin = 0; Spin < System.Size(); ++Spin) {
    const auto Place = std::find(Plan.Cores.begin(), Plan.Cores.end(), System.Sites[Spin]);
    if (Place == Plan.Cores.end()) continue;
    Work.CoreSpins.push_back(Spin);
    Work.CorePlaces.push_back(static_cast<std::size_t>(Place - Plan.Cores.begin()));
  }
  if (Work.CoreSpins.empty()) return;
  std::vector<std::size_t> Group;
  for (const std::size_t Site : System.Sites) Group.push_back(Plan.Groups[Site]);
  Work.Dropped = FindDroppedFlips(System, Group);
  Work.Basis = BuildGroupedBasis(System, Group);
  PrepareBlocks(Work);
  if (Task.IsExact) {
    SimulateFields<double>(Work, Task, Stop);
  } else {
    SimulateFields<float>(Work, Task, Stop);
  }
}

}  // namespace

void SimulateCluster(const SpectrumInput& Input, const ClusterPlan& Plan, ClusterTask& Task, StopSign& Stop) {
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
