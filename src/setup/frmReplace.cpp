#include "setup/frmReplace.h"

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "shell/Frame.h"
#include "tables/TableEditing.h"
#include "tables/TableViews.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

struct ReplaceForm {
  Form frmReplace{"frmReplace"};
  Label Label1{&frmReplace, "Label1"};
  TextField Text1{&frmReplace, "Text1"};
  CommandButton Command1{&frmReplace, "Command1"};
  CommandButton Command2{&frmReplace, "Command2"};
};

ReplaceForm Replace;

void ShowShielding(int Col, Single Value) {
  SetCurrentCell(Main.ShieldTable, ShieldingRow, Col);
  SetCellText(Main.ShieldTable, ShieldingRow, Col, GeneralForm(Value));
}

void ShowCoupling(int Row, int Col, Single Value) {
  SetCurrentCell(Main.ShieldTable, Row, Col);
  SetCellNumbers(Main.ShieldTable, Row, Col, std::span(&Value, 1), CouplingPattern);
}

void ReplaceShieldings(const GridControl& Table, Single Value) {
  for (int Col = Table.SelStartCol; Col <= Table.SelEndCol; ++Col) {
    W.Shielding[Col - 1] = Value;
    ForgetShieldingError(Col - 1);
    ShowShielding(Col, Value);
  }
}

// Writing a cell makes it the current one; this one is current again at the end.
struct CurrentCell {
  int Row = Main.ShieldTable.Row;
  int Col = Main.ShieldTable.Col;
  CurrentCell() = default;
  ~CurrentCell() {
    IgnoreFailure([this] { SetCurrentCell(Main.ShieldTable, Row, Col); });
  }
  CurrentCell(const CurrentCell&) = delete;
  CurrentCell& operator=(const CurrentCell&) = delete;
};

// The selected cells and their mirror cells.
void ReplaceCouplings(const GridControl& Table, Single Value) {
  for (int Row = Table.SelStartRow; Row <= Table.SelEndRow; ++Row) {
    for (int Col = Table.SelStartCol; Col <= Table.SelEndCol; ++Col) {
      W.Coupling(Col - 1, Row - 1) = Value;
      ShowCoupling(Row, Col, Value);
    }
  }
  for (int Row = Table.SelStartRow; Row <= Table.SelEndRow; ++Row) {
    for (int Col = Table.SelStartCol; Col <= Table.SelEndCol; ++Col) {
      W.Coupling(Row - 1, Col - 1) = Value;
      ShowCoupling(Col, Row, Value);
    }
  }
}

void Replace_Activate() { SetFocus(Replace.Text1); }

void Command1_Click() {
  if (IsSet(ReplaceSelectedCells(PrefixNumber(Replace.Text1.Value)))) {
    RefreshView();
    W.DocumentDirty = True;
  }
  SetText(Replace.Text1, "");
  HideForm(Replace.frmReplace);
}

void Command2_Click() { HideForm(Replace.frmReplace); }

}  // namespace

Flag ReplaceSelectedCells(Double Value) {
  try {
    const GridControl& Table = Main.ShieldTable;
    if (W.ViewMode != ShieldingView && W.ViewMode != CouplingView) return False;
    if (W.ViewMode == ShieldingView && Table.SelStartRow > ShieldingRow) {
      WarnShieldingsOnly();
      return False;
    }
    if (Table.SelEndCol < Table.SelStartCol) return False;
    const CurrentCell Former;
    if (W.ViewMode == CouplingView) {
      ReplaceCouplings(Table, ToSingle(Value));
    } else if (Table.SelEndRow >= ShieldingRow) {
      ReplaceShieldings(Table, ToSingle(Value));
    }
    return True;
  } catch (const Failure& Problem) {
    if (Problem.What != failures::CannotPerform) ShowError(Problem.What);
    return False;
  }
}

void mnuReplace_Click() { ShowModal(Replace.frmReplace); }

void BuildReplaceForm() {
  Replace.frmReplace.Caption = "Replace Selection";
  Replace.frmReplace.Activate = Replace_Activate;
  Replace.Label1.Caption = "&Value:";
  Replace.Text1.AccessibleName = "Value for all selected entries";
  SetUpOkAndCancel(Replace.Command1, "OK", Command1_Click, Replace.Command2, Command2_Click);
  Replace.frmReplace.Layout = ColumnOf({RowOf({ItemOf(Replace.Label1), ItemOf(Replace.Text1)}),
                                        RowOf({StretchOf(), ItemOf(Replace.Command1), ItemOf(Replace.Command2)})});
}

}  // namespace zelvanor
