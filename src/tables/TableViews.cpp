#include "tables/TableViews.h"

#include <algorithm>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "platform/Services.h"
#include "shell/Frame.h"
#include "tables/AtomLabels.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

// Widths in twips.
constexpr int HeaderWidth = 1000;
constexpr int AtomWidth = 800;

constexpr Double TauOrigin = 10.0;  // ppm

GridControl& Table() { return Main.ShieldTable; }

void Write(int Row, int Col, const std::function<Text()>& Value) {
  IgnoreFailure([&] { SetCellText(Table(), Row, Col, Value()); });
}

// The table while it is filled anew: it takes the place of the other views, under the hourglass. The current cell goes
// away before anything of the grid changes, so that a value still open in it is stored, and comes back to where it was,
// or as near as the new size lets it.
struct TableFill {
  int Row = Table().Row;
  int Col = Table().Col;

  TableFill() {
    SetVisible(Main.MolRender1, False);
    SetVisible(Main.Spectrum1, False);
    SetVisible(Table(), True);
    Platform.SetPointer(MousePointer::Hourglass);
    IgnoreFailure(PlaceTable);
    IgnoreFailure([] { SetCurrentCell(Table(), 0, 0); });
  }
  ~TableFill() {
    const int LastRow = RowsOf(Table()) - 1;
    const int LastCol = ColsOf(Table()) - 1;
    IgnoreFailure(
        [&] { SetCurrentCell(Table(), std::min(std::max(Row, 1), LastRow), std::min(std::max(Col, 1), LastCol)); });
    SetEnabled(Main.mnuReplace, True);
    Platform.SetPointer(MousePointer::Default);
  }
  TableFill(const TableFill&) = delete;
  TableFill& operator=(const TableFill&) = delete;
};

// The labels of all atoms in row 0 and, for a square table, in column 0.
void WriteLabels(bool InColumn) {
  for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
    IgnoreFailure([&] { RepairNMRAtom(Atom); });
    IgnoreFailure([&] { SetColWidth(Table(), Atom + 1, AtomWidth); });
    Text Label;
    IgnoreFailure([&] { Label = AtomLabel(Atom); });
    if (Label.empty()) continue;
    if (InColumn) Write(Atom + 1, 0, [&] { return Label; });
    Write(0, Atom + 1, [&] { return Label; });
  }
  SetColWidth(Table(), 0, HeaderWidth);
}

void ComputeShift(int Atom) {
  const int Entry = std::min(ReferenceEntryOf(W.NMRAtomicNumber[Atom]), NumReferenceEntries - 1);
  W.ChemicalShift[Atom] = ToSingle(Double{W.ReferenceShielding[Entry]} - W.Shielding[Atom]);
}

}  // namespace

void PlaceTable() {
  const Form& Window = Main.frmNMR;
  const int Free = Window.Height - Main.ToolbarHeight - Main.StatusBar.Height;
  SetPlace(Table(), 0, Main.ToolbarHeight, Window.Width, std::max(Free, 1));
}

void ShowShieldingTable() {
  const TableFill Fill;
  IgnoreFailure([] { SetGridSize(Table(), TauRow + 1, W.NumNMRAtoms + 1); });
  WriteLabels(false);
  constexpr const char* Titles[] = {"Index", "Shielding", "Shift", "Tau"};
  for (int Row = 0; Row <= TauRow; ++Row) Write(Row, 0, [&] { return Text(Titles[Row]); });
  for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
    Write(ShieldingRow, Atom + 1, [&] { return FormatNumber(W.Shielding[Atom], ShieldingPattern); });
    IgnoreFailure([&] { ComputeShift(Atom); });
    Write(ShiftRow, Atom + 1, [&] { return FormatNumber(W.ChemicalShift[Atom], ShieldingPattern); });
    Write(TauRow, Atom + 1, [&] { return FormatNumber(TauOrigin - W.ChemicalShift[Atom], ShieldingPattern); });
  }
}

void ShowCouplingTable() {
  const TableFill Fill;
  const int NumAtoms = W.NumNMRAtoms;
  IgnoreFailure([&] { SetGridSize(Table(), NumAtoms + 1, NumAtoms + 1); });
  WriteLabels(true);
  Write(0, 0, [] { return Text("Coupling"); });
  for (int Atom = 0; Atom < NumAtoms; ++Atom) {
    IgnoreFailure([&] {
      const std::span<const Single> Row = W.Coupling.Row(Atom);
      const auto Count = std::min(static_cast<std::size_t>(NumAtoms), Row.size());
      SetCellNumbers(Table(), Atom + 1, 1, Row.first(Count), CouplingPattern);
    });
  }
}

}  // namespace zelvanor
