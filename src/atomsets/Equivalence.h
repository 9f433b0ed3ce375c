#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// The class of each atom of the atom table by its bonds alone.
std::vector<int> FindConstitutionalClasses();

// The class of each atom of the atom table, from 1: atoms with the same surroundings share one. Of the geometry only
// cis and trans count: for the hydrogens of a =CH2, and for the two sides of a ring with a stereo centre. The order of
// the atoms changes nothing but the numbers.
std::vector<int> FindAtomClasses();

// Sets of NMR atoms of one class that stand at the same distance, in bonds, from every NMR atom outside it, so that
// they couple alike: those of a methyl group, but not those of a disubstituted benzene. Largest first, at most Most of
// them with 2 to 20 members each, by rising atom number.
std::vector<std::vector<int>> FindEquivalentSets(const std::vector<int>& Classes, int Most);

// Makes these the equivalent sets of the Workspace.
void TakeEquivalentSets(const std::vector<std::vector<int>>& Sets);

}  // namespace zelvanor
