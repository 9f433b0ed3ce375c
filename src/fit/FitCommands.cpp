#include "fit/FitCommands.h"

#include <algorithm>
#include <cmath>

#include "backend/Compute.h"
#include "basic/NumberText.h"
#include "history/History.h"
#include "measured/MeasuredDrawing.h"
#include "measured/MeasuredView.h"
#include "platform/Paths.h"
#include "platform/Variables.h"
#include "settings/SettingsState.h"
#include "shell/Frame.h"
#include "spectrum/SpectrumView.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

Text FitFile(const char* Name) { return Settings.NMRIniPath + PathSeparator + Name; }

// A Failure of the room is half a sentence.
void WarnOfFit(const Text& Reason) {
  if (Reason.empty()) return;
  ShowWarning(Join("The spectrum can't be fitted: ", Reason, "."));
}

bool IsOfPresent() {
  return Fit.Done && Fit.MeasuredFirst == W.MeasuredFirst && Fit.MeasuredCount == W.MeasuredCount &&
         Fit.First + static_cast<Long>(Fit.Simulated.size()) <= W.MeasuredCount && HasTakenValues();
}

}  // namespace

bool RunFit() {
  Fit.Done = false;
  Text Problem;
  const bool Done = ComputeFit([&] {
    // Told while busy: the status line follows the work, with bar and Cancel, from then on.
    ShowStatus("Fitting to the measured spectrum...");
    if (!IsSet(EmptyResultFile(FitFile("nmrfit.out")))) return false;
    try {
      WriteFitInput(FitFile("nmrfit.in"));
    } catch (const Failure& Met) {
      Problem = Met.What;
      return false;
    }
    return true;
  });
  if (Done) {
    try {
      ReadFitResults(FitFile("nmrfit.out"));
    } catch (const Failure& Met) {
      Problem = Met.What;
    }
  }
  WarnOfFit(Problem);
  if (!Fit.Done) return false;
  ShowStatus(Join("Fitted: R ", FormatNumber(Fit.R, "0.00000"), "."));
  if (!Fit.Converged) ShowWarning("The fit has not converged: its values are the best so far.");
  return true;
}

void AcceptFit() {
  if (!Fit.Done) return;
  const Trial Before = BeginTrial();
  try {
    TakeFitIntoTables();
  } catch (const Failure& Met) {
    TakeBack(Before);
    return WarnOfFit(Met.What);
  }
  ComputeSpectrum();
}

bool FitToMeasured(const FitChoice& Choice) {
  if (const Text Why = WhyNoFit(); !Why.empty()) {
    ShowWarning(Why);
    return false;
  }
  // The plan works the shifts out anew.
  const Trial Before = BeginTrial();
  bool Done = false;
  try {
    PlanFit(Choice);
    Done = RunFit();
  } catch (const Failure& Met) {
    WarnOfFit(Met.What);
  }
  if (Done) {
    AcceptFit();
  } else {
    TakeBack(Before);
  }
  RefreshView();
  return Done;
}

void DrawFitDifference(DrawingContext& Context) {
  if (!IsOfPresent()) return;
  TraceFrame Frame = PlaceMeasuredTrace();
  if (!(Frame.Step > 0) || Frame.Scale == 0) return;
  std::vector<Long> Difference;
  Difference.reserve(Fit.Simulated.size());
  for (std::size_t K = 0; K < Fit.Simulated.size(); ++K) {
    Difference.push_back(ToLong(W.MeasuredPoint[Fit.First + static_cast<Long>(K)] - Fit.Simulated[K]));
  }
  constexpr int HeightShare = 4;  // a quarter down from the top, clear of the tallest signals' feet
  Frame.First += Fit.First * Frame.Step;
  Frame.Foot = Frame.Top + (Frame.Bottom - Frame.Top) / HeightShare;
  Frame.Scale = std::fabs(Frame.Scale);
  const Colour Pen = SpectrumView.Monochrome != 0 ? Rgb(160, 160, 160) : Rgb(0, 150, 136);
  SelectPen(Context, Pen);
  DrawTrace(Context, Difference, Frame);
  const int X = std::clamp(static_cast<int>(Frame.First) + 4, 4, std::max(int(SpectrumView.ViewWidth) - 80, 4));
  PrintOverLines(Context, X, Frame.Foot + 2, "difference", Pen);
}

void AddFitVariables() {
  AddVariable("FitR", Fit.R);
  AddVariable("FitNoise", Fit.Noise);
}

}  // namespace zelvanor
