#include "measured/Processing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "measured/FourierTransform.h"

namespace zelvanor {

namespace {

using Complex = std::complex<Double>;

constexpr Double Turn = 2.0 * std::numbers::pi;
constexpr Double RadiansPerDegree = std::numbers::pi / 180.0;

// The FID, apodised and as long as it is to be.
std::vector<Complex> PrepareSamples(const MeasuredSpectrum& Fid, const Processing& By, Double Rate) {
  const std::size_t Count = Fid.Real.size();
  std::size_t Length = PowerOfTwoFor(Count);
  for (int Times = By.ZeroFilling; Times > 1 && Length < MostMeasuredPoints; Times /= 2) Length *= 2;
  std::vector<Complex> Samples(Length);
  for (std::size_t Sample = 0; Sample < Count; ++Sample) {
    // Time begins where the digital filter lets the signal through.
    const Double Time = std::max(static_cast<Double>(Sample) - Fid.GroupDelay, 0.0) / Rate;
    const Double Weight = std::exp(-std::numbers::pi * By.Broadening * Time);
    Samples[Sample] = Weight * Complex(Fid.Real[Sample], Fid.Imaginary.empty() ? 0.0 : Fid.Imaginary[Sample]);
  }
  // The first sample stands for half an interval; where a filter delays the signal, it is not at its start.
  if (Fid.GroupDelay == 0.0) Samples[0] *= 0.5;
  return Samples;
}

MeasuredSpectrum TransformFid(const MeasuredSpectrum& Fid, const Processing& By) {
  // One channel alone is sampled twice as fast, and its spectrum is mirrored: half of it is shown.
  const bool OneChannel = Fid.Imaginary.empty();
  const Double Rate = OneChannel ? 2.0 * Fid.SweepHz : Fid.SweepHz;
  std::vector<Complex> Values = PrepareSamples(Fid, By, Rate);
  Transform(Values, false);
  const std::size_t Length = Values.size();
  const std::size_t Shown = OneChannel ? Length / 2 : Length;
  MeasuredSpectrum Made;
  Made.Title = Fid.Title;
  Made.Nucleus = Fid.Nucleus;
  Made.Solvent = Fid.Solvent;
  Made.MHz = Fid.MHz;
  Made.Warnings = Fid.Warnings;
  Made.Real.reserve(Shown);
  Made.Imaginary.reserve(Shown);
  for (std::size_t Point = 0; Point < Shown; ++Point) {
    // Signed bins: the highest frequency first.
    const auto Bin =
        static_cast<std::ptrdiff_t>(OneChannel ? Shown : Length / 2) - 1 - static_cast<std::ptrdiff_t>(Point);
    const std::size_t Index = Bin < 0 ? Length - static_cast<std::size_t>(-Bin) : static_cast<std::size_t>(Bin);
    const Double Angle = Turn * Fid.GroupDelay * static_cast<Double>(Bin) / static_cast<Double>(Length);
    const Complex Value = Values[Index] * std::polar(1.0, Angle);
    Made.Real.push_back(Value.real());
    Made.Imaginary.push_back(Value.imag());
  }
  const Double Step = Rate / static_cast<Double>(Length);
  const Double Centre = Fid.CentrePpm * (Fid.MHz > 0 ? Fid.MHz : 1.0);
  Made.First = Centre + Fid.SweepHz / 2 - Step;
  Made.Last = Made.First - Step * (static_cast<Double>(Shown) - 1.0);
  return Made;
}

// The imaginary part that belongs to a real one: that of a signal which begins at time 0.
void CompleteImaginary(MeasuredSpectrum& To) {
  const std::size_t Count = To.Real.size();
  std::vector<Complex> Values(PowerOfTwoFor(Count));
  std::copy(To.Real.begin(), To.Real.end(), Values.begin());
  Transform(Values, true);
  const std::size_t Half = Values.size() / 2;
  for (std::size_t Place = 1; Place < Values.size(); ++Place) {
    if (Place < Half) Values[Place] = 0.0;
    if (Place > Half) Values[Place] *= 2.0;
  }
  Transform(Values, false);
  To.Imaginary.resize(Count);
  for (std::size_t Point = 0; Point < Count; ++Point) To.Imaginary[Point] = Values[Point].imag();
}

// Degrees at a place of the spectrum, 0 at its left end, 1 at its right one.
Double PhaseAt(const Processing& By, Double Place) {
  return (By.Phase0 + By.Phase1 * (Place - 0.5)) * RadiansPerDegree;
}

// The points near the lines, which alone tell a phase.
struct SignalPoint {
  Double Place;
  Double Real;
  Double Imaginary;
};

std::vector<SignalPoint> FindSignals(const MeasuredSpectrum& Of) {
  const std::size_t Count = Of.Real.size();
  Double Largest = 0;
  const auto Magnitude = [&](std::size_t Point) { return std::hypot(Of.Real[Point], Of.Imaginary[Point]); };
  for (std::size_t Point = 0; Point < Count; ++Point) Largest = std::max(Largest, Magnitude(Point));
  constexpr Double LeastShare = 0.02;
  constexpr std::size_t Around = 24;
  std::vector<bool> Taken(Count);
  for (std::size_t Point = 0; Point < Count; ++Point) {
    if (Magnitude(Point) < LeastShare * Largest) continue;
    const std::size_t Last = std::min(Point + Around, Count - 1);
    for (std::size_t Near = Point > Around ? Point - Around : 0; Near <= Last; ++Near) Taken[Near] = true;
  }
  std::vector<SignalPoint> Signals;
  for (std::size_t Point = 0; Point < Count; ++Point) {
    if (!Taken[Point]) continue;
    Signals.push_back({static_cast<Double>(Point) / static_cast<Double>(Count), Of.Real[Point] / Largest,
                       Of.Imaginary[Point] / Largest});
  }
  return Signals;
}

// An absorption line falls off with the square of the distance, a dispersion line with the distance itself: the sum of
// magnitudes has a sharp least value where all lines are in phase. What lies below zero tells the sign.
Double CostOf(const std::vector<SignalPoint>& Signals, const Processing& By) {
  Double Below = 0;
  Double Squares = 0;
  Double Sum = 0;
  Double Magnitudes = 0;
  for (const SignalPoint& Point : Signals) {
    const Double Phase = PhaseAt(By, Point.Place);
    const Double Value = Point.Real * std::cos(Phase) - Point.Imaginary * std::sin(Phase);
    const Double Square = Point.Real * Point.Real + Point.Imaginary * Point.Imaginary;
    Squares += Square;
    Magnitudes += std::sqrt(Square);
    Sum += std::fabs(Value);
    if (Value < 0) Below += Value * Value;
  }
  if (!(Squares > 0)) return 0;
  constexpr Double WeightOfBelow = 2.0;
  return Sum / Magnitudes + WeightOfBelow * Below / Squares;
}

// Goes down from the present phases with ever shorter steps.
void Descend(const std::vector<SignalPoint>& Signals, Processing& From) {
  Double Best = CostOf(Signals, From);
  constexpr Double FirstStep = 8.0;
  constexpr Double LastStep = 0.02;
  for (Double Step = FirstStep; Step > LastStep;) {
    bool Better = false;
    for (const auto& [Step0, Step1] : {std::pair{1.0, 0.0},
                                       {-1.0, 0.0},
                                       {0.0, 2.0},
                                       {0.0, -2.0},
                                       {1.0, 2.0},
                                       {-1.0, -2.0},
                                       {1.0, -2.0},
                                       {-1.0, 2.0}}) {
      Processing Try = From;
      Try.Phase0 += Step * Step0;
      Try.Phase1 += Step * Step1;
      const Double Cost = CostOf(Signals, Try);
      if (Cost >= Best) continue;
      Best = Cost;
      From = Try;
      Better = true;
    }
    if (!Better) Step /= 2.0;
  }
}

// Medians of equal stretches: lines fill few of them.
std::vector<std::pair<Double, Double>> FindStretches(const std::vector<Double>& Values) {
  constexpr std::size_t MostStretches = 512;
  const std::size_t Length = std::max<std::size_t>(Values.size() / MostStretches, 1);
  std::vector<std::pair<Double, Double>> Medians;
  std::vector<Double> Part;
  for (std::size_t First = 0; First + Length <= Values.size(); First += Length) {
    Part.assign(Values.begin() + static_cast<std::ptrdiff_t>(First),
                Values.begin() + static_cast<std::ptrdiff_t>(First + Length));
    const auto Middle = Part.begin() + static_cast<std::ptrdiff_t>(Length / 2);
    std::nth_element(Part.begin(), Middle, Part.end());
    const Double Place = (static_cast<Double>(First) + Length / 2.0) / static_cast<Double>(Values.size());
    Medians.emplace_back(2.0 * Place - 1.0, *Middle);
  }
  return Medians;
}

constexpr std::size_t MostTerms = HighestBaselineOrder + 1;
using Coefficients = std::array<Double, MostTerms>;

// Legendre polynomials, which keep the equations well conditioned.
Coefficients LegendreAt(Double X, std::size_t Terms) {
  Coefficients P{};
  P[0] = 1.0;
  if (Terms > 1) P[1] = X;
  for (std::size_t N = 2; N < Terms; ++N) {
    const auto Order = static_cast<Double>(N);
    P[N] = ((2.0 * Order - 1.0) * X * P[N - 1] - (Order - 1.0) * P[N - 2]) / Order;
  }
  return P;
}

// Solves the normal equations of a least-squares fit by elimination.
Coefficients FitPolynomial(const std::vector<std::pair<Double, Double>>& Points, std::size_t Terms) {
  std::array<std::array<Double, MostTerms + 1>, MostTerms> Rows{};
  for (const auto& [X, Y] : Points) {
    const Coefficients P = LegendreAt(X, Terms);
    for (std::size_t Row = 0; Row < Terms; ++Row) {
      for (std::size_t Column = 0; Column < Terms; ++Column) Rows[Row][Column] += P[Row] * P[Column];
      Rows[Row][MostTerms] += P[Row] * Y;
    }
  }
  Coefficients Found{};
  for (std::size_t Row = 0; Row < Terms; ++Row) {
    if (Rows[Row][Row] == 0.0) return Found;
    for (std::size_t Below = Row + 1; Below < Terms; ++Below) {
      const Double Share = Rows[Below][Row] / Rows[Row][Row];
      for (std::size_t Column = Row; Column <= MostTerms; ++Column) Rows[Below][Column] -= Share * Rows[Row][Column];
    }
  }
  for (std::size_t Row = Terms; Row-- > 0;) {
    Double Sum = Rows[Row][MostTerms];
    for (std::size_t Column = Row + 1; Column < Terms; ++Column) Sum -= Rows[Row][Column] * Found[Column];
    Found[Row] = Sum / Rows[Row][Row];
  }
  return Found;
}

Double ValueAt(const Coefficients& Of, Double X, std::size_t Terms) {
  const Coefficients P = LegendreAt(X, Terms);
  Double Sum = 0;
  for (std::size_t Term = 0; Term < Terms; ++Term) Sum += Of[Term] * P[Term];
  return Sum;
}

// Fits, leaves out the stretches that stand out, and fits again until none does.
void SubtractBaseline(std::vector<Double>& Values, int Order) {
  const std::size_t Terms = static_cast<std::size_t>(std::clamp(Order, 0, HighestBaselineOrder)) + 1;
  std::vector<std::pair<Double, Double>> Points = FindStretches(Values);
  Coefficients Found{};
  constexpr int MostRounds = 30;
  constexpr Double Reach = 2.5;  // standard deviations
  for (int Round = 0; Round < MostRounds && Points.size() > 2 * Terms; ++Round) {
    Found = FitPolynomial(Points, Terms);
    Double Squares = 0;
    for (const auto& [X, Y] : Points) Squares += std::pow(Y - ValueAt(Found, X, Terms), 2);
    const Double Most = Reach * std::sqrt(Squares / static_cast<Double>(Points.size()));
    const std::size_t Before = Points.size();
    std::erase_if(
        Points, [&](const auto& Point) { return std::fabs(Point.second - ValueAt(Found, Point.first, Terms)) > Most; });
    if (Points.size() == Before) break;
  }
  for (std::size_t Point = 0; Point < Values.size(); ++Point) {
    const Double X = 2.0 * (static_cast<Double>(Point) + 0.5) / static_cast<Double>(Values.size()) - 1.0;
    Values[Point] -= ValueAt(Found, X, Terms);
  }
}

}  // namespace

MeasuredSpectrum TransformToSpectrum(const MeasuredSpectrum& From, const Processing& By) {
  if (From.IsFid) return TransformFid(From, By);
  MeasuredSpectrum Made = From;
  if (Made.Imaginary.empty()) CompleteImaginary(Made);
  return Made;
}

void FindPhases(const MeasuredSpectrum& Of, Processing& To) {
  const std::vector<SignalPoint> Signals = FindSignals(Of);
  constexpr int Step0 = 15;
  constexpr int Step1 = 30;
  constexpr int Reach1 = 120;
  Processing Best = To;
  Double Least = INFINITY;
  for (int Phase1 = -Reach1; Phase1 <= Reach1; Phase1 += Step1) {
    for (int Phase0 = -180; Phase0 < 180; Phase0 += Step0) {
      Processing Try = To;
      Try.Phase0 = Phase0;
      Try.Phase1 = Phase1;
      const Double Cost = CostOf(Signals, Try);
      if (!(Cost < Least)) continue;
      Least = Cost;
      Best = Try;
    }
  }
  Descend(Signals, Best);
  To.Phase0 = Best.Phase0 - 360.0 * std::floor((Best.Phase0 + 180.0) / 360.0);
  To.Phase1 = Best.Phase1;
}

void ApplyProcessing(MeasuredSpectrum& To, const Processing& By) {
  const auto Count = static_cast<Double>(To.Real.size());
  if (By.Phase0 != 0.0 || By.Phase1 != 0.0) {
    for (std::size_t Point = 0; Point < To.Real.size(); ++Point) {
      const Double Phase = PhaseAt(By, static_cast<Double>(Point) / Count);
      To.Real[Point] = To.Real[Point] * std::cos(Phase) - To.Imaginary[Point] * std::sin(Phase);
    }
  }
  To.Imaginary.clear();
  if (By.BaselineOrder >= 0) SubtractBaseline(To.Real, By.BaselineOrder);
  const Double Move = By.MovePpm * (To.MHz > 0 ? To.MHz : 1.0);
  To.First += Move;
  To.Last += Move;
}

}  // namespace zelvanor
