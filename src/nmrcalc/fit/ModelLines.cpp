#include "nmrcalc/fit/ModelLines.h"

#include <algorithm>
#include <cmath>

#include "nmrcalc/fit/CutModelLines.h"
#include "nmrcalc/spins/Blocks.h"
#include "nmrcalc/spins/ClusterPlan.h"
#include "nmrcalc/spins/Exact.h"
#include "nmrcalc/spins/LinearAlgebra.h"
#include "nmrcalc/spins/Workers.h"

namespace nmrcalc {

namespace {

constexpr double LargestExactBlock = 260.0;     // states, ten strongly coupled spins; above, changes take too long
constexpr double LargestChoiceCount = 20000.0;  // of total spins in a part
constexpr double FaintestLine = 1e-9;           // a first-order line being 1
constexpr double Unresolved = 1e-3;             // Hz; states nearer than this are not told apart
constexpr std::size_t WorthThreads = 20;        // states of the largest block from which a thread pays

// The eigenstates of a block and how they change.
struct BlockChange {
  std::vector<double> Energies{};
  std::vector<double> Vectors{};
  // By direction: the change of each energy, and the mixture Vectors X that the vectors change by.
  std::vector<std::vector<double>> Slopes{};
  std::vector<std::vector<double>> Mixtures{};
};

struct SystemWork {
  const SpinSystem& System;
  BlockBasis Basis{};
  std::vector<std::size_t> Directions{};     // those that touch the system
  std::vector<SpinSystem> ChangedSystems{};  // their Hamiltonians, as Directions
  std::vector<BlockBasis> ChangedBases{};
  std::size_t NumWorkers = 1;
};

// The system whose Hamiltonian is the change by a direction; false where it does not touch the system.
bool MakeChange(const SpinSystem& System, const LineDirection& Direction, SpinSystem& Change) {
  const auto PlaceOf = [&System](std::size_t Site) {
    const auto Found = std::find(System.Sites.begin(), System.Sites.end(), Site);
    return static_cast<std::size_t>(Found - System.Sites.begin());
  };
  Change = System;
  Change.Offset.assign(System.Size(), 0.0);
  Change.Coupling.assign(System.Size() * System.Size(), 0.0);
  bool Touches = false;
  for (const auto& [Site, Hz] : Direction.Offsets) {
    const std::size_t Place = PlaceOf(Site);
    if (Place == System.Size()) continue;
    Change.Offset[Place] = Hz;
    Touches = true;
  }
  for (const auto& [First, Second] : Direction.Pairs) {
    const std::size_t A = PlaceOf(First);
    const std::size_t B = PlaceOf(Second);
    if (A == System.Size() || B == System.Size()) continue;
    Change.Coupling[A * System.Size() + B] = Change.Coupling[B * System.Size() + A] = 1.0;
    Touches = true;
  }
  return Touches;
}

// First order of perturbation theory: dE_j = <j|H'|j>, and |j> takes in |i> by <i|H'|j> / (E_j - E_i).
void ChangeBlock(const SystemWork& Work, std::size_t Direction, const std::vector<std::uint32_t>& States,
                 BlockChange& Block) {
  const std::size_t Size = States.size();
  const auto Change = BuildHamiltonian(Work.ChangedSystems[Direction], Work.ChangedBases[Direction], States);
  std::vector<double> Half(Size * Size);
  std::vector<double>& Mixture = Block.Mixtures[Direction];
  Mixture.resize(Size * Size);
  MultiplyTransposed(Change.data(), Block.Vectors.data(), Half.data(), Size, Size, Size);
  MultiplyTransposed(Block.Vectors.data(), Half.data(), Mixture.data(), Size, Size, Size);
  std::vector<double>& Slope = Block.Slopes[Direction];
  Slope.resize(Size);
  for (std::size_t J = 0; J < Size; ++J) {
    Slope[J] = Mixture[J * Size + J];
    for (std::size_t I = 0; I < Size; ++I) {
      const double Distance = Block.Energies[J] - Block.Energies[I];
      Mixture[J * Size + I] *= I == J ? 0.0 : Distance / (Distance * Distance + Unresolved * Unresolved);
    }
  }
}

BlockChange SolveBlock(const SystemWork& Work, const std::vector<std::uint32_t>& States) {
  BlockChange Block{.Vectors = BuildHamiltonian(Work.System, Work.Basis, States)};
  DiagonalizeSymmetric(Block.Vectors, States.size(), Block.Energies);
  const std::size_t NumDirections = Work.Directions.size();
  Block.Slopes.resize(NumDirections);
  Block.Mixtures.resize(NumDirections);
  ForEachWorker(Work.NumWorkers, true, [&](std::size_t Worker) {
    for (std::size_t K = Worker; K < NumDirections; K += Work.NumWorkers) ChangeBlock(Work, K, States, Block);
  });
  return Block;
}

// Moments of the transitions between two blocks, by the upper states in a column of each lower one, and as turned over.
struct Moments {
  std::vector<double> Values{};
  std::vector<double> Turned{};
};

Moments ComputeMoments(const SystemWork& Work, std::size_t Level, const BlockChange& Lower, const BlockChange& Upper) {
  const std::size_t NumUpper = Upper.Energies.size();
  const std::size_t NumLower = Lower.Energies.size();
  std::vector<double> Raised(NumUpper * NumLower);
  const auto Raising = BuildRaising(Work.System, Work.Basis, Work.Basis.Chains[0][Level]);
  for (std::size_t Column = 0; Column < NumLower; ++Column) {
    for (const RaisingElement& Element : Raising) {
      Raised[Column * NumUpper + Element.To] += Element.Value * Lower.Vectors[Column * NumLower + Element.From];
    }
  }
  Moments Result{.Values = std::vector<double>(NumUpper * NumLower),
                 .Turned = std::vector<double>(NumUpper * NumLower)};
  MultiplyTransposed(Upper.Vectors.data(), Raised.data(), Result.Values.data(), NumUpper, NumLower, NumUpper);
  MultiplyTransposed(Raised.data(), Upper.Vectors.data(), Result.Turned.data(), NumLower, NumUpper, NumUpper);
  return Result;
}

void AddLines(const SystemWork& Work, const Moments& Own, const BlockChange& Lower, const BlockChange& Upper,
              double Weight, const LineAxis& Axis, LineNodes& Target) {
  const std::size_t NumUpper = Upper.Energies.size();
  const std::size_t NumLower = Lower.Energies.size();
  const auto ForEachLine = [&](auto Act) {
    for (std::size_t B = 0; B < NumLower; ++B) {
      for (std::size_t A = 0; A < NumUpper; ++A) {
        const double Moment = Own.Values[B * NumUpper + A];
        if (Moment * Moment * Weight < FaintestLine) continue;
        Act(A, B, Moment, Work.Basis.ObservedCarrier + Upper.Energies[A] - Lower.Energies[B]);
      }
    }
  };
  ForEachLine([&](std::size_t, std::size_t, double Moment, double Frequency) {
    AddToNodes(Axis, Frequency, Weight * Moment * Moment, 0.0, Target.Lines.data());
  });
  ForEachWorker(Work.NumWorkers, true, [&](std::size_t Worker) {
    std::vector<double> Changes(NumUpper * NumLower);
    std::vector<double> More(NumUpper * NumLower);
    for (std::size_t K = Worker; K < Work.Directions.size(); K += Work.NumWorkers) {
      // X_upper^T M + M X_lower
      MultiplyTransposed(Upper.Mixtures[K].data(), Own.Values.data(), Changes.data(), NumUpper, NumLower, NumUpper);
      MultiplyTransposed(Own.Turned.data(), Lower.Mixtures[K].data(), More.data(), NumUpper, NumLower, NumLower);
      double* Nodes = Target.Changes[Work.Directions[K]].data();
      ForEachLine([&](std::size_t A, std::size_t B, double Moment, double Frequency) {
        const double Change = Changes[B * NumUpper + A] + More[B * NumUpper + A];
        AddToNodes(Axis, Frequency, 2.0 * Weight * Moment * Change,
                   Weight * Moment * Moment * (Upper.Slopes[K][A] - Lower.Slopes[K][B]), Nodes);
      });
    }
  });
}

void AddSystem(const SpinSystem& System, double Scale, const std::vector<LineDirection>& Directions,
               const LineAxis& Axis, LineNodes& Target) {
  SystemWork Work{.System = System, .Basis = BuildBasis(System, false)};
  for (std::size_t K = 0; K < Target.Changes.size(); ++K) {
    SpinSystem Change;
    if (!MakeChange(System, Directions[K], Change)) continue;
    Work.Directions.push_back(K);
    BlockBasis Basis = Work.Basis;
    Basis.ReducedOffset = Change.Offset;
    Work.ChangedSystems.push_back(std::move(Change));
    Work.ChangedBases.push_back(std::move(Basis));
  }
  const auto& Levels = Work.Basis.Chains[0];
  std::size_t Largest = 0;
  for (const auto& States : Levels) Largest = std::max(Largest, States.size());
  if (Largest >= WorthThreads) Work.NumWorkers = NumUsableCores();
  BlockChange Lower = SolveBlock(Work, Levels[0]);
  for (std::size_t Level = 1; Level < Levels.size(); ++Level) {
    BlockChange Upper = SolveBlock(Work, Levels[Level]);
    AddLines(Work, ComputeMoments(Work, Level - 1, Lower, Upper), Lower, Upper, Scale * System.Weight, Axis, Target);
    Lower = std::move(Upper);
  }
}

double ChoiceCount(const SpectrumInput& System, const SpinPart& Part) {
  double Choices = 1.0;
  for (const std::size_t Site : Part.Sites) Choices *= int{System.Sites[Site].Degeneracy / 2 + 1};
  return Choices;
}

}  // namespace

std::vector<LinePart> PlanLineParts(const SpectrumInput& System) {
  std::vector<LinePart> Parts;
  for (SpinPart& Part : FindParts(System)) {
    if (!Part.HasObserved) continue;
    LinePart Planned{.Part = std::move(Part)};
    Planned.IsExact = EstimateExactCost({LargestSystem(System, Planned.Part)}).LargestBlock <= LargestExactBlock &&
                      ChoiceCount(System, Planned.Part) <= LargestChoiceCount;
    if (!Planned.IsExact) Planned.Cores = FindCores(System, Planned.Part);
    Parts.push_back(std::move(Planned));
  }
  return Parts;
}

bool AnyCut(const std::vector<LinePart>& Parts) {
  return std::any_of(Parts.begin(), Parts.end(), [](const LinePart& Part) { return !Part.IsExact; });
}

LineNodes ComputeLines(const SpectrumInput& System, const std::vector<LinePart>& Parts,
                       const std::vector<LineDirection>& Directions, int Level, const LineAxis& Axis) {
  LineNodes Result{.Lines = std::vector<double>(Axis.Size)};
  Result.Changes.assign(Directions.size(), std::vector<double>(Axis.Size));
  for (const LinePart& Part : Parts) {
    if (Part.IsExact) {
      // A first-order line has the intensity 1 in a part, a nucleus 2^(N-1) of them.
      const double Scale = std::ldexp(1.0, 1 - Part.Part.NumSpins);
      for (const SpinSystem& Each : ReducePart(System, Part.Part)) AddSystem(Each, Scale, Directions, Axis, Result);
    } else {
      AddCutPart(System, Part, Directions, Level, Axis, Result);
    }
  }
  return Result;
}

}  // namespace nmrcalc
