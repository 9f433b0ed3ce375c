#include "nmrcalc/fit/LineAxis.h"

#include <algorithm>
#include <bit>
#include <complex>
#include <numbers>
#include <unsupported/Eigen/FFT>

namespace nmrcalc {

namespace {

constexpr double Pi = std::numbers::pi;
constexpr double LargestNodeStep = 0.12;  // Hz; the lines have died away at the end of the time that it leaves
constexpr double Room = 1.5;              // of the grid, in terms of the points

using Spectrum = std::vector<std::complex<double>>;

// Transforms real values, multiplies each time's value by its factor, and transforms back.
void ChangeInTime(std::vector<double>& Values, const std::vector<double>& Factors) {
  // It keeps what it has worked out for a size.
  thread_local Eigen::FFT<double> Transform(Eigen::FFT<double>::impl_type(), Eigen::FFT<double>::HalfSpectrum);
  thread_local Spectrum Times;
  Transform.fwd(Times, Values);
  for (std::size_t K = 0; K < Times.size(); ++K) Times[K] *= Factors[K];
  Transform.inv(Values, Times, static_cast<Eigen::Index>(Values.size()));
}

// What a Gauss function of this full width at half height is in time.
double GaussDecay(double Width, double Time) {
  const double X = Pi * Width * Time;
  return std::exp(-X * X / (4.0 * std::numbers::ln2));
}

}  // namespace

LineAxis MakeLineAxis(double FirstHz, double StepHz, std::size_t NumPoints) {
  LineAxis Axis{.NumPoints = NumPoints};
  while (StepHz / double(Axis.Stride) > LargestNodeStep) Axis.Stride *= 2;
  Axis.Step = StepHz / double(Axis.Stride);
  const std::size_t Used = Axis.Stride * (NumPoints - 1) + 1;
  Axis.Size = std::bit_ceil(static_cast<std::size_t>(Room * double(Used)) + 16);
  Axis.FirstPoint = (Axis.Size - Used) / 2;
  Axis.First = FirstHz - double(Axis.FirstPoint) * Axis.Step;
  return Axis;
}

std::vector<double> FactorsOf(const LineAxis& Axis, const LineShape& Shape, ShapePart Part) {
  std::vector<double> Factors;
  const double TimeStep = 1.0 / (double(Axis.Size) * Axis.Step);
  for (std::size_t K = 0; K <= Axis.Size / 2; ++K) {
    const double Time = double(K) * TimeStep;
    const double X = Pi * Time * Axis.Step;
    const double Sinc = X > 0.0 ? std::sin(X) / X : 1.0;
    double Factor = std::exp(-Pi * Shape.Lorentz * Time) * GaussDecay(Shape.Gauss, Time) / (Sinc * Sinc * Sinc * Sinc);
    if (Part == ShapePart::ByLorentz) Factor *= -Pi * Time;
    if (Part == ShapePart::ByGauss) Factor *= -Pi * Pi * Shape.Gauss * Time * Time / (2.0 * std::numbers::ln2);
    Factors.push_back(Factor / Axis.Step);
  }
  return Factors;
}

std::vector<double> ShapeLines(const LineAxis& Axis, const std::vector<double>& Nodes,
                               const std::vector<double>& Factors) {
  std::vector<double> Values = Nodes;
  ChangeInTime(Values, Factors);
  std::vector<double> Samples(Axis.NumPoints);
  for (std::size_t K = 0; K < Axis.NumPoints; ++K) Samples[K] = Values[Axis.FirstPoint + K * Axis.Stride];
  return Samples;
}

void BlurValues(std::vector<double>& Values, double StepHz, double WidthHz) {
  if (WidthHz < StepHz) return;
  constexpr double Reach = 2.0;  // widths
  const std::size_t NumValues = Values.size();
  Values.resize(std::bit_ceil(NumValues + static_cast<std::size_t>(Reach * WidthHz / StepHz)));
  std::vector<double> Factors;
  const double TimeStep = 1.0 / (double(Values.size()) * StepHz);
  for (std::size_t K = 0; K <= Values.size() / 2; ++K) Factors.push_back(GaussDecay(WidthHz, double(K) * TimeStep));
  ChangeInTime(Values, Factors);
  Values.resize(NumValues);
}

}  // namespace nmrcalc
