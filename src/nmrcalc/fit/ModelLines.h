#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "nmrcalc/fit/LineAxis.h"
#include "nmrcalc/input/SpectrumInput.h"
#include "nmrcalc/spins/SpinSystem.h"

namespace nmrcalc {

// The lines of a spin system on a grid, and how they change with its shifts and couplings.

// What one unit of a parameter does.
struct LineDirection {
  std::vector<std::pair<std::size_t, double>> Offsets{};     // of sites, Hz
  std::vector<std::pair<std::size_t, std::size_t>> Pairs{};  // whose couplings grow by 1 Hz
};

// Every observed nucleus has the intensity 1 in all.
struct LineNodes {
  std::vector<double> Lines{};
  std::vector<std::vector<double>> Changes{};  // by direction; empty where they are not wanted
};

// How a part is computed: exactly, its changes by perturbation theory, or by clusters of one level, as stage 2 does
// where a part is too large, their changes by differences.
struct LinePart {
  SpinPart Part{};
  bool IsExact = true;
  std::vector<std::vector<std::size_t>> Cores{};  // of the clusters
};

std::vector<LinePart> PlanLineParts(const SpectrumInput& System);
// Whether any of them is cut.
bool AnyCut(const std::vector<LinePart>& Parts);

// Level is that of the clusters. Throws Failure where an eigenvalue problem does not converge.
LineNodes ComputeLines(const SpectrumInput& System, const std::vector<LinePart>& Parts,
                       const std::vector<LineDirection>& Directions, int Level, const LineAxis& Axis);

}  // namespace nmrcalc
