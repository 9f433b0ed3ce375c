#pragma once

#include "basic/Types.h"

namespace zelvanor {

// The text that names an NMR atom (0-based) in all tables: molecule, atom in the molecule and element, as "1-5(C)", or
// without a molecule the atom's place among the NMR atoms, as "2(H)". Throws a Failure where it can't be formed.
Text AtomLabel(int Atom);

// An atom number that no atom can have is told to the user and becomes the atom's own place.
void RepairNMRAtom(int Atom);

}  // namespace zelvanor
