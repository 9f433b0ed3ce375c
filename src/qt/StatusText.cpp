#include <QLabel>
#include <QPainter>
#include <QStyle>

#include "qt/ControlWidgets.h"
#include "qt/TextConversion.h"

namespace zelvanor {

namespace {

// One line of text, cut with an ellipsis where the window is too narrow; its tool tip is then the whole of it.
class StatusLabel : public QLabel {
 public:
  using QLabel::QLabel;

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
};

}  // namespace

QWidget* MakeStatusLine(Control& Target, QWidget* Parent) {
  auto& Line = static_cast<StatusLine&>(Target);
  auto* Shown = new StatusLabel(Parent);
  Shown->setTextFormat(Qt::PlainText);
  BindWidget(Line, Shown, [&Line, Shown](Property What) {
    if (What == Property::Text) Shown->setText(ToQt(Line.Value));
  });
  return Shown;
}

}  // namespace zelvanor
