#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTimer>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QWindow>

#include "QtTestWindow.h"
#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/Boxes.h"
#include "qt/help/HelpSearch.h"
#include "qt/help/HelpWindow.h"
#include "shell/Frame.h"
#include "shell/HelpTopics.h"
#include "shell/frmAbout.h"
#include "workspace/Workspace.h"

namespace zelvanor::tests {

namespace {

const Text Manual = ZELVANOR_MANUAL "/nmr.hlp";

QWidget* Help() {
  for (QWidget* Each : QApplication::topLevelWidgets()) {
    if (Each->objectName() == "HelpWindow") return Each;
  }
  return nullptr;
}

QTextBrowser* Page() { return Help()->findChild<QTextBrowser*>(); }
QString PageName() { return Page()->source().fileName(); }

// With the real manual, and the help window closed at the end.
class QtHelpTest : public testing::Test {
 protected:
  QtHelpTest() { Main.HelpFile = Manual; }
  ~QtHelpTest() override {
    if (Help() != nullptr) Help()->close();
  }
};

QStringList TreeTitles() {
  QStringList Titles;
  for (QTreeWidgetItemIterator Item(Help()->findChild<QTreeWidget*>()); *Item != nullptr; ++Item) {
    Titles.append((*Item)->text(0));
  }
  return Titles;
}

}  // namespace

TEST_F(QtHelpTest, F1OpensThePageOfTheView) {
  struct Row {
    Integer View;
    Flag Molecule;
    const char* Page;
  };
  const Integer Before = Workspace.ViewMode;
  for (const Row& R : {Row{ShieldingView, 0, "shielding-table.md"},
                       {SpectrumViewMode, 0, "spectrum-view.md"},
                       {MoleculeView, 0, "main-window.md"}}) {
    Workspace.ViewMode = R.View;
    Window().activateWindow();
    Wait(20);
    QTest::keyClick(&Window(), Qt::Key_F1);
    ASSERT_NE(Help(), nullptr);
    EXPECT_TRUE(Help()->isVisible());
    EXPECT_EQ(FromQt(PageName()), R.Page);
  }
  Workspace.ViewMode = Before;
  Dispatch(mnuHelpContents_Click);
  EXPECT_EQ(PageName(), "index.md");
  Dispatch(mnuHelpUsing_Click);
  EXPECT_EQ(PageName(), "using-help.md");
  EXPECT_TRUE(TreeTitles().contains("Spectrum view"));
}

TEST_F(QtHelpTest, StaysUsableWhileADialogIsOpen) {
  QTimer::singleShot(100, [] {
    QWidget* Dialog = QApplication::activeModalWidget();
    ASSERT_NE(Dialog, nullptr);
    QTest::keyClick(Dialog, Qt::Key_F1);
    Wait(50);
    EXPECT_EQ(PageName(), "main-window.md");
    // A window that the dialog blocks gets no keys: Escape closes it, and leaves the dialog open.
    EXPECT_FALSE(Help()->windowHandle()->isModal());
    QTest::keyClick(Help()->windowHandle(), Qt::Key_Escape);
    EXPECT_FALSE(Help()->isVisible());
    EXPECT_TRUE(Dialog->isVisible());
    QTest::keyClick(Dialog, Qt::Key_Escape);
  });
  Dispatch(mnuAbout_Click);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(QtHelpTest, AMessageHasItsPageToo) {
  QTimer::singleShot(100, [] {
    QWidget* Box = QApplication::activeModalWidget();
    ASSERT_NE(Box, nullptr);
    QTest::keyClick(Box, Qt::Key_F1);
    Wait(50);
    EXPECT_EQ(FromQt(PageName()), "messages.md");
    QTest::keyClick(Help()->windowHandle(), Qt::Key_Escape);
    EXPECT_FALSE(Help()->isVisible());
    QTest::keyClick(Box, Qt::Key_Return);
  });
  ShowMessageBox({BoxKind::Warning, BoxButtons::Ok, "Zelvanor", "WARNING: Read on."});
}

TEST_F(QtHelpTest, LinksLeadToPagesAndHeadings) {
  ShowHelpWindow(Manual, HelpCommand::Context, SpectrumHelp);
  Page()->setSource(QUrl("atom-types.md"));
  EXPECT_EQ(Help()->findChild<QTreeWidget*>()->currentItem()->text(0), "Atom types by rules");
  Page()->setSource(QUrl("glossary.md#coupling"));
  const QString Top = Page()->cursorForPosition({20, 8}).block().text();
  EXPECT_EQ(FromQt(Top), "Coupling");
  Page()->backward();
  EXPECT_EQ(PageName(), "atom-types.md");
  Page()->setSource(QUrl("no-such.md"));
  EXPECT_TRUE(Page()->toPlainText().startsWith("Page missing")) << FromQt(Page()->toPlainText());
}

TEST_F(QtHelpTest, SearchFindsPagesAndMarksTheWords) {
  ShowHelpWindow(Manual, HelpCommand::Contents, 0);
  auto* Hits = Help()->findChild<QListWidget*>();
  const auto Search = [](const char* Words) {
    for (auto* Field : Help()->findChildren<QLineEdit*>()) {
      if (Field->accessibleName() == "Search all pages") Field->setText(Words);
    }
  };
  Search("karplus tors");
  ASSERT_GE(Hits->count(), 2);
  Search("Shielding Tensor");
  ASSERT_GE(Hits->count(), 1);
  EXPECT_TRUE(Hits->item(0)->text().startsWith("Shielding Tensor\n")) << FromQt(Hits->item(0)->text());
  Hits->setCurrentRow(0);
  EXPECT_EQ(PageName(), "tensor-values.md");
  ASSERT_FALSE(Page()->extraSelections().isEmpty());
  for (const auto& Mark : Page()->extraSelections()) {
    const QString Marked = Mark.cursor.selectedText().toLower();
    EXPECT_TRUE(Marked == "shielding" || Marked == "tensor") << FromQt(Marked);
  }
  Search("nowhere-to-be-found");
  EXPECT_EQ(Hits->count(), 0);
  Search("  ");
  EXPECT_EQ(Hits->count(), 0);
}

}  // namespace zelvanor::tests
