#include <QImage>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "platform/Form.h"
#include "platform/Picture.h"
#include "qt/ControlWidgets.h"
#include "qt/Dispatch.h"
#include "qt/MouseCodes.h"
#include "qt/PictureReplay.h"
#include "qt/TextConversion.h"

namespace zelvanor {

namespace {

// The program takes mouse places in 16 bits; a place farther out counts as the farthest one.
constexpr int FarthestTwips = 32767;

Single TwipsOf(qreal Pixels) {
  const int Whole = static_cast<int>(std::floor(Pixels));
  return static_cast<Single>(std::clamp(TwipsFromPixels(Whole), -FarthestTwips, FarthestTwips));
}

// Replays the record of its surface and keeps the picture until the record changes.
class PictureView : public QWidget {
 public:
  PictureView(PictureSurface& Surface, QWidget* Parent) : QWidget(Parent), Surface(Surface) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setContextMenuPolicy(Qt::PreventContextMenu);  // the right button is the program's
  }

  void ForgetPicture() {
    Picture = {};
    update();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    const qreal Ratio = devicePixelRatioF();
    const QSize DeviceSize(static_cast<int>(std::ceil(width() * Ratio)), static_cast<int>(std::ceil(height() * Ratio)));
    if (Picture.isNull() || Picture.size() != DeviceSize.expandedTo({1, 1})) {
      Picture = ReplayPicture(Surface, DeviceSize, Ratio);
      Picture.setDevicePixelRatio(Ratio);
    }
    QPainter Painter(this);
    Painter.drawImage(0, 0, Picture);
    if (!IsOfMainForm()) {
      // A colour of the dialog's own would have no end.
      Painter.setPen(palette().color(QPalette::Mid));
      Painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
    if (ShowsFocus) {
      Painter.setPen(palette().color(QPalette::Highlight));
      Painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
  }

  // A control of a dialog takes the size that the layout gives it.
  void resizeEvent(QResizeEvent*) override {
    if (IsOfMainForm()) return;
    Surface.Width = TwipsFromPixels(width());
    Surface.Height = TwipsFromPixels(height());
  }

  void focusInEvent(QFocusEvent* Focus) override {
    ShowsFocus = Focus->reason() == Qt::TabFocusReason || Focus->reason() == Qt::BacktabFocusReason;
    update();
  }
  void focusOutEvent(QFocusEvent*) override {
    ShowsFocus = false;
    update();
  }

  void mousePressEvent(QMouseEvent* Mouse) override { Tell(Surface.MouseDown, *Mouse, Mouse->button()); }
  void mouseReleaseEvent(QMouseEvent* Mouse) override { Tell(Surface.MouseUp, *Mouse, Mouse->button()); }
  void mouseMoveEvent(QMouseEvent* Mouse) override { Tell(Surface.MouseMove, *Mouse, Mouse->buttons()); }

 private:
  void Tell(const PictureSurface::MouseEvent& Handler, const QMouseEvent& Mouse, Qt::MouseButtons Buttons) {
    if (!Handler || !MayAct(Surface)) return;
    const int Shift = ShiftCode(Mouse.modifiers());
    const QPointF Place = Mouse.position();
    Dispatch([&] { Handler(ButtonCode(Buttons), Shift, TwipsOf(Place.x()), TwipsOf(Place.y())); });
  }

  bool IsOfMainForm() const { return Surface.Owner == nullptr || Surface.Owner->Name == MainFormName; }

  PictureSurface& Surface;
  QImage Picture;
  bool ShowsFocus = false;
};

}  // namespace

QWidget* MakePictureSurface(Control& Target, QWidget* Parent) {
  auto& Surface = static_cast<PictureSurface&>(Target);
  auto* Shown = new PictureView(Surface, Parent);
  if (Surface.Owner->Name != MainFormName) {
    Shown->setMinimumSize(PixelsFromTwips(Surface.Width), PixelsFromTwips(Surface.Height));
  }
  BindWidget(Surface, Shown, [Shown](Property What) {
    if (What == Property::Picture) Shown->ForgetPicture();
  });
  return Shown;
}

}  // namespace zelvanor
