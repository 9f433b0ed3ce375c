#pragma once

#include <QHash>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include "platform/RenderScene.h"

namespace zelvanor {

// What the drawing of a molecule makes once and uses again: balls by form, size and colour, and the outlines of labels.
struct ScenePieces {
  QHash<quint64, QPixmap> Balls;
  QHash<QString, QPainterPath> Labels;
};

// Draws the list of a molecule view. Ratio is the number of device pixels to a pixel of the list.
void PaintScene(QPainter& Painter, const RenderScene& Scene, const RenderControl& Of, qreal Ratio, ScenePieces& Pieces);

}  // namespace zelvanor
