#pragma once

#include <optional>
#include <string>
#include <vector>

#include "nmrcalc/input/SpectrumInput.h"
#include "nmrcalc/spins/ClusterPlan.h"
#include "nmrcalc/spins/Lines.h"
#include "nmrcalc/spins/Workers.h"

namespace nmrcalc {

// Clusters simulated side by side on all cores.

// The intensity of one nucleus in a cut spectrum, that of twelve coupled spins in an exact one.
inline constexpr double CutNucleusIntensity = 2048.0;

struct ClusterJob {
  const SpectrumInput& Input;
  const std::vector<ClusterPlan>& Plans;
  RunClock::time_point Deadline{};
  bool MayStop = false;  // at the deadline
  bool IsExact = true;   // see ClusterTask
  std::string Doing{};   // told as progress
};

struct ClusterAnswer {
  std::vector<std::vector<Line>> SiteLines{};  // by site of the input; empty where it is no core
  std::vector<double> Seconds{};               // of each plan, of one core
};

// Nothing when the time was up before all was done. The lines do not depend on the number of cores.
std::optional<ClusterAnswer> RunClusters(const ClusterJob& Job);

}  // namespace nmrcalc
