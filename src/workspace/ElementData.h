#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Covalent radius in angstrom: B. Cordero et al., Dalton Trans. 2008, 2832, up to curium (low spin where there are
// two), 1.5 behind it; 0.25 for the lone pair.
Single CovalentRadius(int AtomicNumber);

// The largest number of atoms that an atom of the element binds in ordinary molecules; metals and heavy elements take
// as many as the atom table holds.
int LargestCoordination(int AtomicNumber);

// The number of bonds that an atom of the element makes in its common valence, a double bond counting two; 0 for an
// element whose bonds have no fixed number.
int CommonValence(int AtomicNumber);

}  // namespace zelvanor
