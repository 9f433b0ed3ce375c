#include "files/MoleculeTree.h"

#include <algorithm>
#include <map>
#include <vector>

namespace zelvanor {

namespace {

constexpr const char* UnknownType = "**";

struct Bond {
  Id Other;
  int Order;
};

struct AtomData {
  std::array<int, NumAtomWords> Words{};
  std::array<Double, NumAtomReals> Reals{};
  Text Type = UnknownType;
  std::vector<Bond> Bonds;
};

struct Node {
  int Kind;
  Id Parent;
  AtomData Atom;  // of an atom
};

using Nodes = std::vector<Node>;  // node Id stands at Id - 1

struct Forest {
  std::map<Htr, Nodes> Trees;
  Htr LastHandle = 0;
};

Forest& AllTrees() {
  static Forest All;
  return All;
}

Nodes& NodesOf(Htr Tree) {
  const auto Entry = AllTrees().Trees.find(Tree);
  if (Entry == AllTrees().Trees.end()) throw Failure("There is no such molecule tree");
  return Entry->second;
}

Node& NodeOf(Nodes& All, Id Place) {
  if (Place < 1 || static_cast<std::size_t>(Place) > All.size()) throw Failure("There is no such node");
  return All[static_cast<std::size_t>(Place) - 1];
}

AtomData& AtomOf(Htr Tree, Id Atom) {
  Node& Found = NodeOf(NodesOf(Tree), Atom);
  if (Found.Kind != AtomNodeKind) throw Failure("The node is no atom");
  return Found.Atom;
}

Id CreateNode(Htr Tree, Id Parent, int Kind, int ParentKind) {
  Nodes& All = NodesOf(Tree);
  if (Parent != 0 && NodeOf(All, Parent).Kind != ParentKind) throw Failure("The node can't have such a child");
  All.push_back({Kind, Parent, {}});
  return static_cast<Id>(All.size());
}

template <class Values>
auto& ValueAt(Values& All, int N) {
  if (N < 0 || static_cast<std::size_t>(N) >= All.size()) throw Failure(failures::Subscript);
  return All[static_cast<std::size_t>(N)];
}

void SetHalfBond(AtomData& Atom, Id Other, int Order) {
  const auto Known =
      std::find_if(Atom.Bonds.begin(), Atom.Bonds.end(), [&](const Bond& B) { return B.Other == Other; });
  if (Known == Atom.Bonds.end()) {
    Atom.Bonds.push_back({Other, Order});
  } else {
    Known->Order = Order;
  }
}

bool IsBelow(Nodes& All, Id Place, Id Above) {
  for (Id Up = NodeOf(All, Place).Parent; Up != 0; Up = NodeOf(All, Up).Parent) {
    if (Up == Above) return true;
  }
  return false;
}

}  // namespace

Htr HtrCreate() {
  Forest& All = AllTrees();
  All.Trees[++All.LastHandle];
  return All.LastHandle;
}

void DestroyHtr(Htr Tree) { AllTrees().Trees.erase(Tree); }

Id IdCreateSystemHtrId(Htr Tree) { return CreateNode(Tree, 0, SystemNodeKind, 0); }
Id IdCreateMoleculeHtrId(Htr Tree, Id System) { return CreateNode(Tree, System, MoleculeNodeKind, SystemNodeKind); }
Id IdCreateAtomHtrId(Htr Tree, Id Molecule) { return CreateNode(Tree, Molecule, AtomNodeKind, MoleculeNodeKind); }

int CidGetHtrNdt(Htr Tree, int Kind) {
  const Nodes& All = NodesOf(Tree);
  return static_cast<int>(std::count_if(All.begin(), All.end(), [&](const Node& N) { return N.Kind == Kind; }));
}

void FSetAtomWordHtrIdNW(Htr Tree, Id Atom, int N, int Word) { ValueAt(AtomOf(Tree, Atom).Words, N) = Word; }
int WGetAtomWordHtrIdN(Htr Tree, Id Atom, int N) { return ValueAt(AtomOf(Tree, Atom).Words, N); }
void FSetAtomRealHtrIdNR(Htr Tree, Id Atom, int N, Double Real) { ValueAt(AtomOf(Tree, Atom).Reals, N) = Real; }
Double RGetAtomRealHtrIdN(Htr Tree, Id Atom, int N) { return ValueAt(AtomOf(Tree, Atom).Reals, N); }
void SetAtomTypeHtrId(Htr Tree, Id Atom, TextView Type) { AtomOf(Tree, Atom).Type = Type; }
Text AtomTypeHtrId(Htr Tree, Id Atom) { return AtomOf(Tree, Atom).Type; }

void FSetBondHtrIdIdBdt(Htr Tree, Id First, Id Second, int Order) {
  if (First == Second) throw Failure("An atom can't be bonded to itself");
  AtomData& One = AtomOf(Tree, First);
  AtomData& Other = AtomOf(Tree, Second);
  SetHalfBond(One, Second, Order);
  SetHalfBond(Other, First, Order);
}

int CountNeighborsHtrId(Htr Tree, Id Atom) { return static_cast<int>(AtomOf(Tree, Atom).Bonds.size()); }

Id IdGetNeighborHtrIdN(Htr Tree, Id Atom, int N) {
  const std::vector<Bond>& Bonds = AtomOf(Tree, Atom).Bonds;
  return N >= 0 && static_cast<std::size_t>(N) < Bonds.size() ? Bonds[static_cast<std::size_t>(N)].Other : 0;
}

int BdtGetBondOrderHtrIdN(Htr Tree, Id Atom, int N) {
  const std::vector<Bond>& Bonds = AtomOf(Tree, Atom).Bonds;
  return N >= 0 && static_cast<std::size_t>(N) < Bonds.size() ? Bonds[static_cast<std::size_t>(N)].Order : NoOrder;
}

void Loop(LoopRecord& Walk, Htr Tree, Id Below, Id After, int Kind) { Walk = {Tree, Below, After, Kind}; }

Id Next(LoopRecord& Walk) {
  Nodes& All = NodesOf(Walk.Tree);
  const auto Count = static_cast<Id>(All.size());
  for (Id Place = Walk.Last + 1; Place <= Count; ++Place) {
    if (NodeOf(All, Place).Kind != Walk.Kind || !IsBelow(All, Place, Walk.Below)) continue;
    Walk.Last = Place;
    return Place;
  }
  Walk.Last = Count;
  return 0;
}

}  // namespace zelvanor
