#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Typing in the tables of the main window. Idle: neither flag; armed: EditFirstKey, the next key opens an edit;
// editing: EditActive, a typed value stands in a cell and is not stored yet.
struct TableEditingState {
  Flag EditFirstKey = False;
  Flag EditActive = False;
  Integer EditView;  // ViewMode in which the edit was opened; -1 once it has been stored
  Integer EditRow;
  Integer EditCol;
};

extern TableEditingState TableEditing;

void AddTableVariables();

// Events of the grid.
void ShieldTable_KeyPress(int& KeyAscii);
void ShieldTable_RowColChange();
void ShieldTable_SelChange();

// Stores a value that is being typed, as Enter does: before every command that reads, saves, computes, replaces or
// ends.
void EndTableEdit();

// What someone is told who wants to change shifts.
void WarnShieldingsOnly();

}  // namespace zelvanor
