#pragma once

#include <map>

#include "basic/Types.h"

namespace zelvanor {

// Shifts that were measured and assigned, Workspace.Assigned...: by atom number, ppm.
void StoreAssignedShifts(const std::map<int, Double>& Shifts);

// Their section of the document, "ATOM PPM" a line and "solvent NAME", and the variables of scripts. Once, at start-up.
void AddAssignedShifts();

}  // namespace zelvanor
