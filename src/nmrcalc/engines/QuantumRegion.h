#pragma once

#include <vector>

#include "nmrcalc/input/ParamInput.h"

namespace nmrcalc {

// The part of the system that gets orbitals, and what stands for the rest.

struct PointCharge {
  Vector3 Place{};      // Angstrom
  double Charge = 0.0;  // elementary charges
};

struct QuantumRegion {
  std::vector<std::size_t> Atoms{};    // indices into the system, in the order of the system
  std::vector<Vector3> Caps{};         // hydrogens in place of what is bonded beyond the boundary
  std::vector<PointCharge> Charges{};  // the atoms outside
  int NumElectrons = 0;
};

// Without a selection all atoms are in the region and nothing is around it. A single bond that the boundary cuts is
// capped by a hydrogen on its line, at the bonds' usual length; the charge of the atom that it stands for goes in equal
// parts to that atom's other neighbours outside, since a charge so near would draw the orbitals out of the region.
// Throws Failure for a boundary through any other bond, an NMR atom outside, an open shell, atoms of no element.
QuantumRegion CutQuantumRegion(const ParamInput& Input);

// The place of an atom of the system among those of the region; the region's size when it is outside.
std::size_t PlaceInRegion(const QuantumRegion& Region, std::size_t Atom);

}  // namespace nmrcalc
