#include <gtest/gtest.h>

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QScrollBar>
#include <QTest>
#include <QToolButton>
#include <QWindow>

#include "QtTestWindow.h"
#include "platform/Form.h"
#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/Boxes.h"
#include "qt/views/PictureReplay.h"
#include "shell/MainForm.h"
#include "workspace/Workspace.h"

namespace zelvanor::tests {

namespace {

// Puts an event or value back at the end of a test.
template <class T>
struct Restored {
  T& Place;
  T Former;
  explicit Restored(T& Place) : Place(Place), Former(Place) {}
  ~Restored() { Place = Former; }
};

// The action that shows a menu item.
QAction* ActionOf(const MenuItem& Item) { return Shown<QAction>(Item.Name.c_str()); }

TEST(Menus, MarkIsTheProgramsOwn) {
  // The item that is checked already does nothing when it is used again, and keeps its mark.
  ASSERT_TRUE(IsSet(Main.mnuLorentzian.Checked));
  ActionOf(Main.mnuLorentzian)->trigger();
  EXPECT_TRUE(ActionOf(Main.mnuLorentzian)->isChecked());
  ActionOf(Main.mnuMultipleLineWidths)->trigger();
  EXPECT_TRUE(ActionOf(Main.mnuMultipleLineWidths)->isChecked());
  ActionOf(Main.mnuMultipleLineWidths)->trigger();
  EXPECT_FALSE(ActionOf(Main.mnuMultipleLineWidths)->isChecked());
}

TEST(Menus, PointingAtAnItemShowsItsHelp) {
  for (const MenuRow& Row : MenuRows()) {
    if (*Row.Help == '\0') continue;
    ActionOf(Main.*Row.Item)->hover();
    EXPECT_EQ(FromQt(Shown<QLabel>("StatusBar")->text()), Text(" ") + Row.Help);
  }
}

struct BarRow {
  int Min, Max, Value;   // of the control
  int Low, High, Place;  // of the widget, left to right
};

TEST(ScrollBars, MapBothWays) {
  constexpr BarRow Rows[] = {
      {0, 100, 30, 0, 100, 30},
      {1000, -1000, 0, -1000, 1000, 0},
      {1000, -1000, 1000, -1000, 1000, -1000},
      {1000, -1000, -250, -1000, 1000, 250},
      {100, 0, 30, 0, 100, 70},
      {-5, 5, -3, -5, 5, -3},
  };
  ScrollBar& Bar = Main.HScroll1;
  const Restored<Event> Keep(Bar.Change);
  int Changes = 0;
  Bar.Change = [&] { ++Changes; };
  auto* Widget = Shown<QScrollBar>("HScroll1");
  for (const BarRow& Row : Rows) {
    SCOPED_TRACE(testing::Message() << Row.Min << ".." << Row.Max << " at " << Row.Value);
    SetRange(Bar, Row.Min, Row.Max);
    SetValue(Bar, Row.Value);
    EXPECT_EQ(Widget->minimum(), Row.Low);
    EXPECT_EQ(Widget->maximum(), Row.High);
    EXPECT_EQ(Widget->value(), Row.Place);
    for (const int Place : {Row.Low, Row.High, Row.Place}) {
      const int Before = Bar.Value;
      Changes = 0;
      Widget->setValue(Place);
      EXPECT_EQ(Bar.Value, Row.Min > Row.Max ? Row.Min + Row.Max - Place : Place);
      EXPECT_EQ(Changes, Bar.Value == Before ? 0 : 1);
    }
  }
  SetRange(Bar, 1000, -1000);
  SetChanges(Bar, 7, 300);
  SetValue(Bar, 0);
  Widget->triggerAction(QAbstractSlider::SliderSingleStepAdd);
  EXPECT_EQ(Bar.Value, -7) << "the right arrow";
  Widget->triggerAction(QAbstractSlider::SliderPageStepSub);
  EXPECT_EQ(Bar.Value, 293) << "the trough on the left";
  SetValue(Bar, 0);
  SetChanges(Bar, 10, 100);
}

TEST(ScrollBars, ValueThatTheProgramRefusesGoesBack) {
  const Restored<Event> Keep(Main.HScroll2.Change);
  Main.HScroll2.Change = [] { SetValue(Main.HScroll2, 20); };
  auto* Widget = Shown<QScrollBar>("HScroll2");
  Widget->setValue(50);
  EXPECT_EQ(Main.HScroll2.Value, 20);
  EXPECT_EQ(Widget->value(), 20);
}

TEST(Keyboard, TakenKeysDoNotReachTheFocus) {
  const Restored<std::function<void(int&, int)>> Keep(Main.frmNMR.KeyDown);
  SetVisible(Main.HScroll2, True);
  auto* Bar = Shown<QScrollBar>("HScroll2");
  Bar->setFocus();
  SetValue(Main.HScroll2, 40);
  Main.frmNMR.KeyDown = [](int& Code, int) { Code = 0; };
  QTest::keyClick(Bar, Qt::Key_Right);
  EXPECT_EQ(Main.HScroll2.Value, 40);
  Main.frmNMR.KeyDown = [](int&, int) {};
  QTest::keyClick(Bar, Qt::Key_Right);
  EXPECT_EQ(Main.HScroll2.Value, 40 + Main.HScroll2.SmallChange);
  SetVisible(Main.HScroll2, False);
}

TEST(Busy, BlocksCommandsButHelp) {
  const Restored<Event> Open(Main.mnuFileOpen.Click), Tool(Main.picToolbar[ToolOpen].Click), Help(Main.mnuAbout.Click);
  const Restored<Event> Pan(Main.HScroll1.Change);
  int Commands = 0;
  int Helps = 0;
  Main.mnuFileOpen.Click = Main.picToolbar[ToolOpen].Click = Main.HScroll1.Change = [&] { ++Commands; };
  Main.mnuAbout.Click = [&] { ++Helps; };
  const auto Act = [] {
    ActionOf(Main.mnuFileOpen)->trigger();
    QTest::keyClick(Window().windowHandle(), Qt::Key_O, Qt::ControlModifier);
    QTest::mouseClick(Shown<QToolButton>("picToolbar(1)"), Qt::LeftButton);
    Shown<QScrollBar>("HScroll1")->setValue(Shown<QScrollBar>("HScroll1")->value() + 5);
    ActionOf(Main.mnuAbout)->trigger();
  };
  Main.IsBusy = True;
  Act();
  EXPECT_EQ(Commands, 0);
  EXPECT_EQ(Helps, 1);
  EXPECT_EQ(Shown<QScrollBar>("HScroll1")->value(), -Main.HScroll1.Value);
  Window().close();
  EXPECT_TRUE(Window().isVisible());
  EXPECT_FALSE(ProgramHasEnded());
  Main.IsBusy = False;
  Act();
  EXPECT_EQ(Commands, 4);
  SetValue(Main.HScroll1, 0);
}

TEST(Busy, EventsServedWithinACommandStartNoOther) {
  const Restored<Event> Open(Main.mnuFileOpen.Click);
  int Commands = 0;
  Main.mnuFileOpen.Click = [&] { ++Commands; };
  QMetaObject::invokeMethod(
      ActionOf(Main.mnuFileOpen), [] { ActionOf(Main.mnuFileOpen)->trigger(); }, Qt::QueuedConnection);
  Platform.DoEvents();
  EXPECT_EQ(Commands, 0);
}

TEST(Dispatching, FailuresBecomeOneWarning) {
  ShownBoxes().clear();
  Dispatch([] { throw Failure("Disk full"); });
  Dispatch([] { throw std::out_of_range("far out"); });
  ASSERT_EQ(ShownBoxes().size(), 2u);
  EXPECT_EQ(ShownBoxes()[0].Message, "WARNING: Disk full.");
  EXPECT_EQ(ShownBoxes()[1].Message, "WARNING: far out.");
}

TEST(Texts, AreUtf8OrLatin1) {
  EXPECT_EQ(ToQt("caf\xC3\xA9"), QString("caf\u00E9"));
  EXPECT_EQ(ToQt("caf\xE9"), QString("caf\u00E9"));
  EXPECT_EQ(ToQtLines("a\rb\r\nc\nd"), "a\nb\nc\nd");
  EXPECT_EQ(PlainCaption("I  - Shielding && &Coupling"), "I  - Shielding & Coupling");
  EXPECT_EQ(PlainCaption("end&"), "end");
}

// Counts of the pixels of one colour in each column of a row.
std::vector<int> ColumnsOf(const QImage& Image, int Row, Colour Pen) {
  std::vector<int> Columns;
  for (int X = 0; X < Image.width(); ++X) {
    if (Image.pixelColor(X, Row) == ToQt(Pen)) Columns.push_back(X);
  }
  return Columns;
}

TEST(Replay, LinesAreSharpAtEveryScale) {
  constexpr Colour Green = Rgb(0, 255, 0);
  constexpr Colour Red = Rgb(255, 0, 0);
  Form Owner("frmReplay");
  PictureSurface Surface(&Owner, "Surface");
  Surface.Lines = {{3, 0, 3, 9, Green}, {6, 9, 6, 0, Green}, {7, 0, 7, 9, Green}, {-4, 0, -4, 9, Green}};
  EXPECT_EQ(ColumnsOf(ReplayPicture(Surface, {10, 10}, 1.0), 5, Green), (std::vector<int>{3, 6, 7}));
  EXPECT_EQ(ColumnsOf(ReplayPicture(Surface, {20, 20}, 2.0), 5, Green), (std::vector<int>{6, 7, 12, 13, 14, 15}));
  for (const double Ratio : {1.25, 1.5, 1.75, 2.25}) {
    const QImage Image = ReplayPicture(Surface, QSize(10, 10) * Ratio, Ratio);
    const std::vector<int> Columns = ColumnsOf(Image, 5, Green);
    const int Left = static_cast<int>(6 * Ratio);
    EXPECT_EQ(Columns.back() - Left + 1,
              std::count_if(Columns.begin(), Columns.end(), [&](int X) { return X >= Left; }))
        << "no gap between neighbours at " << Ratio;
  }
  // A later pen lies above; lines far outside are cut, not lost.
  Surface.Lines = {{3, 5, 3, 9, Green}, {3, -2000000000, 3, 2000000000, Red}, {3, 5, 3, 9, Green}, {0, 2, 9, 2, Green}};
  const QImage Image = ReplayPicture(Surface, {10, 10}, 1.0);
  EXPECT_EQ(Image.pixelColor(3, 0), ToQt(Red));
  EXPECT_EQ(Image.pixelColor(3, 7), ToQt(Green));
  EXPECT_EQ(ColumnsOf(Image, 2, Green).size(), 10u);
}

}  // namespace

}  // namespace zelvanor::tests
