#include "measured/MeasuredTrace.h"

#include <algorithm>
#include <cmath>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "platform/Variables.h"
#include "spectrum/EnvelopeCurve.h"
#include "spectrum/PeakLists.h"
#include "spectrum/SpectrumView.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

// Points are whole numbers up to this; their differences fit a Long.
constexpr Double LargestPoint = (1 << 30) - 1;
// Where the file has no whole numbers of its own the largest intensity becomes this: finer than any receiver.
constexpr Double OwnLargestPoint = 1 << 26;

// As it is written and read again.
Double AsWritten(Double Value) { return StrictNumber(GeneralForm(Value)); }

Double LargestOf(const std::vector<Double>& Values) {
  Double Largest = 0;
  for (const Double Value : Values) Largest = std::max(Largest, std::fabs(Value));
  return Largest;
}

// Whether the values are whole numbers of this unit, as far as Doubles can tell.
bool AreMultiples(const std::vector<Double>& Values, Double Unit, Double Largest) {
  constexpr Double Rounding = 1.0e-10;
  return std::all_of(Values.begin(), Values.end(), [&](Double Value) {
    const Double Whole = std::round(Value / Unit);
    return std::fabs(Whole) <= LargestPoint && std::fabs(Value - Whole * Unit) <= Rounding * Largest;
  });
}

// The unit that the file tells, a decimal one where all values are written with few digits, or one that is fine enough.
Double ChooseFactor(const MeasuredSpectrum& From) {
  const Double Largest = LargestOf(From.Real);
  if (!(Largest > 0)) return 1.0;
  for (const Double Unit : {std::fabs(AsWritten(From.Factor)), 1.0, 0.1, 0.01, 1.0e-3, 1.0e-4, 1.0e-5, 1.0e-6}) {
    if (Unit > 0 && AreMultiples(From.Real, Unit, Largest)) return Unit;
  }
  return AsWritten(Largest / OwnLargestPoint);
}

}  // namespace

Text OneLine(TextView Value) {
  constexpr std::size_t Longest = 200;
  Text Line;
  for (const char C : Value.substr(0, Longest)) Line += static_cast<unsigned char>(C) < ' ' ? ' ' : C;
  return Text(TrimWhite(Line));
}

bool IsSoundAxis(Double MHz, Double First, Double Last) {
  constexpr Double Farthest = 1.0e12;
  return MHz > 0 && MHz < Farthest && First > Last && std::fabs(First) < Farthest && std::fabs(Last) < Farthest;
}

void TakeOverMeasured(const MeasuredSpectrum& From) {
  const Double MHz = From.MHz > 0 ? From.MHz : Double(W.NMRFrequency);
  if (!(MHz > 0)) throw Failure("neither the file nor the options say the spectrometer's frequency");
  const Double Scale = From.MHz > 0 ? 1.0 : MHz;  // without a frequency places are in ppm
  Double First = From.First * Scale;
  Double Last = From.Last * Scale;
  const Double Factor = ChooseFactor(From);
  std::vector<Long> Points;
  Points.reserve(From.Real.size());
  for (const Double Value : From.Real) Points.push_back(ToLong(Value / Factor));
  if (First < Last) {
    std::swap(First, Last);
    std::reverse(Points.begin(), Points.end());
  }
  if (!IsSoundAxis(AsWritten(MHz), AsWritten(First), AsWritten(Last))) throw Failure("the axis makes no sense");
  W.MeasuredPoint.Assign(Points);
  W.MeasuredCount = static_cast<Long>(Points.size());
  W.MeasuredFactor = Factor;
  W.MeasuredFirst = AsWritten(First);
  W.MeasuredLast = AsWritten(Last);
  W.MeasuredMHz = AsWritten(MHz);
  W.MeasuredNucleus = From.Nucleus;
  W.MeasuredSolvent = OneLine(From.Solvent);
  W.MeasuredTitle = OneLine(From.Title);
}

MeasuredSpectrum MeasuredOfDocument() {
  MeasuredSpectrum Made;
  Made.Title = W.MeasuredTitle;
  Made.Nucleus = W.MeasuredNucleus;
  Made.Solvent = W.MeasuredSolvent;
  Made.MHz = W.MeasuredMHz;
  Made.First = W.MeasuredFirst;
  Made.Last = W.MeasuredLast;
  Made.Factor = W.MeasuredFactor;
  Made.Real.reserve(static_cast<std::size_t>(W.MeasuredCount));
  for (Long Point = 0; Point < W.MeasuredCount; ++Point) Made.Real.push_back(MeasuredIntensityAt(Point));
  return Made;
}

namespace {
// From one point to the next, below 0.
Double StepPpm() { return Divide(Divide(W.MeasuredLast - W.MeasuredFirst, W.MeasuredCount - 1.0), W.MeasuredMHz); }
}  // namespace

Double MeasuredPpmAt(Double Point) { return Divide(W.MeasuredFirst, W.MeasuredMHz) + Point * StepPpm(); }
Double MeasuredPointAt(Double Ppm) { return Divide(Ppm - MeasuredPpmAt(0), StepPpm()); }
Double MeasuredIntensityAt(Long Point) { return W.MeasuredPoint[Point] * W.MeasuredFactor; }

CommonGrid BuildCommonGrid(Double HighPpm, Double LowPpm) {
  if (!HasMeasured()) throw Failure("there is no measured spectrum");
  if (!IsSet(W.SpectraAvailable)) throw Failure("there is no simulated spectrum");
  const Double Last = W.MeasuredCount - 1.0;
  const Long First = ToLong(std::clamp(std::ceil(MeasuredPointAt(std::max(HighPpm, LowPpm))), 0.0, Last));
  const Long End = ToLong(std::clamp(std::floor(MeasuredPointAt(std::min(HighPpm, LowPpm))), 0.0, Last)) + 1;
  CommonGrid Grid;
  Grid.FirstPpm = MeasuredPpmAt(First);
  Grid.StepPpm = StepPpm();
  for (Long Point = First; Point < End; ++Point) Grid.Measured.push_back(MeasuredIntensityAt(Point));
  // The view's frequencies are negated: they rise while the shift falls.
  const Double MHz = W.NMRFrequency;
  Grid.Simulated = BuildEnvelope(-Grid.FirstPpm * MHz, -Grid.StepPpm * MHz, Grid.Measured.size(), EnvelopeWidth());
  return Grid;
}

Text DescribeMismatch() {
  const Text Simulated = ObservedNucleus();
  Text Told;
  if (!W.MeasuredNucleus.empty() && W.MeasuredNucleus != Simulated) {
    Told = Join("The measured spectrum is of ", W.MeasuredNucleus, ", the simulation of ", Simulated, ".");
  }
  constexpr Double Tolerance = 0.005;  // fields are called by round numbers
  if (W.NMRFrequency > 0 && std::fabs(W.MeasuredMHz / W.NMRFrequency - 1.0) > Tolerance) {
    Told += Join(Told.empty() ? "" : "  ", "The measured spectrum is of ", FormatNumber(W.MeasuredMHz, "0.0##"),
                 " MHz, the simulation of ", W.NMRFrequency,
                 " MHz: shifts agree in ppm, but splittings do not.  See Setup > Spectrum.");
  }
  return Told;
}

void AddMeasuredVariables() {
  AddVariable("MeasuredCount", W.MeasuredCount);
  AddArray("MeasuredPoint", W.MeasuredPoint, [] { return int(W.MeasuredCount); });
  AddVariable("MeasuredFactor", W.MeasuredFactor);
  AddVariable("MeasuredFirst", W.MeasuredFirst);
  AddVariable("MeasuredLast", W.MeasuredLast);
  AddVariable("MeasuredMHz", W.MeasuredMHz);
  AddVariable("MeasuredNucleus", W.MeasuredNucleus);
  AddVariable("MeasuredSolvent", W.MeasuredSolvent);
  AddVariable("MeasuredTitle", W.MeasuredTitle);
  AddVariable("IntegralCount", W.IntegralCount);
  AddArray("IntegralHigh", W.IntegralHigh, [] { return int(W.IntegralCount); });
  AddArray("IntegralLow", W.IntegralLow, [] { return int(W.IntegralCount); });
  AddVariable("IntegralTotal", W.IntegralTotal);
}

}  // namespace zelvanor
