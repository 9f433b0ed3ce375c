#include <QRadialGradient>
#include <algorithm>
#include <cmath>

#include "qt/PictureReplay.h"
#include "qt/RenderView.h"
#include "qt/TextConversion.h"

namespace zelvanor {

namespace {

constexpr qreal EdgeWidth = 1;
constexpr qreal HaloWidth = 3;
// Stretch and gap of a dashed line, in its widths.
constexpr qreal DashShare = 2.0;
constexpr qreal GapShare = 1.4;
// Balls are kept in steps of their radius in pixels, so that a turn of the wheel does not make every size.
constexpr qreal StepsPerPixel = 4;
// Larger ones are drawn as they come: few of them fit on a screen.
constexpr qreal LargestKeptRadius = 48;
constexpr int MostKeptBalls = 4000;

struct ScenePainter {
  QPainter& Painter;
  const RenderControl& Of;
  qreal Ratio;
  bool Simple;
  ScenePieces& Pieces;
  QPen Pen;
};

void PaintBall(QPainter& Painter, const DrawItem& Item, QPointF Middle, qreal Radius, bool Simple) {
  if (Item.Form == DrawForm::Sphere) {
    const qreal Light = LightOffset * Radius;
    QRadialGradient Shade(Middle, Radius, Middle - QPointF(Light, Light));
    Shade.setColorAt(0, ToQt(ShadeOf(Item.Fill, LightShade)));
    Shade.setColorAt(0.5, ToQt(Item.Fill));
    Shade.setColorAt(1, ToQt(ShadeOf(Item.Fill, RimShade)));
    Painter.setPen(Qt::NoPen);
    Painter.setBrush(Shade);
  } else {
    Painter.setPen(Simple ? QPen(Qt::NoPen) : QPen(ToQt(Item.Edge), EdgeWidth));
    Painter.setBrush(ToQt(Item.Fill));
  }
  Painter.drawEllipse(Middle, Radius, Radius);
}

QPixmap MakeBall(const DrawItem& Item, qreal Radius, qreal Ratio, bool Simple) {
  const int Side = 2 * static_cast<int>(std::ceil((Radius + EdgeWidth) * Ratio)) + 1;
  QPixmap Ball(Side, Side);
  Ball.setDevicePixelRatio(Ratio);
  Ball.fill(Qt::transparent);
  QPainter Painter(&Ball);
  Painter.setRenderHint(QPainter::Antialiasing);
  PaintBall(Painter, Item, QPointF(Side / Ratio / 2, Side / Ratio / 2), Radius, Simple);
  return Ball;
}

void DrawBall(ScenePainter& P, const DrawItem& Item) {
  const QPointF Middle(Item.X1, Item.Y1);
  if (Item.Size > LargestKeptRadius) return PaintBall(P.Painter, Item, Middle, Item.Size, P.Simple);
  const int Steps = std::max(1, static_cast<int>(std::lround(Item.Size * StepsPerPixel)));
  const quint64 Key = quint64(quint32(Item.Fill)) | quint64(Steps) << 32 |
                      quint64(Item.Form == DrawForm::Sphere) << 60 | quint64(P.Simple) << 61;
  auto Kept = P.Pieces.Balls.find(Key);
  if (Kept == P.Pieces.Balls.end()) {
    if (P.Pieces.Balls.size() > MostKeptBalls) P.Pieces.Balls.clear();
    Kept = P.Pieces.Balls.insert(Key, MakeBall(Item, Steps / StepsPerPixel, P.Ratio, P.Simple));
  }
  const qreal Half = Kept->width() / P.Ratio / 2;
  P.Painter.drawPixmap(Middle - QPointF(Half, Half), *Kept);
}

void DrawStroke(ScenePainter& P, const DrawItem& Item, Colour Color, qreal Width) {
  P.Pen.setColor(ToQt(Color));
  P.Pen.setWidthF(Width);
  P.Painter.setPen(P.Pen);
  P.Painter.drawLine(QPointF(Item.X1, Item.Y1), QPointF(Item.X2, Item.Y2));
}

void DrawLine(ScenePainter& P, const DrawItem& Item) {
  if (P.Simple) return DrawStroke(P, Item, Item.Fill, Item.Size < 2 ? 1 : Item.Size);
  if (Item.Edge != Item.Fill) DrawStroke(P, Item, Item.Edge, Item.Size + 2 * EdgeWidth);
  DrawStroke(P, Item, Item.Fill, Item.Size);
}

void DrawDashes(ScenePainter& P, const DrawItem& Item) {
  P.Pen.setDashPattern({DashShare, GapShare});
  DrawStroke(P, Item, Item.Edge, Item.Size);
  P.Pen.setStyle(Qt::SolidLine);
}

void DrawCylinder(ScenePainter& P, const DrawItem& Item) {
  const QPointF Along = QPointF(Item.X2, Item.Y2) - QPointF(Item.X1, Item.Y1);
  const qreal Length = std::hypot(Along.x(), Along.y());
  if (!(Length > 0)) return;
  const qreal Half = Item.Size / 2;
  QLinearGradient Shade(0, -Half, 0, Half);
  Shade.setColorAt(0, ToQt(ShadeOf(Item.Fill, RimShade)));
  Shade.setColorAt(0.4, ToQt(ShadeOf(Item.Fill, LightShade)));
  Shade.setColorAt(1, ToQt(ShadeOf(Item.Fill, RimShade)));
  const QTransform Before = P.Painter.transform();
  P.Painter.translate(Item.X1, Item.Y1);
  P.Painter.rotate(std::atan2(Along.y(), Along.x()) * 180 / 3.14159265358979);
  P.Painter.fillRect(QRectF(0, -Half, Length, Item.Size), Shade);
  P.Painter.setTransform(Before);
}

// The outline of a label round the origin.
const QPainterPath& LabelPath(ScenePainter& P, const DrawItem& Item) {
  const QString Value = ToQt(P.Of.Atoms[static_cast<std::size_t>(Item.Atom)].Label);
  const int Height = static_cast<int>(std::lround(Item.Size));
  const QString Key = QString::number(Height) + QLatin1Char(' ') + Value;
  const auto Kept = P.Pieces.Labels.constFind(Key);
  if (Kept != P.Pieces.Labels.constEnd()) return *Kept;
  QFont Face = SurfaceFont();
  Face.setPixelSize(Height);
  QPainterPath Outline;
  Outline.addText(0, 0, Face, Value);
  const QFontMetricsF Metrics(Face);
  Outline.translate(-Metrics.horizontalAdvance(Value) / 2, Metrics.capHeight() / 2);
  return *P.Pieces.Labels.insert(Key, Outline);
}

void DrawLabel(ScenePainter& P, const DrawItem& Item) {
  const QPainterPath& Outline = LabelPath(P, Item);
  P.Painter.translate(Item.X1, Item.Y1);
  P.Painter.strokePath(Outline, QPen(ToQt(Item.Edge), HaloWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  P.Painter.fillPath(Outline, ToQt(Item.Fill));
  P.Painter.translate(-Item.X1, -Item.Y1);
}

void DrawItemOf(ScenePainter& P, const DrawItem& Item) {
  switch (Item.Form) {
    case DrawForm::Disc:
    case DrawForm::Sphere:
      return DrawBall(P, Item);
    case DrawForm::Line:
      return DrawLine(P, Item);
    case DrawForm::DashedLine:
      return DrawDashes(P, Item);
    case DrawForm::Cylinder:
      return DrawCylinder(P, Item);
    case DrawForm::Label:
      return DrawLabel(P, Item);
  }
}

}  // namespace

void PaintScene(QPainter& Painter, const RenderScene& Scene, const RenderControl& Of, qreal Ratio,
                ScenePieces& Pieces) {
  Painter.fillRect(0, 0, Painter.device()->width(), Painter.device()->height(), ToQt(Scene.Background));
  Painter.setRenderHint(QPainter::Antialiasing, !Scene.Simple);
  ScenePainter P{Painter, Of, Ratio, Scene.Simple, Pieces, QPen()};
  P.Pen.setCapStyle(Qt::FlatCap);
  for (const DrawItem& Item : Scene.Items) DrawItemOf(P, Item);
}

}  // namespace zelvanor
