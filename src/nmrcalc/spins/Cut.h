#pragma once

#include <cstddef>
#include <vector>

#include "nmrcalc/input/SpectrumInput.h"
#include "nmrcalc/spins/ClusterTeam.h"
#include "nmrcalc/spins/Lines.h"
#include "nmrcalc/spins/SpinSystem.h"
#include "nmrcalc/spins/Workers.h"

namespace nmrcalc {

// The spectrum of a part by clusters, see ClusterPlan.h and ClusterLines.h. They grow level by level, those first whose
// spectrum still moves most for the work that it takes; how far the spectrum is from the truth is told by its distance
// from that of clusters two levels below.

struct CutLimits {
  double Tolerance = 0.003;         // of the area
  RunClock::time_point Deadline{};  // growing ends here, but for the first level
  double ExactSeconds = 0.0;        // what the exact answer would take; 0: it is out of reach
  double Bytes = 0.0;               // memory that may be used
  int LastLevel = 0;                // 0: as far as time and memory reach
};

struct CutResult {
  std::vector<std::vector<Line>> SiteLines{};  // as SpinPart::Sites; CutNucleusIntensity for each nucleus
  double Error = 1.0;                          // estimated, of the area
  std::size_t NumClusters = 0;
  std::size_t SmallestCluster = 0;  // spins
  std::size_t LargestCluster = 0;
};

CutResult SimulateCut(const SpectrumInput& Input, const SpinPart& Part, const CutLimits& Limits);

}  // namespace nmrcalc
