#include <sys/resource.h>

#include <chrono>

#include "Support.h"
#include "platform/ChartPicture.h"
#include "platform/Grid.h"
#include "setup/frmReplace.h"
#include "spectrum/SpectrumInteraction.h"
#include "spectrum/SpectrumScale.h"
#include "spectrum/frmValues.h"
#include "tables/BarPlots.h"
#include "tables/ClipboardText.h"
#include "tables/ShieldTensor.h"
#include "tables/TableEditing.h"
#include "tables/TableViews.h"
#include "tables/frmGraph.h"

namespace zelvanor::test {
namespace {

WorkspaceState& W = Workspace;
GridControl& Table = Main.ShieldTable;

Texts RowTexts(const GridControl& Grid, int Row) {
  Texts Result;
  for (int Col = 0; Col < ColsOf(Grid); ++Col) Result.push_back(CellText(Grid, Row, Col));
  return Result;
}

class TablesTest : public ProgramTest {
 protected:
  // Two protons, a carbon and a sulphur without a molecule; the clipboard is Clipboard.
  TablesTest() {
    W.NumNMRAtoms = 4;
    SetArray(W.NMRAtom, {1, 2, 3, 4, 0});
    SetArray(W.NMRAtomicNumber, {1, 1, 6, 16, 0});
    SetArray(W.Shielding, {29.5, 12.34567, 100, -3.125, 0});
    SetArray(W.ChemicalShift, {0, 0, 0, 0, 0});
    SetArray(W.ReferenceShielding, {31, 180, 0, 0, 0, 0, 0});
    W.NumReferenceElements = 6;
    SetMatrix(W.Coupling, {{0, 7, 1, 2, 0}, {-5, 0, 3, 4, 0}, {1, 3, 0, 5, 0}, {2, 4, 5, 0, 0}, {0, 0, 0, 0, 0}});
    W.ShieldTensor.ReDim(TensorValues * 4);
    for (int Place = 0; Place < TensorValues * 4; ++Place) W.ShieldTensor[Place] = static_cast<Single>(Place);
    ExtendForResults();
    for (int Atom = 0; Atom < 4; ++Atom) W.AtomElement[Atom] = ElementSymbol(W.NMRAtomicNumber[Atom]);
    W.ShieldingAvailable = W.CouplingAvailable = True;
    TableEditing = {};
    Table.KeyPress = ShieldTable_KeyPress;
    Table.RowColChange = ShieldTable_RowColChange;
    Table.SelChange = ShieldTable_SelChange;
    Rooms.ShowShieldingTable = ShowShieldingTable;
    Rooms.ShowCouplingTable = ShowCouplingTable;
    Platform.SetClipboard = [this](const Text& Value) { Clipboard = Value; };
    Platform.GetClipboard = [this] { return Clipboard; };
  }

  void Show(int View) {
    W.ViewMode = View;
    RefreshView();
  }

  Text Clipboard = "former";
};

TEST_F(TablesTest, ImpossibleNumbersAreRepairedOnce) {
  W.NMRAtom[1] = 99;
  W.NMRAtom[2] = 4;
  W.NMRAtom[3] = 0;
  Show(CouplingView);
  EXPECT_EQ(Shown().Boxes, Texts{"warning Impossible index of NMR atom 99."});
  EXPECT_EQ(RowTexts(Table, 0), (Texts{"Coupling", "1(H)", "2(H)", "3(S)", "4(S)"}));
  EXPECT_EQ(W.NMRAtom[1], 2);
}

TEST_F(TablesTest, TensorPlaces) {
  W.ViewMode = ShieldingView;
  SetGridSize(ValuesGrid(), 8, 13);
  SetCellText(ValuesGrid(), 6, 3, "old");
  ASSERT_EQ(ShowShieldTensor(ValuesGrid()), True);
  const GridControl& Grid = ValuesGrid();
  EXPECT_EQ(RowTexts(Grid, 0), (Texts{"", "", "1(H)", "", "", "2(H)", "", "", "3(C)", "", "", "4(S)", ""}));
  EXPECT_EQ(CellText(Grid, 4, 6), "22.0");
  EXPECT_EQ(CellText(Grid, 6, 4), "26.0");
  EXPECT_EQ(CellText(Grid, 7, 10), "55.0");
  EXPECT_EQ(CellText(Grid, 6, 3), "");
  EXPECT_EQ(Grid.SelStartRow, 7);
  EXPECT_EQ(Grid.SelEndCol, 12);
  W.ShieldTensor.ReDim(20);
  EXPECT_EQ(ShowShieldTensor(ValuesGrid()), False);
  EXPECT_EQ(Shown().Boxes.back(), "warning Error showing the shielding tensor.");
}

// Frequencies, negated already, and the peaks that the table lists.
TEST_F(TablesTest, ListedPeaks) {
  W.NMRFrequency = 100;
  W.SpectrumSpan = 10000;
  struct Row {
    std::vector<std::pair<double, double>> Peaks;
    int Listed;
  };
  for (const Row& R : {Row{{}, 0}, Row{{{-5000, 1}}, 1}, Row{{{-100, 1}, {-2000, 1}}, 1},
                       Row{{{-100, 1}, {-1000, 1}}, 2}, Row{{{0.0005, 1}, {100001, 1}, {5, 1}}, 1},
                       Row{{{0.0005, 1}, {99999, 1}}, 2}, Row{{{-1, 1}, {-5, 1}, {-51, 1}}, 2}}) {
    SCOPED_TRACE(R.Peaks.empty() ? 0.0 : R.Peaks.back().first);
    SetPeaks(R.Peaks);
    ASSERT_EQ(FillSpectralValues(), True);
    EXPECT_EQ(ColsOf(ValuesGrid()), R.Listed + 1);
    EXPECT_EQ(CellText(ValuesGrid(), 0, 0), "");
  }
  SetPeaks({{-312.5, 0.25}});
  W.PeakDegeneracy[0] = 2;
  FillSpectralValues();
  Texts Values;
  for (int Row = 0; Row < 6; ++Row) Values.push_back(CellText(ValuesGrid(), Row, 1));
  EXPECT_EQ(Values, (Texts{"1", "3.125", "312.5", "0.25", "2.0", "0.5"}));
  W.NMRFrequency = 0;
  EXPECT_EQ(FillSpectralValues(), False);
  EXPECT_EQ(Shown().Boxes.back(), "warning Division by zero.");
}

TEST_F(TablesTest, MostListedPeaksAndOneMore) {
  W.NMRFrequency = 100;
  SetPeaks(std::vector<std::pair<double, double>>(5449, {-100, 1}));
  EXPECT_EQ(FillSpectralValues(), True);
  EXPECT_EQ(ColsOf(ValuesGrid()), 5450);
  SetPeaks(std::vector<std::pair<double, double>>(5450, {-100, 1}));
  EXPECT_EQ(FillSpectralValues(), False);
  EXPECT_EQ(Shown().Boxes, Texts{"warning There are too many peaks to display in the Spectral Values dialog box.  The "
                                 "maximum number of peaks is 5449."});
}

// The bars of a picture: filled shapes in a set's colour that are no legend boxes.
TEST_F(TablesTest, NegativeBarsHangFromZero) {
  ChartControl Chart(nullptr, "Test");
  WriteMember(Chart, ChartAutoNext, 1);
  WriteMember(Chart, ChartNumPoints, 2);
  WriteMember(Chart, ChartNumSets, 1);
  WriteMember(Chart, ChartNextValue, "10");
  WriteMember(Chart, ChartNextValue, "-5.0");
  WriteMember(Chart, ChartTitle, "Title");
  SetChartLabels(Chart, {"a", "b"}, {"set"});
  for (const int Kind : {ChartBars, ChartDeepBars}) {
    SCOPED_TRACE(Kind);
    WriteMember(Chart, ChartKind, Kind);
    const ChartPicture Picture = DrawChart(Chart, 400, 300);
    Double Zero = 0;
    for (const ChartText& Item : Picture.Texts) {
      if (Item.Words == "0") Zero = Item.Y;
    }
    std::vector<std::pair<Double, Double>> Bars;  // rows
    for (const ChartShape& Shape : Picture.Shapes) {
      if (Shape.Filled && Shape.Fill == Rgb(0, 114, 178)) Bars.emplace_back(Shape.Corners[0].Y, Shape.Corners[2].Y);
      for (const ChartPoint& Corner : Shape.Corners) {
        EXPECT_TRUE(Corner.X >= 0 && Corner.X <= 400 && Corner.Y >= 0 && Corner.Y <= 300);
      }
    }
    ASSERT_EQ(Bars.size(), 3U);
    EXPECT_NEAR(Bars[0].second, Zero, 1e-6);
    EXPECT_NEAR(Bars[1].first, Zero, 1e-6);
    EXPECT_NEAR(Bars[0].second - Bars[0].first, 2 * (Bars[1].second - Bars[1].first), 1e-6);
    for (const char* Words : {"a", "b", "set", "Title", "-5", "10"}) {
      EXPECT_TRUE(std::any_of(Picture.Texts.begin(), Picture.Texts.end(), [&](const ChartText& Item) {
        return Item.Words == Words;
      })) << Words;
    }
  }
}

TEST(Grid, CellsSurviveANewSize) {
  GridControl Grid(nullptr, "Test");
  SetGridSize(Grid, 3, 3);
  SetCellText(Grid, 1, 1, "inner");
  SetCellText(Grid, 2, 2, "lost");
  const Single Numbers[] = {1.5F, 2.5F};
  SetCellNumbers(Grid, 2, 0, Numbers, "0.000");
  SetCurrentCell(Grid, 2, 2);
  SetGridSelection(Grid, 1, 2, 0, 2);
  int NumMoves = 0;
  Grid.RowColChange = [&] { ++NumMoves; };
  SetGridSize(Grid, 3, 2);
  SetGridSize(Grid, 3, 3);
  EXPECT_EQ(RowTexts(Grid, 1), (Texts{"", "inner", ""}));
  EXPECT_EQ(RowTexts(Grid, 2), (Texts{"1.500", "2.500", ""}));
  EXPECT_EQ(Grid.Col, 1);
  EXPECT_EQ(Grid.SelEndCol, 1);
  EXPECT_EQ(NumMoves, 1);
  EXPECT_EQ(FailureOf([&] { CellText(Grid, 3, 0); }), "Subscript out of range");
  EXPECT_EQ(FailureOf([&] { SetCellNumbers(Grid, 0, 2, Numbers, "0.0"); }), "Subscript out of range");
}

TEST(Grid, MovesOfTheProgramLeaveTheSelection) {
  GridControl Grid(nullptr, "Test");
  SetGridSize(Grid, 5, 5);
  Text Events;
  Grid.RowColChange = [&] { Events += 'm'; };
  Grid.SelChange = [&] { Events += 's'; };
  PickRange(Grid, 3, 2, 1, 4);
  EXPECT_EQ(Events, "sms");
  SetCurrentCell(Grid, 0, 0);
  EXPECT_EQ(Events, "smsms");
  EXPECT_EQ(Grid.SelStartRow, 1);
  EXPECT_EQ(Grid.SelEndCol, 4);
  PickRange(Grid, 0, 0, 4, 1);
  EXPECT_EQ(Grid.Row, 1);
  EXPECT_EQ(Grid.SelStartCol, 0);
}

void Type(TextView Keys) {
  for (const char Key : Keys) PressGridKey(Table, Key);
}

TEST_F(TablesTest, OpenValueIsStoredWhereItWasTyped) {
  Show(CouplingView);
  PickRange(Table, 4, 4, 4, 4);
  Type("8");
  // The other table has no such row.
  Show(ShieldingView);
  EXPECT_EQ(W.Coupling(3, 3), 8);
  EXPECT_EQ(RowsOf(Table), 4);
  EXPECT_EQ(TableEditing.EditView, -1);
  EXPECT_EQ(W.DocumentDirty, True);
  EXPECT_EQ(Table.Row, 3);
}

TEST_F(TablesTest, ClipboardHasHeadersAroundTheSelection) {
  Show(ShieldingView);
  PickRange(Table, 3, 3, 2, 2);
  EXPECT_EQ(CopyTableSelection(), True);
  EXPECT_EQ(Clipboard, "Index\t2(H)\t3(C)\r\nShift\t18.654\t80.0\r\nTau\t-8.654\t-70.0");
  Clipboard = "former";
  SetGridSelection(Table, 1, 1, 2, 1);
  CopyTableSelection();
  EXPECT_EQ(Clipboard, "former");
  CopyValuesSelection(ValuesGrid());

  ShowShieldTensor(ValuesGrid());
  PickRange(ValuesGrid(), 5, 5, 6, 5);
  CopyValuesSelection(ValuesGrid());
  EXPECT_EQ(Clipboard, "\t2(H)\r\n\tSigma(y)\r\nEigenvalues\t24.0\r\nIsotropic\t");
  SetGridSelection(ValuesGrid(), 1, 1, 2, 1);
  CopyValuesSelection(ValuesGrid());
  EXPECT_EQ(Clipboard, "");
  Platform.SetClipboard = [](const Text&) { throw Failure("Device I/O error"); };
  Shown().Boxes.clear();
  SetGridSelection(Table, 1, 1, 1, 1);
  CopyTableSelection();
  CopyValuesSelection(ValuesGrid());
  EXPECT_EQ(Shown().Boxes, (Texts{"error Error occured while copying to clipboard:\r\nDevice I/O error.",
                                  "error Error occured while copying to clipboard:\r\nDevice I/O error"}));
}

TEST_F(TablesTest, PlottedSelections) {
  Show(ShieldingView);
  struct Row {
    int Range[4];  // rows, columns
    int Result;
    const char* Title;
  };
  for (const Row& R : {Row{{1, 1, 1, 2}, 0, "Shielding"}, Row{{3, 3, 2, 4}, 0, "Tau"},
                       Row{{2, 3, 1, 4}, 0, "Shift and Tau"}, Row{{1, 1, 0, 2}, 1, "Shift and Tau"},
                       Row{{1, 3, 2, 2}, 1, "Shift and Tau"}, Row{{1, 3, 1, 4}, 0, "Shielding and Shift"}}) {
    SCOPED_TRACE(R.Range[0] * 1000 + R.Range[1] * 100 + R.Range[2] * 10 + R.Range[3]);
    SetGridSelection(Table, R.Range[0], R.Range[1], R.Range[2], R.Range[3]);
    EXPECT_EQ(PlotTableSelection(), R.Result);
    EXPECT_EQ(MemberText(Graph(), ChartTitle), R.Title);
  }
  EXPECT_EQ(MemberNumber(Graph(), ChartNumPoints), 4);
  EXPECT_EQ(MemberNumber(Graph(), ChartNumSets), 3);
  EXPECT_EQ(Graph().Points.size(), 12U);
  EXPECT_EQ(PointValue(Graph(), 2, 1), -8.654);
  EXPECT_EQ(Graph().SetNames, (Texts{"Shielding", "Shift", "Tau"}));
  EXPECT_EQ(Table.Row, 3);
  EXPECT_EQ(Table.Col, 4);
  EXPECT_EQ(Table.SelStartRow, 1);
}

}  // namespace
}  // namespace zelvanor::test
