#include "measured/MeasuredCommands.h"

#include <algorithm>
#include <filesystem>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "measured/MeasuredTrace.h"
#include "platform/Paths.h"
#include "shell/Frame.h"
#include "spectrum/SpectrumDrawing.h"
#include "spectrum/SpectrumScale.h"
#include "spectrum/SpectrumView.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

// The document keeps the spectrum, the room what it was made from, as long as it is the same.
struct SourceState {
  MeasuredSpectrum Source;
  Processing Chosen;
  Array<Long> Made;
  Double MadeFirst = 0;
};
SourceState State;

void RememberMade() {
  State.Made = W.MeasuredPoint;
  State.MadeFirst = W.MeasuredFirst;
}

bool IsOfDocument() {
  const std::span<const Long> Made = State.Made.Span();
  const std::span<const Long> Present = W.MeasuredPoint.Span();
  return State.MadeFirst == W.MeasuredFirst && std::equal(Made.begin(), Made.end(), Present.begin(), Present.end());
}

void RefreshSource() {
  if (!State.Source.Real.empty() && IsOfDocument()) return;
  State = {};
  State.Source = MeasuredOfDocument();
  RememberMade();
}

// Broad lines of carbon want more smoothing than those of protons.
Processing ProcessingFor(const MeasuredSpectrum& Source) {
  Processing Made;
  if (!Source.IsFid) return Made;
  constexpr Double ProtonBroadening = 0.3;  // Hz
  constexpr Double OtherBroadening = 1.0;
  constexpr int UsualOrder = 3;
  Made.Broadening = Source.Nucleus == "1H" || Source.Nucleus.empty() ? ProtonBroadening : OtherBroadening;
  Made.BaselineOrder = UsualOrder;
  return Made;
}

bool IsPlain(const Processing& By) {
  return By.Phase0 == 0.0 && By.Phase1 == 0.0 && By.BaselineOrder < 0 && By.MovePpm == 0.0;
}

// Without anything to do a spectrum stays as the file has it, to the last bit.
void MakeSpectrum(const MeasuredSpectrum& Source, const Processing& By) {
  if (!Source.IsFid && IsPlain(By)) return TakeOverMeasured(Source);
  MeasuredSpectrum Made = TransformToSpectrum(Source, By);
  ApplyProcessing(Made, By);
  TakeOverMeasured(Made);
}

// Until there is a simulation it is set up for what was measured.
void AdoptOptions() {
  if (IsSet(W.SpectraAvailable)) return;
  constexpr const char* Nuclei[] = {"1H", "13C", "15N", "17O", "19F", "31P"};
  const auto Found = std::find(std::begin(Nuclei), std::end(Nuclei), W.MeasuredNucleus);
  if (Found != std::end(Nuclei)) W.SpectraType = static_cast<int>(Found - std::begin(Nuclei));
  constexpr Double HighestField = 2000.0;  // MHz
  if (W.MeasuredMHz >= 1.0 && W.MeasuredMHz < HighestField) W.NMRFrequency = ToLong(W.MeasuredMHz);
}

void TellMeasured() {
  const auto Ppm = [](Double Point) { return FormatNumber(MeasuredPpmAt(Point), "0.0##"); };
  ShowStatus(Join("Measured spectrum: ", W.MeasuredCount, " points from ", Ppm(0), " to ", Ppm(W.MeasuredCount - 1.0),
                  " ppm", W.MeasuredNucleus.empty() ? "" : ", " + W.MeasuredNucleus, " at ",
                  FormatNumber(W.MeasuredMHz, "0.0##"), " MHz."));
}

void TellWarnings(const MeasuredSpectrum& Source, const Text& Path) {
  Text Told;
  for (const Text& Warning : Source.Warnings) Told += Join(Told.empty() ? "" : "; ", Warning);
  if (!Told.empty()) ShowWarning(Join("The file ", Path, " is damaged: ", Told, "."));
  if (const Text Mismatch = DescribeMismatch(); !Mismatch.empty()) ShowWarning(Mismatch);
}

void ShowMeasured() {
  W.ViewMode = SpectrumViewMode;
  TakeMeasuredIntoView();
  EnterSpectrumView();
}

}  // namespace

std::function<bool(const Text& Path)> OpenAssignedSignals;

bool OpenMeasured(const Text& Path) {
  if (OpenAssignedSignals && EndingOf(Path) == ".SDF") return OpenAssignedSignals(Path);
  Text Problem;
  try {
    const BusyState Busy;
    MeasuredSpectrum Source = ReadMeasuredFile(Path);
    Processing By = ProcessingFor(Source);
    if (Source.IsFid) FindPhases(TransformToSpectrum(Source, By), By);
    MakeSpectrum(Source, By);
    W.IntegralCount = 0;
    W.IntegralTotal = 0;
    State.Source = std::move(Source);
    State.Chosen = By;
    RememberMade();
  } catch (const Failure& Met) {
    Problem = Met.What;
  }
  if (!Problem.empty()) {
    ShowWarning(Join("Could not take the measured spectrum from ", Path, ": ", Problem, "."));
    return false;
  }
  W.DocumentDirty = True;
  AdoptOptions();
  ShowMeasured();
  TellMeasured();
  TellWarnings(State.Source, Path);
  return true;
}

void RemoveMeasured() {
  if (!HasMeasured()) return;
  ClearMeasured();
  State = {};
  W.DocumentDirty = True;
  if (!IsSet(W.SpectraAvailable) && W.ViewMode == SpectrumViewMode) W.ViewMode = MoleculeView;
  RefreshView();
}

bool LooksMeasured(const Text& Path) {
  std::error_code Ignored;
  if (std::filesystem::is_directory(Path, Ignored)) return IsSpectrometerFolder(Path);
  const Text Ending = EndingOf(Path);
  const TextView Name = FileTitleOf(Path);
  const auto IsOneOf = [](TextView Word, std::initializer_list<const char*> Words) {
    return std::any_of(Words.begin(), Words.end(), [&](const char* Each) { return Word == Each; });
  };
  return IsOneOf(Ending, {".JDX", ".DX", ".JCAMP", ".JCM"}) ||
         IsOneOf(Name, {"fid", "1r", "1i", "acqu", "acqus", "proc", "procs"});
}

const MeasuredSpectrum& MeasuredSource() {
  RefreshSource();
  return State.Source;
}

const Processing& PresentProcessing() {
  RefreshSource();
  return State.Chosen;
}

void ReprocessMeasured(const Processing& By) {
  RefreshSource();
  MakeSpectrum(State.Source, By);
  State.Chosen = By;
  RememberMade();
  W.DocumentDirty = True;
}

void TakeMeasuredIntoView() {
  SpectrumViewState& V = SpectrumView;
  if (IsSet(W.SpectraAvailable) || !HasMeasured()) return;
  if (V.ViewPeakCount == 0 && V.FullLow == -W.MeasuredFirst && V.FullHigh == -W.MeasuredLast) return;
  TakeViewSize();
  V.SpectrometerMHz = W.MeasuredMHz;
  V.ViewPeakCount = V.ListPeakCount = 0;
  V.SelectedPeak = V.PickedPeak = -1;
  V.FullLow = V.ViewLow = V.LoadedLow = -W.MeasuredFirst;
  V.FullHigh = V.ViewHigh = V.LoadedHigh = -W.MeasuredLast;
  V.HorizontalOffset = 0;
  SetValue(Main.HScroll1, 0);
  IgnoreFailure([] { SetHorizontalScale(1.0); });
  IgnoreFailure([] { ComputeLineWidths(true); });
}

void mnuFileOpenMeasured_Click() {
  const std::optional<Text> Chosen = Platform.ShowFileDialog(
      {.Title = "Open Measured Spectrum",
       .FileName = "",
       .Filter = "Measured spectra (*.jdx;*.dx;fid;1r;*.csv;*.txt)|*.jdx;*.dx;*.jcamp;fid;1r;*.csv;*.txt;*.xy;*.sdf|"
                 "All files (*)|*",
       .DefaultExtension = "",
       .Save = false});
  if (Chosen) OpenMeasured(*Chosen);
}

void mnuMeasuredRemove_Click() { RemoveMeasured(); }

}  // namespace zelvanor
