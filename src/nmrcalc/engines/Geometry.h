#pragma once

#include <string>

#include "nmrcalc/Log.h"

namespace nmrcalc {

// Stage 4: the geometry of the system by xtb (GFN2-xTB), all atoms free, with the charge of the options. Reads a file
// of the form of nmrparam.in, which needs no NMR atoms; the text of nmrgeom.out: a line of description, the number of
// atoms, then x y z in Angstrom a line, in the order of the input. Throws Failure with what to do.
std::string OptimiseGeometry(const std::string& InputPath, const std::string& WorkDirectory, Log& Report);

}  // namespace nmrcalc
