#include <unistd.h>

#include <QApplication>
#include <QTimer>
#include <clocale>
#include <cstdio>
#include <fstream>

#include "Pictures.h"
#include "WindowScript.h"
#include "batch/Batch.h"
#include "batch/UserActions.h"
#include "program.h"
#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/controls/FormBuilder.h"
#include "qt/frame/DarkOutlines.h"
#include "qt/frame/MainWindow.h"
#include "qt/frame/QtServices.h"
#include "shell/MainForm.h"

namespace zelvanor::tests {

namespace {

std::unique_ptr<QMainWindow> TheWindow;
PlatformServices OfWindow;
PlatformServices OfScript;

[[noreturn]] void Leave(int Status) {
  std::fflush(nullptr);
  _exit(Status);
}

// The dialog's own event loop runs, and within it the next lines of the script.
void RunModalWithScript(Form& Target) {
  QTimer::singleShot(0, [&Target] {
    SettleWidgets();
    RunOrStop([&Target] { Dispatch([&Target] { OfScript.RunModal(Target); }); });
  });
  OfWindow.RunModal(Target);
}

void UseServicesOfBoth() {
  Platform.ControlChanged = [](Control& Target, Property What) {
    OfWindow.ControlChanged(Target, What);
    OfScript.ControlChanged(Target, What);
  };
  Platform.RunModal = RunModalWithScript;
  Platform.DoEvents = [] {
    OfWindow.DoEvents();
    OfScript.DoEvents();
  };
  Platform.ShowBox = [](const MessageBox& Box) {
    BoxAnswer Answer = BoxAnswer::Ok;
    if (ComesUpForPicture(true)) OfWindow.ShowBox(Box);
    RunOrStop([&] { Answer = OfScript.ShowBox(Box); });
    return Answer;
  };
  Platform.ShowFileDialog = [](const FileDialog& Dialog) {
    std::optional<Text> Chosen;
    if (ComesUpForPicture(false)) OfWindow.ShowFileDialog(Dialog);
    RunOrStop([&] { Chosen = OfScript.ShowFileDialog(Dialog); });
    return Chosen;
  };
  Platform.ShowColourDialog = [](Colour Current) {
    std::optional<Colour> Chosen;
    if (ComesUpForPicture(false)) OfWindow.ShowColourDialog(Current);
    RunOrStop([&] { Chosen = OfScript.ShowColourDialog(Current); });
    return Chosen;
  };
}

void AfterLine() {
  SettleWidgets();
  if (ProgramHasEnded() && !batch::State.Ended) {
    batch::State.Ended = true;
    batch::PrintOut("ended");
  }
  if (batch::State.Started && !batch::State.Ended) CheckWidgets();
}

// The heights of strips and bars are those that scripts count on, whatever the style has: UseBatchServices gives them.
void MakeWindow() {
  UseQtServices();
  OfWindow = Platform;
  BuildProgram();
  TheWindow = MakeMainWindow();
  batch::UseBatchServices();
  OfScript = Platform;
  UseServicesOfBoth();
  UseWidgetHands();
  AddPictureCommands();
  batch::Hands.Resize(PixelsFromTwips(Main.frmNMR.Width), PixelsFromTwips(Main.frmNMR.Height));
  batch::State.AfterLine = AfterLine;
}

// What the toolkit complains of is a fault and shows in the transcript, but for the offscreen display's own limits.
void PassComplaint(QtMsgType, const QMessageLogContext&, const QString& Message) {
  if (Message.contains("propagateSizeHints")) return;
  std::fprintf(stderr, "%s\n", qUtf8Printable(Message));
}

}  // namespace

QMainWindow& ScriptedWindow() { return *TheWindow; }
const PlatformServices& WindowServices() { return OfWindow; }

void SettleWidgets() {
  constexpr int Rounds = 3;
  for (int Round = 0; Round < Rounds; ++Round) {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
  }
}

void RunOrStop(const std::function<void()>& Work) {
  try {
    Work();
  } catch (const batch::ScriptStop& Stop) {
    Leave(batch::ReportStop(Stop));
  }
}

}  // namespace zelvanor::tests

int main(int Count, char** Words) {
  using namespace zelvanor;
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  qInstallMessageHandler(tests::PassComplaint);
  QApplication Application(Count, Words);
  std::setlocale(LC_NUMERIC, "C");
  QApplication::setStyle("fusion");
  UseVisibleOutlines();
  QApplication::setQuitOnLastWindowClosed(false);
  std::ifstream Script(Count > 1 ? Words[1] : "");
  if (!Script) {
    std::fprintf(stderr, "usage: zelvanor-window-script SCRIPT [WORD...]\n");
    return batch::CannotCarryOut;
  }
  Text CommandLine;
  for (int Word = 2; Word < Count; ++Word) CommandLine += (Word > 2 ? " " : "") + Text(Words[Word]);
  tests::UseThemeForPictures();
  tests::MakeWindow();
  tests::Leave(batch::RunWholeScript(Script, CommandLine));
}
