#include <QElapsedTimer>
#include <QLabel>
#include <QPainter>
#include <QStyle>

#include "qt/Accessible.h"
#include "qt/ControlWidgets.h"
#include "qt/TextConversion.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

// One line of text, cut with an ellipsis where the window is too narrow; its tool tip is then the whole of it.
class StatusLabel : public QLabel {
 public:
  using QLabel::QLabel;

  // A loop may set thousands of texts a second; no one reads as many.
  void ShowAtOnce() {
    constexpr int LeastMilliseconds = 40;
    if (LastShown.isValid() && LastShown.elapsed() < LeastMilliseconds) return;
    LastShown.start();
    repaint();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    constexpr int Margin = 4;
    QPainter Painter(this);
    const QRect Room = rect().adjusted(Margin, 0, -Margin, 0);
    const QString Fitting = fontMetrics().elidedText(text(), Qt::ElideRight, Room.width());
    Painter.setPen(palette().color(QPalette::Mid));
    Painter.drawLine(0, 0, width() - 1, 0);
    setToolTip(Fitting == text() ? QString() : text());
    style()->drawItemText(&Painter, Room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, palette(), isEnabled(),
                          Fitting, foregroundRole());
  }

 private:
  QElapsedTimer LastShown;
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
    // A command that works serves no events, but its line moves on.
    if (IsSet(Workspace.IsBusy)) Shown->ShowAtOnce();
    SpeakChange(Shown);
  });
  return Shown;
}

}  // namespace zelvanor
