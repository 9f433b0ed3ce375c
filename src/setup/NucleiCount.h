#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Makes the document one of Count NMR atoms, with room for their results. Those that are there keep their results; new
// ones are the lowest atoms of the system that are none yet, and beyond its last atom a virtual molecule without
// coordinates of the spectrum's element. Throws a Failure, with nothing changed, for more than the results can hold.
void ResizeNMRAtoms(Integer Count);

// Without a molecule the carbon and nitrogen NMR atoms are the labelled ones, and the oxygens of an oxygen spectrum.
void LabelHeavyNuclei();

}  // namespace zelvanor
