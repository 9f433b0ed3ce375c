#pragma once

#include <cstddef>
#include <vector>

#include "nmrcalc/input/SpectrumInput.h"
#include "nmrcalc/spins/ClusterGrowth.h"
#include "nmrcalc/spins/SpinSystem.h"

namespace nmrcalc {

// How a part that is too large for one piece is cut. Each observed site, or strongly coupled pair of sites, is the core
// of a cluster: the sites of its neighbourhood that matter most. A cluster is simulated exactly, and only the lines of
// its cores are kept. The sites outside act on it as static fields.

// One state of what stands outside: the frequency that it adds to each member of the cluster.
struct FieldState {
  double Weight = 1.0;
  std::vector<double> Field{};  // Hz, as ClusterPlan::Sites
  std::vector<double> Mz{};     // of the sites outside, as ClusterPlan::Outside
};

struct ClusterPlan {
  std::vector<std::size_t> Sites{};   // indices into SpectrumInput::Sites, rising
  std::vector<std::size_t> Groups{};  // as Sites; flip-flops between groups enter to second order. 0: that of the cores
  std::vector<std::size_t> Cores{};   // places in Sites
  std::vector<std::size_t> Outside{};  // sites that are coupled to members
  // States of the outside: the cluster is diagonalised in each. All there are, or a sample. The weights add up to 1.
  std::vector<FieldState> Fields{};
  bool IsWhole = false;  // nothing is left outside
  // The most influential site that was too large for the level; NoSite when there is none.
  std::size_t Refused = NoSite;
  double Operations = 0.0;  // floating point operations, estimated
};

// The observed sites of a part in the groups that share a cluster.
std::vector<std::vector<std::size_t>> FindCores(const SpectrumInput& Input, const SpinPart& Part);

// The clusters of one level: each costs no more than Level strongly coupled spins 1/2, as far as its core leaves a
// choice. Cores of equal clusters are together in one.
std::vector<ClusterPlan> PlanClusters(const SpectrumInput& Input, const SpinPart& Part, const Neighbourhood& Near,
                                      const std::vector<std::vector<std::size_t>>& Cores, int Level);

}  // namespace nmrcalc
