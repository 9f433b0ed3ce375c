#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "nmrcalc/spins/SpinSystem.h"

namespace nmrcalc {

// Basis of product states |m1 m2 ...> of a spin system, cut into the blocks that the Hamiltonian
//   H = sum Offset_i I_iz + sum J_ij I_i . I_j        (Hz)
// leaves apart: by the total Mz or, where spins are taken apart in groups, by the Mz of each group. A state is coded by
// one digit d = m + S (0..2S) for each spin.

struct BlockBasis {
  bool SplitFar = false;                  // the far spins are a group, whose flip-flops enter to second order
  std::vector<std::size_t> Group{};       // of each spin; the lines are those of group 0
  std::vector<std::uint32_t> Stride{};    // value of a digit in the state's code
  std::vector<std::uint8_t> Digits{};     // states x spins
  std::vector<std::uint32_t> Position{};  // place of a state in its block
  std::vector<std::uint32_t> Block{};     // of each state: f times the levels of group 0 plus k, see Chains
  std::vector<double> Energy{};           // diagonal element of each state, Hz; with SplitFar only
  // Chains[f][k]: codes of the states with level k of group 0; f stands for the levels of all other groups. Levels
  // count raised spins from 0. I+ of group 0 leads from [f][k] to [f][k + 1]. One group is one chain over the total.
  std::vector<std::vector<std::vector<std::uint32_t>>> Chains{};
  // Carriers taken off the offsets so that eigenvalues stay small, in Hz. Every line is ObservedCarrier too low.
  double ObservedCarrier = 0.0;
  std::vector<double> ReducedOffset{};
};

// The sizes of the blocks without building them; the same order as BlockBasis::Chains. Doubles: they may be huge.
std::vector<std::vector<double>> CountBlocks(const SpinSystem& System, bool SplitFar);

// With SplitFar the observed spins are group 0, the far ones group 1; else there is one group.
BlockBasis BuildBasis(const SpinSystem& System, bool SplitFar);
// Groups that are numbered in any way, one of them 0.
BlockBasis BuildGroupedBasis(const SpinSystem& System, const std::vector<std::size_t>& Group);

// The Hamiltonian of one block, column-major, both triangles, without the flip-flops between groups. With SplitFar they
// enter to second order (Van Vleck), which leaves an error of third order, see FarSplittingError.
std::vector<double> BuildHamiltonian(const SpinSystem& System, const BlockBasis& Basis,
                                     const std::vector<std::uint32_t>& States);

// Bound on the shift of a line, in Hz, that taking the far spins apart brings: the third-order term
//   sum (n_i n_x J_ix^2) x (largest row sum of |J|) / (4 D^2),
// i observed, x far, D the smallest distance of an observed and a far offset. Infinite when there is no distance.
double FarSplittingError(const SpinSystem& System);

// An element of the raising operator of the observed spins, between positions in neighbouring blocks.
struct RaisingElement {
  std::uint32_t From = 0;  // in the block at level k
  std::uint32_t To = 0;    // in the block at level k + 1
  double Value = 0.0;
};
std::vector<RaisingElement> BuildRaising(const SpinSystem& System, const BlockBasis& Basis,
                                         const std::vector<std::uint32_t>& States);
// The part of it that raises one spin.
std::vector<RaisingElement> BuildRaisingOfSpin(const SpinSystem& System, const BlockBasis& Basis,
                                               const std::vector<std::uint32_t>& States, std::size_t Spin);

}  // namespace nmrcalc
