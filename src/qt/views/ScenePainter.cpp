#include <QFontMetricsF>
#include <QPainter>
#include <cmath>

#include "qt/TextConversion.h"
#include "qt/views/PictureReplay.h"
#include "qt/views/RenderView.h"

namespace zelvanor {

namespace {

constexpr qreal HaloWidth = 3;
constexpr int MostKeptLabels = 20000;

const QPainterPath& LabelPath(const Text& Label, Single Size, ScenePieces& Pieces) {
  const QString Value = ToQt(Label);
  const int Height = static_cast<int>(std::lround(Size));
  const QString Key = QString::number(Height) + QLatin1Char(' ') + Value;
  const auto Kept = Pieces.Labels.constFind(Key);
  if (Kept != Pieces.Labels.constEnd()) return *Kept;
  if (Pieces.Labels.size() > MostKeptLabels) Pieces.Labels.clear();
  QFont Face = SurfaceFont();
  Face.setPixelSize(Height);
  QPainterPath Outline;
  Outline.addText(0, 0, Face, Value);
  const QFontMetricsF Metrics(Face);
  Outline.translate(-Metrics.horizontalAdvance(Value) / 2, Metrics.capHeight() / 2);
  return *Pieces.Labels.insert(Key, Outline);
}

void DrawLabel(QPainter& Painter, const DrawItem& Item, const QPainterPath& Outline) {
  Painter.translate(Item.X1, Item.Y1);
  Painter.strokePath(Outline, QPen(ToQt(Item.Edge), HaloWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  Painter.fillPath(Outline, ToQt(Item.Fill));
  Painter.translate(-Item.X1, -Item.Y1);
}

}  // namespace

void PaintScene(const RenderScene& Scene, const RenderControl& Of, QImage& Picture, QSize DeviceSize, qreal Ratio,
                ScenePieces& Pieces) {
  if (Picture.size() != DeviceSize) Picture = QImage(DeviceSize, QImage::Format_RGB32);
  Picture.setDevicePixelRatio(Ratio);
  const PixelPicture Target{reinterpret_cast<std::uint32_t*>(Picture.bits()), DeviceSize.width(), DeviceSize.height(),
                            static_cast<int>(Picture.bytesPerLine() / 4), Ratio};
  FillPicture(Target, Scene.Background);
  // The painter draws at once into the same pixels, so that labels and forms may take turns.
  QPainter Painter(&Picture);
  Painter.setRenderHint(QPainter::Antialiasing);
  for (const DrawItem& Item : Scene.Items) {
    if (Item.Form == DrawForm::Label) {
      const Text& Label = Of.Atoms[static_cast<std::size_t>(Item.Atom)].Label;
      DrawLabel(Painter, Item, LabelPath(Label, Item.Size, Pieces));
    } else {
      DrawForms(Target, Item, Scene.Simple, Pieces.Shades);
    }
  }
}

}  // namespace zelvanor
