#include <benchmark/benchmark.h>

#include <algorithm>

#include "history/Snapshot.h"

// A step of the history in a document of 2,340 NMR atoms, whose couplings alone are 22 MB: its memory and its time.

namespace zelvanor {
namespace {

void StepOfTypedCoupling(benchmark::State& State) {
  constexpr int NumAtoms = 2340;
  Workspace = {};
  Workspace.NumAtoms = Workspace.NumNMRAtoms = NumAtoms;
  AllocateAtomTable(NumAtoms);
  Workspace.Shielding.ReDim(NumAtoms);
  Workspace.ShieldTensor.ReDim(TensorValues * NumAtoms);
  Workspace.Coupling.ReDim(NumAtoms, NumAtoms);
  auto Former = TakeSnapshot(nullptr);
  State.counters["first_bytes"] = static_cast<double>(Former->OwnBytes);
  int Typed = 0;
  std::size_t Most = 0;
  for ([[maybe_unused]] auto Round : State) {
    Workspace.Coupling(Typed % NumAtoms, 7) += 1.5F;
    ++Typed;
    if (IsUnchanged(*Former)) State.SkipWithError("the change was not seen");
    Former = TakeSnapshot(Former.get());
    Most = std::max(Most, Former->OwnBytes);
  }
  State.counters["step_bytes"] = static_cast<double>(Most);
}
BENCHMARK(StepOfTypedCoupling)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zelvanor
