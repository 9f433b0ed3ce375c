#pragma once

#include <functional>
#include <unordered_set>
#include <vector>

#include "platform/Controls.h"
#include "workspace/Workspace.h"

namespace zelvanor {

// What the dialogs of the atom sets share with one another and with the setup dialog that opens them.

// Values of AtomSetMode.
inline constexpr int QuantumMode = 1;
inline constexpr int NMRMode = 2;
inline constexpr int LabelledMode = 3;
inline constexpr int EquivalentMode = 4;

inline constexpr int NumElementChoices = 7;  // H, C, N, O, F, P, and every atom

struct AtomSetsState {
  Integer AtomSetMode;  // which set the dialog edits
  // Set each time the setup dialog is activated. While it is clear the atom set dialog keeps its lists when it is
  // activated: the user comes back from the choice of elements to what stood there.
  Flag AtomSetDialogReload = False;
  Array<Integer> ElementChoice{NumElementChoices};  // values of the check boxes, 0 or 1; the last entry is spare
  Flag ElementChoiceAccepted = False;               // the choice was left by OK
  // Switches the setup dialog's buttons for the sets that are made of NMR atoms; the setup room fills it.
  std::function<void(Flag Enabled)> EnableNMRSubsets;
};

extern AtomSetsState AtomSets;

// Atoms that a list of all atoms shows, the placeholder atoms of a document without a molecule among them.
int CountListedAtoms();
// The element number of a listed atom, by its 1-based number.
Integer ElementOfAtom(int AtomNumber);

// Trims the element and the type of an atom in the atom table and puts them into upper case, and returns what a list
// then says of it, as "M 1 A 3 C CT". Throws a Failure for a number that is no atom's.
Text UpperCaseAtomEntry(int AtomNumber);
void FillAtomList(ListBox& List, const Array<Integer>& Atoms, int Count);
void FillWithAllAtoms(ListBox& List);

// The selected rows, from the top.
std::vector<int> SelectedRows(const ListBox& List);
// The entries whose row is not selected, in their order; Count becomes theirs.
void DropSelectedEntries(const ListBox& List, Array<Integer>& Entries, Integer& Count);

using AtomNumbers = std::unordered_set<int>;
AtomNumbers NumbersIn(const Array<Integer>& Atoms, int Count);

void AddAtomSetVariables();

}  // namespace zelvanor
