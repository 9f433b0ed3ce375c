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

TEST(Menus, MirrorTheirItems) {
  for (const MenuRow& Row : MenuRows()) {
    MenuItem& Item = Main.*Row.Item;
    SCOPED_TRACE(Item.Name);
    const QAction* Action = ActionOf(Item);
    EXPECT_EQ(Action->isSeparator(), Item.Separator);
    EXPECT_EQ(FromQt(Action->text()), Item.Separator ? Text() : Item.Caption);
    EXPECT_EQ(FromQt(Action->shortcut().toString()), Item.Shortcut);
    const Flag Visible = Item.Visible;
    for (const Flag State : {False, True}) {
      SetVisible(Item, State);
      EXPECT_EQ(Action->isVisible(), IsSet(State));
    }
    for (const Flag State : {ToFlag(!IsSet(Item.Enabled)), Item.Enabled}) {
      SetEnabled(Item, State);
      EXPECT_EQ(Action->isEnabled(), IsSet(State));
    }
    SetVisible(Item, Visible);
    for (const Flag State : {ToFlag(!IsSet(Item.Checked)), Item.Checked}) {
      SetChecked(Item, State);
      EXPECT_EQ(Action->isChecked(), IsSet(State));
    }
  }
}

TEST(Menus, NewCaptionShows) {
  const Text Former = Main.mnuViewValues.Caption;
  SetCaption(Main.mnuViewValues, "Spectral && &Values");
  EXPECT_EQ(ActionOf(Main.mnuViewValues)->text(), "Spectral && &Values");
  SetCaption(Main.mnuViewValues, Former);
}

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

TEST(Menus, OpeningASubmenuIsAClick) {
  int Clicks = 0;
  const Restored<Event> Keep(Main.mnuViewSpectra.Click);
  Main.mnuViewSpectra.Click = [&] { ++Clicks; };
  Q_EMIT ActionOf(Main.mnuViewSpectra)->menu()->aboutToShow();
  EXPECT_EQ(Clicks, 1);
}

TEST(ToolStrip, HasAnIconForEveryButton) {
  for (const ToolButton& Button : Main.picToolbar) {
    EXPECT_TRUE(QFile::exists(":/icons/" + ToQt(Button.Icon) + ".svg")) << Button.Icon;
  }
}

TEST(ToolStrip, ShowsStateAndGivesEvents) {
  ToolButton& Button = Main.picToolbar[ToolOpen];
  auto* Widget = Shown<QToolButton>("picToolbar(1)");
  std::vector<Text> Seen;
  const Restored<Event> Down(Button.MouseDown), Up(Button.MouseUp), Click(Button.Click);
  Button.MouseDown = [&] { Seen.push_back("down"); };
  Button.MouseUp = [&] { Seen.push_back("up"); };
  Button.Click = [&] { Seen.push_back("click"); };
  QTest::mouseClick(Widget, Qt::LeftButton);
  EXPECT_EQ(Seen, (std::vector<Text>{"down", "up", "click"}));
  EXPECT_FALSE(Widget->isChecked()) << "a click alone does not press a button in";
  SetPressed(Button, True);
  EXPECT_TRUE(Widget->isChecked());
  SetPressed(Button, False);
  EXPECT_FALSE(Widget->isChecked());
  SetEnabled(Button, False);
  Seen.clear();
  QTest::mouseClick(Widget, Qt::LeftButton);
  EXPECT_TRUE(Seen.empty()) << "a disabled button ignores clicks";
  SetEnabled(Button, True);
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

struct MouseRow {
  Qt::MouseButton Button;
  Qt::KeyboardModifiers Keys;
  QPoint Place;
  int Code;
  int Shift;
};

TEST(Surface, MousePlacesAreTwips) {
  const MouseRow Rows[] = {
      {Qt::LeftButton, Qt::NoModifier, {1, 0}, 1, 0},
      {Qt::RightButton, Qt::ShiftModifier, {10, 3}, 2, 1},
      {Qt::MiddleButton, Qt::ControlModifier, {7, 5}, 4, 2},
      {Qt::LeftButton, Qt::ShiftModifier | Qt::ControlModifier, {199, 99}, 1, 3},
  };
  const Restored<PictureSurface::MouseEvent> Down(Main.Spectrum1.MouseDown), Up(Main.Spectrum1.MouseUp);
  Text Seen;
  const auto Note = [&Seen](const char* What) {
    return [&Seen, What](int Button, int Shift, Single X, Single Y) {
      Seen += Text(What) + " " + std::to_string(Button) + " " + std::to_string(Shift) + " " + std::to_string(int(X)) +
              "," + std::to_string(int(Y)) + ";";
    };
  };
  Main.Spectrum1.MouseDown = Note("down");
  Main.Spectrum1.MouseUp = Note("up");
  SetVisible(Main.Spectrum1, True);
  auto* Surface = Shown<QWidget>("Spectrum1");
  for (const MouseRow& Row : Rows) {
    Seen.clear();
    QTest::mouseClick(Surface, Row.Button, Row.Keys, Row.Place);
    const Text Rest = " " + std::to_string(Row.Code) + " " + std::to_string(Row.Shift) + " " +
                      std::to_string(15 * Row.Place.x()) + "," + std::to_string(15 * Row.Place.y()) + ";";
    EXPECT_EQ(Seen, "down" + Rest + "up" + Rest);
  }
  SetVisible(Main.Spectrum1, False);
}

TEST(Keyboard, TheWindowSeesKeysFirst) {
  const Restored<std::function<void(int&, int)>> Keep(Main.frmNMR.KeyDown);
  const Restored<Event> Open(Main.mnuFileOpen.Click);
  int Opened = 0;
  Main.mnuFileOpen.Click = [&] { ++Opened; };
  std::vector<int> Codes;
  bool Take = false;
  Main.frmNMR.KeyDown = [&](int& Code, int Shift) {
    Codes.push_back(Code + 1000 * Shift);
    if (Take) Code = 0;
  };
  QTest::keyClick(Window().windowHandle(), Qt::Key_O, Qt::ControlModifier);
  EXPECT_EQ(Opened, 1) << "a key that is not taken is a shortcut";
  Take = true;
  QTest::keyClick(Window().windowHandle(), Qt::Key_O, Qt::ControlModifier);
  EXPECT_EQ(Opened, 1) << "a key that is taken goes no further";
  QTest::keyClick(Window().windowHandle(), Qt::Key_Home);
  QTest::keyClick(Window().windowHandle(), Qt::Key_End, Qt::ShiftModifier);
  QTest::keyClick(Window().windowHandle(), Qt::Key_Space);
  EXPECT_EQ(Codes, (std::vector<int>{2079, 2079, 36, 1035, 32}));
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
  Workspace.IsBusy = True;
  Act();
  EXPECT_EQ(Commands, 0);
  EXPECT_EQ(Helps, 1);
  EXPECT_EQ(Shown<QScrollBar>("HScroll1")->value(), -Main.HScroll1.Value);
  Window().close();
  EXPECT_TRUE(Window().isVisible());
  EXPECT_FALSE(ProgramHasEnded());
  Workspace.IsBusy = False;
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

TEST(Layout, FollowsTheWindow) {
  for (Control* Each : {static_cast<Control*>(&Main.Spectrum1), static_cast<Control*>(&Main.HScroll1),
                        static_cast<Control*>(&Main.HScroll2)}) {
    SetVisible(*Each, True);
  }
  const Restored<Event> Keep(Main.frmNMR.Resize);
  int Resizes = 0;
  Main.frmNMR.Resize = [&, Former = Keep.Former] {
    ++Resizes;
    Former();
  };
  for (const QSize Size : {QSize(700, 500), QSize(1000, 400)}) {
    Resizes = 0;
    Window().resize(Size);
    Wait(200);
    EXPECT_EQ(Resizes, 1);
    const QSize Inner = Window().centralWidget()->size();
    EXPECT_EQ(Main.frmNMR.Width, 15 * Inner.width());
    EXPECT_EQ(Main.frmNMR.Height, 15 * Inner.height());
    int Bottom = 30;  // of the toolbar
    for (const char* Name : {"HScroll2", "Spectrum1", "HScroll1", "StatusBar"}) {
      const QRect Place = Shown<QWidget>(Name)->geometry();
      EXPECT_EQ(Place.top(), Bottom) << Name;
      EXPECT_EQ(Place.width(), Inner.width()) << Name;
      Bottom = Place.top() + Place.height();
    }
    EXPECT_EQ(Bottom, Inner.height());
  }
  for (Control* Each : {static_cast<Control*>(&Main.Spectrum1), static_cast<Control*>(&Main.HScroll1),
                        static_cast<Control*>(&Main.HScroll2)}) {
    SetVisible(*Each, False);
  }
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

TEST(FileFilters, MatchBothCases) {
  EXPECT_EQ(NameFilters("Zelvanor (*.NMR)|*.NMR |Two (a) kinds|*.Mvs;*.zmt|All|*.*|left over"),
            (QStringList{"Zelvanor (*.nmr *.NMR)", "Two (*.mvs *.MVS *.zmt *.ZMT)", "All (*)"}));
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
