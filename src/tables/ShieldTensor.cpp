#include "tables/ShieldTensor.h"

#include "basic/NumberText.h"
#include "tables/AtomLabels.h"
#include "tables/TableViews.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr int TitleWidth = 1300;  // twips
constexpr int ValueWidth = 1000;
constexpr int NumHeaderRows = 2;
constexpr int ColsPerAtom = 3;
constexpr int NumVectorRows = 4;  // the tensor's three rows and the eigenvalues

constexpr const char* RowTitles[] = {"Sigma(x)", "Sigma(y)", "Sigma(z)", "Eigenvalues", "Isotropic", "Anisotropy"};
constexpr int NumRows = NumHeaderRows + static_cast<int>(std::size(RowTitles));

void ClearGrid(GridControl& Grid) {
  for (int Row = 0; Row < RowsOf(Grid); ++Row) {
    for (int Col = 0; Col < ColsOf(Grid); ++Col) SetCellText(Grid, Row, Col, "");
  }
}

void WriteHeadings(GridControl& Grid, int Atom) {
  const int First = ColsPerAtom * Atom + 1;
  RepairNMRAtom(Atom);
  for (int Axis = 0; Axis < ColsPerAtom; ++Axis) SetColWidth(Grid, First + Axis, ValueWidth);
  SetCellText(Grid, 0, First + 1, AtomLabel(Atom));
  for (int Axis = 0; Axis < ColsPerAtom; ++Axis) SetCellText(Grid, 1, First + Axis, RowTitles[Axis]);
}

void WriteValues(GridControl& Grid, int Atom) {
  int Value = TensorValues * Atom;
  const auto WriteNext = [&](int Row, int Col) {
    SetCellText(Grid, Row, Col, FormatNumber(W.ShieldTensor[Value++], ShieldingPattern));
  };
  const int First = ColsPerAtom * Atom + 1;
  int Row = NumHeaderRows;
  for (; Row < NumHeaderRows + NumVectorRows; ++Row) {
    for (int Axis = 0; Axis < ColsPerAtom; ++Axis) WriteNext(Row, First + Axis);
  }
  for (; Row < NumRows; ++Row) WriteNext(Row, First);
}

void FillGrid(GridControl& Grid) {
  SetGridSize(Grid, NumRows, ColsPerAtom * W.NumNMRAtoms + 1);
  SetFixedCells(Grid, NumHeaderRows, 1);
  ClearGrid(Grid);
  SetColWidth(Grid, 0, TitleWidth);
  int Row = NumHeaderRows;
  for (const char* Title : RowTitles) SetCellText(Grid, Row++, 0, Title);
  for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) WriteHeadings(Grid, Atom);
  for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) WriteValues(Grid, Atom);
  SetGridSelection(Grid, RowsOf(Grid) - 1, RowsOf(Grid) - 1, ColsOf(Grid) - 1, ColsOf(Grid) - 1);
}

}  // namespace

Flag ShowShieldTensor(GridControl& Grid) {
  try {
    FillGrid(Grid);
    return True;
  } catch (const Failure&) {
    ShowWarning("Error showing the shielding tensor.");
    return False;
  }
}

}  // namespace zelvanor
