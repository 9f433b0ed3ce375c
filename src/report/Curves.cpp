#include "report/Curves.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "measured/MeasuredTrace.h"
#include "spectrum/EnvelopeCurve.h"
#include "spectrum/SpectrumView.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

// Leaves out the points that a straight line between their neighbours meets within Tolerance: from each kept point on
// the cone of slopes that meet all points passed over is narrowed until it closes.
void Thin(const std::vector<Double>& Heights, Double Tolerance, ReportCurve& To) {
  const auto Keep = [&](std::size_t Point) {
    To.Points.push_back(static_cast<Long>(Point));
    To.Heights.push_back(static_cast<Long>(std::lround(Heights[Point])));
  };
  if (Heights.empty()) return;
  Keep(0);
  std::size_t From = 0;
  Double Least = -INFINITY;
  Double Most = INFINITY;
  for (std::size_t Point = 1; Point < Heights.size(); ++Point) {
    const auto Run = static_cast<Double>(Point - From);
    const Double Rise = Heights[Point] - Heights[From];
    if (Rise / Run < Least || Rise / Run > Most) {
      From = Point - 1;
      Keep(From);
      Least = Heights[Point] - Heights[From] - Tolerance;
      Most = Heights[Point] - Heights[From] + Tolerance;
      continue;
    }
    Least = std::max(Least, (Rise - Tolerance) / Run);
    Most = std::min(Most, (Rise + Tolerance) / Run);
  }
  if (Heights.size() > 1) Keep(Heights.size() - 1);
}

// The middle of the differences between neighbours: that of noise, since most points are on the base line.
Double NoiseOf(const std::vector<Double>& Heights) {
  std::vector<Double> Steps;
  for (std::size_t Point = 1; Point < Heights.size(); ++Point) {
    Steps.push_back(std::fabs(Heights[Point] - Heights[Point - 1]));
  }
  if (Steps.empty()) return 0;
  const auto Middle = Steps.begin() + static_cast<std::ptrdiff_t>(Steps.size() / 2);
  std::nth_element(Steps.begin(), Middle, Steps.end());
  return *Middle;
}

constexpr Double FinestTolerance = FullHeight / 10000.0;

void ScaleToFull(std::vector<Double>& Heights) {
  const Double Largest = Heights.empty() ? 0 : *std::max_element(Heights.begin(), Heights.end());
  if (!(Largest > 0)) return;
  for (Double& Each : Heights) Each *= FullHeight / Largest;
}

}  // namespace

Double ReportLineWidth() { return SpectrumView.OwnWidth ? EnvelopeWidth() : 1.0; }

ReportCurve BuildSimulatedCurve(Double HighPpm, Double LowPpm) {
  ReportCurve Curve;
  const Double MHz = W.NMRFrequency;
  if (!IsSet(W.SpectraAvailable) || W.PeakCount == 0 || !(MHz > 0) || !(HighPpm > LowPpm)) return Curve;
  constexpr Double PointsPerWidth = 8.0;
  constexpr Double FewestPoints = 2000;
  constexpr Double MostPoints = 60000;
  const Double Range = (HighPpm - LowPpm) * MHz;
  const Double Count = std::round(std::clamp(Range / ReportLineWidth() * PointsPerWidth, FewestPoints, MostPoints));
  Curve.First = HighPpm;
  Curve.Step = -(HighPpm - LowPpm) / Count;
  // The view's frequencies are negated: they rise while the shift falls.
  std::vector<Double> Heights =
      BuildEnvelope(-HighPpm * MHz, Range / Count, static_cast<std::size_t>(Count) + 1, ReportLineWidth());
  ScaleToFull(Heights);
  Thin(Heights, FinestTolerance, Curve);
  return Curve;
}

ReportCurve BuildMeasuredCurve() {
  ReportCurve Curve;
  if (!HasMeasured() || W.MeasuredCount < 2) return Curve;
  Curve.First = MeasuredPpmAt(0);
  Curve.Step = MeasuredPpmAt(1) - Curve.First;
  std::vector<Double> Heights;
  Heights.reserve(static_cast<std::size_t>(W.MeasuredCount));
  for (Long Point = 0; Point < W.MeasuredCount; ++Point) Heights.push_back(MeasuredIntensityAt(Point));
  ScaleToFull(Heights);
  constexpr Double NoiseShare = 1.5;
  Thin(Heights, std::max(FinestTolerance, NoiseShare * NoiseOf(Heights)), Curve);
  return Curve;
}

std::vector<ReportLine> BuildReportLines(const std::vector<Signal>& Signals) {
  std::vector<ReportLine> Lines;
  const Double MHz = W.NMRFrequency;
  if (!IsSet(W.SpectraAvailable) || W.PeakCount == 0 || !(MHz > 0)) return Lines;
  struct Part {
    int Signal;
    Double Hz;
    Double Intensity;
  };
  std::vector<Part> Parts;
  Parts.reserve(static_cast<std::size_t>(W.PeakCount));
  const std::vector<int> Owners = FindSignalOfPeaks(Signals);
  for (Long Peak = 0; Peak < W.PeakCount; ++Peak) {
    Parts.push_back({Owners[static_cast<std::size_t>(Peak)], -Double{W.PeakFrequency[Peak]}, W.PeakIntensity[Peak]});
  }
  std::sort(Parts.begin(), Parts.end(),
            [](const Part& A, const Part& B) { return std::pair(A.Signal, A.Hz) < std::pair(B.Signal, B.Hz); });
  // Lines of a signal that no width of the curve tells apart are one, at their middle.
  const Double Apart = ReportLineWidth() / 4;
  std::vector<Part> Merged;
  Double Tallest = 0;
  for (const Part& Each : Parts) {
    const bool Joins = !Merged.empty() && Merged.back().Signal == Each.Signal && Each.Hz - Merged.back().Hz < Apart;
    if (Joins) {
      Part& To = Merged.back();
      const Double Sum = To.Intensity + Each.Intensity;
      if (Sum > 0) To = {To.Signal, (To.Hz * To.Intensity + Each.Hz * Each.Intensity) / Sum, Sum};
    } else {
      Merged.push_back(Each);
    }
    Tallest = std::max(Tallest, Merged.back().Intensity);
  }
  constexpr Double LeastHeight = 0.002;
  for (const Part& Each : Merged) {
    if (Each.Intensity > LeastHeight * Tallest) Lines.push_back({Each.Hz / MHz, Each.Intensity / Tallest, Each.Signal});
  }
  return Lines;
}

}  // namespace zelvanor
