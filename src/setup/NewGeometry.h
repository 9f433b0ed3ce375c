#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Takes new coordinates (a line of description, the number of atoms, x y z in angstrom a line) into the atom table and
// the stored lines of the system, and marks results stale. Moved is the largest distance between an old place and its
// new one, after the whole has been laid over the old one by its centre. False, with nothing changed, for coordinates
// that do not fit the system.
bool TakeGeometry(const Text& Coordinates, Double& Moved);

}  // namespace zelvanor
