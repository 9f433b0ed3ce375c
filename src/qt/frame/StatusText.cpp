#include <QElapsedTimer>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QTimer>

#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/frame/Accessible.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

// A loop may set thousands of texts a second; no one reads as many.
constexpr int LeastMilliseconds = 40;
// Work that takes longer shows its seconds at the right, so that it is seen to go on.
constexpr int LongMilliseconds = 1000;

// One line of text, cut with an ellipsis where the window is too narrow; its tool tip is then the whole of it.
class StatusLabel : public QLabel {
 public:
  explicit StatusLabel(QWidget* Parent) : QLabel(Parent) {
    Ticks.setInterval(LongMilliseconds / 2);
    QObject::connect(&Ticks, &QTimer::timeout, this, [this] { FollowWork(); });
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
    if (const QString Seconds = SecondsOfWork(); !Seconds.isEmpty()) {
      DrawWords(Painter, Room, Qt::AlignRight, Seconds);
      Room.setRight(Room.right() - fontMetrics().horizontalAdvance(Seconds) - Margin);
    }
    const QString Fitting = fontMetrics().elidedText(text(), Qt::ElideRight, Room.width());
    setToolTip(Fitting == text() ? QString() : text());
    DrawWords(Painter, Room, Qt::AlignLeft, Fitting);
  }

 private:
  void DrawWords(QPainter& Painter, const QRect& Room, Qt::Alignment Side, const QString& Words) const {
    style()->drawItemText(&Painter, Room, static_cast<int>(Side | Qt::AlignVCenter) | Qt::TextSingleLine, palette(),
                          isEnabled(), Words, foregroundRole());
  }

  QString SecondsOfWork() const {
    if (!Working.isValid() || Working.elapsed() < LongMilliseconds) return {};
    return QString("%1 s").arg(Working.elapsed() / 1000);
  }

  void FollowWork() {
    if (!IsSet(Workspace.IsBusy)) {
      Ticks.stop();
      Working.invalidate();
    }
    update();
  }

  QElapsedTimer LastShown;
  QElapsedTimer Working;  // since the command that works now has begun to tell
  QTimer Ticks;
};

}  // namespace

QWidget* MakeStatusLine(Control& Target, QWidget* Parent) {
  auto& Line = static_cast<StatusLine&>(Target);
  auto* Shown = new StatusLabel(Parent);
  Shown->setTextFormat(Qt::PlainText);
  SpeakFor(Shown, {QAccessible::StatusBar, {}, [&Line] { return ToQt(Line.Value); }});
  BindWidget(Line, Shown, [&Line, Shown](Property What) {
    if (What != Property::Text) return;
    Shown->setText(ToQt(Line.Value));
    if (IsSet(Workspace.IsBusy)) Shown->ShowWork();
    SpeakChange(Shown);
  });
  return Shown;
}

}  // namespace zelvanor
