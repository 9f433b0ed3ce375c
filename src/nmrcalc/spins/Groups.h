#pragma once

#include <cstddef>
#include <vector>

#include "nmrcalc/input/SpectrumInput.h"

namespace nmrcalc {

// Sites that are magnetically equivalent: the same shift, and the same coupling to every other site of their part.
// Together they are one site of all their spins, exactly; the coupling between them changes no line.
struct GroupedInput {
  SpectrumInput Input{};                            // one site for each group, in the order of the first members
  std::vector<std::vector<std::size_t>> Members{};  // the sites of the file in each group, rising
};

// Shifts and couplings nearer than this, in ppm and Hz, are equal; input files have three decimals.
inline constexpr double SameNumber = 1e-7;

// Only sites that couplings join, directly or through others, are taken together, so every part keeps its spins.
GroupedInput GroupEquivalentSites(const SpectrumInput& Input);

}  // namespace nmrcalc
