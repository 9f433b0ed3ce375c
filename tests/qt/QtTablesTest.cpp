#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QImage>
#include <QTableView>
#include <QTest>

#include "QtTestWindow.h"
#include "platform/Grid.h"
#include "shell/Frame.h"
#include "spectrum/SpectrumView.h"
#include "tables/frmGraph.h"
#include "workspace/Workspace.h"

namespace zelvanor::tests {

namespace {

WorkspaceState& W = Workspace;
GridControl& Grid = Main.ShieldTable;

// Three protons with results, in the table of a view. Events are served until the table shows them.
QTableView* ShowTable(int View) {
  W.NumNMRAtoms = 3;
  W.NMRAtom.ReDim(3);
  W.NMRAtomicNumber.ReDim(3);
  W.Shielding.ReDim(3);
  W.ChemicalShift.ReDim(3);
  W.Coupling.ReDim(3, 3);
  ExtendForResults();
  for (int Atom = 0; Atom < 3; ++Atom) {
    W.NMRAtom[Atom] = Atom + 1;
    W.NMRAtomicNumber[Atom] = 1;
    W.AtomElement[Atom] = Text("H");
    W.Shielding[Atom] = static_cast<Single>(Atom + 20);
  }
  W.ShieldingAvailable = W.CouplingAvailable = True;
  W.ViewMode = View;
  RefreshView();
  Wait(50);
  return Shown<QTableView>("ShieldTable");
}

QPoint CentreOf(const QTableView* Table, int Row, int Col) {
  return Table->visualRect(Table->model()->index(Row, Col)).center();
}

TEST(Tables, RangesByMouseKeyboardAndHeader) {
  QTableView* Table = ShowTable(CouplingView);
  QWidget* Cells = Table->viewport();
  const auto Selection = [] {
    return std::vector{Grid.SelStartRow, Grid.SelEndRow, Grid.SelStartCol, Grid.SelEndCol, Grid.Row, Grid.Col};
  };
  QTest::mousePress(Cells, Qt::LeftButton, {}, CentreOf(Table, 1, 2));
  QTest::mouseMove(Cells, CentreOf(Table, 0, 1));
  QTest::mouseMove(Cells, CentreOf(Table, 0, 0));
  QTest::mouseRelease(Cells, Qt::LeftButton, {}, CentreOf(Table, 0, 0));
  EXPECT_EQ(Selection(), (std::vector{1, 2, 1, 3, 2, 3}));
  QTest::mouseClick(Cells, Qt::LeftButton, {}, CentreOf(Table, 1, 1));
  QTest::keyClick(Table, Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_EQ(Selection(), (std::vector{2, 3, 2, 2, 2, 2}));
  const QHeaderView* Header = Table->horizontalHeader();
  QTest::mouseClick(Header->viewport(), Qt::LeftButton, {},
                    {Header->sectionViewportPosition(0) + 10, Header->height() / 2});
  EXPECT_EQ(Selection(), (std::vector{1, 3, 1, 1, 1, 1}));
}

TEST(Tables, DraggedColumnKeepsItsWidth) {
  QTableView* Table = ShowTable(CouplingView);
  const int Former = Grid.ColWidths[2];
  Table->horizontalHeader()->resizeSection(1, Table->columnWidth(1) * 2);
  Wait(20);
  EXPECT_NEAR(Grid.ColWidths[2], 2 * Former, Former * 0.05);
}

TEST(Tables, ChartIsCopiedAsAPicture) {
  WriteMember(Graph(), ChartAutoNext, 1);
  WriteMember(Graph(), ChartNumPoints, 2);
  WriteMember(Graph(), ChartNumSets, 1);
  WriteMember(Graph(), ChartNextValue, "1");
  WriteMember(Graph(), ChartNextValue, "-2");
  WriteMember(Graph(), ChartKind, ChartBars);
  SetPlace(Graph(), 0, 0, TwipsFromPixels(600), TwipsFromPixels(400));
  Fire(Graph().CopyGesture);
  const QImage Image = QGuiApplication::clipboard()->image();
  ASSERT_FALSE(Image.isNull());
  int NumBlue = 0;
  for (int X = 0; X < Image.width(); ++X) NumBlue += Image.pixelColor(X, Image.height() * 3 / 4) == QColor(0, 114, 178);
  EXPECT_GT(NumBlue, 50);
}

TEST(Spectrum, BandIsDrawnOverThePicture) {
  W.SpectraAvailable = True;
  W.ViewMode = SpectrumViewMode;
  RefreshView();
  auto* Surface = Shown<QWidget>("Spectrum1");
  const QColor Before = Surface->grab().toImage().pixelColor(120, 100);
  QTest::mousePress(Surface, Qt::LeftButton, Qt::ShiftModifier, {100, 50});
  QTest::mouseMove(Surface, {200, 120});
  EXPECT_NE(Surface->grab().toImage().pixelColor(120, 100), Before);
  QTest::mouseRelease(Surface, Qt::LeftButton, Qt::ShiftModifier, {200, 120});
  EXPECT_EQ(Surface->grab().toImage().pixelColor(120, 100), Before);
  W.SpectraAvailable = False;
  W.ViewMode = MoleculeView;
  RefreshView();
}

}  // namespace

}  // namespace zelvanor::tests
