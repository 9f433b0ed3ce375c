#pragma once

#include <array>
#include <cstddef>

#include "nmrcalc/input/Molecule.h"
#include "nmrcalc/input/Tables.h"

namespace nmrcalc {

// The shielding tensor, estimated: the isotropic shielding plus traceless terms of the local bonding,
//   A (v v' - 1/3),
// v the normal of an sp2 atom's plane, the axis of its multiple bond (for an aromatic carbon the direction out of the
// ring), or the direction of a single bond of an sp3 atom. Symmetric by construction; in ppm, in the axes of the
// coordinates. Of the right size for the kind of atom; not more than that.
struct ShieldingTensor {
  std::array<double, 9> Components{};   // row by row
  std::array<double, 3> Eigenvalues{};  // rising
  double Isotropic = 0.0;               // a third of the trace
  double Anisotropy = 0.0;              // the largest eigenvalue less the mean of the other two; never negative
};

ShieldingTensor EstimateTensor(const TableFile& Tables, const Molecule& System, std::size_t Center, double Isotropic);

}  // namespace nmrcalc
