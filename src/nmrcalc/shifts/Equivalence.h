#pragma once

#include <vector>

#include "nmrcalc/shifts/ShiftGraph.h"

namespace nmrcalc {

// Atoms that no measurement tells apart: those that the bonds, double bonds' sides and rings' faces give the same
// surroundings, but for diastereotopic ones. Mirror images are the same. In systems of more than LargestStereoCount
// atoms diastereotopic atoms count as equal.
struct Equivalence {
  std::vector<std::uint32_t> NodeGroup{};      // of each node: the lowest node of its group
  std::vector<std::uint32_t> HydrogenGroup{};  // of each hydrogen: the lowest hydrogen of its group
};

inline constexpr std::size_t LargestStereoCount = 400;

Equivalence FindEquivalence(const Molecule& System, const ShiftGraph& Graph);

}  // namespace nmrcalc
