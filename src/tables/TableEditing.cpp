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

// Stores the current cell's text as the number it begins with. A number beyond all bounds is not stored.
void StoreCurrentCell(int View) {
  IgnoreFailure([View] {
    const Single Value = ToSingle(PrefixNumber(CellText(Table(), Table().Row, Table().Col)));
    if (View == ShieldingView) {
      W.Shielding[Table().Col - 1] = Value;
      ForgetShieldingError(Table().Col - 1);
    }
    if (View == CouplingView) W.Coupling(Table().Row - 1, Table().Col - 1) = Value;
  });
  E.EditView = -1;
}

// A spectrum does not outlive the values it was made from.
void RefreshTable() {
  const CurrentCell Before;
  if (IsSet(W.SpectraAvailable)) {
    W.SpectraAvailable = False;
    RefreshView();
  } else if (W.ViewMode == ShieldingView) {
    ShowShieldingTable();
  } else if (W.ViewMode == CouplingView) {
    ShowCouplingTable();
  }
  W.DocumentDirty = True;
  Before.ComeBack();
}

bool IsDigitOrPoint(int Key) { return Key == '.' || (Key >= '0' && Key <= '9'); }

void GoOnEditing(int Key) {
  if (IsDigitOrPoint(Key)) {
    const Text Former = CellText(Table(), Table().Row, Table().Col);
    return SetCellText(Table(), Table().Row, Table().Col, Former + static_cast<char>(Key));
  }
  StoreCurrentCell(W.ViewMode);
  E.EditFirstKey = True;
  E.EditActive = False;
  RefreshTable();
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
  // First of all: the moves below fire this event again.
  E.EditFirstKey = True;
  E.EditActive = False;
  const CurrentCell Moved;
  IgnoreFailure([] {
    SetCurrentCell(Table(), E.EditRow, E.EditCol);
    StoreCurrentCell(E.EditView);
  });
  Moved.ComeBack();
  if (W.ViewMode == ShieldingView || W.ViewMode == CouplingView) RefreshTable();
}

void ShieldTable_SelChange() { TableEditing.EditFirstKey = True; }

}  // namespace zelvanor
