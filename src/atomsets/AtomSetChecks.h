#pragma once

#include "basic/Array.h"

namespace zelvanor {

// An atom set as a dialog edits it: atom numbers, allocated by their count.
struct WorkList {
  Array<Integer> Atom;
  Integer Count;
};

// Each takes a work list into the Workspace, marks the stage that it makes stale, and holds the rules between the sets:
// NMR atoms lie in the quantum region where there is one, equivalent atoms are NMR atoms, an equivalent set is labelled
// wholly or not at all. False: a rule is broken that the user has to mend in the dialog; its message has been shown.

// NMR atoms outside the new region cost the NMR, labelled and equivalent sets.
bool TakeQuantumAtoms(const WorkList& Work);
// The new atoms are in the Workspace already when one is found that lies outside the quantum region.
bool TakeNMRAtoms(const WorkList& Work);
bool TakeLabelledAtoms(const WorkList& Work);

}  // namespace zelvanor
