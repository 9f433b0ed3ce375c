#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

#include "QtTestWindow.h"
#include "program.h"
#include "qt/Dispatch.h"
#include "qt/frame/MainWindow.h"
#include "qt/frame/QtServices.h"

namespace zelvanor::tests {

namespace {

std::unique_ptr<QMainWindow> TheWindow;

BoxAnswer AnswerBox(const MessageBox& Box) {
  ShownBoxes().push_back(Box);
  const bool Asks = Box.Buttons == BoxButtons::YesNo || Box.Buttons == BoxButtons::YesNoCancel;
  return Asks ? BoxAnswer::Yes : BoxAnswer::Ok;
}

void StartWindow(const QString& Folder) {
  QFile Profile(Folder + "/win.ini");
  Profile.open(QIODevice::WriteOnly);
  Profile.write(("[Zelvanor]\nNMRExePath=" + Folder + "\nNMRIniPath=" + Folder + "\n").toUtf8());
  Profile.close();
  qputenv("ZELVANOR_WIN_INI", Profile.fileName().toUtf8());
  UseQtServices();
  Platform.ShowBox = AnswerBox;
  Platform.OtherInstanceRuns = [] { return false; };
  BuildProgram();
  TheWindow = MakeMainWindow();
  Dispatch([] { Form_Load(""); });
  Wait(100);
}

}  // namespace

QMainWindow& Window() { return *TheWindow; }

std::vector<MessageBox>& ShownBoxes() {
  static std::vector<MessageBox> Boxes;
  return Boxes;
}

void Wait(int Milliseconds) { QTest::qWait(Milliseconds); }

}  // namespace zelvanor::tests

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QTemporaryDir Folder;
  qputenv("XDG_CONFIG_HOME", Folder.path().toUtf8());
  testing::InitGoogleTest(&argc, argv);
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  QApplication Application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  zelvanor::tests::StartWindow(Folder.path());
  const int Code = RUN_ALL_TESTS();
  zelvanor::tests::TheWindow.reset();
  return Code;
}
