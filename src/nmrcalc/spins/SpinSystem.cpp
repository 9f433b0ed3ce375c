#include "nmrcalc/spins/SpinSystem.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

namespace nmrcalc {

namespace {

// Sites among Members reachable from Start through couplings; Reached marks them, indexed as Members.
std::vector<std::size_t> CollectConnected(const SpectrumInput& Input, const std::vector<std::size_t>& Members,
                                          std::size_t Start, std::vector<bool>& Reached) {
  std::vector<std::size_t> Found{Start};
  Reached[Start] = true;
  for (std::size_t Next = 0; Next < Found.size(); ++Next) {
    for (std::size_t Other = 0; Other < Members.size(); ++Other) {
      if (Reached[Other] || Input.J(Members[Found[Next]], Members[Other]) == 0.0) continue;
      Reached[Other] = true;
      Found.push_back(Other);
    }
  }
  std::sort(Found.begin(), Found.end());
  return Found;
}

double Binomial(int Total, int Chosen) {
  if (Chosen < 0 || Chosen > Total) return 0.0;
  double Result = 1.0;
  for (int K = 1; K <= Chosen; ++K) Result = Result * (Total - Chosen + K) / K;
  return std::round(Result);
}

using SpinList = std::vector<std::pair<std::size_t, int>>;  // site, total spin doubled

SpinSystem MakeSystem(const SpectrumInput& Input, const SpinList& Spins) {
  SpinSystem System;
  for (const auto& [Site, TwiceSpin] : Spins) {
    System.Sites.push_back(Site);
    System.TwiceSpin.push_back(TwiceSpin);
    System.Offset.push_back(Input.Sites[Site].Frequency);
    System.Observed.push_back(Input.Sites[Site].Observed);
    for (const auto& [Other, Unused] : Spins) System.Coupling.push_back(Input.J(Site, Other));
  }
  System.Weight = 0.0;
  return System;
}

// Adds what one choice of total spins, doubled and indexed as Part.Sites, falls into.
void AddSystems(const SpectrumInput& Input, const SpinPart& Part, const std::vector<int>& Choice,
                std::map<SpinList, SpinSystem>& Systems) {
  double Multiplicities = 1.0;
  double States = 1.0;
  std::vector<std::size_t> Active;  // sites with a spin
  std::vector<int> ActiveSpin;
  for (std::size_t K = 0; K < Choice.size(); ++K) {
    Multiplicities *= Multiplicity(Input.Sites[Part.Sites[K]].Degeneracy, Choice[K]);
    States *= Choice[K] + 1;
    if (Choice[K] == 0) continue;
    Active.push_back(Part.Sites[K]);
    ActiveSpin.push_back(Choice[K]);
  }
  std::vector<bool> Reached(Active.size());
  for (std::size_t Start = 0; Start < Active.size(); ++Start) {
    if (Reached[Start]) continue;
    SpinList Spins;
    double OwnStates = 1.0;
    bool AnyObserved = false;
    for (const std::size_t Member : CollectConnected(Input, Active, Start, Reached)) {
      Spins.emplace_back(Active[Member], ActiveSpin[Member]);
      OwnStates *= ActiveSpin[Member] + 1;
      AnyObserved = AnyObserved || Input.Sites[Active[Member]].Observed;
    }
    if (!AnyObserved) continue;
    const auto [Place, New] = Systems.try_emplace(Spins);
    if (New) Place->second = MakeSystem(Input, Spins);
    Place->second.Weight += Multiplicities * States / OwnStates;
  }
}

// The next choice: the first site that can go down by one spin does, those before it start anew. False at the end.
bool StepChoice(const SpectrumInput& Input, const SpinPart& Part, std::vector<int>& Choice) {
  for (std::size_t K = 0; K < Choice.size(); ++K) {
    if (Choice[K] >= 2) {
      Choice[K] -= 2;
      return true;
    }
    Choice[K] = Input.Sites[Part.Sites[K]].Degeneracy;
  }
  return false;
}

}  // namespace

std::vector<SpinPart> FindParts(const SpectrumInput& Input) {
  std::vector<std::size_t> All(Input.Sites.size());
  std::iota(All.begin(), All.end(), std::size_t{0});
  std::vector<bool> Reached(All.size());
  std::vector<SpinPart> Parts;
  for (const std::size_t Site : All) {
    if (Reached[Site]) continue;
    SpinPart Part{.Sites = CollectConnected(Input, All, Site, Reached)};
    for (const std::size_t Member : Part.Sites) {
      Part.NumSpins += Input.Sites[Member].Degeneracy;
      Part.HasObserved = Part.HasObserved || Input.Sites[Member].Observed;
    }
    Parts.push_back(std::move(Part));
  }
  return Parts;
}

double Multiplicity(int Degeneracy, int TwiceSpin) {
  const int Lowered = (Degeneracy - TwiceSpin) / 2;
  return Binomial(Degeneracy, Lowered) - Binomial(Degeneracy, Lowered - 1);
}

SpinSystem LargestSystem(const SpectrumInput& Input, const SpinPart& Part) {
  SpinList Spins;
  Spins.reserve(Part.Sites.size());
  for (const std::size_t Site : Part.Sites) Spins.emplace_back(Site, Input.Sites[Site].Degeneracy);
  return MakeSystem(Input, Spins);
}

std::vector<SpinSystem> ReducePart(const SpectrumInput& Input, const SpinPart& Part) {
  std::map<SpinList, SpinSystem> Systems;
  std::vector<int> Choice;
  Choice.reserve(Part.Sites.size());
  for (const std::size_t Site : Part.Sites) Choice.push_back(Input.Sites[Site].Degeneracy);
  do {
    AddSystems(Input, Part, Choice, Systems);
  } while (StepChoice(Input, Part, Choice));
  std::vector<SpinSystem> Result;
  Result.reserve(Systems.size());
  for (auto& [Spins, System] : Systems) Result.push_back(std::move(System));
  return Result;
}

}  // namespace nmrcalc
