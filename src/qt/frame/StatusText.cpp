#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QTimer>

#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/frame/Accessible.h"
#include "shell/MainForm.h"
#include "shell/Progress.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

// A loop may set thousands of texts a second; no one reads as many.
constexpr int LeastMilliseconds = 40;
// Work that takes longer shows its seconds at the right, so that it is seen to go on.
constexpr int LongMilliseconds = 1000;

constexpr int TickMilliseconds = 100;
// Work that is over sooner shows no bar: it would only flicker.
constexpr int BarMilliseconds = 400;

// What the user can do next in the view that is shown, at the right where there is room.
QString NextStep() {
  const WorkspaceState& W = Workspace;
  switch (W.ViewMode) {
    case ShieldingView:
    case CouplingView:
      return "Type over a value; Ctrl+C copies the selected cells or all";
    case SpectrumViewMode:
      return "Drag to zoom, right click for the whole; click on a line reads it, Shift+drag integrates";
    default:
      break;
  }
  if (!IsSet(W.MoleculeLoaded)) return {};
  if (W.NumNMRAtoms == 0) return "Compute > Predict Spectrum leads to the spectrum in one step";
  if (!IsSet(W.SpectraAvailable)) return "Compute > Both: I Then II computes shieldings, couplings and spectrum";
  return "Drag turns the molecule, the wheel magnifies; N and Enter pick atoms";
}

// One line of text, cut with an ellipsis where the window is too narrow; its tool tip is then the whole of it.
class StatusLabel : public QLabel {
 public:
  explicit StatusLabel(QWidget* Parent) : QLabel(Parent) {
    Ticks.setInterval(TickMilliseconds);
    QObject::connect(&Ticks, &QTimer::timeout, this, [this] { FollowWork(); });
    Bar->setTextVisible(false);
    Bar->setAccessibleName("Progress");
    Bar->hide();
    Cancel->setAccessibleDescription("Ends the calculation; the document stays as it was before");
    Cancel->setToolTip("Escape");
    Cancel->setFocusPolicy(Qt::NoFocus);
    Cancel->hide();
    QObject::connect(Cancel, &QPushButton::clicked, this, [] { AskCancel(); });
  }

  void TakeText(const QString& Words) {
    WorkIsOver = false;
    setText(Words);
  }

  // A command that works serves no events, or few, but its line moves on.
  void ShowWork() {
    if (!Working.isValid()) Working.start();
    if (!Ticks.isActive()) Ticks.start();
    if (LastShown.isValid() && LastShown.elapsed() < LeastMilliseconds) return;
    LastShown.start();
    repaint();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    constexpr int Margin = 4;
    QPainter Painter(this);
    QRect Room = rect().adjusted(Margin, 0, -Margin, 0);
    Painter.setPen(palette().color(QPalette::Mid));
    Painter.drawLine(0, 0, width() - 1, 0);
    if (Bar->isVisibleTo(this)) Room.setRight(Bar->x() - Margin);
    if (const QString Seconds = SecondsOfWork(); !Seconds.isEmpty()) {
      DrawWords(Painter, Room, Qt::AlignRight, Seconds);
      Room.setRight(Room.right() - fontMetrics().horizontalAdvance(Seconds) - Margin);
    }
    const bool OfWorkThatIsOver = WorkIsOver && text().endsWith("...");
    const QString Words = OfWorkThatIsOver ? QString() : text() + WhatIsDone();
    const QString Fitting = fontMetrics().elidedText(Words, Qt::ElideRight, Room.width());
    setToolTip(Fitting == Words ? QString() : Words);
    DrawWords(Painter, Room, Qt::AlignLeft, Fitting);
    constexpr int Gap = 24;
    const QString Hint = IsSet(Main.IsBusy) ? QString() : NextStep();
    const int Free = Room.width() - fontMetrics().horizontalAdvance(Fitting) - Gap;
    if (fontMetrics().horizontalAdvance(Hint) > Free) return;
    constexpr qreal Quiet = 0.65;  // of the text colour, which every theme has
    QColor Pen = palette().color(QPalette::WindowText);
    Pen.setAlphaF(Quiet);
    Painter.setPen(Pen);
    Painter.drawText(Room, static_cast<int>(Qt::AlignRight | Qt::AlignVCenter), Hint);
  }

 private:
  void DrawWords(QPainter& Painter, const QRect& Room, Qt::Alignment Side, const QString& Words) const {
    style()->drawItemText(&Painter, Room, static_cast<int>(Side | Qt::AlignVCenter) | Qt::TextSingleLine, palette(),
                          isEnabled(), Words, foregroundRole());
  }

  QString SecondsOfWork() const {
    // While it asks, it is the user who takes the time.
    if (!Working.isValid() || Working.elapsed() < LongMilliseconds || QApplication::activeModalWidget() != nullptr) {
      return {};
    }
    return QString("%1 s").arg(Working.elapsed() / 1000);
  }

  // "  solving block 3 (3 of 40)", behind what the program says.
  static QString WhatIsDone() {
    if (!Progress.Runs || Progress.What.empty()) return {};
    const QString Count = QString(" (%1 of %2)").arg(Progress.Step).arg(Progress.Steps);
    return "  " + ToQt(Progress.What) + (Progress.Steps > 0 ? Count : QString());
  }

  // A bar without an end moves from side to side.
  void PlaceProgress() {
    const bool Runs = Progress.Runs && Working.isValid() && Working.elapsed() >= BarMilliseconds;
    Bar->setVisible(Runs);
    Cancel->setVisible(Runs);
    if (!Runs) return;
    constexpr int BarWidth = 120;
    const int ButtonWidth = Cancel->sizeHint().width();
    Cancel->setGeometry(width() - ButtonWidth, 1, ButtonWidth, height() - 1);
    Bar->setGeometry(Cancel->x() - BarWidth - 4, 4, BarWidth, height() - 8);
    Bar->setRange(0, Progress.Steps > 0 ? 1000 : 0);
    if (Progress.Steps > 0) Bar->setValue(static_cast<int>(1000.0 * Progress.Step / Progress.Steps));
    Cancel->setEnabled(!Progress.CancelAsked);
  }

  void FollowWork() {
    PlaceProgress();
    if (!IsSet(Main.IsBusy)) {
      Ticks.stop();
      Working.invalidate();
      WorkIsOver = true;
    }
    update();
  }

  bool WorkIsOver = false;  // that the text was told in
  QElapsedTimer LastShown;
  QElapsedTimer Working;  // since the command that works now has begun to tell
  QTimer Ticks;
  QProgressBar* Bar = new QProgressBar(this);
  QPushButton* Cancel = new QPushButton("Cancel", this);
};

}  // namespace

QWidget* MakeStatusLine(Control& Target, QWidget* Parent) {
  auto& Line = static_cast<StatusLine&>(Target);
  auto* Shown = new StatusLabel(Parent);
  Shown->setTextFormat(Qt::PlainText);
  SpeakFor(Shown, {QAccessible::StatusBar, {}, [&Line] { return ToQt(Line.Value); }});
  BindWidget(Line, Shown, [&Line, Shown](Property What) {
    if (What != Property::Text) return;
    Shown->TakeText(ToQt(Line.Value));
    if (IsSet(Main.IsBusy)) Shown->ShowWork();
    SpeakChange(Shown);
  });
  return Shown;
}

}  // namespace zelvanor
