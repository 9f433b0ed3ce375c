#pragma once

#include <cstddef>
#include <vector>

#include "nmrcalc/input/SpectrumInput.h"
#include "nmrcalc/spins/Lines.h"
#include "nmrcalc/spins/SpinSystem.h"
#include "nmrcalc/spins/Workers.h"

namespace nmrcalc {

// The spectrum of a part by clusters, see ClusterPlan.h and ClusterLines.h. They grow level by level; how far the
// spectrum of a level is from the truth is told by its distance from the level two below.

// The intensity of one nucleus in a cut spectrum, that of twelve coupled spins in an exact one.
inline constexpr double CutNucleusIntensity = 2048.0;

// The line width at which errors count, in Hz, full width at half height.
inline constexpr double ErrorLineWidth = 1.0;

struct CutLimits {
  double Tolerance = 0.003;         // of the area
  RunClock::time_point Deadline{};  // growing ends here, but for the first levels
  double ExactSeconds = 0.0;        // what the exact answer would take; 0: it is out of reach
  double Bytes = 0.0;               // memory that may be used
  int LastLevel = 0;                // 0: as far as time and memory reach
};

struct CutResult {
  std::vector<std::vector<Line>> SiteLines{};  // as SpinPart::Sites; CutNucleusIntensity for each nucleus
  double Error = 1.0;                          // estimated, of the area
  int Level = 0;
  std::size_t NumClusters = 0;
  std::size_t SmallestCluster = 0;  // spins
  std::size_t LargestCluster = 0;
};

CutResult SimulateCut(const SpectrumInput& Input, const SpinPart& Part, const CutLimits& Limits);

}  // namespace nmrcalc
