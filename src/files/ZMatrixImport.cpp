#include "files/ZMatrixImport.h"

#include <cmath>
#include <unordered_map>

#include "basic/Numbers.h"
#include "files/ZMatrixRows.h"
#include "platform/Variables.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

MoleculeTreeState MoleculeTree;

namespace {

WorkspaceState& W = Workspace;

constexpr const char* OrderLetters[] = {"", "s", "d", "t", "a"};
constexpr int LargestAtomCount = 32767;

TextView BondTypeOf(int Order) {
  return Order >= SingleOrder && Order <= AromaticOrder ? OrderLetters[Order] : OrderLetters[NoOrder];
}

int OrderOf(TextView BondType) {
  for (int Order = SingleOrder; Order <= AromaticOrder; ++Order) {
    if (BondType == OrderLetters[Order]) return Order;
  }
  return NoOrder;
}

// Coordinates as a file keeps them, so that a document gives the same table again: six decimals, seven digits.
Single Tidied(Double Coordinate) {
  constexpr Double Decimals = 1e6;
  const Double Rounded = std::round(Coordinate * Decimals) / Decimals;
  return StrictSingle(GeneralForm(ToSingle(Rounded == 0 ? 0.0 : Rounded)));
}

// The rows that are atoms, with bonds and orders. Lines gets the atoms' lines in the file.
BondGraph GraphFromRows(const ZMatrixRows& Rows, std::vector<int>& Lines) {
  const std::vector<Position> Places = PlaceZMatrixRows(Rows);
  BondGraph Graph;
  for (std::size_t Row = 0; Row < Rows.size(); ++Row) {
    if (Rows[Row].AtomicNumber == DummyAtom) continue;
    if (Graph.Count() == LargestAtomCount) ThrowAtLine(Rows[Row].Line, "there are too many atoms");
    Graph.AtomicNumbers.push_back(Rows[Row].AtomicNumber);
    Graph.Places.push_back(Places[Row]);
    Lines.push_back(Rows[Row].Line);
  }
  if (const auto [First, Second] = FindClash(Graph); First >= 0) {
    ThrowAtLine(Lines[static_cast<std::size_t>(Second)],
                Join("the atom stands in the place of that of line ", Long{Lines[static_cast<std::size_t>(First)]}));
  }
  FindBonds(Graph);
  FindBondOrders(Graph);
  return Graph;
}

void AddAtom(Htr Tree, Id Molecule, int AtomicNumber, const std::array<Double, 3>& Place) {
  const Id Atom = IdCreateAtomHtrId(Tree, Molecule);
  FSetAtomWordHtrIdNW(Tree, Atom, AtomicNumberWord, AtomicNumber);
  for (int C = 0; C < NumAtomReals; ++C) FSetAtomRealHtrIdNR(Tree, Atom, C, Place[static_cast<std::size_t>(C)]);
}

std::vector<Id> AtomNodes(Htr Tree, Id System) {
  std::vector<Id> Nodes;
  LoopRecord Walk;
  Loop(Walk, Tree, System, 0, AtomNodeKind);
  while (const Id Atom = Next(Walk)) Nodes.push_back(Atom);
  return Nodes;
}

std::unordered_map<Id, int> IndexNodes(const std::vector<Id>& Nodes) {
  std::unordered_map<Id, int> Index;
  for (std::size_t Place = 0; Place < Nodes.size(); ++Place) Index[Nodes[Place]] = static_cast<int>(Place);
  return Index;
}

void FillAtom(int Atom, Id Node, const std::unordered_map<Id, int>& Index) {
  const Htr Tree = MoleculeTree.TreeHandle;
  W.AtomNumber[Atom] = Atom + 1;
  W.AtomName[Atom] = TextView("-");
  W.AtomicNumber[Atom] = WGetAtomWordHtrIdN(Tree, Node, AtomicNumberWord);
  W.AtomElement[Atom] = TextView(ElementSymbol(W.AtomicNumber[Atom]));
  W.AtomType[Atom] = TextView("**");
  W.AtomFlags[Atom] = TextView("-");
  W.AtomCharge[Atom] = 0;
  W.AtomX[Atom] = Tidied(RGetAtomRealHtrIdN(Tree, Node, AtomXReal));
  W.AtomY[Atom] = Tidied(RGetAtomRealHtrIdN(Tree, Node, AtomYReal));
  W.AtomZ[Atom] = Tidied(RGetAtomRealHtrIdN(Tree, Node, AtomZReal));
  W.AtomMolecule[Atom] = W.NumMolecules;
  W.AtomInMolecule[Atom] = Atom + 1;
  W.AtomCoordination[Atom] = CountNeighborsHtrId(Tree, Node);
  for (int N = 0; N < W.AtomCoordination[Atom]; ++N) {
    W.AtomNeighbour(Atom, N) = Index.at(IdGetNeighborHtrIdN(Tree, Node, N));
    W.AtomBondType(Atom, N) = BondTypeOf(BdtGetBondOrderHtrIdN(Tree, Node, N));
  }
}

// Whether the tree holds the atoms of the table, in its places and with its bonds.
bool TreeFitsAtomTable() {
  if (MoleculeTree.TreeHandle == 0) return false;
  std::vector<Id> Nodes;
  const BondGraph Graph = GraphFromTree(MoleculeTree.TreeHandle, MoleculeTree.SystemNode, Nodes);
  if (Graph.Count() != W.NumAtoms) return false;
  for (int Atom = 0; Atom < W.NumAtoms; ++Atom) {
    const auto& Place = Graph.Places[static_cast<std::size_t>(Atom)];
    const bool Same = Graph.Element(Atom) == W.AtomicNumber[Atom] && Tidied(Place[0]) == W.AtomX[Atom] &&
                      Tidied(Place[1]) == W.AtomY[Atom] && Tidied(Place[2]) == W.AtomZ[Atom] &&
                      static_cast<int>(Graph.At(Atom).size()) == W.AtomCoordination[Atom];
    if (!Same) return false;
    for (int N = 0; N < W.AtomCoordination[Atom]; ++N) {
      const auto& Link = Graph.At(Atom)[static_cast<std::size_t>(N)];
      if (Link.Other != W.AtomNeighbour(Atom, N) || W.AtomBondType(Atom, N).Trimmed() != BondTypeOf(Link.Order)) {
        return false;
      }
    }
  }
  return true;
}

// Takes a new tree as that of the present system; the former one goes.
void TakeTree(Htr Tree, Id System) {
  if (MoleculeTree.TreeHandle != 0) DestroyHtr(MoleculeTree.TreeHandle);
  MoleculeTree.TreeHandle = Tree;
  MoleculeTree.SystemNode = System;
}

Id BuildSystemFromAtomTable(Htr Tree) {
  const Id System = IdCreateSystemHtrId(Tree);
  int Molecule = 0;
  Id MoleculeNode = 0;
  for (int Atom = 0; Atom < W.NumAtoms; ++Atom) {
    if (MoleculeNode == 0 || W.AtomMolecule[Atom] != Molecule) {
      MoleculeNode = IdCreateMoleculeHtrId(Tree, System);
      Molecule = W.AtomMolecule[Atom];
    }
    AddAtom(Tree, MoleculeNode, W.AtomicNumber[Atom], {W.AtomX[Atom], W.AtomY[Atom], W.AtomZ[Atom]});
  }
  const std::vector<Id> Nodes = AtomNodes(Tree, System);
  for (int Atom = 0; Atom < W.NumAtoms; ++Atom) {
    const Id Node = Nodes[static_cast<std::size_t>(Atom)];
    for (int N = 0; N < W.AtomCoordination[Atom]; ++N) {
      const int Other = W.AtomNeighbour(Atom, N);
      if (Other < 0 || Other >= W.NumAtoms) throw Failure(failures::Subscript);
      if (Other == Atom) continue;
      FSetBondHtrIdIdBdt(Tree, Node, Nodes[static_cast<std::size_t>(Other)],
                         OrderOf(W.AtomBondType(Atom, N).Trimmed()));
    }
  }
  return System;
}

void RebuildTree() {
  const Htr Tree = HtrCreate();
  try {
    const Id System = BuildSystemFromAtomTable(Tree);
    TakeTree(Tree, System);
  } catch (const Failure&) {
    DestroyHtr(Tree);
    throw;
  }
}

}  // namespace

void AddZMatrixVariables() {
  AddVariable("TreeHandle", MoleculeTree.TreeHandle);
  AddVariable("SystemNode", MoleculeTree.SystemNode);
}

Id IdSysFromZmatLszHwnd(const Text& Path, int /*Window*/, Htr Tree) {
  try {
    std::vector<int> Lines;
    const BondGraph Graph = GraphFromRows(ReadZMatrixRows(Path), Lines);
    const Id System = IdCreateSystemHtrId(Tree);
    const Id Molecule = IdCreateMoleculeHtrId(Tree, System);
    for (int Atom = 0; Atom < Graph.Count(); ++Atom) {
      AddAtom(Tree, Molecule, Graph.Element(Atom), Graph.Places[static_cast<std::size_t>(Atom)]);
    }
    const std::vector<Id> Nodes = AtomNodes(Tree, System);
    for (int Atom = 0; Atom < Graph.Count(); ++Atom) {
      for (const auto& Link : Graph.At(Atom)) {
        FSetBondHtrIdIdBdt(Tree, Nodes[static_cast<std::size_t>(Atom)], Nodes[static_cast<std::size_t>(Link.Other)],
                           Link.Order);
      }
    }
    return System;
  } catch (const Failure& Problem) {
    if (Problem.Number == 0) throw;
    throw Failure(Join("Error at line ", Long{Problem.Number}, " in file ", Path, ": ", Problem.What));
  }
}

void ConvertZMatrix(const Text& Path) {
  const Htr Tree = HtrCreate();
  try {
    const Id System = IdSysFromZmatLszHwnd(Path, 0, Tree);
    TakeTree(Tree, System);
  } catch (const Failure&) {
    DestroyHtr(Tree);
    throw;
  }
}

Flag BuildAtomTableFromTree() {
  try {
    const Htr Tree = MoleculeTree.TreeHandle;
    const std::vector<Id> Nodes = AtomNodes(Tree, MoleculeTree.SystemNode);
    W.NumAtoms = CidGetHtrNdt(Tree, AtomNodeKind);
    if (W.NumAtoms <= 0) {
      ShowWarning(Join("There are no atoms in the Z-Matrix file - ", W.ZMatrixPath, "."));
      return False;
    }
    W.NumMolecules = 1;
    AllocateAtomTable(W.NumAtoms);
    W.MoleculeAtomCount.ReDim(1);
    const auto Index = IndexNodes(Nodes);
    for (int Atom = 0; Atom < W.NumAtoms; ++Atom) FillAtom(Atom, Nodes[static_cast<std::size_t>(Atom)], Index);
    W.MoleculeAtomCount[0] = W.NumAtoms;
    // Before the view takes it in, which would else find no molecule and drop the selection.
    W.MoleculeLoaded = True;
    if (Rooms.UpdateAtomLabels) Rooms.UpdateAtomLabels();
    return True;
  } catch (const Failure& Problem) {
    W.MoleculeLoaded = False;
    WarnOfFailure(Problem);
    return False;
  }
}

void FitTreeToAtomTable() {
  if (!TreeFitsAtomTable()) RebuildTree();
  const std::vector<Id> Nodes = AtomNodes(MoleculeTree.TreeHandle, MoleculeTree.SystemNode);
  for (int Atom = 0; Atom < W.NumAtoms; ++Atom) {
    SetAtomTypeHtrId(MoleculeTree.TreeHandle, Nodes[static_cast<std::size_t>(Atom)], W.AtomType[Atom].Trimmed());
  }
}

Htr TreeHandleValue() { return MoleculeTree.TreeHandle; }
Id SystemNodeValue() { return MoleculeTree.SystemNode; }

BondGraph GraphFromTree(Htr Tree, Id System, std::vector<Id>& Nodes) {
  Nodes = AtomNodes(Tree, System);
  const auto Index = IndexNodes(Nodes);
  BondGraph Graph;
  Graph.Links.resize(Nodes.size());
  for (std::size_t Atom = 0; Atom < Nodes.size(); ++Atom) {
    const Id Node = Nodes[Atom];
    Graph.AtomicNumbers.push_back(WGetAtomWordHtrIdN(Tree, Node, AtomicNumberWord));
    Graph.Places.push_back({RGetAtomRealHtrIdN(Tree, Node, AtomXReal), RGetAtomRealHtrIdN(Tree, Node, AtomYReal),
                            RGetAtomRealHtrIdN(Tree, Node, AtomZReal)});
    for (int N = 0; N < CountNeighborsHtrId(Tree, Node); ++N) {
      Graph.Links[Atom].push_back({Index.at(IdGetNeighborHtrIdN(Tree, Node, N)), BdtGetBondOrderHtrIdN(Tree, Node, N)});
    }
  }
  return Graph;
}

}  // namespace zelvanor
