#pragma once

#include <array>

#include "basic/Types.h"

namespace zelvanor {

// The molecule tree: a system node, below it molecules, below these atoms with bonds between them. Trees go by handles
// (Htr) and nodes by identifiers (Id) within their tree, both from 1 on; 0 stands for none. An operation on a handle or
// node that isn't there throws a Failure, but for DestroyHtr.

using Htr = Long;
using Id = Long;

enum NodeKind : int { SystemNodeKind = 269, MoleculeNodeKind = 270, AtomNodeKind = 271 };

// Words and reals of an atom, by their numbers.
enum AtomWord : int { AtomicNumberWord, NumAtomWords };
enum AtomReal : int { AtomXReal, AtomYReal, AtomZReal, NumAtomReals };  // angstrom

// Orders of bonds.
enum BondOrder : int { NoOrder, SingleOrder, DoubleOrder, TripleOrder, AromaticOrder };

Htr HtrCreate();
void DestroyHtr(Htr Tree);

Id IdCreateSystemHtrId(Htr Tree);
Id IdCreateMoleculeHtrId(Htr Tree, Id System);
Id IdCreateAtomHtrId(Htr Tree, Id Molecule);

// The number of nodes of a kind in the whole tree.
int CidGetHtrNdt(Htr Tree, int Kind);

void FSetAtomWordHtrIdNW(Htr Tree, Id Atom, int N, int Word);
int WGetAtomWordHtrIdN(Htr Tree, Id Atom, int N);
void FSetAtomRealHtrIdNR(Htr Tree, Id Atom, int N, Double Real);
Double RGetAtomRealHtrIdN(Htr Tree, Id Atom, int N);
// The atom's type, "**" until one is set.
void SetAtomTypeHtrId(Htr Tree, Id Atom, TextView Type);
Text AtomTypeHtrId(Htr Tree, Id Atom);

// Makes the bond, on both sides, or gives the one that is there this order.
void FSetBondHtrIdIdBdt(Htr Tree, Id First, Id Second, int Order);
int CountNeighborsHtrId(Htr Tree, Id Atom);
// The n-th neighbour (from 0) and the order of the bond to it; 0 behind the last.
Id IdGetNeighborHtrIdN(Htr Tree, Id Atom, int N);
int BdtGetBondOrderHtrIdN(Htr Tree, Id Atom, int N);

// A walk over the nodes of a kind below a node, in the order in which they were made.
struct LoopRecord {
  Htr Tree = 0;
  Id Below = 0;
  Id Last = 0;  // the node the walk stands on
  int Kind = 0;
};
void Loop(LoopRecord& Walk, Htr Tree, Id Below, Id After, int Kind);
// The next node, 0 behind the last.
Id Next(LoopRecord& Walk);

}  // namespace zelvanor
