#include "molecule/AtomSelection.h"

#include <algorithm>
#include <vector>

#include "basic/NumberText.h"
#include "platform/Form.h"
#include "platform/Picture.h"
#include "settings/SettingsState.h"
#include "shell/MainForm.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;
MainForm& M = Main;

// The place of an atom in the selection, -1 for none.
int FindSelected(int Atom) {
  for (int Place = 0; Place < M.NumSelectedAtoms; ++Place) {
    if (M.SelectedAtom[Place] == Atom) return Place;
  }
  return -1;
}

void AddToSelection(RenderControl& Control, int Atom) {
  const int Place = M.NumSelectedAtoms;
  SetThisAtom(Control, Atom);
  M.SelectedAtom.ReDimPreserve(Place + 1);
  M.SelectedAtomColor.ReDimPreserve(Place + 1);
  M.SelectedAtom[Place] = Atom;
  M.SelectedAtomColor[Place] = GetAtomColor(Control);
  ++M.NumSelectedAtoms;
  SetAtomColor(Control, Settings.SelectionColor);
}

void RemoveFromSelection(RenderControl& Control, int Removed) {
  int Kept = 0;
  for (int Place = 0; Place < M.NumSelectedAtoms; ++Place) {
    if (Place == Removed) {
      SetThisAtom(Control, M.SelectedAtom[Place]);
      SetAtomColor(Control, M.SelectedAtomColor[Place]);
      continue;
    }
    M.SelectedAtom[Kept] = M.SelectedAtom[Place];
    M.SelectedAtomColor[Kept] = M.SelectedAtomColor[Place];
    ++Kept;
  }
  M.NumSelectedAtoms = Kept;
}

Text TotalText(TextView Ending) { return Join(" (total of ", M.NumSelectedAtoms, Ending); }

void ShowSelectedAtom(int Atom) {
  Text Line =
      Join("Selected atom ", W.AtomInMolecule[Atom], " is ", TrimBlanks(W.AtomElement[Atom].View()), " with type ",
           TrimBlanks(W.AtomType[Atom].View()), " at ", W.AtomX[Atom], ", ", W.AtomY[Atom], ", ", W.AtomZ[Atom]);
  if (M.NumSelectedAtoms > 1) Line += TotalText(" atoms selected).");
  ShowStatus(Line);
}

void ShowUnselectedAtom(int Atom) {
  Text Line = Join("Unselected atom ", Long{Atom});
  if (M.NumSelectedAtoms > 0) Line += TotalText(M.NumSelectedAtoms == 1 ? " remains selected)." : " remain selected).");
  ShowStatus(Line);
}

}  // namespace

void SelectAtom(RenderControl& Control, int Atom, Flag On) {
  const int Place = FindSelected(Atom);
  if (On != False && Place < 0) AddToSelection(Control, Atom);
  if (On == False && Place >= 0) RemoveFromSelection(Control, Place);
}

void SelectAllAtoms(RenderControl& Control) {
  // As SelectAtom for each of them, without a search of the list for each.
  const int Count = GetAtomCount(Control);
  std::vector<bool> IsSelected(static_cast<std::size_t>(Count), false);
  for (int Place = 0; Place < M.NumSelectedAtoms; ++Place) {
    const int Atom = M.SelectedAtom[Place];
    if (Atom >= 0 && Atom < Count) IsSelected[static_cast<std::size_t>(Atom)] = true;
  }
  for (int Atom = 0; Atom < Count; ++Atom) {
    if (!IsSelected[static_cast<std::size_t>(Atom)]) AddToSelection(Control, Atom);
  }
}

void UnselectAllAtoms(RenderControl& Control) {
  for (int Place = 0; Place < M.NumSelectedAtoms; ++Place) {
    SetThisAtom(Control, M.SelectedAtom[Place]);
    SetAtomColor(Control, M.SelectedAtomColor[Place]);
  }
  ForgetSelection();
}

void ForgetSelection() {
  M.NumSelectedAtoms = 0;
  M.SelectedAtom.ReDim(0);
  M.SelectedAtomColor.ReDim(0);
}

void CarrySelectionOver(RenderControl& Control) {
  const int Count = GetAtomCount(Control);
  int Kept = 0;
  for (int Place = 0; Place < M.NumSelectedAtoms; ++Place) {
    const int Atom = M.SelectedAtom[Place];
    if (Atom >= Count) continue;
    SetThisAtom(Control, Atom);
    M.SelectedAtom[Kept] = Atom;
    M.SelectedAtomColor[Kept++] = GetAtomColor(Control);
    SetAtomColor(Control, Settings.SelectionColor);
  }
  M.NumSelectedAtoms = Kept;
}

void MarkSelection(RenderControl& Control) {
  for (int Place = 0; Place < M.NumSelectedAtoms; ++Place) {
    SetThisAtom(Control, M.SelectedAtom[Place]);
    SetAtomColor(Control, Settings.SelectionColor);
  }
}

void MolRender1_AtomClick(int Button, int Shift, int Atom) {
  if (M.MouseMode != SelectMode) return;
  RenderControl& Control = M.MolRender1;
  if (Button == LeftButton) {
    if ((Shift & (ShiftKey | CtrlKey)) == 0) UnselectAllAtoms(Control);
    SelectAtom(Control, Atom, True);
    ShowSelectedAtom(Atom);
  } else {
    SelectAtom(Control, Atom, False);
    ShowUnselectedAtom(Atom);
  }
}

void MolRender1_NoAtomClick(int Button, int /*Shift*/) {
  if (M.MouseMode != SelectMode) return;
  if (Button == LeftButton) {
    SelectAllAtoms(M.MolRender1);
    ShowStatus(Join("Selected all ", M.NumSelectedAtoms, " atoms."));
  } else {
    ShowStatus("Unselected all atoms.");
    UnselectAllAtoms(M.MolRender1);
  }
}

}  // namespace zelvanor
