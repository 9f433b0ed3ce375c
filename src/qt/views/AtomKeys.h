#pragma once

#include <QKeyEvent>

namespace zelvanor {

// Atoms of the molecule view by keys: N and P point at the next and the previous one, Enter selects it as a click does
// (with Shift beside the others), Backspace takes it out of the selection. False for a key of another meaning.
bool PressAtomKey(const QKeyEvent& Key);

// The 0-based atom that the keys point at; -1 for none.
int PointedAtom();

}  // namespace zelvanor
