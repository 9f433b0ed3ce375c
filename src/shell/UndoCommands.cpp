#include "history/History.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

void ShowStep(MenuItem& Item, const char* Caption, const Text& Name) {
  SetCaption(Item, Name.empty() ? Text(Caption) : Join(Caption, " ", Name));
  SetEnabled(Item, ToFlag(!Name.empty()));
}

// The view of the step, while there is something to show.
void ChooseView() {
  WorkspaceState& W = Workspace;
  const Flag Shown[] = {W.MoleculeLoaded, W.ShieldingAvailable, W.CouplingAvailable,
                        ToFlag(IsSet(W.SpectraAvailable) || W.MeasuredCount > 0)};
  if (W.ViewMode >= MoleculeView && W.ViewMode <= SpectrumViewMode && IsSet(Shown[W.ViewMode - 1])) return;
  W.ViewMode = MoleculeView;
  for (int View = SpectrumViewMode; View >= MoleculeView; --View) {
    if (IsSet(Shown[View - 1])) W.ViewMode = View;
  }
}

Text Go(std::optional<Text> (*Step)()) {
  const WorkspaceState& W = Workspace;
  if (!IsRecording()) Fire(Rooms.EndTableEdit);  // what is still being typed is the latest step
  const Flag HadPeaks = W.SpectraAvailable;
  const Array<Single> Frequency = W.PeakFrequency;
  const Array<Single> Intensity = W.PeakIntensity;
  const std::optional<Text> Name = Step();
  if (!Name) return {};
  UpdateTitle();
  ChooseView();
  if (W.ViewMode == ShieldingView) SetCaption(Main.mnuViewValues, ShieldingTensorCaption);
  if (W.ViewMode == SpectrumViewMode) SetCaption(Main.mnuViewValues, SpectralValuesCaption);
  // A spectrum that stays keeps its window.
  const bool SamePeaks = W.SpectraAvailable == HadPeaks && W.PeakFrequency == Frequency && W.PeakIntensity == Intensity;
  IgnoreFailure([&] {
    if (Rooms.ShowRestored) Rooms.ShowRestored(!SamePeaks);
  });
  RefreshView();
  return *Name;
}

void GoByMenu(Text (*Way)(), const char* Said) {
  try {
    if (const Text Name = Way(); !Name.empty()) ShowStatus(Join(Said, " ", Name, "."));
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
  }
}

}  // namespace

void UpdateUndoCommands() {
  ShowStep(Main.mnuUndo, "&Undo", UndoName());
  ShowStep(Main.mnuRedo, "Re&do", RedoName());
}

Text GoBack() { return Go(UndoStep); }
Text GoForward() { return Go(RedoStep); }
void mnuUndo_Click() { GoByMenu(GoBack, "Undone:"); }
void mnuRedo_Click() { GoByMenu(GoForward, "Done again:"); }

}  // namespace zelvanor
