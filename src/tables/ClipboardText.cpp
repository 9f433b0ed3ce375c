#include "tables/ClipboardText.h"

#include "platform/Services.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr const char* LineEnd = "\r\n";
constexpr const char* CopyProblem = "Error occured while copying to clipboard:\r\n";

// The label of a row and its selected cells. Reading a cell makes it the current one, as the table's own keys do.
Text LineOf(GridControl& Grid, int Row) {
  const auto Read = [&](int Col) {
    SetCurrentCell(Grid, Row, Col);
    return CellText(Grid, Row, Col);
  };
  Text Line = Read(0);
  for (int Col = Grid.SelStartCol; Col <= Grid.SelEndCol; ++Col) (Line += '\t') += Read(Col);
  return Line;
}

Text SelectionText(GridControl& Grid, int NumHeaderRows) {
  Text Result;
  for (int Row = 0; Row < NumHeaderRows; ++Row) (Result += LineOf(Grid, Row)) += LineEnd;
  for (int Row = Grid.SelStartRow; Row <= Grid.SelEndRow; ++Row) {
    if (Row > Grid.SelStartRow) Result += LineEnd;
    Result += LineOf(Grid, Row);
  }
  return Result;
}

// A table that was never filled has nothing to copy.
bool HasSelection(const GridControl& Grid) { return Grid.SelEndCol >= Grid.SelStartCol && Grid.Revision > 0; }

void Report(const Failure& Problem, TextView End) {
  if (Problem.What != failures::CannotPerform) ShowError(Join(CopyProblem, Problem.What, End));
}

}  // namespace

Flag CopyTableSelection() {
  try {
    if (HasSelection(Main.ShieldTable)) Platform.SetClipboard(SelectionText(Main.ShieldTable, 1));
  } catch (const Failure& Problem) {
    Report(Problem, ".");
  }
  return True;
}

Flag CopyValuesSelection(GridControl& Grid) {
  try {
    Platform.SetClipboard("");
    Text Value;
    if (HasSelection(Grid)) {
      const int Row = Grid.Row;
      const int Col = Grid.Col;
      Value = SelectionText(Grid, W.ViewMode == ShieldingView ? 2 : 1);
      SetCurrentCell(Grid, Row, Col);
    }
    Platform.SetClipboard(Value);
  } catch (const Failure& Problem) {
    Report(Problem, "");
  }
  return True;
}

void mnuCopy_Click() {
  ShowStatus("Copy the image to the clipboard.");
  const int Row = Main.ShieldTable.Row;
  const int Col = Main.ShieldTable.Col;
  {
    const BusyState Busy;
    if (IsSet(Main.Spectrum1.Visible)) {
      ShowMessage("Use alt-shift-printscreen to copy spectra to clipboard");
    } else {
      CopyTableSelection();
    }
  }
  UpdateCommands(W.ViewMode);
  if (IsSet(Main.Spectrum1.Visible) || IsSet(Main.MolRender1.Visible)) return;
  IgnoreFailure([&] { SetCurrentCell(Main.ShieldTable, Row, Col); });
}

}  // namespace zelvanor
