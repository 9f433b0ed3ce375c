#pragma once

#include <cstddef>
#include <vector>

#include "nmrcalc/input/SpectrumInput.h"
#include "nmrcalc/spins/SpinSystem.h"

namespace nmrcalc {

// Which sites come into a cluster: both ends of the couplings whose flip-flops change most of what is seen of its core.

inline constexpr auto NoSite = static_cast<std::size_t>(-1);

struct MixedSite {
  std::size_t Site = 0;
  double J = 0.0;       // Hz; of two that are coupled through a third alone, to second order
  double Mixing = 0.0;  // how much of the other a state of one of the two holds: 0 first order, 1 equal shifts
};
using Neighbourhood = std::vector<std::vector<MixedSite>>;  // by site of the input

// The couplings of a part. The mixing is the mean over the states of all others, whose couplings spread the distance of
// the two.
Neighbourhood FindNeighbours(const SpectrumInput& Input, const SpinPart& Part);

// The members of a cluster, in groups. Flip-flops between groups count no more than those with the sites outside, and
// are taken as these are, see DroppedFlips.h.
struct Growth {
  std::vector<std::size_t> Sites{};
  std::vector<double> Influence{};    // as Sites, 1 for the core
  std::vector<std::size_t> Groups{};  // as Sites, 0 for the core
  std::size_t Refused = NoSite;       // the first that was too large
};

// Takes in both ends of the coupling with the highest score, and the site that sees it, again and again, as long as the
// cost (see GroupedCost) is no more than LargestCost. The share of the core that stands at a site falls with each step
// from it. A coupling scores its mixing times the share that sees it, be it at one of its ends or at a third site whose
// couplings to the two differ by what can be seen, or times the score of a coupling beside it. It joins the groups of
// its ends, and so does each that scores as much; those of the core itself join from a fifth of it. Nuclei that are not
// observed stay outside; as static fields they lose nothing.
Growth GrowCluster(const SpectrumInput& Input, const Neighbourhood& Near, const std::vector<std::size_t>& Core,
                   double LargestCost);

// What the diagonalisation of sites of these degeneracies costs: the sum over the blocks of all total spins of the cube
// of their size, times what small ones are slower. The blocks are apart by the Mz of each group.
double GroupedCost(const std::vector<int>& Degeneracies, const std::vector<std::size_t>& Groups);
// The same of one group.
double SimulationCost(const std::vector<int>& Degeneracies);

}  // namespace nmrcalc
