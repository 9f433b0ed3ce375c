#pragma once

#include "measured/MeasuredView.h"
#include "platform/Picture.h"

namespace zelvanor {

// What the spectrum's drawing calls: how the surface is shared, and everything that is drawn behind lines and envelope.
void ShareSurface();
void DrawAdditions(DrawingContext& Context);
// The window that shows everything shows all of the measured spectrum too.
void WidenToMeasured(Double& Low, Double& High);

// Where the measured spectrum is drawn, with its scale; Step is 0 where there is nothing to draw.
TraceFrame PlaceMeasuredTrace();

}  // namespace zelvanor
