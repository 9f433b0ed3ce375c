#include "qt/RenderView.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>
#include <cmath>

#include "qt/ControlWidgets.h"
#include "qt/Dispatch.h"
#include "qt/MouseCodes.h"
#include "qt/TextConversion.h"

namespace zelvanor {

namespace {

constexpr qreal NotchOfWheel = 120;

Single TwipsOf(qreal Pixels) { return static_cast<Single>(std::floor(Pixels) * TwipsPerPixelX); }

// Draws what its control holds, and keeps the picture until that changes.
class RenderView : public QWidget {
 public:
  RenderView(RenderControl& View, QWidget* Parent) : QWidget(Parent), View(View) {
    setFocusPolicy(Qt::StrongFocus);
    setContextMenuPolicy(Qt::PreventContextMenu);  // the right button is the program's
  }

  void ForgetPicture() {
    IsStale = true;
    // Without a molecule the hint that lies below shows.
    setAttribute(Qt::WA_OpaquePaintEvent, !View.Atoms.empty());
    update();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    if (View.Atoms.empty()) return;
    const qreal Ratio = devicePixelRatioF();
    const QSize DeviceSize =
        QSize(static_cast<int>(std::ceil(width() * Ratio)), static_cast<int>(std::ceil(height() * Ratio)))
            .expandedTo({1, 1});
    if (IsStale || Picture.size() != DeviceSize) DrawPicture(DeviceSize, Ratio);
    QPainter(this).drawImage(0, 0, Picture);
  }

  void mousePressEvent(QMouseEvent* Mouse) override {
    if (MayAct(View)) Tell(RenderMouseDown, *Mouse, Mouse->button());
  }
  // A drag that has begun comes to its end also while a command works.
  void mouseReleaseEvent(QMouseEvent* Mouse) override { Tell(RenderMouseUp, *Mouse, Mouse->button()); }
  void mouseMoveEvent(QMouseEvent* Mouse) override {
    if (MayAct(View)) Tell(RenderMouseMove, *Mouse, Mouse->buttons());
  }
  void wheelEvent(QWheelEvent* Wheel) override {
    const Double Notches = Wheel->angleDelta().y() / NotchOfWheel;
    Wheel->accept();
    if (View.MouseWheel && MayAct(View)) Dispatch([&] { View.MouseWheel(Notches); });
  }

 private:
  void DrawPicture(QSize DeviceSize, qreal Ratio) {
    BuildScene(View, Scene);
    PaintScene(Scene, View, Picture, DeviceSize, Ratio, Pieces);
    IsStale = false;
  }

  using Reporter = void (*)(RenderControl&, int, int, Single, Single);
  void Tell(Reporter Report, const QMouseEvent& Mouse, Qt::MouseButtons Buttons) {
    const QPointF Place = Mouse.position();
    Dispatch([&] {
      Report(View, ButtonCode(Buttons), ShiftCode(Mouse.modifiers()), TwipsOf(Place.x()), TwipsOf(Place.y()));
    });
  }

  RenderControl& View;
  RenderScene Scene;
  ScenePieces Pieces;
  QImage Picture;
  bool IsStale = true;
};

}  // namespace

QWidget* MakeRenderControl(Control& Target, QWidget* Parent) {
  auto& View = static_cast<RenderControl&>(Target);
  auto* Shown = new RenderView(View, Parent);
  BindWidget(View, Shown, [Shown](Property What) {
    if (What == Property::Picture || What == Property::Place) Shown->ForgetPicture();
  });
  return Shown;
}

}  // namespace zelvanor
