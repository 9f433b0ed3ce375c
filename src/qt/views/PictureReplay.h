#pragma once

#include <QFont>
#include <QImage>

#include "platform/Picture.h"

namespace zelvanor {

// The record of a surface as a picture of this size in device pixels. Ratio is the number of device pixels to a pixel
// of the record. Upright and level lines are sharp: a whole number of device pixels wide.
QImage ReplayPicture(const PictureSurface& Surface, QSize DeviceSize, qreal Ratio);

// The face of surface texts.
QFont SurfaceFont();

}  // namespace zelvanor
