#pragma once

#include <Geometry/point.h>

#include <vector>

namespace RDKit {
class ROMol;
}

namespace zelvanor::convert {

// More atoms than this get no places made: the distances between them would take gigabytes.
inline constexpr unsigned MostMadeAtoms = 1500;

// Places for a molecule in one piece whose hydrogens are there, in angstrom, by distance geometry and a force field.
// They do not depend on the order of its atoms. Throws a Failure where none are found.
std::vector<RDGeom::Point3D> MakePlaces(const RDKit::ROMol& Part);

}  // namespace zelvanor::convert
