#include "molecule/TakeSystem.h"

#include <algorithm>
#include <cmath>

#include "molecule/AtomSelection.h"
#include "molecule/ElementLook.h"
#include "molecule/FirstView.h"
#include "molecule/MoleculeView.h"
#include "settings/SettingsState.h"
#include "shell/MainForm.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;
MoleculeViewState& V = ShownMolecule;

// The part of the atom table that the control draws. The view compares it with what it has taken in instead of counting
// changes: undo, scripts and a document that is opened again put the same system in place, and its view has to stay.
struct TableImage {
  std::vector<Single> Places;
  std::vector<int> Structure;
};

int BondTypeCode(const FixedText<2>& Type) {
  const TextView Whole = Type.View();
  return static_cast<unsigned char>(Whole[0]) + 256 * static_cast<unsigned char>(Whole[1]);
}

TableImage ReadTable() {
  TableImage Image;
  const int Count = IsSet(W.MoleculeLoaded) ? int(W.NumAtoms) : 0;
  for (int Atom = 0; Atom < Count; ++Atom) {
    Image.Places.insert(Image.Places.end(), {W.AtomX[Atom], W.AtomY[Atom], W.AtomZ[Atom]});
    const int Coordination = W.AtomCoordination[Atom];
    Image.Structure.insert(Image.Structure.end(), {int(W.AtomicNumber[Atom]), Coordination});
    for (int Place = 0; Place < Coordination; ++Place) {
      Image.Structure.push_back(W.AtomNeighbour(Atom, Place));
      Image.Structure.push_back(BondTypeCode(W.AtomBondType(Atom, Place)));
    }
  }
  return Image;
}

// 0 for a type that is none.
int BondOrderOf(TextView Type) {
  if (Type == "s") return 1;
  if (Type == "d") return 2;
  if (Type == "t") return 3;
  return Type == "a" ? AromaticBond : 0;
}

// The middle of the box that holds the atoms.
ViewVector MiddleOf(const std::vector<Single>& Places) {
  ViewVector Middle{};
  for (std::size_t Axis = 0; Axis < 3; ++Axis) {
    Double Low = Places[Axis];
    Double High = Low;
    for (std::size_t Place = Axis; Place < Places.size(); Place += 3) {
      Low = std::min<Double>(Low, Places[Place]);
      High = std::max<Double>(High, Places[Place]);
    }
    Middle[Axis] = (Low + High) / 2;
  }
  return Middle;
}

// Returns the status text for a bond type that is none, empty when all are right.
Text TakeBonds(RenderControl& Control, int Atom) {
  Text Problem;
  const int Coordination = W.AtomCoordination[Atom];
  SetBondCount(Control, Coordination);
  for (int Bond = 0; Bond < Coordination; ++Bond) {
    SetThisBond(Control, Bond);
    SetNeighborAtom(Control, W.AtomNeighbour(Atom, Bond));
    const TextView Type = TrimBlanks(W.AtomBondType(Atom, Bond).View());
    const int Order = BondOrderOf(Type);
    if (Order == 0) {
      Problem = Join("Bad bond order: ", Type);
      ShowStatus(Problem);
    }
    SetBondOrder(Control, std::max(Order, 1));
  }
  return Problem;
}

void TakeAtom(RenderControl& Control, int Atom, const ElementLooks& Looks, const ViewVector& Middle) {
  ShowStatus(Join("Loading atom ", Long{Atom + 1}, " of ", W.NumAtoms));
  const ElementLook& Look = Looks[static_cast<std::size_t>(std::clamp(int(W.AtomicNumber[Atom]), 0, LargestElement))];
  SetThisAtom(Control, Atom);
  SetAtomicNumber(Control, W.AtomicNumber[Atom]);
  SetAtomColor(Control, Look.Color);
  SetAtomRadius(Control, Look.Radius);
  SetXCoordinate(Control, Double{W.AtomX[Atom]} - Middle[0]);
  SetYCoordinate(Control, Double{W.AtomY[Atom]} - Middle[1]);
  SetZCoordinate(Control, Double{W.AtomZ[Atom]} - Middle[2]);
}

void TakeAtoms(RenderControl& Control, const TableImage& Image) {
  const int Count = W.NumAtoms;
  const ElementLooks Looks = FindElementLooks();
  const ViewVector Middle = MiddleOf(Image.Places);
  Text Problem;
  SetDoubleBuffer(Control, True);
  SetAtomCount(Control, Count);
  for (int Atom = 0; Atom < Count; ++Atom) {
    TakeAtom(Control, Atom, Looks, Middle);
    if (const Text Bad = TakeBonds(Control, Atom); !Bad.empty()) Problem = Bad;
  }
  SetViewTransform(
      Control, Settings.FirstSight ? FindFirstView(Control) : ViewMatrix{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}}});
  FitMolecule();
  ShowStatus(Problem.empty() ? Join("Loaded ", Long{Count}, Count == 1 ? " atom." : " atoms.") : Problem);
}

}  // namespace

void TakeSystem() {
  RenderControl& Control = Main.MolRender1;
  TableImage Image = ReadTable();
  if (Image.Places == V.TakenPlaces && Image.Structure == V.TakenStructure) return;
  // What is half taken in when a step fails is no system: the next time begins anew.
  V.TakenPlaces.clear();
  V.TakenStructure.clear();
  SetAtomCount(Control, 0);
  RepaintRender(Control);
  if (!Image.Places.empty()) {
    try {
      TakeAtoms(Control, Image);
    } catch (const Failure&) {
      SetAtomCount(Control, 0);
      ForgetSelection();
      throw;
    }
  }
  CarrySelectionOver(Control);
  V.TakenPlaces = std::move(Image.Places);
  V.TakenStructure = std::move(Image.Structure);
}

}  // namespace zelvanor
