#include "spectrum/SpectrumInteraction.h"

#include <algorithm>
#include <cmath>

#include "basic/Numbers.h"
#include "shell/Frame.h"
#include "spectrum/SpectrumDrawing.h"
#include "spectrum/SpectrumScale.h"
#include "spectrum/SpectrumView.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

SpectrumViewState& V = SpectrumView;
WorkspaceState& W = Workspace;

// A drag of this many pixels is a zoom, a shorter one a pick.
constexpr int LeastDragPixels = 4;
constexpr Double WidthPerBarStep = 0.005;
// A window under this many ppm does not change the scale.
constexpr Double LeastZoomPpm = 0.001;

bool IsPickedInList() { return V.PickedPeak >= 0 && V.PickedPeak < V.ListPeakCount; }

void ShowReadout(const Text& Value) {
  Main.Spectrum1.Description = Value;
  ShowStatus(Value);
}

void RepeatReadout() {
  if (IsPickedInList()) {
    ShowPeakReadout(V.PickedPeak);
  } else {
    ShowStatus("");
  }
}

// The width that the bar stands for, as a share of the window.
void TakeRelativeLineWidth() {
  if (V.OwnWidth) V.CurrentLineWidth = ToSingle(GetHighLow() * Main.HScroll2.Value * WidthPerBarStep);
}

SpectrumViewState::Window WholeWindow() {
  SpectrumViewState::Window Whole{V.FullLow, V.FullHigh, 1.0};
  if (Additions.WidenWhole) Additions.WidenWhole(Whole.Low, Whole.High);
  return Whole;
}

void ResetView() {
  V.Zooms.clear();
  V.HorizontalOffset = 0;
  SetValue(Main.HScroll1, 0);
  SetChanges(Main.HScroll1, 10, 1000);
  V.MaxIntensity = 0;
  SetHorizontalScale(1.0);
  const SpectrumViewState::Window Whole = WholeWindow();
  V.ViewLow = Whole.Low;
  V.ViewHigh = Whole.High;
  if (Additions.WidenWhole) FitHorizontalScale();
  IgnoreFailure(TakeRelativeLineWidth);
  IgnoreFailure([] { ComputeLineWidths(true); });
  RefreshView();
}

void GiveLineWidth(Long Peak) {
  W.PeakLineWidth[Peak] = V.CurrentLineWidth;
  V.Linewidth = V.CurrentLineWidth;
}

// Who gets the new width: every peak, with multiple widths the picked one alone, or without a pick those of the list's
// own window.
void SpreadLineWidth() {
  if (IsSet(Main.mnuMultipleLineWidths.Checked) && IsPickedInList()) return GiveLineWidth(V.PickedPeak);
  const bool All = !IsSet(Main.mnuMultipleLineWidths.Checked);
  for (Long Peak = 0; Peak < V.ListPeakCount; ++Peak) {
    const Double Frequency = W.PeakFrequency[Peak];
    if (All || (V.LoadedLow < Frequency && Frequency < V.LoadedHigh)) GiveLineWidth(Peak);
  }
}

bool IsDrag(Long X) { return LeastDragPixels * TwipsPerPixelX <= std::fabs(Double(V.BandStartX) - X); }

// The band as the front end draws it over the picture; a drag that is still a pick shows none.
void ShowBand() {
  RubberBand& Band = Main.Spectrum1.Band;
  Band.Shown = IsSet(V.BandActive) && IsDrag(V.BandEndX);
  Band.Filled = IsSet(V.BandIntegrates);
  Band.X1 = V.BandStartX / TwipsPerPixelX;
  Band.Y1 = V.BandStartY / TwipsPerPixelY;
  Band.X2 = V.BandEndX / TwipsPerPixelX;
  Band.Y2 = V.BandEndY / TwipsPerPixelY;
}

void IntegrateBand(Long From, Long To) {
  const auto Readout = [](Long Twips) { return ToSingle(-FrequencyOfColumn(ToLong(Double(Twips) / TwipsPerPixelX))); };
  IgnoreFailure([&] { IntegrateRange(Readout(From), Readout(To)); });
  if (!Additions.RangeChosen) return;
  const auto Ppm = [&](Long Twips) { return Divide(Readout(Twips), V.SpectrometerMHz); };
  Additions.RangeChosen(std::min(Ppm(From), Ppm(To)), std::max(Ppm(From), Ppm(To)));
}

void EndDrag(Single X) {
  const Long Place = ToLong(X);
  Long Low = std::min(V.BandStartX, Place);
  Long High = std::max(V.BandStartX, Place);
  if (!IsDrag(Place)) {
    if (FPickPeak(Place)) RefreshView();
  } else if (IsSet(V.BandIntegrates)) {
    IntegrateBand(Low, High);
  } else {
    ZoomIn(Low, High);
  }
}

}  // namespace

bool ShowsWhole() {
  constexpr Double Near = 1e-6;
  const SpectrumViewState::Window Whole = WholeWindow();
  const Double Tolerance = Near * (Whole.High - Whole.Low);
  return V.HorizontalOffset == 0 && std::fabs(V.ViewLow - Whole.Low) <= Tolerance &&
         std::fabs(V.ViewHigh - Whole.High) <= Tolerance;
}

void Spectrum1_MouseDown(int Button, int Shift, Single X, Single Y) {
  if (Button != LeftButton) return ResetView();
  IgnoreFailure([=] {
    V.BandStartX = V.BandEndX = ToLong(X);
    V.BandStartY = V.BandEndY = ToLong(Y);
    V.BandActive = True;
    V.BandIntegrates = ToFlag((Shift & ShiftKey) != 0);
    ShowBand();
  });
}

void Spectrum1_MouseMove(int /*Button*/, int /*Shift*/, Single X, Single Y) {
  if (!IsSet(V.BandActive)) return;
  IgnoreFailure([X, Y] {
    V.BandEndX = ToLong(X);
    V.BandEndY = ToLong(Y);
    ShowBand();
  });
}

void Spectrum1_MouseUp(int /*Button*/, int /*Shift*/, Single X, Single /*Y*/) {
  if (!IsSet(V.BandActive)) return;
  IgnoreFailure([X] { EndDrag(X); });
  V.BandActive = False;
  ShowBand();
}

void HScroll1_Change() {
  V.HorizontalOffset = -Main.HScroll1.Value;
  IgnoreFailure(NewMaxIntensity);
  IgnoreFailure([] { ComputeLineWidths(true); });
  RefreshView();
}

void HScroll2_Change() {
  if (!V.OwnWidth && !IsSet(V.LineWidthBarLive)) return;
  V.OwnWidth = true;
  if (IsSet(W.AbsLineWidth)) {
    V.CurrentLineWidth = static_cast<Single>(Main.HScroll2.Value);
  } else {
    TakeRelativeLineWidth();
  }
  if (!IsSet(V.LineWidthBarLive)) return;
  IgnoreFailure(SpreadLineWidth);
  IgnoreFailure([] { ComputeLineWidths(true); });
  ShowSpectrumView();
  IgnoreFailure(RepeatReadout);
  RefreshView();
}

void ZoomIn(Long& Low, Long& High) {
  Low = ToLong(Double(Low) / TwipsPerPixelX);
  High = ToLong(Double(High) / TwipsPerPixelX);
  const Double NewLow = FrequencyOfColumn(Low);
  const Double NewHigh = FrequencyOfColumn(High);
  const Double Width = NewHigh - NewLow;
  const Double Scale = V.HorizontalScale;
  if (std::fabs(V.SpectrometerMHz * LeastZoomPpm) <= Width) V.HorizontalScale = Divide(int(V.ViewWidth), Width);
  Spectrum1_ZoomChanged(NewLow, NewHigh);
  V.Zooms.push_back({V.ViewLow, V.ViewHigh, Scale});
  V.ViewLow = NewLow;
  V.ViewHigh = NewHigh;
  V.HorizontalOffset = 0;
  SetValue(Main.HScroll1, 0);
  NewMaxIntensity();
  ComputeLineWidths(true);
  DrawSpectra();
}

bool ZoomBack() {
  if (V.Zooms.empty()) return false;
  const SpectrumViewState::Window Former = V.Zooms.back();
  V.Zooms.pop_back();
  Spectrum1_ZoomChanged(Former.Low, Former.High);
  V.ViewLow = Former.Low;
  V.ViewHigh = Former.High;
  V.HorizontalScale = Former.Scale;
  V.HorizontalOffset = 0;
  SetValue(Main.HScroll1, 0);
  NewMaxIntensity();
  ComputeLineWidths(true);
  DrawSpectra();
  return true;
}

void Spectrum1_ZoomChanged(Double ZoomLow, Double ZoomHigh) {
  const Double Share = Divide(std::fabs(ZoomHigh - ZoomLow), V.FrequencyRange);
  const int LargeChange = Share <= 0.001 ? 1 : int(ToInteger(Share * 1000.0));
  const int SmallChange = Share <= 0.1 ? 1 : int(ToInteger(Share * 10.0));
  SetChanges(Main.HScroll1, SmallChange, LargeChange);
  RepeatReadout();
}

bool FPickPeak(Long X) {
  const Double Pixel = RoundEven(Double(X) / TwipsPerPixelX);
  Long Nearest = 0;
  Double LeastDistance = int(V.ViewWidth);
  for (Long Peak = 0; Peak < V.ViewPeakCount; ++Peak) {
    if (W.PeakFrequency[Peak] == 0.0F && W.PeakIntensity[Peak] == 0.0F) continue;
    const Double Distance = std::fabs(FGetPeakRX(W.PeakFrequency[Peak]) - Pixel);
    if (Distance < LeastDistance) {
      Nearest = Peak;
      LeastDistance = Distance;
    }
  }
  if (Nearest == V.SelectedPeak) {
    V.SelectedPeak = -1;
    if (Additions.PeakPicked) Additions.PeakPicked(-1);
    return false;
  }
  V.SelectedPeak = Nearest;
  ShowPeakReadout(Nearest);
  if (Additions.PeakPicked) Additions.PeakPicked(Nearest);
  return true;
}

void ShowPeakReadout(Long Peak) {
  if (Peak < 0) {
    V.PickedPeak = -1;
    return ShowReadout("");
  }
  V.PickedPeak = Peak;
  const Single Frequency = W.PeakFrequency[Peak] == 0.0F ? 0.0F : -W.PeakFrequency[Peak];
  const Single Shift = ToSingle(Divide(Frequency, W.NMRFrequency));
  ShowReadout(Join("Shift=", FormatNumber(Shift, "######.000"), " ppm", "  Freq=", Frequency, " Hz  Inten=",
                   W.PeakIntensity[Peak], "  Degen=", W.PeakDegeneracy[Peak], "  Width=", W.PeakLineWidth[Peak]));
}

void DRBandHwnd(Long X1, Long Y1, Long X2, Long Y2) {
  RefreshView();
  const int Left = X1 / TwipsPerPixelX;
  const int Top = Y1 / TwipsPerPixelY;
  const int Right = X2 / TwipsPerPixelX;
  const int Bottom = Y2 / TwipsPerPixelY;
  DrawingContext Context = GetDC(Main.Spectrum1);
  SelectPen(Context, White);
  MoveTo(Context, Left, Top);
  LineTo(Context, Right, Top);
  LineTo(Context, Right, Bottom);
  LineTo(Context, Left, Bottom);
  LineTo(Context, Left, Top);
  ReleaseDC(Context);
}

void IntegrateRange(Single Low, Single High) {
  Double Sum = 0;
  for (Long Peak = 0; Peak < V.ListPeakCount; ++Peak) {
    const Single Frequency = W.PeakFrequency[Peak];
    if (-Low < Frequency && Frequency < -High) Sum += W.PeakIntensity[Peak];
  }
  const Double Equivalent = Divide(int(W.NumSpinHalfAtoms) * Sum, V.TotalIntensity);
  Text Name = W.ReferenceElementName[W.SpectraType];
  std::transform(Name.begin(), Name.end(), Name.begin(),
                 [](char C) { return C >= 'A' && C <= 'Z' ? static_cast<char>(C - 'A' + 'a') : C; });
  const auto Ppm = [](Single Frequency) { return FormatNumber(Divide(Double{Frequency}, W.NMRFrequency), "0.000"); };
  ShowReadout(Join("Integrated intensity from ", Ppm(Low), " to ", Ppm(High), " ppm equivalent to ",
                   FormatNumber(Equivalent, "0.0"), " ", Name, "(s)."));
}

}  // namespace zelvanor
