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

void Type(TextView Keys) {
  for (const char Key : Keys) PressGridKey(Table, Key);
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

TEST_F(TablesTest, ShieldingRows) {
  Show(ShieldingView);
  EXPECT_EQ(RowTexts(Table, 0), (Texts{"Index", "1(H)", "2(H)", "3(C)", "4(S)"}));
  EXPECT_EQ(RowTexts(Table, 1), (Texts{"Shielding", "29.5", "12.346", "100.0", "-3.125"}));
  EXPECT_EQ(RowTexts(Table, 2), (Texts{"Shift", "1.5", "18.654", "80.0", "3.125"}));
  EXPECT_EQ(RowTexts(Table, 3), (Texts{"Tau", "8.5", "-8.654", "-70.0", "6.875"}));
}

// What is typed at row 1, column 1 and what is stored then.
TEST_F(TablesTest, TypedNumbers) {
  struct Row {
    const char* Keys;
    double Stored;
  };
  for (const Row& R : {Row{"-12\r", -12}, Row{"1-", 1}, Row{"+3.5x", 3.5}, Row{".\r", 0}, Row{"1.2.3\r", 1.2},
                       Row{"abc\r", 29.5}, Row{"0000000000000000000000000000000000000000000000012\r", 12},
                       Row{"99999999999999999999999999999999999999999\r", 29.5}}) {
    SCOPED_TRACE(R.Keys);
    W.Shielding[0] = 29.5;
    Show(ShieldingView);
    PickCell(Table, 1, 1);
    Type(R.Keys);
    EXPECT_FLOAT_EQ(W.Shielding[0], static_cast<Single>(R.Stored));
    EXPECT_EQ(TableEditing.EditFirstKey, True);
    EXPECT_EQ(TableEditing.EditActive, False);
  }
}

TEST_F(TablesTest, OpenValueIsStoredWhereItWasTyped) {
  Show(CouplingView);
  PickCell(Table, 4, 4);
  Type("8");
  // The other table has no such row.
  Show(ShieldingView);
  EXPECT_EQ(W.Coupling(3, 3), 8);
  EXPECT_EQ(RowsOf(Table), 4);
  EXPECT_EQ(TableEditing.EditView, -1);
  EXPECT_EQ(W.DocumentDirty, True);
  EXPECT_EQ(Table.Row, 3);
}

TEST_F(TablesTest, ImpossibleNumbersAreRepairedOnce) {
  W.NMRAtom[1] = 99;
  W.NMRAtom[2] = 4;
  W.NMRAtom[3] = 0;
  Show(CouplingView);
  EXPECT_EQ(Shown().Boxes, Texts{"warning Impossible index of NMR atom 99."});
  EXPECT_EQ(RowTexts(Table, 0), (Texts{"Coupling", "1(H)", "2(H)", "3(S)", "4(S)"}));
  EXPECT_EQ(W.NMRAtom[1], 2);
}

TEST_F(TablesTest, ReplacedCells) {
  struct Row {
    int View;
    int Range[4];  // rows, columns
    Flag Result;
    const char* Box;
  };
  for (const Row& R : {Row{ShieldingView, {2, 3, 1, 1}, False, "warning Shieldings Only!"},
                       Row{ShieldingView, {1, 3, 2, 1}, False, ""}, Row{ShieldingView, {1, 3, 1, 2}, True, ""},
                       Row{ShieldingView, {1, 1, 0, 1}, False, "error Subscript out of range"},
                       Row{CouplingView, {1, 2, 3, 4}, True, ""}, Row{MoleculeView, {1, 1, 1, 1}, False, ""}}) {
    SCOPED_TRACE(R.View * 1000 + R.Range[0] * 100 + R.Range[2]);
    Show(R.View);
    Shown().Boxes.clear();
    SetGridSelection(Table, R.Range[0], R.Range[1], R.Range[2], R.Range[3]);
    EXPECT_EQ(ReplaceSelectedCells(2.5), R.Result);
    EXPECT_EQ(Shown().Boxes.empty() ? Text() : Shown().Boxes[0].substr(0, Text(R.Box).size()), R.Box);
  }
  EXPECT_EQ(FirstOf(W.Shielding, 4), (std::vector<Single>{2.5, 2.5, 100, -3.125}));
  EXPECT_EQ(W.Coupling(0, 2), 2.5F);
  EXPECT_EQ(W.Coupling(3, 1), 2.5F);
  EXPECT_EQ(W.Coupling(0, 1), 7);
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

TEST_F(TablesTest, LargestCouplingTableIsSmall) {
  constexpr int NumAtoms = 2340;
  W.NumNMRAtoms = NumAtoms;
  W.NMRAtom.ReDim(NumAtoms);
  W.NMRAtomicNumber.ReDim(NumAtoms);
  for (int Atom = 0; Atom < NumAtoms; ++Atom) W.NMRAtom[Atom] = Atom + 1;
  ExtendForResults();
  W.Coupling.ReDim(NumAtoms, NumAtoms);
  W.Coupling(NumAtoms - 1, NumAtoms - 1) = 1.25F;
  Show(CouplingView);
  EXPECT_EQ(RowsOf(Table), 2341);
  EXPECT_EQ(CellText(Table, NumAtoms, NumAtoms), "1.250");
  EXPECT_EQ(CellText(Table, 1, NumAtoms), "0.000");
  const GridCells& Cells = Table.Cells;
  const std::size_t Bytes =
      Cells.Kinds.capacity() + 4 * Cells.Contents.capacity() + sizeof(Text) * Cells.Texts.capacity();
  EXPECT_LT(Bytes, 40U << 20);
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

TEST(Grid, TextsTakeNoMoreRoomThanCells) {
  GridControl Grid(nullptr, "Test");
  const Single Number[] = {1.0F};
  for (int Round = 0; Round < 100; ++Round) {
    SetCellText(Grid, 1, 1, "typed");
    SetCellNumbers(Grid, 1, 1, Number, "0.000");
  }
  EXPECT_EQ(Grid.Cells.Texts.size(), 1U);
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

}  // namespace
}  // namespace zelvanor::test
