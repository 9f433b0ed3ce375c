#include "spectrum/SpectrumDrawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <span>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "settings/SettingsState.h"
#include "shell/Frame.h"
#include "spectrum/Envelope.h"
#include "spectrum/SpectrumScale.h"
#include "spectrum/SpectrumView.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

SpectrumViewState& V = SpectrumView;
WorkspaceState& W = Workspace;

// Rows, in pixels above the bottom of the surface.
constexpr int AxisRow = 20;
constexpr int MinorTickRow = 23;
constexpr int MajorTickRow = 26;
constexpr int FootRow = 30;
// Peak markers hang down this share of the height from its top.
constexpr Double MarkerShare = 20.0;

constexpr Double NoWidth = 1e-20;
constexpr Double Headroom = 1.2;
// Peaks farther than this many windows outside the window take no part in the envelope.
constexpr Double EnvelopeReach = 5.0;

struct PeakRange {
  Long First = 0;
  Long Last = 0;  // behind the last
};

void ClearWorkArrays() {
  V.PeakWork1.ReDim(W.PeakFrequency.UpperBound());
  V.PeakWork2.ReDim(W.PeakFrequency.UpperBound());
}

// Fills the work arrays of the peaks near the window. The list falls: it ends at the first peak below.
PeakRange FillWorkArrays() {
  const Double Span = GetHighLow();
  const auto Top = static_cast<Single>(V.ViewHigh + EnvelopeReach * Span);
  const auto Bottom = static_cast<Single>(V.ViewLow - EnvelopeReach * Span);
  const Double Width = V.CurrentLineWidth;
  Double Factor = 0;
  if (IsSet(V.UseGaussian)) {
    Factor = Width > NoWidth ? 2.0 / Width : 0.0;
  } else {
    Factor = Width > NoWidth ? Width * 0.5 : NoWidth * 0.5;
  }
  if (V.PeakWork1.UpperBound() != W.PeakFrequency.UpperBound()) ClearWorkArrays();
  PeakRange Range{0, V.ViewPeakCount};
  for (Long Peak = 0; Peak < V.ViewPeakCount; ++Peak) {
    if (W.PeakFrequency[Peak] > Top) {
      Range.First = Peak + 1;
    } else if (W.PeakFrequency[Peak] < Bottom) {
      Range.Last = Peak;
      break;
    } else {
      V.PeakWork1[Peak] = ToSingle(Factor * Factor);
      V.PeakWork2[Peak] = ToSingle(Factor * W.PeakIntensity[Peak]);
    }
  }
  return Range;
}

// The largest sample.
Double FillEnvelope(const PeakRange& Range, int NumColumns) {
  const auto First = static_cast<std::size_t>(Range.First);
  const auto Count = static_cast<std::size_t>(std::max(Range.Last - Range.First, 0));
  const auto Part = [&](const Array<Single>& Values) { return Values.Span().subspan(First, Count); };
  const EnvelopePeaks Peaks{Part(W.PeakFrequency), Part(V.PeakWork1), Part(V.PeakWork2)};
  const std::span<Double> Samples = std::span(V.EnvelopeSamples).first(static_cast<std::size_t>(NumColumns));
  const Double Start = FrequencyOfColumn(0);
  const Double Step = GetHighLow() / NumColumns;
  if (IsSet(V.UseGaussian)) {
    SumGaussians(Peaks, Start, Step, Samples);
  } else {
    SumLorentzians(Peaks, Start, Step, Samples);
  }
  return Samples.empty() ? 0.0 : std::max(0.0, *std::max_element(Samples.begin(), Samples.end()));
}

// The envelope is seen where its lines are a little wider than the columns that it is drawn by.
void TakeLeastWidth(int NumColumns) {
  constexpr Double LeastWidth = 1;  // Hz
  constexpr Double ColumnsOfLine = 1.5;
  V.CurrentLineWidth = ToSingle(std::max(LeastWidth, ColumnsOfLine * GetHighLow() / NumColumns));
  V.Linewidth = V.CurrentLineWidth;
}

void TakePeakList(bool Negate) {
  ClearWorkArrays();
  TakeViewSize();
  V.SpectrometerMHz = W.NMRFrequency;
  V.ViewPeakCount = W.PeakCount;
  if (Negate) {
    for (Long Peak = 0; Peak < W.PeakCount; ++Peak) W.PeakFrequency[Peak] = -W.PeakFrequency[Peak];
  }
  V.Zooms.clear();
  NewFrequencyLimits();
  V.HorizontalOffset = 0;
  V.ViewLow = V.FullLow;
  V.ViewHigh = V.FullHigh;
  FindCenterFrequency();
  SetHorizontalScale(1.0);
  SetFreqLabel();
  NewMaxIntensity();
  V.LoadedHigh = V.ViewHigh;
  V.LoadedLow = V.ViewLow;
  V.ListPeakCount = V.ViewPeakCount;
  FitHorizontalScale();
  ComputeLineWidths(true);
  SetValue(Main.HScroll1, 0);
}

}  // namespace

void TransferVBX() { TakePeakList(true); }

void TakeOpenedSpectrum() {
  IgnoreFailure([] { TakePeakList(false); });
}

void ComputeLineWidths(bool UpdateScale) {
  if (V.DisplayMode == LinesOnly && UpdateScale) NewMaxIntensity();
  const int NumColumns = EnvelopeColumns();
  if (NumColumns <= 0) throw Failure(failures::DivisionByZero);
  if (!V.OwnWidth) TakeLeastWidth(NumColumns);
  const Double Largest = FillEnvelope(FillWorkArrays(), NumColumns);
  if (!UpdateScale) return;
  const Double Scaled = Headroom * Largest;
  V.EnvelopeScale = Scaled <= NoWidth ? 1.0 / NoWidth : int(V.ViewHeight) / Scaled;
  NewMaxIntensity();
}

namespace {

struct Pens {
  Colour Line;
  Colour Selection;
  Colour Axis;
};

Pens ChoosePens() {
  if (V.Monochrome != 0) return {Black, Black, Black};
  return {V.GraphClr, V.SelectionClr, Main.Spectrum1.BackColor == White ? Black : White};
}

void DrawLine(DrawingContext& Context, int X1, int Y1, int X2, int Y2) {
  MoveTo(Context, X1, Y1);
  LineTo(Context, X2, Y2);
}

struct TickScale {
  Double Step = 0;  // ppm
  std::int64_t PerLabel = 10;
  const char* Form = "#0.000";
};

// The smallest of 10000, 1000, ... 0.001 ppm at which the range has at least ten steps, and a label at every tenth. The
// window goes on to finer steps and has as many labels as there is room for, up to ten.
TickScale ChooseTicks(Double Range, int Width) {
  constexpr std::array<Double, 10> Steps = {10000.0, 1000.0, 100.0, 10.0, 1.0, 0.1, 0.01, 0.001, 0.0001, 0.00001};
  constexpr std::size_t NumPlainSteps = 8;
  const auto Offered = std::span(Steps).first(Settings.FirstSight ? Steps.size() : NumPlainSteps);
  const auto Step = std::find_if(Offered.begin(), Offered.end(), [&](Double S) { return Range / S >= 10.0; });
  TickScale Ticks{Step == Offered.end() ? Offered.back() : *Step};
  if (!Settings.FirstSight) return Ticks;
  constexpr Double MostLabels = 10;
  constexpr int LabelRoom = 8 * DigitPixels;
  for (Ticks.PerLabel = 1; Ticks.PerLabel < 100; Ticks.PerLabel *= 10) {
    for (const int Part : {1, 2, 5}) {
      const Double Labels = Range / (Ticks.Step * static_cast<Double>(Ticks.PerLabel * Part));
      if (Labels > MostLabels || Labels * LabelRoom > Width) continue;
      Ticks.PerLabel *= Part;
      if (Ticks.Step * static_cast<Double>(Ticks.PerLabel) < Steps[NumPlainSteps - 1]) Ticks.Form = "#0.00000";
      return Ticks;
    }
  }
  return Ticks;
}

// Rounding up, an exact whole number of 0 or more going up by one.
Double RoundUp(Double Value) { return Value < 0 ? std::trunc(Value) : std::trunc(Value) + 1.0; }

// Labels stand side by side from left to right and inside the surface: one at an end moves inwards, one without room
// beside the label before it is left out.
struct LabelRow {
  int Width = 0;  // of the surface
  int FreeFrom = 0;

  static constexpr int Gap = 4;

  void Print(DrawingContext& Context, int X, int Y, const Text& Label, Colour Pen) {
    constexpr int LeftOfTick = 15;
    const int Room = Width - TextPixels(Label);
    const int Place = std::clamp(X - LeftOfTick, 0, std::max(Room, 0));
    if (X < 0 || X >= Width || Room < 0 || Place < FreeFrom) return;
    PrintAt(Context, Place * TwipsPerPixelX, Y * TwipsPerPixelY, Label, Pen);
    FreeFrom = Place + TextPixels(Label) + Gap;
  }
};

void DrawTicks(DrawingContext& Context, Colour Axis, int Width, int Height) {
  // Far more ticks than columns say that the limits are no spectrum's.
  constexpr Double MostTicks = 100000.0;
  const Double Low = FrequencyOfColumn(0);
  const Double High = V.HorizontalOffset + V.ViewHigh;
  const Double Range = Divide(High - Low, V.SpectrometerMHz);
  const auto [Step, PerLabel, Form] = ChooseTicks(Range, Width);
  if (!(Range / Step < MostTicks)) return;
  const Double HighPpm = High / V.SpectrometerMHz;
  const Double FirstTick = RoundUp(Low / V.SpectrometerMHz / Step);
  if (!(std::fabs(FirstTick) < 1.0e15)) return;
  LabelRow Labels{Width};
  if (Settings.FirstSight) {
    constexpr int UnitPixels = 4 * DigitPixels;  // an m is wider than a digit
    Labels.Width -= UnitPixels + LabelRow::Gap;
    PrintAt(Context, (Width - UnitPixels) * TwipsPerPixelX, (Height - AxisRow) * TwipsPerPixelY, "ppm", Axis);
  }
  for (auto Tick = static_cast<std::int64_t>(FirstTick);; ++Tick) {
    const Double Place = static_cast<Double>(Tick) * Step;
    if (!(Place < HighPpm)) return;
    const int X = FGetPeakRX(Place * V.SpectrometerMHz);
    const bool Major = Tick % PerLabel == 0;
    DrawLine(Context, X, Height - (Major ? MajorTickRow : MinorTickRow), X, Height - AxisRow);
    if (Major) Labels.Print(Context, X, Height - AxisRow, FormatNumber(-Place, Form), Axis);
  }
}

// Marker and line of a peak. A line that is higher than the surface ends at its top; the selected one does not.
void DrawPeak(DrawingContext& Context, Single Frequency, Single Intensity, int Height, bool Clip) {
  const int X = FGetPeakRX(Frequency);
  DrawLine(Context, X, 0, X, ToLong(Height / MarkerShare));
  if (V.DisplayMode == EnvelopeOnly) return;
  const int Foot = Height - FootRow - V.FootLift;
  const Double Tall = Intensity * V.VerticalScale * V.HeightShare;
  DrawLine(Context, X, Foot, X, Clip && !(Tall <= Foot) ? 0 : ToLong(Foot - Tall));
}

void DrawPeaks(DrawingContext& Context, const Pens& Use, int Height) {
  SelectPen(Context, Use.Line);
  for (Long Peak = 0; Peak < V.ViewPeakCount; ++Peak) {
    if (Peak != V.SelectedPeak) DrawPeak(Context, W.PeakFrequency[Peak], W.PeakIntensity[Peak], Height, true);
  }
  if (V.SelectedPeak < 0 || V.SelectedPeak >= V.ViewPeakCount) return;
  const Single Frequency = W.PeakFrequency[V.SelectedPeak];
  const Single Intensity = W.PeakIntensity[V.SelectedPeak];
  if (Frequency == 0.0F && Intensity == 0.0F) return;
  SelectPen(Context, Use.Selection);
  DrawPeak(Context, Frequency, Intensity, Height, false);
}

}  // namespace

void DrawSpectra() {
  ClearPicture(Main.Spectrum1);
  DrawingContext Context = GetDC(Main.Spectrum1);
  IgnoreFailure([&] { PaintSpectrum(Context); });
  ReleaseDC(Context);
}

void PaintSpectrum(DrawingContext& Context) {
  const Pens Use = ChoosePens();
  TakeViewSize();
  IgnoreFailure(Additions.BeforePaint);
  const int Width = V.ViewWidth;
  const int Height = V.ViewHeight;
  SelectPen(Context, Use.Axis);
  DrawLine(Context, 0, Height - AxisRow, Width, Height - AxisRow);
  DrawTicks(Context, Use.Axis, Width, Height);
  if (V.CurrentLineWidth != 0.0F && V.DisplayMode != LinesOnly) DrawWithLineWidths(Context);
  DrawPeaks(Context, Use, Height);
  if (Additions.AfterPaint) Additions.AfterPaint(Context);
}

void DrawWithLineWidths(DrawingContext& Context) {
  if (V.DisplayMode == LinesOnly) return;
  const Colour Former = SelectPen(Context, V.EnvelopClr);
  const int Height = V.ViewHeight;
  const int NumColumns = EnvelopeColumns();
  bool Clipped = false;
  for (int Column = 0; Column < NumColumns; ++Column) {
    const Double Tall = V.EnvelopeScale * V.HeightShare * V.EnvelopeSamples[static_cast<std::size_t>(Column)];
    const int Foot = Height - FootRow - V.FootLift;
    int Row = 0;
    if (!(Tall > Foot)) {
      Clipped = false;
      const Long Rounded = ToLong(Tall);
      Row = Foot - (Rounded == 0 ? 1 : Rounded);
    }
    // Columns are samples, unless the view is wider than the samples reach: then these spread over it.
    const int X = NumColumns == V.ViewWidth ? Column : ToLong(Double(Column) * int(V.ViewWidth) / NumColumns);
    if (Column == 0 || Clipped) {
      MoveTo(Context, X, Row);
    } else if (Row > 0) {
      LineTo(Context, X, Row);
    } else {
      LineTo(Context, X, 0);
      Clipped = true;
    }
  }
  SelectPen(Context, Former);
}

namespace {

void ChooseDisplay(SpectrumDisplay Mode) {
  if (!IsSet(Main.Spectrum1.Visible)) EnterSpectrumView();
  V.DisplayMode = Mode;
  SetVisible(Main.mnuViewWidths, ToFlag(Mode != LinesOnly));
  SetChecked(Main.mnuLines, ToFlag(Mode == LinesOnly));
  SetChecked(Main.mnuEnvelop, ToFlag(Mode == EnvelopeOnly));
  SetChecked(Main.mnuLinesAndEnvelop, ToFlag(Mode == LinesAndEnvelope));
  SetCaption(Main.mnuViewValues, SpectralValuesCaption);
  IgnoreFailure([] { ComputeLineWidths(true); });
  RefreshView();
}

void ChooseLineShape(MenuItem& Chosen, MenuItem& Other, Flag Gaussian) {
  if (IsSet(Chosen.Checked)) return;
  SetChecked(Chosen, True);
  SetChecked(Other, False);
  V.UseGaussian = Gaussian;
  IgnoreFailure([] { ComputeLineWidths(true); });
  RefreshView();
}

}  // namespace

void mnuLines_Click() { ChooseDisplay(LinesOnly); }
void mnuEnvelop_Click() { ChooseDisplay(EnvelopeOnly); }
void mnuLinesAndEnvelop_Click() { ChooseDisplay(LinesAndEnvelope); }
void mnuGaussian_Click() { ChooseLineShape(Main.mnuGaussian, Main.mnuLorentzian, True); }
void mnuLorentzian_Click() { ChooseLineShape(Main.mnuLorentzian, Main.mnuGaussian, False); }
void mnuMultipleLineWidths_Click() {
  SetChecked(Main.mnuMultipleLineWidths, ToFlag(!IsSet(Main.mnuMultipleLineWidths.Checked)));
}

}  // namespace zelvanor
