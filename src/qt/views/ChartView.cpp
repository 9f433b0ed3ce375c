#include "qt/views/ChartView.h"

#include <QPainter>
#include <QWidget>
#include <algorithm>

#include "basic/NumberText.h"
#include "platform/ChartPicture.h"
#include "platform/Form.h"
#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/frame/Accessible.h"
#include "qt/views/SurfaceMarks.h"

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

// The values as they would be read out.
QString DescribeChart(const ChartControl& Chart) {
  constexpr int MostPoints = 50;
  QStringList Lines(ToQt(MemberText(Chart, ChartTitle)));
  const int NumPoints = std::min(MemberNumber(Chart, ChartNumPoints), MostPoints);
  for (int Point = 0; Point < NumPoints; ++Point) {
    const auto Place = static_cast<std::size_t>(Point);
    QString Line = Place < Chart.PointLabels.size() ? ToQt(Chart.PointLabels[Place]) : QString::number(Point + 1);
    for (int Set = 0; Set < MemberNumber(Chart, ChartNumSets); ++Set) {
      const auto Name =
          static_cast<std::size_t>(Set) < Chart.SetNames.size() ? Chart.SetNames[std::size_t(Set)] : Text();
      Line += (Set == 0 ? ": " : ", ") + ToQt(Name) + " " +
              ToQt(GeneralForm(static_cast<Single>(PointValue(Chart, Set, Point))));
    }
    Lines << Line;
  }
  return Lines.join("; ") + ". Ctrl+C copies the picture, Escape closes the window.";
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
    update();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    if (Picture.Width != width() || Picture.Height != height()) Picture = DrawChart(Chart, width(), height());
    QPainter Painter(this);
    PaintChart(Painter, Picture);
    // Alone in its window it needs no telling from others.
    if (hasFocus() && Chart.Owner->Controls.size() > 1) PaintFocusFrame(Painter, rect());
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
  SpeakFor(Shown, {QAccessible::Chart, [&Chart] { return DescribeChart(Chart); }, {}});
  BindWidget(Chart, Shown, [Shown](Property What) {
    if (What == Property::Picture) Shown->ForgetPicture();
  });
  return Shown;
}

}  // namespace zelvanor
