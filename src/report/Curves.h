#pragma once

#include <vector>

#include "report/Signals.h"

namespace zelvanor {

// A curve with as many points as it takes to look the same: points of a grid whose heights count from 0 to FullHeight.
struct ReportCurve {
  Double First = 0;  // of grid point 0, ppm
  Double Step = 0;   // below 0
  std::vector<Long> Points;
  std::vector<Long> Heights;
};
inline constexpr Long FullHeight = 100000;

// A line of the simulated spectrum, or several that stand close.
struct ReportLine {
  Double Ppm = 0;
  Double Height = 0;  // share of the tallest one
  int Signal = -1;    // that it belongs to most; -1: unknown
};

// Of the simulated lines, Hz: the user's, else 1. The view's own one is as wide as its pixels want it.
Double ReportLineWidth();

// Both are empty where there is no such spectrum.
ReportCurve BuildSimulatedCurve(Double HighPpm, Double LowPpm);
ReportCurve BuildMeasuredCurve();

std::vector<ReportLine> BuildReportLines(const std::vector<Signal>& Signals);

}  // namespace zelvanor
