#include "qt/ChartView.h"

#include <QPainter>
#include <QWidget>
#include <algorithm>

#include "platform/ChartPicture.h"
#include "platform/Form.h"
#include "qt/ControlWidgets.h"
#include "qt/Dispatch.h"
#include "qt/TextConversion.h"

namespace zelvanor {

namespace {

void PaintShape(QPainter& Painter, const ChartShape& Shape) {
  QPolygonF Corners;
  for (const ChartPoint& Corner : Shape.Corners) Corners << QPointF(Corner.X, Corner.Y);
  Painter.setPen(QPen(ToQt(Shape.Edge), 1.0, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
  if (!Shape.Filled) return Painter.drawPolyline(Corners);
  Painter.setBrush(ToQt(Shape.Fill));
  Painter.drawPolygon(Corners);
}

void PaintText(QPainter& Painter, const ChartText& Item) {
  QFont Face = Painter.font();
  Face.setPixelSize(Item.Pixels);
  Face.setBold(Item.Bold);
  Painter.setFont(Face);
  const QString Words = ToQt(Item.Words);
  const double Before = static_cast<int>(Item.Align) * QFontMetricsF(Face).horizontalAdvance(Words) / 2.0;
  Painter.save();
  Painter.translate(Item.X, Item.Y);
  if (Item.Upright) Painter.rotate(-90);
  Painter.setPen(Qt::black);
  Painter.drawText(QPointF(-Before, Item.Pixels * ChartBaseShare), Words);
  Painter.restore();
}

void PaintChart(QPainter& Painter, const ChartPicture& Picture) {
  Painter.setRenderHint(QPainter::Antialiasing);
  Painter.fillRect(QRect(0, 0, Picture.Width, Picture.Height), Qt::white);
  for (const ChartShape& Shape : Picture.Shapes) PaintShape(Painter, Shape);
  for (const ChartText& Item : Picture.Texts) PaintText(Painter, Item);
}

class ChartView : public QWidget {
 public:
  ChartView(ChartControl& Chart, QWidget* Parent) : QWidget(Parent), Chart(Chart) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMinimumSize(320, 220);
    setToolTip("Double-click or press Ctrl+C to copy the picture");
  }

  void ForgetPicture() {
    Picture = {};
    setAccessibleDescription(ToQt(MemberText(Chart, ChartTitle)));
    update();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    if (Picture.Width != width() || Picture.Height != height()) Picture = DrawChart(Chart, width(), height());
    QPainter Painter(this);
    PaintChart(Painter, Picture);
  }

  void mouseDoubleClickEvent(QMouseEvent*) override { DispatchEvent(Chart, Chart.CopyGesture); }

 private:
  ChartControl& Chart;
  ChartPicture Picture;
};

}  // namespace

QImage ChartImage(const ChartControl& Chart) {
  constexpr int Fineness = 2;
  const QWidget* Shown = WidgetOf(Chart);
  const int Width = Shown != nullptr ? Shown->width() : PixelsFromTwips(Chart.Width);
  const int Height = Shown != nullptr ? Shown->height() : PixelsFromTwips(Chart.Height);
  const ChartPicture Picture = DrawChart(Chart, Width, Height);
  QImage Image(Picture.Width * Fineness, Picture.Height * Fineness, QImage::Format_RGB32);
  QPainter Painter(&Image);
  Painter.scale(Fineness, Fineness);
  PaintChart(Painter, Picture);
  Painter.end();
  return Image;
}

QWidget* MakeChart(Control& Target, QWidget* Parent) {
  auto& Chart = static_cast<ChartControl&>(Target);
  auto* Shown = new ChartView(Chart, Parent);
  BindWidget(Chart, Shown, [Shown](Property What) {
    if (What == Property::Picture) Shown->ForgetPicture();
  });
  return Shown;
}

}  // namespace zelvanor
