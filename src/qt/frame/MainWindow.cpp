#include "qt/frame/MainWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QIcon>
#include <QLabel>
#include <QMessageBox>
#include <QScreen>
#include <QStyle>
#include <QTimer>
#include <algorithm>

#include "platform/Form.h"
#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/controls/KeyFilter.h"
#include "qt/frame/MenuBar.h"
#include "qt/frame/OpenFiles.h"
#include "qt/frame/PaneDivider.h"
#include "qt/frame/Remembered.h"
#include "qt/frame/ToolStrip.h"
#include "qt/frame/ViewFocus.h"
#include "qt/help/HelpWindow.h"
#include "qt/views/WorkHint.h"
#include "shell/MainForm.h"
#include "shell/Progress.h"
#include "workspace/Helpers.h"

// The icons; a library has to ask for them, and outside every namespace.
static void LoadIcons() { Q_INIT_RESOURCE(zelvanor); }

namespace zelvanor {

namespace {

// The first size of the window: a share of the screen, but no larger than is easy to look over.
constexpr Double FirstShare = 0.75;
constexpr int FirstWidth = 1280;
constexpr int FirstHeight = 860;
constexpr int LeastWidth = 400;
constexpr int LeastHeight = 240;

// Controls of the work area, in the order in which they lie on one another.
Control* const WorkControls[] = {&Main.MolRender1, &Main.ShieldTable, &Main.HScroll2,
                                 &Main.Spectrum1,  &Main.HScroll1,    &Main.StatusBar};

class WorkArea : public QWidget {
 public:
  explicit WorkArea(QWidget* Parent) : QWidget(Parent) {
    Hint = MakeWorkHint(this);
    Strip = MakeToolStrip(this);
    for (Control* Item : WorkControls) MakeWidget(*Item, this);
    Divider = MakePaneDivider(this);
    BeforeDispatch = NoteKeyHolder;
    AfterDispatch = [this] {
      ShowWorkHint(Hint);
      KeepKeysOnView();
      PlacePaneDivider(Divider);
      WidgetOf(Main.StatusBar)->update();  // its hint goes with the view, whatever its text does
    };
  }

  ~WorkArea() override { BeforeDispatch = AfterDispatch = {}; }

 protected:
  void resizeEvent(QResizeEvent*) override {
    Main.frmNMR.Width = TwipsFromPixels(width());
    Main.frmNMR.Height = TwipsFromPixels(height());
    const int Top = PixelsFromTwips(Main.ToolbarHeight);
    const int Bottom = PixelsFromTwips(Main.StatusBar.Height);
    Strip->setGeometry(0, 0, width(), Top);
    Hint->setGeometry(0, Top, width(), std::max(height() - Top - Bottom, 1));
    Dispatch([] { Fire(Main.frmNMR.Resize); });
  }

 private:
  QLabel* Hint = nullptr;
  QWidget* Strip = nullptr;
  QWidget* Divider = nullptr;
};

class FrameWindow : public QMainWindow {
 public:
  FrameWindow() {
    BuildMenus(menuBar());
    setCentralWidget(new WorkArea(this));
    setAcceptDrops(true);
  }

 protected:
  // Closing asks the program; when it agrees it ends, and every event loop is left.
  void closeEvent(QCloseEvent* Close) override {
    Close->ignore();
    if (Progress.Runs) return AskToStop();
    if (CommandsPause()) return QApplication::beep();
    Dispatch([] { UnloadForm(Main.frmNMR); });
  }

  // A calculation works: the window closes once it has been given up and its command has come to its end.
  void AskToStop() {
    if (Asking) return;
    Asking = true;
    const bool Stop =
        QMessageBox::question(this, ProgramTitle, "A calculation is running. Stop it and close Zelvanor?") ==
        QMessageBox::Yes;
    Asking = false;
    if (!Stop) return;
    AskCancel();
    CloseWhenFree();
  }

  void CloseWhenFree() {
    constexpr int RetryMilliseconds = 50;
    if (!CommandsPause()) return static_cast<void>(close());
    QTimer::singleShot(RetryMilliseconds, this, [this] { CloseWhenFree(); });
  }

  // The pointer shows by its form whether the window takes what is dragged.
  void dragEnterEvent(QDragEnterEvent* Drag) override {
    if (CanTake(*Drag->mimeData())) Drag->acceptProposedAction();
  }

  // The other program waits for the end of the drop: the command, which may ask, comes after it.
  void dropEvent(QDropEvent* Drop) override {
    if (!CanTake(*Drop->mimeData())) return;
    Drop->acceptProposedAction();
    QTimer::singleShot(0, this, [this, File = FirstLocalFile(*Drop->mimeData()), Words = Drop->mimeData()->text()] {
      activateWindow();
      TakeDropped(File, Words);
    });
  }

 private:
  bool Asking = false;
};

void GiveMeasures(const QWidget& Window) {
  constexpr int StatusPadding = 8;
  const int Bar = Window.style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, &Window);
  Main.StatusBar.Height = TwipsFromPixels(Window.fontMetrics().height() + StatusPadding);
  Main.HScroll1.Height = Main.HScroll2.Height = TwipsFromPixels(Bar);
  Main.Spectrum1.AccessibleName = "Spectrum";
  Main.HScroll1.AccessibleName = "Pan the spectrum";
  Main.HScroll2.AccessibleName = "Line width";
  Main.StatusBar.AccessibleName = "Status";
}

void ShowForm(QMainWindow* Window, Property What) {
  const Form& Frame = Main.frmNMR;
  switch (What) {
    case Property::Visible:
      return Window->setVisible(IsSet(Frame.Visible));
    case Property::Caption:
      // "[*]" is Qt's mark for a changed document, doubled it is itself.
      return Window->setWindowTitle(ToQt(Frame.Caption).replace("[*]", "[*][*]"));
    default:
      return;
  }
}

void GiveFirstSize(QMainWindow* Window) {
  if (RestoreGeometry(*Window)) return;
  const QSize Room = Window->screen()->availableSize();
  const QSize Least(LeastWidth, LeastHeight);
  Window->resize((Room * FirstShare).boundedTo({FirstWidth, FirstHeight}).expandedTo(Least).boundedTo(Room));
}

}  // namespace

std::unique_ptr<QMainWindow> MakeMainWindow() {
  LoadIcons();
  {
    const QWidget Sample;
    GiveMeasures(Sample);
  }
  auto Window = std::make_unique<FrameWindow>();
  Window->setObjectName(MainFormName);
  // The desktop has the installed one at every size.
  QApplication::setWindowIcon(QIcon::fromTheme("zelvanor", QIcon(":/icons/zelvanor.svg")));
  Window->setMinimumSize(LeastWidth, LeastHeight);
  GiveFirstSize(Window.get());
  // The program lays its controls out before the window is shown: it is given the size that the window will have.
  const QSize Inner = Window->size() - QSize(0, Window->menuBar()->sizeHint().height());
  Main.frmNMR.Width = TwipsFromPixels(Inner.width());
  Main.frmNMR.Height = TwipsFromPixels(Inner.height());
  Bind(Main.frmNMR, Window.get(), [Shown = Window.get()](Property What) { ShowForm(Shown, What); });
  InstallKeyFilter(Window.get(), Main.frmNMR);
  AddHelpKey(Window.get(), Main.frmNMR);
  return Window;
}

QWidget* TopWindow() {
  if (QWidget* Dialog = QApplication::activeModalWidget()) return Dialog;
  QWidget* Window = WidgetOf(Main.frmNMR);
  return Window != nullptr && Window->isVisible() ? Window : nullptr;
}

}  // namespace zelvanor
