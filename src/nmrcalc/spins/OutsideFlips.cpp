#include "nmrcalc/spins/OutsideFlips.h"

#include <algorithm>
#include <cmath>

namespace nmrcalc {

namespace {

constexpr double SmallestCoupling = 0.02;  // Hz; less does nothing that can be seen
constexpr double SmallestShare = 1e-6;     // of the outer spins in a state
constexpr double LargestLean = 0.5;        // of the intensity that all sites outside together may take or add

// An outer site that flips, and its field as the rest of the outside makes it.
struct Flipper {
  const OuterSite& Site;
  double Mz = 0.0;         // of the whole site, mean
  double Resonance = 0.0;  // Hz, in the fields of the other sites outside and of the product state
};

// The distance of a spin from the outer site; neither sees itself.
double DistanceOf(const Flipper& Outer, const ProductState& State, std::size_t Spin) {
  const double J = Outer.Site.J[Spin];
  return State.Resonance[Spin] - J * Outer.Mz / Outer.Site.NumSpins - (Outer.Resonance - J * State.Mz[Spin]);
}

// The outer spins of which Share are flipped by Step and back; the first flip and the one back may be with different
// spins of the cluster.
void AddFlips(const BlockInField& Block, const ProductState& State, const Flipper& Outer, int Step, double Share,
              std::vector<double>& Matrix) {
  const SpinSystem& System = Block.System;
  double* Column = Matrix.data() + State.Place * Block.States.size();
  const bool IsPolarized = std::fabs(Outer.Mz) > SmallestShare;  // else the two directions cancel
  for (const std::size_t First : Outer.Site.Spins) {
    const double There = 0.5 * Outer.Site.J[First] * StepFactor(System.TwiceSpin[First], State.Mz[First], -Step);
    if (There == 0.0) continue;
    const double Own = There * There * Inverse(Step * DistanceOf(Outer, State, First), There);
    Column[State.Place] += Share * Own;
    if (!IsPolarized) continue;
    for (const std::size_t Second : Outer.Site.Spins) {
      if (Second == First || Block.Basis.Group[First] != Block.Basis.Group[Second]) continue;
      const double Back = 0.5 * Outer.Site.J[Second] * StepFactor(System.TwiceSpin[Second], State.Mz[Second], Step);
      if (Back == 0.0) continue;
      const double Distance = DistanceOf(Outer, State, Second) - Step * (System.J(Second, First) - Outer.Site.J[First]);
      const std::uint32_t Target = Block.States[State.Place] +
                                   static_cast<std::uint32_t>(Step) * Block.Basis.Stride[Second] -
                                   static_cast<std::uint32_t>(Step) * Block.Basis.Stride[First];
      Column[Block.Basis.Position[Target]] +=
          0.5 * Share * Back * (Own / There + There * Inverse(Step * Distance, Back));
    }
  }
}

// The field of the rest of the outside on an outer site, with its own frequency.
double FieldOn(const BlockInField& Block, const OuterSite& Site) {
  double Sum = Site.Frequency;
  for (std::size_t K = 0; K < Block.Outside.size(); ++K) Sum += Site.JOutside[K] * Block.Field.Mz[K];
  return Sum;
}

}  // namespace

double SineOf(double J, double Distance) {
  return std::copysign(J, J * Distance) / std::hypot(Distance, J) * std::min(1.0, std::fabs(Distance / J));
}

BlockResonances FindResonances(const SpinSystem& System, const BlockBasis& Basis,
                               const std::vector<std::uint32_t>& States) {
  BlockResonances Result;
  for (const std::uint32_t State : States) {
    const std::size_t First = Result.Mz.size();
    for (std::size_t Spin = 0; Spin < System.Size(); ++Spin) Result.Mz.push_back(MzOf(System, Basis, State, Spin));
    for (std::size_t Spin = 0; Spin < System.Size(); ++Spin) {
      double Sum = System.Offset[Spin];
      for (std::size_t Other = 0; Other < System.Size(); ++Other) {
        Sum += System.J(Spin, Other) * Result.Mz[First + Other];
      }
      Result.Hz.push_back(Sum);
    }
  }
  return Result;
}

void FillState(const BlockInField& Block, std::size_t Place, ProductState& Result) {
  const std::size_t NumSpins = Block.System.Size();
  Result.Place = Place;
  for (std::size_t Spin = 0; Spin < NumSpins; ++Spin) {
    Result.Mz[Spin] = Block.Resonances.Mz[Place * NumSpins + Spin];
    Result.Resonance[Spin] = Block.Resonances.Hz[Place * NumSpins + Spin] + Block.Field.Field[Block.System.Sites[Spin]];
  }
}

std::vector<OuterSite> FindOuterSites(const SpectrumInput& Input, const ClusterPlan& Plan, const SpinSystem& System) {
  std::vector<OuterSite> Result;
  Result.reserve(Plan.Outside.size());
  std::vector<double> LeanSums(System.Size());  // of each spin, the most that it may lean
  for (const std::size_t Site : Plan.Outside) {
    OuterSite Own{.Frequency = Input.Sites[Site].Frequency, .NumSpins = double(Input.Sites[Site].Degeneracy)};
    for (std::size_t Spin = 0; Spin < System.Size(); ++Spin) {
      const double J = Input.J(Site, Plan.Sites[System.Sites[Spin]]);
      const bool Leans = J != 0.0 && Input.Sites[Site].Observed;
      Own.J.push_back(J);
      Own.Lean.push_back(Leans ? SineOf(J, System.Offset[Spin] - Own.Frequency) : 0.0);
      LeanSums[Spin] += 0.5 * Own.NumSpins * std::fabs(Own.Lean.back());
      if (std::fabs(J) > SmallestCoupling) Own.Spins.push_back(Spin);
    }
    for (const std::size_t Other : Plan.Outside) Own.JOutside.push_back(Other == Site ? 0.0 : Input.J(Site, Other));
    for (std::size_t Other = 0; Other < Input.Sites.size(); ++Other) {
      const double J = Other == Site ? 0.0 : Input.J(Site, Other);
      const double Distance = Own.Frequency - Input.Sites[Other].Frequency;
      Own.Shift += 0.25 * Input.Sites[Other].Degeneracy * J * J * Inverse(Distance, 0.5 * J);
    }
    Result.push_back(std::move(Own));
  }
  for (OuterSite& Own : Result) {
    for (std::size_t Spin = 0; Spin < System.Size(); ++Spin) {
      Own.Lean[Spin] *= LargestLean / std::max(LeanSums[Spin], LargestLean);
    }
  }
  return Result;
}

double MzOf(const SpinSystem& System, const BlockBasis& Basis, std::uint32_t State, std::size_t Spin) {
  return Basis.Digits[State * System.Size() + Spin] - 0.5 * System.TwiceSpin[Spin];
}

void AddOutsideFlips(const BlockInField& Block, std::vector<double>& Matrix) {
  const std::size_t NumSpins = Block.System.Size();
  ProductState State{.Mz = std::vector<double>(NumSpins), .Resonance = std::vector<double>(NumSpins)};
  std::vector<Flipper> Flippers;
  for (std::size_t K = 0; K < Block.Outside.size(); ++K) {
    if (!Block.Outside[K].Spins.empty()) Flippers.push_back({.Site = Block.Outside[K], .Mz = Block.Field.Mz[K]});
  }
  std::vector<double> Fields;
  Fields.reserve(Flippers.size());
  for (const Flipper& Outer : Flippers) Fields.push_back(FieldOn(Block, Outer.Site));
  for (std::size_t Place = 0; Place < Block.States.size(); ++Place) {
    FillState(Block, Place, State);
    for (std::size_t K = 0; K < Flippers.size(); ++K) {
      Flipper& Outer = Flippers[K];
      Outer.Resonance = Fields[K];
      for (const std::size_t Spin : Outer.Site.Spins) Outer.Resonance += Outer.Site.J[Spin] * State.Mz[Spin];
      for (const int Step : {-1, 1}) {
        const double Share = 0.5 * Outer.Site.NumSpins - Step * Outer.Mz;  // spins that can take the step
        if (Share > SmallestShare) AddFlips(Block, State, Outer, Step, Share, Matrix);
      }
    }
  }
}

std::vector<RaisingElement> AddLean(const BlockInField& Block,
                                    const std::vector<std::vector<RaisingElement>>& Raising) {
  std::vector<RaisingElement> All;
  for (std::size_t Spin = 0; Spin < Block.System.Size(); ++Spin) {
    double Factor = 1.0;
    for (std::size_t K = 0; K < Block.Outside.size(); ++K) Factor -= Block.Field.Mz[K] * Block.Outside[K].Lean[Spin];
    for (RaisingElement Own : Raising[Spin]) {
      Own.Value *= Factor;
      All.push_back(Own);
    }
  }
  return All;
}

void AddOutsideLines(const BlockInField& Block, const std::vector<double>& Polarization, std::size_t CoreSpin,
                     double Weight, BinnedLines& Target) {
  const std::size_t NumSpins = Block.System.Size();
  for (const OuterSite& Site : Block.Outside) {
    if (Site.Lean[CoreSpin] == 0.0) continue;
    const double Share = 0.5 * Site.NumSpins * SineOf(Site.J[CoreSpin], Block.System.Offset[CoreSpin] - Site.Frequency);
    const double Base = FieldOn(Block, Site) + Site.Shift;
    for (std::size_t Own = 0; Own < Block.States.size(); ++Own) {
      const double* Mz = Polarization.data() + Own * NumSpins;
      double Frequency = Base;
      for (std::size_t Spin = 0; Spin < NumSpins; ++Spin) Frequency += Site.J[Spin] * Mz[Spin];
      AddLine(Target, Frequency, Share * Mz[CoreSpin] * Weight, 0.0);
    }
  }
}

}  // namespace nmrcalc
