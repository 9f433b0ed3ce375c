#pragma once

#include <QImage>

#include "platform/Chart.h"

namespace zelvanor {

// The chart as it is drawn, for the clipboard: twice as fine as the screen shows it.
QImage ChartImage(const ChartControl& Chart);

}  // namespace zelvanor
