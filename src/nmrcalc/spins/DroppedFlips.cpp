#include "nmrcalc/spins/DroppedFlips.h"

#include <algorithm>
#include <cmath>

namespace nmrcalc {

namespace {

constexpr double LargestLean = 0.5;  // of the intensity of a line in one state, by all partners together

// The flip-flops of a product state of the block.
struct FlipWork {
  const BlockInField& Block;
  const std::vector<DroppedFlip>& Flips;
  ProductState State{};
};

// Raises one spin of the state and lowers another one. Element is half of J times what the two spins add.
struct FlipStep {
  std::size_t Up = 0;
  std::size_t Down = 0;
  double Element = 0.0;   // Hz; 0 where a spin ends
  double Distance = 0.0;  // Hz, by which the energy rises
};

FlipStep MakeStep(const SpinSystem& System, const DroppedFlip& Flip, const ProductState& State) {
  const std::size_t Up = Flip.Spin;
  const std::size_t Down = Flip.Partner;
  return {.Up = Up,
          .Down = Down,
          .Element = 0.5 * Flip.J * StepFactor(System.TwiceSpin[Up], State.Mz[Up], 1) *
                     StepFactor(System.TwiceSpin[Down], State.Mz[Down], -1),
          .Distance = State.Resonance[Up] - State.Resonance[Down] - Flip.J};
}

void TakeStep(const SpinSystem& System, const FlipStep& Step, ProductState& State, double Sign) {
  State.Mz[Step.Up] += Sign;
  State.Mz[Step.Down] -= Sign;
  for (std::size_t Spin = 0; Spin < System.Size(); ++Spin) {
    State.Resonance[Spin] += Sign * (System.J(Spin, Step.Up) - System.J(Spin, Step.Down));
  }
}

// 1/2 V_am V_mb (1 / (E_a - E_m) + 1 / (E_b - E_m)) for the step from a to m and all that lead on to a b of the block.
void AddSteps(FlipWork& Work, const FlipStep& There, double* Column) {
  const BlockInField& Block = Work.Block;
  const auto& Stride = Block.Basis.Stride;
  const auto& Group = Block.Basis.Group;
  const double Weight = Inverse(-There.Distance, There.Element);
  Column[Work.State.Place] += There.Element * There.Element * Weight;
  TakeStep(Block.System, There, Work.State, 1.0);
  for (const DroppedFlip& Flip : Work.Flips) {
    const bool IsReturn = Flip.Spin == There.Down && Flip.Partner == There.Up;
    if (IsReturn || Group[Flip.Spin] != Group[There.Down] || Group[Flip.Partner] != Group[There.Up]) continue;
    const FlipStep Back = MakeStep(Block.System, Flip, Work.State);
    if (Back.Element == 0.0) continue;
    const std::uint32_t Target =
        Block.States[Work.State.Place] + Stride[There.Up] - Stride[There.Down] + Stride[Back.Up] - Stride[Back.Down];
    Column[Block.Basis.Position[Target]] +=
        0.5 * There.Element * Back.Element * (Weight + Inverse(Back.Distance, Back.Element));
  }
  TakeStep(Block.System, There, Work.State, -1.0);
}

}  // namespace

std::vector<DroppedFlip> FindDroppedFlips(const SpinSystem& System, const std::vector<std::size_t>& Group) {
  std::vector<DroppedFlip> Flips;
  for (std::size_t Spin = 0; Spin < System.Size(); ++Spin) {
    for (std::size_t Partner = 0; Partner < System.Size(); ++Partner) {
      const double J = System.J(Spin, Partner);
      if (J == 0.0 || Group[Spin] == Group[Partner]) continue;
      const double Lean = SineOf(J, System.Offset[Spin] - System.Offset[Partner]);
      Flips.push_back({.Spin = Spin, .Partner = Partner, .J = J, .Lean = Lean});
    }
  }
  return Flips;
}

void AddDroppedFlips(const BlockInField& Block, const std::vector<DroppedFlip>& Flips, std::vector<double>& Matrix) {
  if (Flips.empty()) return;
  FlipWork Work{.Block = Block, .Flips = Flips};
  Work.State.Mz.resize(Block.System.Size());
  Work.State.Resonance.resize(Block.System.Size());
  for (std::size_t Place = 0; Place < Block.States.size(); ++Place) {
    FillState(Block, Place, Work.State);
    for (const DroppedFlip& Flip : Flips) {
      const FlipStep There = MakeStep(Block.System, Flip, Work.State);
      if (There.Element != 0.0) AddSteps(Work, There, Matrix.data() + Place * Block.States.size());
    }
  }
}

void AddDroppedLean(const SpinSystem& System, const BlockBasis& Basis, const std::vector<std::uint32_t>& States,
                    const std::vector<DroppedFlip>& Flips, std::size_t Spin, std::vector<RaisingElement>& Raising) {
  for (RaisingElement& Own : Raising) {
    double Lean = 0.0;
    for (const DroppedFlip& Flip : Flips) {
      if (Flip.Spin == Spin) Lean += Flip.Lean * MzOf(System, Basis, States[Own.From], Flip.Partner);
    }
    Own.Value *= 1.0 - std::clamp(Lean, -LargestLean, LargestLean);
  }
}

std::vector<RaisingElement> BuildShareInGroup(const SpinSystem& System, const BlockBasis& Basis,
                                              const std::vector<std::uint32_t>& States,
                                              const std::vector<DroppedFlip>& Flips, std::size_t Spin,
                                              std::size_t Group) {
  std::vector<RaisingElement> Result;
  for (const DroppedFlip& Flip : Flips) {
    if (Flip.Spin != Spin || Basis.Group[Flip.Partner] != Group) continue;
    for (RaisingElement Own : BuildRaisingOfSpin(System, Basis, States, Flip.Partner)) {
      Own.Value *= Flip.Lean * MzOf(System, Basis, States[Own.From], Spin);
      Result.push_back(Own);
    }
  }
  return Result;
}

}  // namespace nmrcalc
