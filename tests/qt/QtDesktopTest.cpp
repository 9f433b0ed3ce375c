#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QMimeData>
#include <QSettings>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>

#include "QtTestWindow.h"
#include "backend/Compute.h"
#include "platform/Form.h"
#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/Boxes.h"
#include "qt/controls/FormBuilder.h"
#include "qt/frame/OpenFiles.h"
#include "qt/frame/Remembered.h"
#include "shell/Frame.h"
#include "workspace/Workspace.h"

namespace zelvanor::tests {

namespace {

FileDialog Asking(bool Save) {
  FileDialog Dialog;
  Dialog.Save = Save;
  return Dialog;
}

// A document without contents is enough to be opened.
struct Documents {
  QTemporaryDir Folder;
  QString Make(const char* Name, const char* Content = "BEGINMVS\nENDMVS\n") const {
    const QString Path = Folder.filePath(Name);
    QFile File(Path);
    if (!File.open(QIODevice::WriteOnly) || File.write(Content) < 0) throw Failure("can't write a test file");
    return Path;
  }
};

// What the window says to a drag of these, and whether a drop then opened something.
struct DropResult {
  bool Accepted = false;
  Text Opened;
};

DropResult DropOnWindow(const QList<QUrl>& Places) {
  static Text Opened;
  Opened.clear();
  const Event Former = Main.mnuFileOpen.Click;
  // The real command begins with the same service.
  Main.mnuFileOpen.Click = [] { Opened = AskForFile(Asking(false)).value_or("cancelled"); };
  QMimeData Dragged;
  Dragged.setUrls(Places);
  QDragEnterEvent Enter(QPoint(50, 50), Qt::CopyAction, &Dragged, Qt::LeftButton, Qt::NoModifier);
  Enter.ignore();
  QCoreApplication::sendEvent(&Window(), &Enter);
  QDropEvent Drop(QPointF(50, 50), Qt::CopyAction, &Dragged, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&Window(), &Drop);
  Wait(20);
  Main.mnuFileOpen.Click = Former;
  return {Enter.isAccepted(), Opened};
}

TEST(Drops, OpenTheFirstLocalFile) {
  const Documents Files;
  const QUrl One = QUrl::fromLocalFile(Files.Make("one.NMR"));
  const QUrl Two = QUrl::fromLocalFile(Files.Make("two.NMR"));
  const QUrl Folder = QUrl::fromLocalFile(Files.Folder.path());
  const struct {
    const char* What;
    QList<QUrl> Places;
    QUrl Opened;  // empty: refused
  } Rows[] = {
      {"a file", {One}, One},
      {"the first of two", {Two, One}, Two},
      {"a file behind a folder and a web page", {Folder, QUrl("https://example.org/x.NMR"), One}, One},
      {"a folder", {Folder}, {}},
      {"a web page", {QUrl("https://example.org/x.NMR")}, {}},
      {"a file that is gone", {QUrl::fromLocalFile(Files.Folder.filePath("gone.NMR"))}, {}},
      {"nothing", {}, {}},
  };
  for (const auto& Row : Rows) {
    const DropResult Result = DropOnWindow(Row.Places);
    EXPECT_EQ(Result.Accepted, !Row.Opened.isEmpty()) << Row.What;
    EXPECT_EQ(Result.Opened, PathFromQt(Row.Opened.toLocalFile())) << Row.What;
  }
}

TEST(Drops, AreRefusedWhileTheWindowCantOpen) {
  const Documents Files;
  const QList<QUrl> Places{QUrl::fromLocalFile(Files.Make("one.NMR"))};
  const auto Refuses = [&](const char* Why) {
    const DropResult Result = DropOnWindow(Places);
    EXPECT_FALSE(Result.Accepted) << Why;
    EXPECT_EQ(Result.Opened, "") << Why;
  };
  Main.IsBusy = True;
  Refuses("busy");
  Main.IsBusy = False;
  SetEnabled(Main.mnuFile, False);
  Refuses("started by the host");
  SetEnabled(Main.mnuFile, True);
  QDialog Box(&Window());
  Box.setModal(true);
  Box.show();
  Refuses("a dialog is open");
  Box.hide();
  BringBackWindow();
  EXPECT_TRUE(DropOnWindow(Places).Accepted);
}

TEST(Drops, FileIsNoPlaceForUnsavedWork) {
  const Documents Files;
  const QString Path = Files.Make("dropped.NMR", "precious");
  QueueFile(PathFromQt(Path));
  // The question where unsaved work goes to comes first, and its dialog is another one: it comes up, and is cancelled.
  QTimer::singleShot(50, [] {
    if (QWidget* Dialog = QApplication::activeModalWidget()) Dialog->close();
  });
  EXPECT_EQ(AskForFile(Asking(true)), std::nullopt);
  EXPECT_EQ(AskForFile(Asking(false)), PathFromQt(Path));
  BringBackWindow();
}

TEST(Remembered, SizesOfDialogs) {
  static Form frmKept("frmKept");  // forms stay known to the program for good
  static ListBox List1(&frmKept, "List1");
  RememberSize("frmKept", {470, 390});
  QDialog* Dialog = DialogOf(frmKept, &Window());
  EXPECT_EQ(Dialog->size(), QSize(470, 390));
  const auto ShowAndResize = [&](QSize Size) {
    QTimer::singleShot(20, [&] {
      if (Size.isValid()) Dialog->resize(Size);
      HideForm(frmKept);
    });
    ShowModal(frmKept);
  };
  ShowAndResize({520, 410});
  EXPECT_EQ(RememberedSize("frmKept"), QSize(520, 410));
  RememberSize("frmKept", {300, 300});
  ShowAndResize({});
  EXPECT_EQ(RememberedSize("frmKept"), QSize(300, 300)) << "a size that stays is not written again";
  BringBackWindow();
}

TEST(Remembered, WidthsOfEachTable) {
  auto* View = Shown<QTableView>("ShieldTable");
  const auto ShowTable = [&](int Mode, int Cols) {
    Workspace.ViewMode = Mode;
    SetVisible(Main.ShieldTable, True);
    SetGridSize(Main.ShieldTable, 4, Cols);
    for (int Col = 0; Col < Cols; ++Col) SetColWidth(Main.ShieldTable, Col, 800);
    Wait(20);
  };
  ShowTable(ShieldingView, 5);
  const int Plain = View->columnWidth(1);
  View->horizontalHeader()->resizeSection(1, 2 * Plain);
  EXPECT_NEAR(Main.ShieldTable.ColWidths[2], 1600, 20) << "the program sees what the user does";
  ShowTable(CouplingView, 5);
  EXPECT_EQ(View->columnWidth(1), Plain) << "another table has widths of its own";
  ShowTable(ShieldingView, 2);
  ShowTable(ShieldingView, 5);
  EXPECT_NEAR(View->columnWidth(1), 2 * Plain, 1);
  EXPECT_NEAR(Main.ShieldTable.ColWidths[2], 1600, 20);
  Wait(400);
  EXPECT_EQ(RememberedWidths("ShieldTable-2").size(), 1u);
  SetVisible(Main.ShieldTable, False);
  Workspace.ViewMode = MoleculeView;
}

TEST(Remembered, GarbageCountsAsNone) {
  QSettings("zelvanor", "zelvanor").sync();
  const QString Path = QSettings("zelvanor", "zelvanor").fileName();
  const QByteArray Contents[] = {
      "",
      "\0\xff\xfe[[[garbage=",
      "geometry=no bytes\nfolder=/nowhere/at/all\n[sizes]\nfrmValues=@Size(-5 99999999)\n[columns]\n"
      "ShieldTable-2=1:x -3:800 2:99999999 :: 5\n",
      "[General]\ngeometry=@ByteArray(\\x1\\xd9\\xd0\\xcb)\nfolder=@Invalid()\n[sizes]\nfrmValues=big\n",
  };
  for (const QByteArray& Content : Contents) {
    QFile File(Path);
    ASSERT_TRUE(File.open(QIODevice::WriteOnly));
    File.write(Content);
    File.close();
    QWidget Trial;
    EXPECT_FALSE(RestoreGeometry(Trial)) << Content.constData();
    EXPECT_EQ(RememberedFolder(), "");
    EXPECT_FALSE(RememberedSize("frmValues").isValid());
    EXPECT_TRUE(RememberedWidths("ShieldTable-2").empty());
  }
  RememberSize("frmValues", {500, 400});
  EXPECT_EQ(RememberedSize("frmValues"), QSize(500, 400)) << "and can be written over";
}

TEST(Busy, StatusLineMovesWhileACommandWorks) {
  auto* Line = Shown<QWidget>("StatusBar");
  struct Counter : QObject {
    int Paints = 0;
    bool eventFilter(QObject*, QEvent* Event) override {
      Paints += Event->type() == QEvent::Paint;
      return false;
    }
  } Count;
  Wait(50);
  Line->installEventFilter(&Count);
  Main.IsBusy = True;
  Dispatch([] { SetBusy(False); });
  EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
  Count.Paints = 0;
  // No events are served in between, as in a loop of the program.
  for (int Step = 0; Step < 200; ++Step) SetStatus(Main.StatusBar, "Atom " + std::to_string(Step));
  EXPECT_GE(Count.Paints, 1);
  EXPECT_LT(Count.Paints, 50) << "a text that no one can read is not painted";
  Main.IsBusy = False;
  Dispatch([] { SetBusy(True); });
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST(Busy, WindowLivesWhileTheBackendRuns) {
  auto* Line = Shown<QWidget>("StatusBar");
  int Ticks = 0;
  QTimer Clock;
  QObject::connect(&Clock, &QTimer::timeout, [&Ticks] { ++Ticks; });
  Clock.start(50);
  SetStatus(Main.StatusBar, "");
  const QImage Idle = Line->grab().toImage();
  Main.IsBusy = True;
  SetStatus(Main.StatusBar, "Computing...");
  const QImage First = Line->grab().toImage();
  WaitForBackend(Platform.Shell({"/bin/sleep", "2"}));
  EXPECT_GE(Ticks, 20) << "events have been served all the time";
  EXPECT_NE(Line->grab().toImage(), First) << "the line shows that time goes on";
  Main.IsBusy = False;
  Wait(600);
  EXPECT_EQ(Line->grab().toImage(), Idle) << "and has neither seconds nor the dots of work when it is done";
  SetStatus(Main.StatusBar, "");
}

}  // namespace

}  // namespace zelvanor::tests
