#include "tables/TableEditing.h"

#include <utility>

#include "basic/Numbers.h"
#include "platform/Variables.h"
#include "shell/Frame.h"
#include "tables/TableViews.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

TableEditingState TableEditing;

namespace {

WorkspaceState& W = Workspace;
TableEditingState& E = TableEditing;

GridControl& Table() { return Main.ShieldTable; }

// A cell to come back to. The grid may have shrunk meanwhile: then the current cell stays where it is.
struct CurrentCell {
  int Row = Table().Row;
  int Col = Table().Col;
  void ComeBack() const {
    IgnoreFailure([this] { SetCurrentCell(Table(), Row, Col); });
  }
};

// Stores the current cell's text as the number it begins with. A number beyond all bounds is refused: false.
bool StoreCurrentCell(int View) {
  E.EditView = -1;
  try {
    const Single Value = ToSingle(PrefixNumber(CellText(Table(), Table().Row, Table().Col)));
    if (View == ShieldingView) {
      W.Shielding[Table().Col - 1] = Value;
      ForgetShieldingError(Table().Col - 1);
    }
    if (View == CouplingView) W.Coupling(Table().Row - 1, Table().Col - 1) = Value;
    return true;
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
    return false;
  }
}

void FillTable() {
  if (W.ViewMode == ShieldingView) ShowShieldingTable();
  if (W.ViewMode == CouplingView) ShowCouplingTable();
}

// After a value has been stored, or refused: then the table alone gets its old text back. A spectrum does not outlive
// the values it was made from.
void FinishEdit(bool Stored) {
  const CurrentCell Before;
  if (Stored && IsSet(W.SpectraAvailable)) {
    W.SpectraAvailable = False;
    RefreshView();
  } else {
    FillTable();
  }
  if (Stored) W.DocumentDirty = True;
  Before.ComeBack();
}

// Stores the open edit's cell, wherever the current cell is by now; false when the value was refused.
bool StoreOpenEdit() {
  // First of all: the moves below fire the event of a move again.
  E.EditFirstKey = True;
  E.EditActive = False;
  const CurrentCell Present;
  bool Stored = false;
  IgnoreFailure([&Stored] {
    SetCurrentCell(Table(), E.EditRow, E.EditCol);
    Stored = StoreCurrentCell(E.EditView);
  });
  Present.ComeBack();
  return Stored;
}

bool IsDigitOrPoint(int Key) { return Key == '.' || (Key >= '0' && Key <= '9'); }

void GoOnEditing(int Key) {
  if (IsDigitOrPoint(Key)) {
    const Text Former = CellText(Table(), Table().Row, Table().Col);
    return SetCellText(Table(), Table().Row, Table().Col, Former + static_cast<char>(Key));
  }
  const bool Stored = StoreCurrentCell(W.ViewMode);
  E.EditFirstKey = True;
  E.EditActive = False;
  FinishEdit(Stored);
}

void OpenEdit(int Key) {
  if (!IsDigitOrPoint(Key) && Key != '+' && Key != '-') return;
  SetCellText(Table(), Table().Row, Table().Col, Text(1, static_cast<char>(Key)));
  E.EditFirstKey = False;
  E.EditView = W.ViewMode;
  E.EditActive = True;
  E.EditRow = Table().Row;
  E.EditCol = Table().Col;
}

}  // namespace

void AddTableVariables() {
  AddVariable("EditFirstKey", E.EditFirstKey);
  AddVariable("EditActive", E.EditActive);
  AddVariable("EditView", E.EditView);
  AddVariable("EditRow", E.EditRow);
  AddVariable("EditCol", E.EditCol);
}

void WarnShieldingsOnly() {
  ShowWarning(
      "Shieldings Only!\r\rYou can only edit and modify the shieldings.  The chemical shift and Tau values will "
      "reflect "
      "the shielding values.  Use the \"Setup/Reference Shielding...\" menu item to indirectly change chemical shifts "
      "via the \"Reference Shielding\" dialog box, if desired.");
}

void ShieldTable_KeyPress(int& KeyAscii) {
  const int Key = std::exchange(KeyAscii, 0);
  if (W.ViewMode == ShieldingView && Table().Row != ShieldingRow) return WarnShieldingsOnly();
  if (IsSet(E.EditFirstKey)) {
    OpenEdit(Key);
  } else {
    GoOnEditing(Key);
  }
}

void ShieldTable_RowColChange() {
  if (!IsSet(E.EditActive)) return;
  const bool Stored = StoreOpenEdit();
  if (W.ViewMode == ShieldingView || W.ViewMode == CouplingView) FinishEdit(Stored);
}

void EndTableEdit() {
  if (!IsSet(E.EditActive)) return;
  const bool Stored = StoreOpenEdit();
  // The edit may have stayed open behind the spectrum, which goes now.
  if (Stored && W.ViewMode == SpectrumViewMode && W.MeasuredCount == 0) W.ViewMode = MoleculeView;
  FinishEdit(Stored);
}

void ShieldTable_SelChange() { TableEditing.EditFirstKey = True; }

}  // namespace zelvanor
