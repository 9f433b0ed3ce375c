#include "backend/Compute.h"

#include <cstdio>
#include <new>

#include "backend/LevelReferences.h"
#include "backend/ParamInput.h"
#include "backend/PeakMap.h"
#include "backend/Results.h"
#include "backend/SpectInput.h"
#include "history/History.h"
#include "history/Recovery.h"
#include "platform/Paths.h"
#include "platform/TextFiles.h"
#include "settings/SettingsState.h"
#include "shell/Frame.h"
#include "shell/Progress.h"
#include "spectrum/SpectrumDrawing.h"
#include "spectrum/SpectrumScale.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr const char* NoNuclearSpins =
    "No Nuclear Spins!\r\r"
    "You must have selected a subset of the atoms (the NMR atoms) "
    "to have nuclear spins.  Either use Setup to select these atoms "
    "or \"Get\" a molecule from Morvantis where these atoms have "
    "explicitly been made a named selection called \"nmr-atoms\".";

bool IsCouplingOn() { return W.CalculateCoupling != 0.0F; }

const char* ComputedItem() {
  if (!IsSet(W.CalculateShielding)) return "coupling constants";
  return W.CalculateCoupling == -1.0F ? "shielding and coupling constants" : "shielding constants";
}

// The user has given the calculation up.
struct RunCancelled {};

// Starts a stage and waits for it. WhatFor stands in the message behind the program's name. False when it can't start.
bool RunBackend(TextView Stage, const char* WhatFor) {
  Long Process = 0;
  try {
    Process = Platform.Shell(BackendWords(Stage, Settings.NMRIniPath));
  } catch (const Failure& Problem) {
    ShowError(Join("Unable to run the backend: ", "<", Settings.CalcExeFile, WhatFor, Problem.What, "."));
    return false;
  }
  if (!WaitForBackend(Process)) throw RunCancelled();
  return true;
}

bool RunStage1(const char* WhatFor) {
  ShowStatus(Join("Computing the NMR ", ComputedItem(), "..."));
  // Error bars of an earlier run, which a backend without them would leave in place.
  if (IsSet(FileExists(Settings.ParamErrorFile)) && !IsSet(EmptyResultFile(Settings.ParamErrorFile))) return false;
  std::remove(Settings.ParamReferenceFile.c_str());
  if (!IsSet(EmptyResultFile(Settings.ParamOutputFile)) || !IsSet(WriteParamInput(Settings.ParamInputFile)) ||
      !RunBackend("1", WhatFor) || !IsSet(ReadParamResults(Settings.ParamOutputFile))) {
    return false;
  }
  TakeLevelReferences();
  return true;
}

// At most one question about the size of the spin system. False: the user does not want to go on.
bool AcceptSize() {
  const int Count = W.NumNMRAtoms;
  if (Count >= 12 && Count < 31 && !IsSet(W.WeakCouplingApproximation)) {
    return AskYesNo(Join("There are so many NMR atoms (", Long{Count}, ").  ",
                         "You may need to use the weak coupling approximation ",
                         "that is available in the Spectral Options dialog box. ", "Would you like to continue?")) ==
           BoxAnswer::Yes;
  }
  if (Count > 29) {
    return AskYesNo(Join("There are too many NMR atoms (", Long{Count}, ").  ",
                         "You may not be able to complete the spectral calculation. ",
                         "Would you like to continue?")) == BoxAnswer::Yes;
  }
  return true;
}

bool RunStage2(const char* WhatFor) {
  ShowStatus("Computing the NMR spectrum...");
  RemovePeakMap();
  if (!IsSet(EmptyResultFile(Settings.SpectOutputFile)) || !IsSet(WriteSpectInput(Settings.SpectInputFile)) ||
      !RunBackend("2", WhatFor) || !IsSet(ReadSpectResults(Settings.SpectOutputFile))) {
    return false;
  }
  ReadPeakMap();
  IgnoreFailure(Normalize);
  ShowStatus("Calculation has completed.");
  return true;
}

// Runs a stage. A failure that it has not met itself is told and makes it a failed one, so that the flags say so.
template <class Routine>
bool Runs(Routine Stage) {
  try {
    return Stage();
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
  } catch (const std::bad_alloc&) {
    WarnOfFailure(Failure(failures::OutOfMemory));
  }
  return false;
}

// Runs a command's work in the busy state. One that is given up leaves the document as it was before: then the result
// is false.
bool RunBusy(const std::function<void()>& Work) {
  const Trial Before = BeginTrial();
  KeepWork();
  bool Done = true;
  const BusyState Busy;
  try {
    Work();
  } catch (const RunCancelled&) {
    TakeBack(Before);
    ShowStatus("Calculation was cancelled.");
    Done = false;
  }
  return Done;
}

void SetStage1Results(Flag Available) { W.ShieldingAvailable = W.CouplingAvailable = Available; }

// A view of a spectrum that is gone gives way to the molecule, or to the shieldings where there is none.
void LeaveSpectrumView() {
  if (W.ViewMode == SpectrumViewMode) W.ViewMode = IsSet(W.MoleculeLoaded) ? MoleculeView : ShieldingView;
}

void SetFlagsAfterStage1(bool Success) {
  SetStage1Results(ToFlag(Success));
  W.SpectraAvailable = False;
  W.ParamResultsStale = ToFlag(!Success);
  W.SpectResultsStale = True;
  if (Success) W.DocumentDirty = True;
  if (!Success || W.ViewMode == SpectrumViewMode) W.ViewMode = MoleculeView;
}

void SetFlagsAfterStage2(bool Success) {
  W.SpectraAvailable = ToFlag(Success);
  W.SpectResultsStale = ToFlag(!Success);
  if (Success) {
    W.DocumentDirty = True;
  } else {
    LeaveSpectrumView();
  }
}

void SetFlagsAfterBoth(int DoneStages) {
  SetStage1Results(ToFlag(DoneStages >= 1));
  W.SpectraAvailable = ToFlag(DoneStages == 2);
  W.ParamResultsStale = ToFlag(DoneStages == 0);
  W.SpectResultsStale = ToFlag(DoneStages < 2);
  if (DoneStages >= 1) W.DocumentDirty = True;
  if (DoneStages == 1) LeaveSpectrumView();
  if (DoneStages == 0) W.ViewMode = MoleculeView;
}

bool AcceptOptions() {
  if (IsCouplingOn() && IsSet(W.CalculateShielding)) return true;
  const char* Item = IsSet(W.CalculateShielding) ? "<spin-coupling constants>" : "<shielding constants>";
  return AskYesNo(Join("The calculation flag of computing ", Item,
                       " in the Setup/Shielding & Coupling dialog box has not been checked.", "\r",
                       "Would you like to continue?")) == BoxAnswer::Yes;
}

}  // namespace

std::vector<Text> BackendWords(TextView Stage, const Text& Folder) {
  std::vector<Text> Words = {Settings.CalcExeFile, Settings.NMRParmPath, Folder, Text(Stage)};
  if (!W.LogFilePath.empty()) Words.push_back(W.LogFilePath);
  return Words;
}

Flag EmptyResultFile(const Text& Path) {
  try {
    LineWork.FileNumber = FreeFile();
    OpenForOutput(Path, LineWork.FileNumber);
  } catch (const Failure&) {
    ShowWarning(Join("Error opening file: ", Path, "."));
    return False;
  }
  try {
    CloseFile(LineWork.FileNumber);
    return True;
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
    return False;
  }
}

bool WaitForBackend(Long ProcessId) {
  return !WaitForProcess(ProcessId, Settings.NMRIniPath + PathSeparator + "nmrprogress.out").Cancelled;
}

void mnuComputeNMR_Click() {
  if (W.NumNMRAtoms == 0) return ShowError(NoNuclearSpins);
  RunBusy([] {
    const bool Success = Runs([] { return RunStage1("> "); });
    if (Success) ShowStatus("Calculation has completed.");
    SetFlagsAfterStage1(Success);
  });
  RefreshView();
}

void mnuComputeSpectra_Click() {
  const bool Done = RunBusy([] { SetFlagsAfterStage2(AcceptSize() && Runs([] { return RunStage2("> "); })); });
  if (Done) IgnoreFailure(TransferVBX);  // a list that can't be scaled leaves the view as it was
  RefreshView();
}

void mnuComputeAll_Click() {
  if (W.NumNMRAtoms == 0) return ShowError(NoNuclearSpins);
  if (!AcceptOptions()) return;
  const bool Done = RunBusy([] {
    int DoneStages = 0;
    if (Runs([] { return RunStage1("> for computing the NMR shielding and/or coupling constants. "); })) {
      DoneStages = 1;
      if (AcceptSize() && Runs([] { return RunStage2("> for computing the NMR spectrum. "); })) DoneStages = 2;
    }
    SetFlagsAfterBoth(DoneStages);
  });
  if (Done) IgnoreFailure(TransferVBX);  // a list that can't be scaled leaves the view as it was
  RefreshView();
}

bool ComputeSpectrum() {
  bool Success = false;
  const bool Done = RunBusy([&] {
    Success = Runs([] { return RunStage2("> "); });
    SetFlagsAfterStage2(Success);
  });
  if (Done && Success) IgnoreFailure(TransferVBX);
  return Done && Success;
}

bool ComputeFit(const std::function<bool()>& Prepare) {
  bool Success = false;
  const bool Done =
      RunBusy([&] { Success = Runs([&] { return Prepare() && RunBackend("3", "> for the fit of the spectrum. "); }); });
  return Done && Success;
}

int ComputeStages(int Stages, const std::function<void()>& Between) {
  int DoneStages = 0;
  const bool Done = RunBusy([&] {
    if (Runs([] { return RunStage1("> for computing the NMR shielding and/or coupling constants. "); })) {
      DoneStages = 1;
      IgnoreFailure(Between);
      if (Stages > 1 && Runs([] { return RunStage2("> for computing the NMR spectrum. "); })) DoneStages = 2;
    }
    SetFlagsAfterBoth(DoneStages);
  });
  if (!Done) return 0;
  if (DoneStages == 2) IgnoreFailure(TransferVBX);
  return DoneStages;
}

}  // namespace zelvanor
