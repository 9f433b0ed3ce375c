// The two result files of the backend, as the readers take them and as the compute commands meet them.

#include "backend/Results.h"

#include "backend/Compute.h"
#include "files/DocumentReader.h"
#include "fuzz/Harness.h"
#include "fuzz/Targets.h"
#include "workspace/Workspace.h"

namespace zelvanor::fuzz {

namespace {

WorkspaceState& W = Workspace;

// A system with atom sets, whose results the input stands for.
void TakeExample() {
  ResetProgram();
  Demand(IsSet(ReadDocument(SourceFile("examples/ethanol.NMR"))), "the example can't be read");
}

bool ReadParam(TextView Input) {
  TakeExample();
  const bool Taken = IsSet(ReadParamResults(WriteInput("input.out", Input)));
  // The command behind the reader gives the flags.
  W.ShieldingAvailable = W.CouplingAvailable = ToFlag(Taken);
  W.SpectraAvailable = False;
  CheckPromises();

  TakeExample();
  QueueResult(1, Input);
  mnuComputeNMR_Click();
  CheckPromises();
  Demand(IsSet(W.ShieldingAvailable) == Taken, "the command and the reader don't agree");
  // Tables of millions of couplings take seconds to show and to save.
  constexpr int Most = 300;
  if (W.NumNMRAtoms > Most) return Taken;
  LookAround();
  // The sites of the second stage are made of these results.
  QueueResult(2, "spectrum\n1\nFREQUENCY\n1 1 1 1\n");
  mnuComputeSpectra_Click();
  LookAround();
  return Taken;
}

bool ReadSpect(TextView Input) {
  TakeExample();
  const bool Taken = IsSet(ReadSpectResults(WriteInput("input.out", Input)));
  W.SpectraAvailable = ToFlag(Taken);
  CheckPromises();

  TakeExample();
  QueueResult(2, Input);
  mnuComputeSpectra_Click();
  CheckPromises();
  Demand(IsSet(W.SpectraAvailable) == Taken, "the command and the reader don't agree");
  LookAround();
  return Taken;
}

}  // namespace

const Target ParamResultsTarget = {"ParamResults", ReadParam};
const Target SpectResultsTarget = {"SpectResults", ReadSpect};

}  // namespace zelvanor::fuzz
