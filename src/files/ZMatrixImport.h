#pragma once

#include "files/BondSearch.h"
#include "files/MoleculeTree.h"

namespace zelvanor {

// The tree of the present system. The tree of the last Z-matrix stays alive until the next one has been made.
struct MoleculeTreeState {
  Htr TreeHandle = 0;  // 0 for none
  Integer SystemNode;
};

extern MoleculeTreeState MoleculeTree;

void AddZMatrixVariables();

// Reads a Z-matrix file and builds its system in the tree, with bonds and their orders. Returns the system's node.
// Throws a Failure with the file's line where the file makes no sense.
Id IdSysFromZmatLszHwnd(const Text& Path, int Window, Htr Tree);

// Makes the tree of a file. When the file can't be read, the former tree stays.
void ConvertZMatrix(const Text& Path);
// Builds the atom table from the tree. Reports its failures.
Flag BuildAtomTableFromTree();
// Builds the tree from the atom table when it isn't that of the present system, and gives it the table's types.
void FitTreeToAtomTable();

Htr TreeHandleValue();
Id SystemNodeValue();

// The atoms of a system in their order, with their bonds; Nodes gets their identifiers.
BondGraph GraphFromTree(Htr Tree, Id System, std::vector<Id>& Nodes);

}  // namespace zelvanor
