#pragma once

#include <QHash>
#include <QImage>
#include <QPainterPath>

#include "platform/RenderRaster.h"

namespace zelvanor {

// What the drawing of a molecule makes once and uses again.
struct ScenePieces {
  ShadeTables Shades;
  QHash<QString, QPainterPath> Labels;  // outlines round the origin, by height and text
};

// Makes the list of a molecule view a picture of this size in device pixels. Ratio is the number of them to a pixel of
// the list.
void PaintScene(const RenderScene& Scene, const RenderControl& Of, QImage& Picture, QSize DeviceSize, qreal Ratio,
                ScenePieces& Pieces);

}  // namespace zelvanor
