// nmr.ini as a start and an exit of the program take it.

#include "settings/Settings.h"

#include "fuzz/Harness.h"
#include "fuzz/Targets.h"
#include "platform/Services.h"
#include "settings/SettingsState.h"
#include "setup/ReferenceShieldings.h"
#include "workspace/Workspace.h"

namespace zelvanor::fuzz {

namespace {

WorkspaceState& W = Workspace;

// False where a value ends the program.
bool ReadAll() {
  try {
    InitReferenceElements();
    ReadSettings();
  } catch (const ProgramEnded&) {
    return false;
  }
  Demand(W.TotalCharge >= -10 && W.TotalCharge <= 10, "the charge is out of its range");
  Demand(W.SpinMultiplicity == 1, "the multiplicity is out of its range");
  Demand(W.SCFConvergenceLimit >= 0 && W.SCFConvergenceLimit <= 1000, "the convergence limit is out of its range");
  Demand(W.SCFIterationLimit >= 0 && W.SCFIterationLimit <= 10000, "the iteration limit is out of its range");
  Demand(W.MinimalIntensity >= 0 && W.MinimalIntensity <= 1000, "the minimal intensity is out of its range");
  Demand(W.NMRFrequency >= 1 && W.NMRFrequency <= 1000000, "the frequency is out of its range");
  Demand(W.SpectraType >= 0 && W.SpectraType <= 4, "the kind of spectrum is out of its range");
  Demand(Settings.CurrentColorSet >= 0 && Settings.CurrentColorSet < NumSets, "there is no such set of colours");
  Demand(Settings.CurrentRadiusSet >= 0 && Settings.CurrentRadiusSet < NumSets, "there is no such set of radii");
  for (const Single Radius : Settings.AtomRadii) Demand(Radius >= 0 && Radius <= 1000, "a radius is out of its range");
  return true;
}

bool Read(TextView Input) {
  ResetProgram();
  const Text Path = WriteInput("nmr.ini", Input);
  if (!ReadAll()) {
    Demand(NumBoxes() > 0, "the program ends without a word");
    return false;
  }
  const bool Taken = NumBoxes() == 0;
  // What an exit writes, the next start and exit leave as it is.
  Settings.PrefGraphColor = Settings.SpectrumLineColor;
  Settings.PrefEnvelopColor = Settings.SpectrumEnvelopColor;
  Settings.PrefSelectionColor = Settings.SpectrumSelectionColor;
  WriteSettings();
  const Text First = ReadBack(Path);
  Demand(ReadAll(), "the written settings end the program");
  WriteSettings();
  Demand(ReadBack(Path) == First, "the settings come out in other bytes");
  CheckPromises();
  return Taken;
}

}  // namespace

const Target SettingsTarget = {"Settings", Read};

}  // namespace zelvanor::fuzz
