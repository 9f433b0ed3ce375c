#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include "QtTestWindow.h"
#include "platform/Form.h"
#include "qt/Dispatch.h"
#include "qt/controls/Boxes.h"
#include "qt/controls/FormBuilder.h"
#include "workspace/Helpers.h"

namespace zelvanor::tests {

namespace {

struct TrialForm {
  Form frmTrial{"frmTrial"};
  TextField Text1{&frmTrial, "Text1"};
  ListBox List2{&frmTrial, "List2", true};
  CommandButton Command1{&frmTrial, "Command1"};
  CommandButton Command2{&frmTrial, "Command2"};
  std::vector<Text> Seen;
};

// Static: forms stay known to the program for good.
TrialForm& Trial() {
  static TrialForm It;
  return It;
}

Event Note(const char* What) {
  return [What] { Trial().Seen.push_back(What); };
}

QDialog* Dialog() {
  TrialForm& F = Trial();
  if (F.frmTrial.Layout.Is == Arrangement::Shape::Column) return DialogOf(F.frmTrial, &Window());
  SetUpOkAndCancel(F.Command1, "&OK", Note("ok"), F.Command2, [] {
    Trial().Seen.push_back("cancel");
    HideForm(Trial().frmTrial);
  });
  F.List2.Click = Note("many");
  F.frmTrial.Layout = ColumnOf({ItemOf(F.Text1), ItemOf(F.List2), RowOf({ItemOf(F.Command1), ItemOf(F.Command2)})});
  return DialogOf(F.frmTrial, &Window());
}

template <class Widget>
Widget* Part(const char* Name) {
  auto* Found = Dialog()->findChild<Widget*>(QString("frmTrial.") + Name);
  if (Found == nullptr) throw Failure(Text("No widget shows ") + Name);
  return Found;
}

std::vector<Text> TakeSeen() { return std::exchange(Trial().Seen, {}); }
using Texts = std::vector<Text>;

// The dialog on the screen, without its event loop.
class FormWidgets : public testing::Test {
 protected:
  FormWidgets() {
    Dialog()->show();
    Dialog()->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(Dialog()));
    TakeSeen();
  }
  ~FormWidgets() override { Dialog()->hide(); }
};

TEST_F(FormWidgets, LongListsSelectInOneGo) {
  constexpr int NumRows = 5440;
  TrialForm& F = Trial();
  std::vector<Text> Items;
  for (int Row = 0; Row < NumRows; ++Row) Items.push_back("atom " + std::to_string(Row));
  SetItems(F.List2, Items);
  auto* View = Part<QListView>("List2");
  EXPECT_EQ(View->model()->rowCount(), NumRows);
  View->setFocus();
  TakeSeen();
  View->selectAll();
  EXPECT_EQ(TakeSeen(), Texts{"many"});
  EXPECT_EQ(std::count(F.List2.Selected.begin(), F.List2.Selected.end(), true), NumRows);
  for (int Row = 0; Row < NumRows; ++Row) SetSelected(F.List2, Row, Row % 1000 == 7);
  Wait(20);
  EXPECT_EQ(View->selectionModel()->selectedIndexes().size(), 6);
  EXPECT_TRUE(View->selectionModel()->isSelected(View->model()->index(1007, 0)));
  EXPECT_TRUE(TakeSeen().empty()) << "the program's own selection is no click";
  SetItems(F.List2, {});
  EXPECT_EQ(View->model()->rowCount(), 0);
}

// Runs a step inside the event loop of the next modal window.
void Later(std::function<void()> Step) { QTimer::singleShot(50, qApp, std::move(Step)); }

TEST(ModalForms, CloseByTheirButtons) {
  struct Row {
    const char* Name;
    std::function<void()> Act;
    Texts Seen;
  };
  const Row Rows[] = {
      {"escape", [] { QTest::keyClick(Dialog(), Qt::Key_Escape); }, {"cancel"}},
      {"closing the window", [] { Dialog()->close(); }, {"cancel"}},
      {"enter presses the default button, which leaves it open",
       [] {
         QTest::keyClick(Part<QLineEdit>("Text1"), Qt::Key_Return);
         QTest::keyClick(Dialog(), Qt::Key_Escape);
       },
       {"ok", "cancel"}},
  };
  for (const Row& Row : Rows) {
    SCOPED_TRACE(Row.Name);
    Dialog();
    TakeSeen();
    Later(Row.Act);
    ShowModal(Trial().frmTrial);
    EXPECT_EQ(TakeSeen(), Row.Seen);
    EXPECT_FALSE(Dialog()->isVisible());
    EXPECT_FALSE(IsSet(Trial().frmTrial.Visible));
  }
}

TEST(ModalForms, EndOfTheProgramUnwindsThem) {
  const auto EndInside = [] {
    Dialog();
    Trial().Command1.Click = [] { EndProgram(); };
    Later([] { Part<QAbstractButton>("Command1")->click(); });
    bool Unwound = false;
    Dispatch([&] {
      try {
        ShowModal(Trial().frmTrial);
      } catch (const ProgramEnded&) {
        Unwound = true;
        throw;
      }
    });
    std::_Exit(Unwound && ProgramHasEnded() ? 0 : 1);
  };
  EXPECT_EXIT(EndInside(), testing::ExitedWithCode(0), "");
}

TEST(MessageBoxes, ShowPlainTextAndAnswer) {
  struct Row {
    BoxButtons Buttons;
    Qt::Key Key;
    BoxAnswer Answer;
  };
  constexpr Row Rows[] = {
      {BoxButtons::Ok, Qt::Key_Return, BoxAnswer::Ok},
      {BoxButtons::Ok, Qt::Key_Escape, BoxAnswer::Ok},
      {BoxButtons::OkCancel, Qt::Key_Escape, BoxAnswer::Cancel},
      {BoxButtons::YesNo, Qt::Key_Return, BoxAnswer::Yes},
      {BoxButtons::YesNo, Qt::Key_Escape, BoxAnswer::No},
      {BoxButtons::YesNoCancel, Qt::Key_Escape, BoxAnswer::Cancel},
      {BoxButtons::RetryCancel, Qt::Key_Return, BoxAnswer::Retry},
  };
  for (const Row& Row : Rows) {
    QString Text;
    Qt::TextFormat Format = Qt::AutoText;
    Later([&] {
      auto* Box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      Text = Box->text();
      Format = Box->textFormat();
      QTest::keyClick(Box, Row.Key);
    });
    const MessageBox Box{BoxKind::Question, Row.Buttons, "Zelvanor", "<b>a</b>\rb"};
    EXPECT_EQ(ShowMessageBox(Box), Row.Answer) << int(Row.Buttons) << " " << int(Row.Key);
    EXPECT_EQ(Text, "<b>a</b>\nb");
    EXPECT_EQ(Format, Qt::PlainText);
  }
}

TEST(MessageBoxes, WarningsOfACommandComeTogether) {
  struct Row {
    int Warnings;
    QString Shown;
  };
  const Row Rows[] = {
      {1, "WARNING: fault 0."},
      {2, "WARNING: There are 2 problems:\n\nfault 0.\nfault 1."},
      {9,
       "WARNING: There are 9 problems:\n\nfault 0.\nfault 1.\nfault 2.\nfault 3.\nfault 4.\nfault 5.\nfault 6.\n"
       "fault 7.\n\nand 1 more."},
  };
  for (const bool Asks : {false, true}) {
    for (const Row& Row : Rows) {
      QStringList Seen;
      const auto CloseNext = [&Seen] {
        auto* Box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        Seen << Box->text();
        QTest::keyClick(Box, Qt::Key_Escape);
      };
      Later([&] {
        if (Asks) Later(CloseNext);
        CloseNext();
      });
      ShowWarningsTogether([&] {
        for (int Fault = 0; Fault < Row.Warnings; ++Fault)
          ShowMessageBox({BoxKind::Warning, BoxButtons::Ok, "Zelvanor", Join("WARNING: fault ", Long{Fault}, ".")});
        EXPECT_TRUE(Seen.isEmpty());
        if (!Asks) return;
        EXPECT_EQ(ShowMessageBox({BoxKind::Question, BoxButtons::YesNo, "Zelvanor", "asked"}), BoxAnswer::No);
      });
      EXPECT_EQ(Seen.value(0), Row.Shown);
    }
  }
}

}  // namespace

}  // namespace zelvanor::tests
