#include "measured/Integrals.h"

#include <algorithm>
#include <cmath>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "measured/MeasuredTrace.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

// The points of a range.
std::pair<Long, Long> PointsOf(Long Range) {
  const Double Last = W.MeasuredCount - 1.0;
  const auto PointAt = [&](Double Ppm) { return ToLong(std::clamp(MeasuredPointAt(Ppm), 0.0, Last)); };
  return {PointAt(W.IntegralHigh[Range]), PointAt(W.IntegralLow[Range])};
}

Double SumOf(Long Range) {
  const auto [First, Last] = PointsOf(Range);
  Double Sum = 0;
  for (Long Point = First; Point <= Last; ++Point) Sum += MeasuredIntensityAt(Point);
  return Sum;
}

}  // namespace

std::vector<Double> IntegralValues() {
  std::vector<Double> Values;
  Double All = 0;
  Double Least = INFINITY;
  for (Long Range = 0; Range < W.IntegralCount; ++Range) {
    Values.push_back(SumOf(Range));
    All += Values.back();
    if (Values.back() > 0) Least = std::min(Least, Values.back());
  }
  const Double Simulated = IsSet(W.SpectraAvailable) ? Double(W.NumSpinHalfAtoms) : 0.0;
  const Double Total = W.IntegralTotal > 0 ? W.IntegralTotal : Simulated;
  const Double Unit = Total > 0 ? All / Total : Least;
  for (Double& Value : Values) Value = Unit > 0 && std::isfinite(Unit) ? Value / Unit : 0.0;
  return Values;
}

void AddIntegral(Double LowPpm, Double HighPpm) {
  if (!HasMeasured() || !(LowPpm < HighPpm)) return;
  const Double Near = 0.15 * (HighPpm - LowPpm);
  W.DocumentDirty = True;
  for (Long Range = 0; Range < W.IntegralCount; ++Range) {
    const bool AtHigh = std::fabs(W.IntegralHigh[Range] - HighPpm) < Near;
    const bool AtLow = std::fabs(W.IntegralLow[Range] - LowPpm) < Near;
    if (!AtHigh && !AtLow) continue;
    W.IntegralHigh[Range] = HighPpm;
    W.IntegralLow[Range] = LowPpm;
    return;
  }
  if (W.IntegralCount >= MostIntegrals) return ShowWarning("There are too many integrals.");
  AppendIntegral(LowPpm, HighPpm);
}

void AppendIntegral(Double LowPpm, Double HighPpm) {
  W.IntegralHigh.ReDimPreserve(W.IntegralCount + 1);
  W.IntegralLow.ReDimPreserve(W.IntegralCount + 1);
  W.IntegralHigh[W.IntegralCount] = HighPpm;
  W.IntegralLow[W.IntegralCount] = LowPpm;
  ++W.IntegralCount;
}

void RemoveIntegral(Long Range) {
  if (Range < 0 || Range >= W.IntegralCount) return;
  for (Long Next = Range; Next + 1 < W.IntegralCount; ++Next) {
    W.IntegralHigh[Next] = W.IntegralHigh[Next + 1];
    W.IntegralLow[Next] = W.IntegralLow[Next + 1];
  }
  --W.IntegralCount;
  W.DocumentDirty = True;
}

void DrawIntegrals(DrawingContext& Context, Colour Pen, int Height, int Width, Double (*ColumnOf)(Double Ppm)) {
  Double Largest = 0;
  for (Long Range = 0; Range < W.IntegralCount; ++Range) Largest = std::max(Largest, SumOf(Range));
  if (!(Largest > 0)) return;
  constexpr Double HeightShare = 0.35;
  const Double Scale = HeightShare * Height / Largest;
  const int Foot = Height / 2;
  const std::vector<Double> Values = IntegralValues();
  SelectPen(Context, Pen);
  for (Long Range = 0; Range < W.IntegralCount; ++Range) {
    const auto [First, Last] = PointsOf(Range);
    Double Sum = 0;
    int LastColumn = -1;
    for (Long Point = First; Point <= Last; ++Point) {
      Sum += MeasuredIntensityAt(Point);
      const Double Column = ColumnOf(MeasuredPpmAt(Point));
      if (Column < 0 || Column >= Width) continue;
      const int X = static_cast<int>(Column);
      if (X == LastColumn && Point != Last) continue;
      const int Y = std::clamp(ToLong(Foot - Sum * Scale), 0, Height);
      if (LastColumn < 0) {
        MoveTo(Context, X, Y);
      } else {
        LineTo(Context, X, Y);
      }
      LastColumn = X;
    }
    if (LastColumn < 0) continue;
    const Text Value = FormatNumber(Values[static_cast<std::size_t>(Range)], "0.00");
    constexpr int AboveCurve = 14;
    PrintOverLines(Context, std::clamp(LastColumn - TextPixels(Value), 0, Width),
                   std::clamp(Context.Y - AboveCurve, 0, Height), Value, Pen);
  }
}

}  // namespace zelvanor
