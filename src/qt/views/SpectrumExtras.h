#pragma once

#include <QKeyEvent>
#include <QPainter>

namespace zelvanor {

// What the window adds to the surface of the spectrum.

// The mark of the line that is drawn in the selection colour.
void PaintSelectedLine(QPainter& Painter);

// Keys in the place of the mouse and the scroll bars, with the same events: left, right and page keys pan, up and down
// change the line width, plus and minus zoom in and out again, Ctrl with left and right picks the next line. False for
// a key that does nothing here.
bool PressSpectrumKey(const QKeyEvent& Key);

// For those who hear it.
QString DescribeSpectrum();

}  // namespace zelvanor
