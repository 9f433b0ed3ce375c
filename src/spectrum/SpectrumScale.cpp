#include "spectrum/SpectrumScale.h"

#include <algorithm>
#include <cmath>

#include "basic/Numbers.h"
#include "platform/Services.h"
#include "settings/SettingsState.h"
#include "shell/Frame.h"
#include "spectrum/SpectrumDrawing.h"
#include "spectrum/SpectrumView.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

SpectrumViewState& V = SpectrumView;
WorkspaceState& W = Workspace;

// A jump of the list by this factor ends it.
constexpr Double LargestJump = 1000.0;
constexpr Double ZeroFrequency = 0.0001;
// A line this far out (as a share of SpectrumSpan) belongs to a nucleus that is not observed.
constexpr Double OutOfRangeShare = 100.0;
constexpr Double LeastRange = 1.0;
constexpr Double SingleLineRange = 20.0;
constexpr Double Headroom = 1.2;

bool IsOutOfRange(Long Peak) {
  return Divide(std::fabs(Double{W.PeakFrequency[Peak]}), W.NMRFrequency) > W.SpectrumSpan / OutOfRangeShare;
}

bool EndsList(Long Peak) {
  const Double Frequency = W.PeakFrequency[Peak];
  if (std::fabs(Frequency) <= ZeroFrequency) return IsOutOfRange(Peak + 1);
  return std::fabs(W.PeakFrequency[Peak + 1] / Frequency) > LargestJump;
}

}  // namespace

void Normalize() {
  Long Count = W.PeakCount;
  if (W.PeakCount >= 2) {
    for (Long Peak = 0; Peak < W.PeakCount; ++Peak) {
      if (EndsList(Peak)) {
        Count = Peak + 1;
        break;
      }
    }
  }
  V.ListPeakCount = V.ViewPeakCount = W.PeakCount = Count;
}

void NewFrequencyLimits() {
  Double Low = 0;
  Double High = 0;
  bool Found = false;
  for (Long Peak = 0; Peak < V.ViewPeakCount; ++Peak) {
    const Double Frequency = W.PeakFrequency[Peak];
    if (Frequency == 0.0) continue;
    Low = Found ? std::min(Low, Frequency) : Frequency;
    High = Found ? std::max(High, Frequency) : Frequency;
    Found = true;
  }
  Double Range = High - Low;
  if (Range < LeastRange) Range = SingleLineRange;
  V.FullLow = Low - Range;
  V.FullHigh = High + Range;
}

void FindCenterFrequency() {
  Double Sum = 0;
  for (Long Peak = 0; Peak < V.ViewPeakCount; ++Peak) {
    if (W.PeakFrequency[Peak] != 0.0F || W.PeakIntensity[Peak] != 0.0F) Sum += W.PeakFrequency[Peak];
  }
  V.CenterFrequency = Divide(Sum, V.ViewPeakCount);
}

void SetHorizontalScale(Double Zoom) {
  V.HorizontalScale = V.FullHigh == V.FullLow ? 1.0 : int(V.ViewWidth) * Zoom / (V.FullHigh - V.FullLow);
}

void SetFreqLabel() {
  V.ViewLow = Divide(V.HorizontalOffset, V.HorizontalScale) + V.FullLow;
  V.ViewHigh = Divide(int(V.ViewWidth), V.HorizontalScale) + V.ViewLow;
}

void NewMaxIntensity() {
  // A measured spectrum alone has no lines to scale by.
  if (V.ViewPeakCount == 0 && W.MeasuredCount > 0) return;
  const auto Low = static_cast<Single>(V.ViewLow);
  const auto High = static_cast<Single>(V.ViewHigh);
  bool Found = false;
  Double Largest = 0;
  for (Long Peak = 0; Peak < V.ViewPeakCount; ++Peak) {
    const Single Frequency = W.PeakFrequency[Peak];
    const Single Intensity = W.PeakIntensity[Peak];
    if (Low <= Frequency && Frequency <= High && Intensity > static_cast<Single>(Largest)) {
      Largest = Intensity;
      Found = true;
    }
    // Until a line in the window is found, 1 is what it has to pass.
    if (!Found) Largest = 1.0;
  }
  V.MaxIntensity = Headroom * Largest;
  V.VerticalScale = Divide(int(V.ViewHeight), V.MaxIntensity);
}

Double GetFrequencyRange() { return V.LoadedHigh - V.LoadedLow; }
Double GetHighLow() { return V.ViewHigh - V.ViewLow; }

Double ColumnOfFrequency(Double Frequency) {
  return Divide((Frequency - V.ViewLow - V.HorizontalOffset) * int(V.ViewWidth), GetHighLow());
}

Double FrequencyOfColumn(Double Column) {
  return Divide(Column * GetHighLow(), int(V.ViewWidth)) + V.ViewLow + V.HorizontalOffset;
}

Long FGetPeakRX(Double Frequency) {
  constexpr Double Farthest = 1.0e9;
  return ToLong(std::clamp(ColumnOfFrequency(Frequency), -Farthest, Farthest));
}

void UpdateSpectrometer(Long Frequency) { V.SpectrometerFrequency = Frequency; }

void TakeViewSize() {
  V.ViewWidth = ToInteger(Double(Main.Spectrum1.Width) / TwipsPerPixelX);
  V.ViewHeight = ToInteger(Double(Main.Spectrum1.Height) / TwipsPerPixelY);
}

void FollowSurface() {
  if (ToInteger(Double(Main.Spectrum1.Width) / TwipsPerPixelX) == V.ViewWidth) return;
  TakeViewSize();
  V.HorizontalScale = Divide(int(V.ViewWidth), GetHighLow());
  ComputeLineWidths(true);
}

void FitHorizontalScale() {
  const Double Range = GetHighLow();
  if (Range > LeastRange) V.HorizontalScale = int(V.ViewWidth) / Range;
}

namespace {

void ShowSurface() {
  if (Settings.FirstSight) SetVisible(Main.mnuViewWidths, ToFlag(V.DisplayMode != LinesOnly));
  SetVisible(Main.MolRender1, ToFlag(PaneWidth() > 0));
  SetVisible(Main.ShieldTable, False);
  SetVisible(Main.Spectrum1, True);
  PlaceSpectrum();
}

// The intensity of the list up to the nuclei out of range.
void SumIntensities() {
  Long Count = W.PeakCount;
  for (Long Peak = 0; Peak + 1 < W.PeakCount; ++Peak) {
    if (IsOutOfRange(Peak + 1)) {
      Count = Peak + 1;
      break;
    }
  }
  V.TotalIntensity = 0;
  for (Long Peak = 0; Peak < Count; ++Peak) V.TotalIntensity += W.PeakIntensity[Peak];
}

void SetUpLineWidthBar() {
  ScrollBar& Bar = Main.HScroll2;
  if (!IsSet(W.AbsLineWidth)) {
    SetRange(Bar, 0, 100);
    SetChanges(Bar, 1, 10);
    return;
  }
  if (W.MinAbsLineWidth < W.MaxAbsLineWidth) {
    SetRange(Bar, ToLong(Double{W.MinAbsLineWidth} * W.NMRFrequency),
             ToLong(Double{W.MaxAbsLineWidth} * W.NMRFrequency));
  } else {
    SetRange(Bar, 0, ToLong(V.FrequencyRange / 2.0));
  }
  SetValue(Bar, 0);
  const Long LargeChange = ToLong((Double(Bar.Max) - Bar.Min) / 20.0);
  // A bar moves by one at least.
  SetChanges(Bar, std::max(ToLong(LargeChange / 10.0), 1), std::max(LargeChange, 1));
  SetValue(Bar, ToLong(V.Linewidth));
}

}  // namespace

void ShowSpectrumView() {
  SetEnabled(Main.mnuReplace, False);
  Platform.SetPointer(MousePointer::Hourglass);
  IgnoreFailure(ShowSurface);
  IgnoreFailure([] { UpdateSpectrometer(W.NMRFrequency); });
  IgnoreFailure(SumIntensities);
  V.FrequencyRange = GetFrequencyRange();
  V.LineWidthBarLive = False;
  IgnoreFailure(SetUpLineWidthBar);
  V.LineWidthBarLive = True;
  Platform.SetPointer(MousePointer::Default);
  IgnoreFailure(DrawSpectra);
}

void ResizeSpectrum() {
  TakeViewSize();
  FitHorizontalScale();
  V.HorizontalOffset = -Main.HScroll1.Value;
  if (V.ViewLow == V.ViewHigh) return;
  IgnoreFailure(NewMaxIntensity);
  IgnoreFailure([] { ComputeLineWidths(true); });
  if (W.ViewMode == SpectrumViewMode) RefreshView();
}

}  // namespace zelvanor
