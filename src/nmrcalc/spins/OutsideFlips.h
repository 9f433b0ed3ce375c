#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "nmrcalc/input/SpectrumInput.h"
#include "nmrcalc/spins/BinnedLines.h"
#include "nmrcalc/spins/Blocks.h"
#include "nmrcalc/spins/ClusterPlan.h"
#include "nmrcalc/spins/SpinSystem.h"

namespace nmrcalc {

// What the flip-flops of a cluster with the sites outside do beyond the static fields, to the lowest order in the
// coupling over the distance: they shift and couple the states of the cluster (J. H. Van Vleck, Phys. Rev. 33 (1929)
// 467), let its lines lean towards those of the sites outside, and give to these lines a share of the cluster's spins.

// A site outside as the spins of one system of the cluster see it.
struct OuterSite {
  double Frequency = 0.0;  // Hz
  double Shift = 0.0;      // Hz, of second order, by all sites that it is coupled to
  double NumSpins = 1.0;
  std::vector<double> J{};           // Hz, as the spins of the system
  std::vector<std::size_t> Spins{};  // those that it is coupled to
  std::vector<double> Lean{};        // as the spins: the sine of twice the angle by which the two mix
  std::vector<double> JOutside{};    // Hz, as ClusterPlan::Outside
};

std::vector<OuterSite> FindOuterSites(const SpectrumInput& Input, const ClusterPlan& Plan, const SpinSystem& System);

// The product states of a block without its surroundings, states x spins.
struct BlockResonances {
  std::vector<double> Mz{};
  std::vector<double> Hz{};  // of each spin, in the fields of all others
};
BlockResonances FindResonances(const SpinSystem& System, const BlockBasis& Basis,
                               const std::vector<std::uint32_t>& States);

// One block of a system in one state of its surroundings.
struct BlockInField {
  const SpinSystem& System;
  const BlockBasis& Basis;
  const std::vector<std::uint32_t>& States;
  const BlockResonances& Resonances;
  const std::vector<OuterSite>& Outside;
  const FieldState& Field;
};

// A product state of the block in its surroundings.
struct ProductState {
  std::size_t Place = 0;
  std::vector<double> Mz{};
  std::vector<double> Resonance{};  // Hz, of each spin, in the fields of all others and of the surroundings
};
void FillState(const BlockInField& Block, std::size_t Place, ProductState& Result);

// <m + Step| I+- |m>, 0 where the spin ends.
inline double StepFactor(int TwiceSpin, double Mz, int Step) {
  if (TwiceSpin == 1) return Mz * Step < 0.0 ? 1.0 : 0.0;
  const double Spin = 0.5 * TwiceSpin;
  return std::sqrt(std::max(0.0, Spin * (Spin + 1.0) - Mz * (Mz + Step)));
}

// One over the distance, as far as perturbation by the matrix element holds.
inline double Inverse(double Distance, double Element) {
  const double Square = Distance * Distance + Element * Element;
  return Square > 0.0 ? Distance / Square : 0.0;
}

// The sine of twice the angle by which two spins mix, with the sign of the distance; it goes to nothing where they are
// too close for perturbation.
double SineOf(double J, double Distance);

double MzOf(const SpinSystem& System, const BlockBasis& Basis, std::uint32_t State, std::size_t Spin);

// Adds to the Hamiltonian of the block what the flip-flops with the outside do in second order.
void AddOutsideFlips(const BlockInField& Block, std::vector<double>& Matrix);

// The raising operator of the cluster from the block, with the lean of each spin's lines, of those of its spins.
std::vector<RaisingElement> AddLean(const BlockInField& Block, const std::vector<std::vector<RaisingElement>>& Raising);

// Adds the lines of the sites outside that a core spin has a share in. Polarization holds <Iz> of each spin in each
// eigenstate of the block, spins x eigenstates.
void AddOutsideLines(const BlockInField& Block, const std::vector<double>& Polarization, std::size_t CoreSpin,
                     double Weight, BinnedLines& Target);

}  // namespace nmrcalc
