#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "nmrcalc/spins/Blocks.h"
#include "nmrcalc/spins/OutsideFlips.h"
#include "nmrcalc/spins/SpinSystem.h"

namespace nmrcalc {

// What the flip-flops between the groups of a cluster do: they count no more than those with the sites outside, so they
// enter to the lowest order as these do (see OutsideFlips.h), and the blocks are as small as those of the groups.

// Two coupled spins of different groups.
struct DroppedFlip {
  std::size_t Spin = 0;
  std::size_t Partner = 0;
  double J = 0.0;     // Hz
  double Lean = 0.0;  // the sine of twice the angle by which the two mix
};

// Both directions of each pair.
std::vector<DroppedFlip> FindDroppedFlips(const SpinSystem& System, const std::vector<std::size_t>& Group);

// Adds to the Hamiltonian of the block what the flip-flops do in second order.
void AddDroppedFlips(const BlockInField& Block, const std::vector<DroppedFlip>& Flips, std::vector<double>& Matrix);

// Lets the lines of a spin lean in the states of its partners.
void AddDroppedLean(const SpinSystem& System, const BlockBasis& Basis, const std::vector<std::uint32_t>& States,
                    const std::vector<DroppedFlip>& Flips, std::size_t Spin, std::vector<RaisingElement>& Raising);

// The share of a spin in the lines of its partners in a group, as elements of the group's raising operator.
std::vector<RaisingElement> BuildShareInGroup(const SpinSystem& System, const BlockBasis& Basis,
                                              const std::vector<std::uint32_t>& States,
                                              const std::vector<DroppedFlip>& Flips, std::size_t Spin,
                                              std::size_t Group);

}  // namespace nmrcalc
