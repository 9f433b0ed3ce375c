#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "nmrcalc/input/Molecule.h"
#include "nmrcalc/input/Tables.h"

namespace nmrcalc {

// Coupling constants in Hz from the bond path of one to five bonds that joins two nuclei.
//
// A path is written in kinds and bonds, as H-C3-C3-H or F-C2=C2-H. Kinds: H, C3, C2, CO (carbonyl), CA (aromatic), C1,
// N, NA (aromatic, two neighbours), NP (aromatic, three), O, F, P (three-valent), PV, S and the symbol of any other
// element. Bonds: = double, # triple, - all others. In the tables * stands for any kind and C* for any carbon. A path
// is looked up in both directions; of several rows that fit, the one with the fewest stars counts.
//
// Three-bond couplings over a bond that can turn are means over the rotamers and do not depend on the geometry drawn.
// In rings they follow the torsion angle, and between CH groups beside a ring, which crowd one another into one
// conformation.

const std::vector<RequiredTable>& RequiredCouplingTables();

struct CouplingModel {
  const TableFile& Tables;
  const Molecule& System;
  std::map<std::string, const std::vector<double>*> Found{};  // rows by table and path, as far as looked up
};

// The coupling constants between the atoms, Selection x Selection, symmetric, diagonal 0.
std::vector<double> EstimateCouplings(CouplingModel& Model, const std::vector<std::size_t>& Selection);

// One coupling along one path of two to six atoms.
double EstimateAlongPath(CouplingModel& Model, const std::vector<std::size_t>& Path);

// Whether the hydrogen exchanges so fast that its couplings are not seen (OH, amine NH).
bool Exchanges(const TableFile& Tables, const Molecule& System, std::size_t Center);

// The path in kinds and bonds.
std::string DescribePath(const Molecule& System, const std::vector<std::size_t>& Path);

// Whether a path matches a row's key, forwards or backwards; the number of stars in Stars.
bool PathMatches(const std::string& Path, const std::string& Key, int& Stars);

// Three-bond H-C-C-H over the torsion angle with the substituents' orientations: C. A. G. Haasnoot, F. A. A. M. de
// Leeuw, C. Altona, Tetrahedron 36 (1980) 2783. Parameters P1 to P6 in Hz and (P6) degrees.
double HaasnootCoupling(const Molecule& System, const std::array<std::size_t, 4>& Path,
                        const std::vector<double>& Parameters);

}  // namespace nmrcalc
