#include <QApplication>
#include <QFileInfo>
#include <QTimer>
#include <clocale>

#include "files/DocumentWriter.h"
#include "files/FileCommands.h"
#include "history/History.h"
#include "history/Recovery.h"
#include "platform/posix/PosixServices.h"
#include "program.h"
#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/Boxes.h"
#include "qt/frame/ContextMenus.h"
#include "qt/frame/DarkOutlines.h"
#include "qt/frame/FirstSight.h"
#include "qt/frame/HostLink.h"
#include "qt/frame/MainWindow.h"
#include "qt/frame/OneWindow.h"
#include "qt/frame/OpenFiles.h"
#include "qt/frame/QtServices.h"
#include "qt/frame/RecentFiles.h"
#include "qt/frame/Remembered.h"
#include "shell/MainForm.h"
#include "workspace/Helpers.h"

namespace {

using namespace zelvanor;

constexpr int TimesMilliseconds = 5000;
constexpr const char* HostWord = "MORVANTIS";

Text JoinWords(int NumWords, char** Words) {
  Text Line;
  for (int Word = 1; Word < NumWords; ++Word) {
    if (Word > 1) Line += ' ';
    Line += Words[Word];
  }
  return Line;
}

// The first word that names a file, as a full path; empty for none.
Text FindFileWord(int NumWords, char** Words) {
  for (int Word = 1; Word < NumWords; ++Word) {
    const QFileInfo File(PathToQt(Words[Word]));
    if (Text(Words[Word]) != HostWord && File.isFile()) return PathFromQt(File.absoluteFilePath());
  }
  return {};
}

// Work of a run that did not end; who neither takes nor drops it is asked again at the next start.
void OfferLeftWork() {
  UseRecovery(WriteCopy);
  Dispatch([] {
    const std::optional<LeftWork> Left = FindLeftWork();
    if (!Left) return;
    const Text Name = Left->DocumentTitle.empty() ? Text("(untitled)") : Left->DocumentTitle;
    switch (AskYesNoCancel(Join("Zelvanor did not come to its end last time. Take over the unsaved work on ", Name,
                                "?\r\rNo drops it, Cancel keeps it for the next start."))) {
      case BoxAnswer::Yes:
        return RunRecorded("taking over kept work", [&] { TakeLeftWork(*Left); });
      case BoxAnswer::No:
        return DropLeftWork(*Left);
      default:
        return;
    }
  });
}

// What a file has to tell comes in one box; its document in the view that it was left in.
void FollowDocuments(const QMainWindow& Window) {
  AddRecentMenu(Window.menuBar());
  Main.mnuFileOpen.Click = [Open = Main.mnuFileOpen.Click] {
    ShowWarningsTogether([&Open] {
      Open();
      RestoreView();
    });
  };
  AfterDispatch = [Others = AfterDispatch] {
    if (Others) Others();
    NoteView();
  };
}

int Run(const Text& CommandLine, const Text& Document) {
  UseQtServices();
  UseHostLink();
  WantFirstSight();
  BuildProgram();
  const auto Window = MakeMainWindow();
  Dispatch([&] { Form_Load(CommandLine); });
  if (ProgramHasEnded()) return 0;
  if (!Window->isVisible()) return 1;  // a failure has been shown, and there is nothing to go on with
  FollowDesktopColours(Window.get());
  AnswerCalls(Window.get());
  FollowDocuments(*Window);
  AddContextMenus();
  OfferLeftWork();
  if (!ProgramHasEnded()) OpenDocument(Document);
  QTimer Times;
  QObject::connect(&Times, &QTimer::timeout, [] {
    if (!CommandsPause()) KeepWorkAtTimes();
  });
  Times.start(TimesMilliseconds);
  const int Code = ProgramHasEnded() ? 0 : QApplication::exec();
  RememberGeometry(*Window);
  return Code;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication Application(argc, argv);
  // The window system has taken over the regional settings of the process; numbers keep their point.
  std::setlocale(LC_NUMERIC, "C");
  QApplication::setApplicationName("zelvanor");
  QApplication::setDesktopFileName("zelvanor");
  QApplication::setQuitOnLastWindowClosed(false);
  UseVisibleOutlines();
  TakeEndSignals();
  return Run(JoinWords(argc, argv), FindFileWord(argc, argv));
}
