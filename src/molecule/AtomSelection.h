#pragma once

#include "platform/Render.h"

namespace zelvanor {

// The selection of the molecule view: MainForm holds the list, this file keeps it and its marks together. Atoms are
// 0-based indices.

// Adds the atom (On set) or removes it (On 0); nothing where it is so already. The mark replaces its colour, which
// comes back with the removal.
void SelectAtom(RenderControl& Control, int Atom, Flag On);
void SelectAllAtoms(RenderControl& Control);
void UnselectAllAtoms(RenderControl& Control);
// Empties the list of atoms that are no more, and restores nothing.
void ForgetSelection();
// The control holds another system: the list stays, the atoms of its indices are marked, those beyond it are dropped.
void CarrySelectionOver(RenderControl& Control);
// Gives every selected atom the selection colour that is now in force.
void MarkSelection(RenderControl& Control);

// The mouse on MolRender1; positions in twips.
void MolRender1_AtomClick(int Button, int Shift, int Atom);
void MolRender1_NoAtomClick(int Button, int Shift);

}  // namespace zelvanor
