#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QDialog>
#include <QTableView>
#include <QTest>
#include <map>
#include <memory>
#include <set>

#include "QtTestWindow.h"
#include "platform/Chart.h"
#include "platform/Form.h"
#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/controls/FormBuilder.h"
#include "shell/Frame.h"
#include "shell/MainForm.h"
#include "spectrum/SpectrumDrawing.h"
#include "spectrum/SpectrumView.h"
#include "workspace/Workspace.h"

namespace zelvanor::tests {

namespace {

QAccessibleInterface* Spoken(const Control& Target) { return QAccessible::queryAccessibleInterface(WidgetOf(Target)); }

// The forms of the program, without those that tests have made.
std::vector<Form*> Dialogs() {
  std::vector<Form*> Found;
  for (Form* Each : AllForms()) {
    if (Each != &Main.frmNMR && Each->Name != "frmTrial" && Each->Name != "frmReplay" && Each->Name != "frmKept")
      Found.push_back(Each);
  }
  return Found;
}

bool TakesKeys(const Control& Item) {
  switch (Item.Kind) {
    case ControlKind::CommandButton:
    case ControlKind::CheckBox:
    case ControlKind::OptionButton:
    case ControlKind::TextField:
    case ControlKind::ListBox:
    case ControlKind::ComboBox:
    case ControlKind::ScrollBar:
    case ControlKind::SpinButton:
    case ControlKind::Grid:
    case ControlKind::Chart:
      return IsSet(Item.Enabled) && IsSet(Item.Visible);
    default:
      return false;
  }
}

// Every widget that the tab key reaches in a window, the option buttons of a group counted as one stop that the arrow
// keys walk through.
std::set<const QWidget*> TabChain(QWidget* Window) {
  std::set<const QWidget*> Stops;
  const QWidget* At = Window;
  do {
    At = At->nextInFocusChain();
    if ((At->focusPolicy() & Qt::TabFocus) && At->isEnabled()) Stops.insert(At);
  } while (At != Window);
  return Stops;
}

bool IsReached(const std::set<const QWidget*>& Stops, const QWidget* Shown) {
  if (Stops.count(Shown) > 0) return true;
  for (const QWidget* Part : Shown->findChildren<QWidget*>()) {
    if (Stops.count(Part) > 0) return true;
  }
  return false;
}

TEST(Reach, TabReachesEveryControlOfEveryForm) {
  for (Form* Each : Dialogs()) {
    QDialog* Dialog = DialogOf(*Each, &Window());
    Dialog->show();
    const std::set<const QWidget*> Stops = TabChain(Dialog);
    for (const Control* Item : Each->Controls) {
      if (!TakesKeys(*Item)) continue;
      EXPECT_TRUE(IsReached(Stops, WidgetOf(*Item))) << ControlName(*Item);
    }
    Dialog->hide();
  }
  BringBackWindow();
}

char AccessKeyOf(const Text& Caption) {
  for (std::size_t Place = 0; Place + 1 < Caption.size(); ++Place) {
    if (Caption[Place] != '&') continue;
    if (Caption[Place + 1] != '&') return static_cast<char>(std::tolower(Caption[Place + 1]));
    ++Place;
  }
  return 0;
}

TEST(Reach, AccessKeysAreUniqueInAForm) {
  for (const Form* Each : Dialogs()) {
    std::map<char, Text> Taken;
    for (const Control* Item : Each->Controls) {
      const char Key = AccessKeyOf(Item->Caption);
      if (Key == 0) continue;
      // Protons and phosphoruses have one key: it goes from one to the other and back.
      if (ControlName(*Item) == "frmSelect2.Check1(5)") continue;
      EXPECT_TRUE(Taken.emplace(Key, Item->Name).second)
          << ControlName(*Item) << " and " << Taken[Key] << " share " << Key;
    }
  }
}

TEST(Reach, AccessKeysAreUniqueInAMenu) {
  std::set<std::pair<const MenuItem*, char>> Taken;
  for (const MenuRow& Row : MenuRows()) {
    const MenuItem& Item = Main.*Row.Item;
    const char Key = AccessKeyOf(Item.Caption);
    if (Item.Separator) continue;
    EXPECT_TRUE(Key != 0 && Taken.emplace(Item.Parent, Key).second) << Item.Name;
  }
}

TEST(Spoken, EveryControlOfEveryFormHasAName) {
  for (Form* Each : Dialogs()) {
    DialogOf(*Each, &Window());
    for (Control* Item : Each->Controls) {
      // Labels that depend on the use of the form get their texts when it comes up.
      if (Item->Kind == ControlKind::Label && Item->Caption.empty()) SetCaption(*Item, "Label");
      if (!TakesKeys(*Item)) continue;
      const QAccessibleInterface* Interface = Spoken(*Item);
      ASSERT_NE(Interface, nullptr) << ControlName(*Item);
      EXPECT_NE(Interface->text(QAccessible::Name).trimmed(), "") << ControlName(*Item);
    }
  }
}

TEST(Spoken, SurfacesSayWhatTheyAre) {
  const struct {
    const Control& Of;
    QAccessible::Role Role;
    const char* Name;
  } Rows[] = {
      {Main.Spectrum1, QAccessible::Graphic, "Spectrum"},          {Main.MolRender1, QAccessible::Graphic, "Molecule"},
      {Main.ShieldTable, QAccessible::Table, "Table of results"},  {Main.StatusBar, QAccessible::StatusBar, "Status"},
      {Main.HScroll1, QAccessible::ScrollBar, "Pan the spectrum"},
  };
  for (const auto& Row : Rows) {
    const QAccessibleInterface* Interface = Spoken(Row.Of);
    ASSERT_NE(Interface, nullptr) << Row.Name;
    EXPECT_EQ(Interface->role(), Row.Role) << Row.Name;
    EXPECT_EQ(Interface->text(QAccessible::Name), Row.Name);
  }
  SetStatus(Main.StatusBar, " Loaded 9 atoms.");
  EXPECT_EQ(Spoken(Main.StatusBar)->text(QAccessible::Value), " Loaded 9 atoms.");
  EXPECT_NE(Spoken(Main.MolRender1)->text(QAccessible::Description).indexOf("0 atoms"), -1);
}

TEST(Spoken, GridCellsHaveTextsAndHeaders) {
  SetGridSize(Main.ShieldTable, 3, 4);
  SetCellText(Main.ShieldTable, 0, 2, "1-3(H)");
  SetCellText(Main.ShieldTable, 1, 0, "Shielding");
  SetCellText(Main.ShieldTable, 1, 2, "29.3");
  Wait(20);
  QAccessibleTableInterface* Table = Spoken(Main.ShieldTable)->tableInterface();
  ASSERT_NE(Table, nullptr);
  EXPECT_EQ(Table->rowCount(), 2);
  EXPECT_EQ(Table->columnCount(), 3);
  EXPECT_EQ(Table->cellAt(0, 1)->text(QAccessible::Name), "29.3");
  EXPECT_EQ(Table->columnDescription(1), "1-3(H)");
  EXPECT_EQ(Table->rowDescription(0), "Shielding");
}

// A spectrum of four lines in the window.
struct ShownSpectrum {
  ShownSpectrum() {
    constexpr int Count = 4;
    Workspace.PeakCount = Count;
    Workspace.NMRFrequency = 400;
    for (auto* Values : {&Workspace.PeakFrequency, &Workspace.PeakIntensity, &Workspace.PeakLineWidth,
                         &SpectrumView.PeakWork1, &SpectrumView.PeakWork2})
      Values->ReDim(Count);
    Workspace.PeakDegeneracy.ReDim(Count);
    for (int Peak = 0; Peak < Count; ++Peak) {
      Workspace.PeakFrequency[Peak] = static_cast<Single>(400 * (Peak + 1));
      Workspace.PeakIntensity[Peak] = 1;
      Workspace.PeakDegeneracy[Peak] = 1;
      Workspace.PeakLineWidth[Peak] = 1;
    }
    Workspace.SpectraAvailable = True;
    Dispatch([] {
      TransferVBX();
      mnuLines_Click();
    });
    Wait(20);
    Shown<QWidget>("Spectrum1")->setFocus();
  }
  ~ShownSpectrum() {
    Workspace.SpectraAvailable = False;
    SpectrumView.LineWidthBarLive = False;
    Workspace.ViewMode = MoleculeView;
    Dispatch([] { RefreshView(); });
  }
};

TEST(SpectrumKeys, DoWhatTheMouseDoes) {
  const ShownSpectrum Spectrum;
  auto* Surface = Shown<QWidget>("Spectrum1");
  const auto Press = [&](Qt::Key Key, Qt::KeyboardModifiers Held = {}) { QTest::keyClick(Surface, Key, Held); };
  const auto Picked = [] { return FromQt(Spoken(Main.Spectrum1)->text(QAccessible::Value)).substr(0, 11); };
  const double Whole = SpectrumView.ViewHigh - SpectrumView.ViewLow;

  // Shifts fall from left to right: 4, 3, 2 and 1 ppm. The first line is the selected one from the start.
  std::vector<Text> Walk;
  for (int Step = 0; Step < 5; ++Step) {
    Press(Qt::Key_Right, Qt::ControlModifier);
    Walk.push_back(Picked());
  }
  const std::set<Text> Seen(Walk.begin(), Walk.end());
  EXPECT_EQ(Seen, (std::set<Text>{"Shift=1.000", "Shift=2.000", "Shift=3.000", "Shift=4.000"}));
  const Text Last = Walk.back();
  Press(Qt::Key_Left, Qt::ControlModifier);
  EXPECT_NE(Picked(), Last);
  Press(Qt::Key_Right, Qt::ControlModifier);
  EXPECT_EQ(Picked(), Last) << "there and back again";

  Press(Qt::Key_Plus);
  EXPECT_NEAR(SpectrumView.ViewHigh - SpectrumView.ViewLow, Whole / 2, Whole / 50);
  const int Before = Main.HScroll1.Value;
  Press(Qt::Key_Right);
  EXPECT_NE(Main.HScroll1.Value, Before);
  Press(Qt::Key_Left);
  EXPECT_EQ(Main.HScroll1.Value, Before);
  Press(Qt::Key_Minus);
  EXPECT_NEAR(SpectrumView.ViewHigh - SpectrumView.ViewLow, Whole, Whole / 1000);
  const int Width = Main.HScroll2.Value;
  Press(Qt::Key_Up);
  EXPECT_GT(Main.HScroll2.Value, Width);
  EXPECT_TRUE(Spoken(Main.Spectrum1)->text(QAccessible::Description).startsWith("4 lines"));
}

TEST(Marks, SelectionIsNotByColourAlone) {
  const ShownSpectrum Spectrum;
  auto* Surface = Shown<QWidget>("Spectrum1");
  const auto Picture = [&](Long Selected) {
    SpectrumView.SelectedPeak = Selected;
    Dispatch([] { DrawSpectra(); });
    return Surface->grab().toImage();
  };
  // In monochrome all lines have one colour: the picture still tells which one is picked.
  SetMonochrome(1);
  const QImage None = Picture(-1);
  EXPECT_NE(Picture(1), None);
  EXPECT_NE(Picture(1), Picture(2));
  SetMonochrome(0);
}

}  // namespace

}  // namespace zelvanor::tests
