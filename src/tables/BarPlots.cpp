#include "tables/BarPlots.h"

#include "shell/Frame.h"
#include "spectrum/frmValues.h"
#include "tables/TableViews.h"
#include "tables/frmGraph.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr int NotPlotted = 1;
constexpr int Plotted = 0;

// The title of a plot of the shielding table, by the first and last row.
struct TitleRow {
  int First;
  int Last;
  const char* Title;
};

constexpr TitleRow ShieldingTitles[] = {
    {ShieldingRow, ShieldingRow, "Shielding"},
    {ShiftRow, ShiftRow, "Shift"},
    {TauRow, TauRow, "Tau"},
    {ShieldingRow, ShiftRow, "Shielding and Shift"},
    {ShieldingRow, TauRow, "Shielding and Shift"},
    {ShiftRow, TauRow, "Shift and Tau"},
};

// What the header rows say of a column. In a table with two of them three columns share the atom's label, which stands
// over the middle one.
Text LabelOfColumn(const GridControl& Grid, int Col) {
  Text Label = CellText(Grid, 0, Col);
  for (int Row = 1; Row < Grid.FixedRows; ++Row) {
    const int Middle = Col - (Col - 1) % 3 + 1;
    if (Label.empty() && Middle < ColsOf(Grid)) Label = CellText(Grid, 0, Middle);
    Label += (Label.empty() ? "" : " ") + CellText(Grid, Row, Col);
  }
  return Label;
}

void TakeLabels(const GridControl& Grid) {
  std::vector<Text> Points;
  std::vector<Text> Sets;
  for (int Col = Grid.SelStartCol; Col <= Grid.SelEndCol; ++Col) Points.push_back(LabelOfColumn(Grid, Col));
  for (int Row = Grid.SelStartRow; Row <= Grid.SelEndRow; ++Row) Sets.push_back(CellText(Grid, Row, 0));
  SetChartLabels(Graph(), std::move(Points), std::move(Sets));
}

// A cell's text goes into the chart as it stands; of the values dialog's table an empty one goes as 0.
int PlotSelection(GridControl& Grid, bool EmptyIsZero) {
  WriteMember(Graph(), ChartAutoNext, 1.0);
  if (Grid.SelStartCol <= 0 || Grid.SelEndCol - Grid.SelStartCol <= 0) {
    ShowWarning(
        "Not enough points to plot.\r\rPlease ensure you have made a selection with at least two points in the "
        "selection.");
    return NotPlotted;
  }
  WriteMember(Graph(), ChartNumPoints, Grid.SelEndCol - Grid.SelStartCol + 1);
  WriteMember(Graph(), ChartNumSets, Grid.SelEndRow - Grid.SelStartRow + 1);
  for (int Row = Grid.SelStartRow; Row <= Grid.SelEndRow; ++Row) {
    for (int Col = Grid.SelStartCol; Col <= Grid.SelEndCol; ++Col) {
      IgnoreFailure([&] { SetCurrentCell(Grid, Row, Col); });
      IgnoreFailure([&] {
        const Text Value = CellText(Grid, Row, Col);
        if (Value.empty() && EmptyIsZero) return WriteMember(Graph(), ChartNextValue, 0.0);
        WriteMember(Graph(), ChartNextValue, Value);
      });
    }
  }
  IgnoreFailure([&] { TakeLabels(Grid); });
  return Plotted;
}

void DrawAndShow(int Kind) {
  WriteMember(Graph(), ChartKind, Kind);
  WriteMember(Graph(), ChartCommand, ChartDraw);
  ShowGraph();
}

}  // namespace

int PlotTableSelection() {
  const GridControl& Grid = Main.ShieldTable;
  if (PlotSelection(Main.ShieldTable, false) == NotPlotted) return NotPlotted;
  if (W.ViewMode == CouplingView) WriteMember(Graph(), ChartTitle, "Coupling");
  if (W.ViewMode != ShieldingView) return Plotted;
  for (const TitleRow& Row : ShieldingTitles) {
    if (Row.First == Grid.SelStartRow && Row.Last == Grid.SelEndRow) WriteMember(Graph(), ChartTitle, Row.Title);
  }
  return Plotted;
}

int PlotValuesSelection() { return PlotSelection(ValuesGrid(), true); }

void mnuView2DBar_Click() {
  if (PlotTableSelection() == NotPlotted) return;
  WriteMember(Graph(), ChartStyle, 0.0);
  DrawAndShow(ChartBars);
}

void mnuView3DBar_Click() {
  if (PlotTableSelection() == NotPlotted) return;
  DrawAndShow(ChartDeepBars);
}

void PlotValues() {
  if (W.ViewMode == ShieldingView) WriteMember(Graph(), ChartTitle, "Shielding Tensor");
  if (W.ViewMode == SpectrumViewMode) WriteMember(Graph(), ChartTitle, "Spectrum");
  if (PlotValuesSelection() == Plotted) DrawAndShow(ChartDeepBars);
}

}  // namespace zelvanor
