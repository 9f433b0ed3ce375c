#pragma once

#include <string>
#include <vector>

#include "nmrcalc/engines/Levels.h"
#include "nmrcalc/engines/QuantumRegion.h"

namespace nmrcalc {

// The input of NWChem: what is computed, without where and by how many processes.

// Couplings of one atom with others; places in the region, from 0.
struct CouplingGroup {
  std::size_t Source = 0;
  std::vector<std::size_t> Partners{};
};

// Which variant of the level the options choose.
bool UsesShieldingBasis(const QuantumOptions& Options);
bool UsesD(const Level& Theory, const QuantumOptions& Options);

// The tensors of all atoms of the region: they cost little beside the wave function, and another choice of NMR atoms
// finds them again.
std::string ShieldingInput(const ParamInput& Input, const QuantumRegion& Region, const Level& Theory);

// One task for each group. The wave function is an unrestricted one of the closed shell: the engine computes couplings
// of no other.
std::string CouplingInput(const ParamInput& Input, const QuantumRegion& Region, const Level& Theory,
                          const std::vector<CouplingGroup>& Groups);

// The pairs of NMR atoms within three bonds, but for hydrogens that exchange (on O and S, and on N that is no part of a
// ring or of a double bond), in as few groups as a quick search finds: the time goes by sources.
std::vector<CouplingGroup> ChooseCouplings(const ParamInput& Input, const QuantumRegion& Region);

}  // namespace nmrcalc
