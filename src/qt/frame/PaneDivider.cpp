#include "qt/frame/PaneDivider.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include "qt/Dispatch.h"
#include "qt/controls/ControlWidgets.h"
#include "shell/Frame.h"

namespace zelvanor {

namespace {

constexpr int BarWidth = 6;

class PaneDivider : public QWidget {
 public:
  explicit PaneDivider(QWidget* Parent) : QWidget(Parent) {
    setCursor(Qt::SplitHCursor);
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName("Divider between spectrum and molecule");
    setAccessibleDescription("Left and right move it");
    hide();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter Painter(this);
    Painter.fillRect(rect(), palette().color(hasFocus() ? QPalette::Highlight : QPalette::Mid));
  }

  void mouseMoveEvent(QMouseEvent* Mouse) override {
    if (!(Mouse->buttons() & Qt::LeftButton)) return;
    const int Width = parentWidget()->width();
    const int Place = mapToParent(Mouse->position().toPoint()).x();
    Move(100 - (Width > 0 ? 100 * Place / Width : 0));
  }

  void keyPressEvent(QKeyEvent* Key) override {
    constexpr int Step = 2;
    if (Key->key() != Qt::Key_Left && Key->key() != Qt::Key_Right) return QWidget::keyPressEvent(Key);
    Move(Main.PanePercent + (Key->key() == Qt::Key_Left ? Step : -Step));
  }

 private:
  static void Move(int Percent) {
    if (Percent != Main.PanePercent && !CommandsPause()) Dispatch([Percent] { SetPanePercent(Percent); });
  }
};

}  // namespace

QWidget* MakePaneDivider(QWidget* WorkArea) { return new PaneDivider(WorkArea); }

void PlacePaneDivider(QWidget* Divider) {
  const bool Shown = PaneWidth() > 0 && IsSet(Main.MolRender1.Visible) && IsSet(Main.Spectrum1.Visible);
  Divider->setVisible(Shown);
  if (!Shown) return;
  const auto Pixels = [](int Twips) { return Twips / TwipsPerPixelX; };
  const RenderControl& Pane = Main.MolRender1;
  Divider->setGeometry(Pixels(Pane.Left) - BarWidth / 2, Pixels(Pane.Top), BarWidth, Pixels(Pane.Height));
  Divider->raise();
}

}  // namespace zelvanor
