#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// Fills ReferenceElement, NMRAtomSpinHalf and NMRPairSpinHalf for the present SpectraType. Reports its failure.
Flag FindSpinHalfNuclei();

// A magnetically distinct group of NMR atoms.
struct SpinSite {
  int Atom = 0;  // index of the NMR atom that stands for it
  int Degeneracy = 1;
  Double Shift = 0;  // ppm
};
// The sites with a counted spin in the order of the input; sets ChemicalShift, SpectrumSpan and the flags of the nuclei
// on the way. Throws a Failure.
std::vector<SpinSite> FindSpinSites();

// Reduces the NMR atoms to spin sites and writes the input of stage 2; sets ChemicalShift, SpectrumSpan and the counts
// of spins on the way. Reports its failures; without an observed nucleus the file is written and the result is 0.
Flag WriteSpectInput(const Text& Path);

// The site of each NMR atom, from 1 in the order of the input; 0 for a nucleus without a counted spin.
std::vector<int> FindSiteOfAtoms();

}  // namespace zelvanor
