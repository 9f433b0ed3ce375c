#include "nmrcalc/spins/Blocks.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace nmrcalc {

namespace {

// <d + 1| I+ |d> of a spin TwiceSpin/2.
double RaisingFactor(int TwiceSpin, int Digit) { return std::sqrt(double(TwiceSpin - Digit) * (Digit + 1)); }

// A state reached from another by raising one spin and lowering another.
struct Flip {
  std::uint32_t State = 0;
  double Value = 0.0;           // matrix element, Hz
  bool RaisesObserved = false;  // the raised spin is an observed one
};

int DigitOf(const BlockBasis& Basis, std::uint32_t State, std::size_t Spin) {
  return Basis.Digits[State * Basis.Stride.size() + Spin];
}

// The flip-flops from State; those between groups when Across, those within a group otherwise.
void CollectFlips(const SpinSystem& System, const BlockBasis& Basis, std::uint32_t State, bool Across,
                  std::vector<Flip>& Flips) {
  Flips.clear();
  for (std::size_t Up = 0; Up < System.Size(); ++Up) {
    const int UpDigit = DigitOf(Basis, State, Up);
    if (UpDigit == System.TwiceSpin[Up]) continue;
    const double UpFactor = RaisingFactor(System.TwiceSpin[Up], UpDigit);
    for (std::size_t Down = 0; Down < System.Size(); ++Down) {
      const int DownDigit = DigitOf(Basis, State, Down);
      if (Down == Up || DownDigit == 0 || System.J(Up, Down) == 0.0) continue;
      const bool Crosses = Basis.Group[Up] != Basis.Group[Down];
      if (Crosses != Across) continue;
      const double DownFactor = RaisingFactor(System.TwiceSpin[Down], DownDigit - 1);
      Flips.push_back({State + Basis.Stride[Up] - Basis.Stride[Down], 0.5 * System.J(Up, Down) * UpFactor * DownFactor,
                       System.Observed[Up]});
    }
  }
}

double DiagonalElement(const SpinSystem& System, const BlockBasis& Basis, std::uint32_t State,
                       const std::vector<double>& Offset) {
  double Energy = 0.0;
  for (std::size_t I = 0; I < System.Size(); ++I) {
    const double Mz = DigitOf(Basis, State, I) - 0.5 * System.TwiceSpin[I];
    Energy += Offset[I] * Mz;
    for (std::size_t K = 0; K < I; ++K) {
      Energy += System.J(I, K) * Mz * (DigitOf(Basis, State, K) - 0.5 * System.TwiceSpin[K]);
    }
  }
  return Energy;
}

// Adds 1/2 sum_m V_am V_mb (1/(E_a - E_m) + 1/(E_b - E_m)) to the column of state a, m running over the states that
// the observed-far flip-flops V reach (J. H. Van Vleck, Phys. Rev. 33 (1929) 467).
void AddSecondOrder(const SpinSystem& System, const BlockBasis& Basis, std::uint32_t State, double* Column) {
  std::vector<Flip> There;
  std::vector<Flip> Back;
  CollectFlips(System, Basis, State, true, There);
  for (const Flip& Out : There) {
    const double Middle = Basis.Energy[Out.State];
    CollectFlips(System, Basis, Out.State, true, Back);
    for (const Flip& In : Back) {
      if (In.RaisesObserved == Out.RaisesObserved) continue;  // leads out of the block, of higher order
      Column[Basis.Position[In.State]] +=
          0.5 * Out.Value * In.Value * (1.0 / (Basis.Energy[State] - Middle) + 1.0 / (Basis.Energy[In.State] - Middle));
    }
  }
}

double Mean(const SpinSystem& System, bool Observed) {
  double Sum = 0.0;
  int Count = 0;
  for (std::size_t I = 0; I < System.Size(); ++I) {
    if (System.Observed[I] != Observed) continue;
    Sum += System.Offset[I];
    ++Count;
  }
  return Count > 0 ? Sum / Count : 0.0;
}

}  // namespace

std::vector<std::vector<double>> CountBlocks(const SpinSystem& System, bool SplitFar) {
  std::vector<std::vector<double>> Counts{{1.0}};  // [far level][observed level]
  for (std::size_t I = 0; I < System.Size(); ++I) {
    const bool Far = SplitFar && !System.Observed[I];
    const auto Steps = static_cast<std::size_t>(System.TwiceSpin[I]);
    std::vector<std::vector<double>> Next(Counts.size() + (Far ? Steps : 0),
                                          std::vector<double>(Counts[0].size() + (Far ? 0 : Steps)));
    for (std::size_t F = 0; F < Counts.size(); ++F) {
      for (std::size_t K = 0; K < Counts[F].size(); ++K) {
        for (std::size_t Step = 0; Step <= Steps; ++Step) {
          Next[F + (Far ? Step : 0)][K + (Far ? 0 : Step)] += Counts[F][K];
        }
      }
    }
    Counts = std::move(Next);
  }
  return Counts;
}

BlockBasis BuildGroupedBasis(const SpinSystem& System, const std::vector<std::size_t>& Group) {
  BlockBasis Basis{.Group = Group};
  std::uint32_t NumStates = 1;
  std::map<std::size_t, std::size_t> NumLevels;  // of each group
  NumLevels[0] = 1;
  for (std::size_t I = 0; I < System.Size(); ++I) {
    Basis.Stride.push_back(NumStates);
    NumStates *= static_cast<std::uint32_t>(System.TwiceSpin[I] + 1);
    std::size_t& Own = NumLevels.try_emplace(Group[I], 1).first->second;
    Own += static_cast<std::size_t>(System.TwiceSpin[I]);
  }
  std::size_t NumChains = 1;
  std::map<std::size_t, std::size_t> Step;  // of the number of a chain, by the group
  for (const auto& [Key, Levels] : NumLevels) {
    Step[Key] = Key == 0 ? 0 : NumChains;
    if (Key != 0) NumChains *= Levels;
  }
  Basis.Chains.assign(NumChains, std::vector<std::vector<std::uint32_t>>(NumLevels[0]));
  Basis.Digits.resize(std::size_t{NumStates} * System.Size());
  Basis.Position.resize(NumStates);
  std::vector<std::size_t> StepOfSpin;
  for (std::size_t I = 0; I < System.Size(); ++I) StepOfSpin.push_back(Step[Group[I]]);
  for (std::uint32_t State = 0; State < NumStates; ++State) {
    std::size_t Chain = 0;
    std::size_t Level = 0;
    for (std::size_t I = 0; I < System.Size(); ++I) {
      const auto Digit = State / Basis.Stride[I] % static_cast<std::uint32_t>(System.TwiceSpin[I] + 1);
      Basis.Digits[State * System.Size() + I] = static_cast<std::uint8_t>(Digit);
      if (Group[I] == 0) {
        Level += Digit;
      } else {
        Chain += Digit * StepOfSpin[I];
      }
    }
    Basis.Position[State] = static_cast<std::uint32_t>(Basis.Chains[Chain][Level].size());
    Basis.Block.push_back(static_cast<std::uint32_t>(Chain * NumLevels[0] + Level));
    Basis.Chains[Chain][Level].push_back(State);
  }
  Basis.ObservedCarrier = Mean(System, true);
  Basis.ReducedOffset = System.Offset;
  for (double& Offset : Basis.ReducedOffset) Offset -= Basis.ObservedCarrier;
  return Basis;
}

BlockBasis BuildBasis(const SpinSystem& System, bool SplitFar) {
  std::vector<std::size_t> Group(System.Size());
  for (std::size_t I = 0; SplitFar && I < System.Size(); ++I) Group[I] = System.Observed[I] ? 0 : 1;
  BlockBasis Basis = BuildGroupedBasis(System, Group);
  Basis.SplitFar = SplitFar;
  if (!SplitFar) return Basis;
  const double FarCarrier = Mean(System, false);
  for (std::size_t I = 0; I < System.Size(); ++I) {
    if (!System.Observed[I]) Basis.ReducedOffset[I] = System.Offset[I] - FarCarrier;
  }
  for (std::uint32_t State = 0; State < Basis.Position.size(); ++State) {
    Basis.Energy.push_back(DiagonalElement(System, Basis, State, System.Offset));
  }
  return Basis;
}

std::vector<double> BuildHamiltonian(const SpinSystem& System, const BlockBasis& Basis,
                                     const std::vector<std::uint32_t>& States) {
  const std::size_t Size = States.size();
  std::vector<double> Matrix(Size * Size);
  std::vector<Flip> Flips;
  for (std::size_t Place = 0; Place < Size; ++Place) {
    double* Column = Matrix.data() + Place * Size;
    Column[Place] += DiagonalElement(System, Basis, States[Place], Basis.ReducedOffset);
    CollectFlips(System, Basis, States[Place], false, Flips);
    for (const Flip& Step : Flips) Column[Basis.Position[Step.State]] += Step.Value;
    if (Basis.SplitFar) AddSecondOrder(System, Basis, States[Place], Column);
  }
  return Matrix;
}

double FarSplittingError(const SpinSystem& System) {
  double Squares = 0.0;
  double LargestRow = 0.0;
  double Distance = std::numeric_limits<double>::infinity();
  bool AnyFar = false;
  for (std::size_t I = 0; I < System.Size(); ++I) {
    double Row = 0.0;
    for (std::size_t K = 0; K < System.Size(); ++K) {
      Row += std::fabs(System.J(I, K)) * System.TwiceSpin[K];
      if (!System.Observed[I] || System.Observed[K]) continue;
      AnyFar = true;
      Squares += System.TwiceSpin[I] * System.TwiceSpin[K] * System.J(I, K) * System.J(I, K);
      Distance = std::min(Distance, std::fabs(System.Offset[I] - System.Offset[K]));
    }
    LargestRow = std::max(LargestRow, Row);
  }
  if (!AnyFar) return 0.0;
  return Distance > 0.0 ? Squares * LargestRow / (4.0 * Distance * Distance) : std::numeric_limits<double>::infinity();
}

std::vector<RaisingElement> BuildRaisingOfSpin(const SpinSystem& System, const BlockBasis& Basis,
                                               const std::vector<std::uint32_t>& States, std::size_t Spin) {
  std::vector<RaisingElement> Elements;
  for (std::uint32_t Place = 0; Place < States.size(); ++Place) {
    const int Digit = DigitOf(Basis, States[Place], Spin);
    if (Digit == System.TwiceSpin[Spin]) continue;
    Elements.push_back(
        {Place, Basis.Position[States[Place] + Basis.Stride[Spin]], RaisingFactor(System.TwiceSpin[Spin], Digit)});
  }
  return Elements;
}

std::vector<RaisingElement> BuildRaising(const SpinSystem& System, const BlockBasis& Basis,
                                         const std::vector<std::uint32_t>& States) {
  std::vector<RaisingElement> Elements;
  for (std::uint32_t Place = 0; Place < States.size(); ++Place) {
    for (std::size_t I = 0; I < System.Size(); ++I) {
      const int Digit = DigitOf(Basis, States[Place], I);
      if (!System.Observed[I] || Digit == System.TwiceSpin[I]) continue;
      Elements.push_back(
          {Place, Basis.Position[States[Place] + Basis.Stride[I]], RaisingFactor(System.TwiceSpin[I], Digit)});
    }
  }
  return Elements;
}

}  // namespace nmrcalc
