#include <QImage>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "platform/Form.h"
#include "platform/Picture.h"
#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/frame/Accessible.h"
#include "qt/views/MouseCodes.h"
#include "qt/views/PictureReplay.h"
#include "qt/views/SpectrumExtras.h"
#include "qt/views/SurfaceMarks.h"
#include "shell/MainForm.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

Single TwipsOf(qreal Pixels) { return static_cast<Single>(TwipsFromPixels(static_cast<int>(std::floor(Pixels)))); }

// The band of a drag: a range to zoom to is framed, one to integrate is a stripe over the whole height with marks at
// its ends. Both in light and dark, so that they stand out on every picture.
void PaintBand(QPainter& Painter, const RubberBand& Band, int Height) {
  if (!Band.Shown) return;
  const int Left = std::min(Band.X1, Band.X2);
  const int Right = std::max(Band.X1, Band.X2);
  if (Band.Filled) {
    const QColor Stripe(80, 160, 255);
    Painter.fillRect(QRect(QPoint(Left, 0), QPoint(Right, Height - 1)), QColor(80, 160, 255, 70));
    Painter.setPen(QPen(Stripe, 1));
    Painter.drawLine(Left, 0, Left, Height - 1);
    Painter.drawLine(Right, 0, Right, Height - 1);
    return;
  }
  const QRect Frame(QPoint(Left, std::min(Band.Y1, Band.Y2)), QPoint(Right, std::max(Band.Y1, Band.Y2)));
  Painter.setPen(Qt::black);
  Painter.drawRect(Frame);
  Painter.setPen(QPen(Qt::white, 1, Qt::DashLine));
  Painter.drawRect(Frame);
}

// Replays the record of its surface and keeps the picture until the record changes.
class PictureView : public KeyedSurface {
 public:
  PictureView(PictureSurface& Surface, QWidget* Parent) : KeyedSurface(Parent), Surface(Surface) {
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
    PaintBand(Painter, Surface.Band, height());
    if (!IsOfMainForm()) {
      // A colour of the dialog's own would have no end.
      Painter.setPen(palette().color(QPalette::Mid));
      Painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
    if (IsSpectrum()) {
      PaintSelectedLine(Painter);
      if (!IsSet(Workspace.SpectraAvailable) && Workspace.MeasuredCount == 0) PaintSpectrumHint(Painter);
    }
    if (ShowsFocus) PaintFocusFrame(Painter, rect());
  }

  void keyPressEvent(QKeyEvent* Key) override {
    if (!IsSpectrum() || !PressSpectrumKey(*Key)) return KeyedSurface::keyPressEvent(Key);
    AfterAction();
  }

  // A control of a dialog takes the size that the layout gives it.
  void resizeEvent(QResizeEvent*) override {
    if (IsOfMainForm()) return;
    Surface.Width = TwipsFromPixels(width());
    Surface.Height = TwipsFromPixels(height());
    if (Surface.Resized) Dispatch(Surface.Resized);
  }

  void mousePressEvent(QMouseEvent* Mouse) override { Tell(Surface.MouseDown, *Mouse, Mouse->button()); }
  void mouseReleaseEvent(QMouseEvent* Mouse) override { Tell(Surface.MouseUp, *Mouse, Mouse->button()); }
  void mouseMoveEvent(QMouseEvent* Mouse) override { Tell(Surface.MouseMove, *Mouse, Mouse->buttons()); }
  void wheelEvent(QWheelEvent* Wheel) override {
    constexpr qreal NotchOfWheel = 120;
    if (!Surface.MouseWheel || !MayAct(Surface)) return QWidget::wheelEvent(Wheel);
    Wheel->accept();
    Dispatch([&] { Surface.MouseWheel(Wheel->angleDelta().y() / NotchOfWheel, ShiftCode(Wheel->modifiers())); });
  }

 private:
  void Tell(const PictureSurface::MouseEvent& Handler, const QMouseEvent& Mouse, Qt::MouseButtons Buttons) {
    if (!Handler || !MayAct(Surface)) return;
    const int Shift = ShiftCode(Mouse.modifiers());
    const QPointF Place = Mouse.position();
    const bool BandWas = Surface.Band.Shown;
    Dispatch([&] { Handler(ButtonCode(Buttons), Shift, TwipsOf(Place.x()), TwipsOf(Place.y())); });
    if (BandWas || Surface.Band.Shown) update();
    AfterAction();
  }

  // The line that is picked may be another one, though the record is the same.
  void AfterAction() {
    if (!IsSpectrum()) return;
    update();
    SpeakChange(this);
  }

  // On the surface's own colour, which is not the desktop's.
  void PaintSpectrumHint(QPainter& Painter) {
    const bool Dark = ToQt(Surface.BackColor).lightness() < 128;
    Painter.setPen(Dark ? Qt::lightGray : Qt::darkGray);
    Painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap,
                     "There is no spectrum for the present values.\n\nCompute > II - Spectrum");
  }

  bool IsSpectrum() const { return &Surface == &Main.Spectrum1; }

  bool IsOfMainForm() const { return Surface.Owner == nullptr || Surface.Owner->Name == MainFormName; }

  PictureSurface& Surface;
  QImage Picture;
};

}  // namespace

QWidget* MakePictureSurface(Control& Target, QWidget* Parent) {
  auto& Surface = static_cast<PictureSurface&>(Target);
  auto* Shown = new PictureView(Surface, Parent);
  if (&Surface == &Main.Spectrum1) {
    SpeakFor(Shown, {QAccessible::Graphic, DescribeSpectrum, [&Surface] { return ToQt(Surface.Description); }});
  } else {
    SpeakFor(Shown, {QAccessible::Graphic, {}, {}});
    Shown->setFocusPolicy(Qt::NoFocus);  // a patch of colour has no keys
  }
  if (Surface.Owner->Name != MainFormName) {
    Shown->setMinimumSize(PixelsFromTwips(Surface.Width), PixelsFromTwips(Surface.Height));
  }
  BindWidget(Surface, Shown, [Shown](Property What) {
    if (What == Property::Picture) Shown->ForgetPicture();
  });
  return Shown;
}

}  // namespace zelvanor
