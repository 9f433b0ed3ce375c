#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "nmrcalc/spins/Lines.h"
#include "nmrcalc/spins/Origins.h"
#include "nmrcalc/spins/SpinSystem.h"
#include "nmrcalc/spins/Workers.h"

namespace nmrcalc {

// Lines of spin systems by exact diagonalisation, block by block, on all cores.

// What a simulation will cost; numbers as Doubles, since a system may be beyond all bounds.
struct ExactCost {
  double LargestBlock = 0.0;  // states
  double Bytes = 0.0;         // peak with one worker, without the lines
  double Operations = 0.0;    // floating point operations
  double Transitions = 0.0;
};

struct ExactLimits {
  double Bytes = 0.0;              // memory that may be used
  double FaintestIntensity = 0.0;  // transitions below are not kept
  double MinimalIntensity = 0.0;   // merged lines below will be dropped by the caller
  double FaintestOrigin = 0.0;     // of transitions below nobody asks where they come from
  double FarFrequency = 0.0;       // lines beyond this |Hz| belong to nuclei that are not observed; 0: no limit
  RunClock::time_point Deadline = RunClock::time_point::max();
};

// The error in a line, in Hz, below which far spins are taken apart from the observed ones.
inline constexpr double LargestSplittingError = 1e-6;

ExactCost EstimateExactCost(const std::vector<SpinSystem>& Systems);

// Transitions of the observed spins with the systems' weights; not sorted, not merged, most of those left out that
// cannot reach the minimal intensity together with their neighbours. Throws Failure when the lines grow beyond the
// memory or an eigenvalue problem does not converge. Adds to Origins which sites the transitions come from. Nothing as
// soon as it is clear, by the speed so far, that it will not be done by the deadline.
std::optional<std::vector<Line>> SimulateExact(const std::vector<SpinSystem>& Systems, const ExactLimits& Limits,
                                               LineOrigins& Origins);

}  // namespace nmrcalc
