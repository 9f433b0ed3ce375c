#include "qt/views/AtomKeys.h"

#include "platform/Picture.h"
#include "qt/Dispatch.h"
#include "shell/MainForm.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

int Pointed = -1;

int CountAtoms() { return static_cast<int>(Main.MolRender1.Atoms.size()); }

void PointAt(int Atom) {
  Pointed = (Atom + CountAtoms()) % CountAtoms();
  Dispatch([] {
    ShowStatus(Join("Atom ", Workspace.AtomInMolecule[Pointed], " is ", Workspace.AtomElement[Pointed].View(),
                    ": Enter selects it, Shift+Enter adds it to the selection, Backspace takes it out."));
  });
}

void ClickPointed(int Button, bool Adds) {
  Dispatch([=] {
    constexpr int Selecting = ToolSelect;
    if (Main.MouseMode != SelectMode) Fire(Main.picToolbar[Selecting].Click);
    if (Main.MolRender1.AtomClick) Main.MolRender1.AtomClick(Button, Adds ? ShiftKey : 0, Pointed);
  });
}

}  // namespace

int PointedAtom() { return Pointed < CountAtoms() ? Pointed : -1; }

bool PressAtomKey(const QKeyEvent& Key) {
  if (CountAtoms() == 0 || (Key.modifiers() & (Qt::ControlModifier | Qt::AltModifier))) return false;
  const bool HasAtom = PointedAtom() >= 0;
  switch (Key.key()) {
    case Qt::Key_N:
      return PointAt(HasAtom ? Pointed + 1 : 0), true;
    case Qt::Key_P:
      return PointAt(HasAtom ? Pointed - 1 : -1), true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (HasAtom) ClickPointed(LeftButton, Key.modifiers() & Qt::ShiftModifier);
      return HasAtom;
    case Qt::Key_Backspace:
      if (HasAtom) ClickPointed(RightButton, false);
      return HasAtom;
    default:
      return false;
  }
}

}  // namespace zelvanor
