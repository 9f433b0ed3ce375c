#pragma once

#include <cstddef>
#include <vector>

#include "nmrcalc/input/SpectrumInput.h"
#include "nmrcalc/spins/BinnedLines.h"
#include "nmrcalc/spins/ClusterPlan.h"
#include "nmrcalc/spins/Workers.h"

namespace nmrcalc {

// The lines of the cores of a cluster, by exact diagonalisation of the cluster in the states of its surroundings.
//
// A transition a-b of the cluster C has for the core spin k the intensity <a|I+k|b><b|I-C|a>, so that the area of every
// spin is exact, and the lines that a strong coupling takes from one spin and gives to another stand where they belong.
// Single intensities may be negative; in the sum over the cluster they cancel.

// A share of the field states of a plan, and the lines found, one list for each core.
struct ClusterTask {
  std::size_t Plan = 0;
  std::size_t FirstField = 0;
  std::size_t EndField = 0;
  bool IsExact = true;  // else in single precision, to some 1e-4 Hz, in two thirds of the time
  std::vector<BinnedLines> Lines{};
};

// Fills Task.Lines; gives up from one block to the next when it must stop.
void SimulateCluster(const SpectrumInput& Input, const ClusterPlan& Plan, ClusterTask& Task, StopSign& Stop);

}  // namespace nmrcalc
