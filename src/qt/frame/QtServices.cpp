#include "qt/frame/QtServices.h"

#include <QClipboard>
#include <QEventLoop>
#include <QGuiApplication>
#include <QTimer>

#include "pictures/ReportPages.h"
#include "pictures/ViewPictures.h"
#include "platform/Services.h"
#include "platform/posix/PosixServices.h"
#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/Boxes.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/controls/FormBuilder.h"
#include "qt/controls/Pointer.h"
#include "qt/help/HelpWindow.h"
#include "qt/views/ChartView.h"

namespace zelvanor {

namespace {

// While a process runs a waiting loop calls this over and over: it rests a little each time.
void ServeEvents() {
  constexpr int RestMilliseconds = 5;
  {
    const CommandPause Pause;
    if (AnyProcessRuns()) {
      QEventLoop Rest;
      QTimer::singleShot(RestMilliseconds, &Rest, &QEventLoop::quit);
      Rest.exec();
    } else {
      QCoreApplication::processEvents();
    }
  }
  PassEnd();
}

}  // namespace

void UseQtServices() {
  UsePosixServices();
  Platform.ControlChanged = ShowChange;
  Platform.ShowBox = ShowMessageBox;
  Platform.ShowFileDialog = AskForFile;
  Platform.ShowColourDialog = AskForColour;
  Platform.RunModal = RunModalForm;
  Platform.DoEvents = ServeEvents;
  Platform.RunLater = [](int Milliseconds, Event Work) {
    QTimer::singleShot(Milliseconds, [Work = std::move(Work)] { Dispatch(Work); });
  };
  Platform.SetPointer = ShowPointer;
  Platform.ShowHelp = ShowHelpWindow;
  Platform.GetClipboard = [] { return FromQt(QGuiApplication::clipboard()->text()); };
  Platform.SetClipboard = [](const Text& Value) { QGuiApplication::clipboard()->setText(ToQt(Value)); };
  Platform.WriteViewPicture = pictures::WriteViewPicture;
  Platform.WriteReportPages = pictures::WriteReportPages;
  Platform.SetClipboardPicture = [](const ChartControl& Chart) {
    QGuiApplication::clipboard()->setImage(ChartImage(Chart));
  };
}

}  // namespace zelvanor
