#pragma once

#include "basic/Types.h"

namespace zelvanor {

// The spectrum by hand. Mouse positions are in twips of the surface. A drag with the left button zooms, with Shift it
// integrates; a click picks a peak; any other button shows the whole spectrum again.
void Spectrum1_MouseDown(int Button, int Shift, Single X, Single Y);
void Spectrum1_MouseMove(int Button, int Shift, Single X, Single Y);
void Spectrum1_MouseUp(int Button, int Shift, Single X, Single Y);
// Whether another button would change nothing.
bool ShowsWhole();
// The pan bar and the line width bar have moved.
void HScroll1_Change();
void HScroll2_Change();

// Zooms to a range of the window now shown; twips on entry, pixels on return.
void ZoomIn(Long& Low, Long& High);
// One step back; false where no zoom has been.
bool ZoomBack();
void Spectrum1_ZoomChanged(Double ZoomLow, Double ZoomHigh);
// Selects the peak nearest to a place; true when it is another one than before.
bool FPickPeak(Long X);
// Puts the read-out of a peak into the status line; -1 clears it.
void ShowPeakReadout(Long Peak);
// Refreshes the view and outlines a rectangle (twips) in white; it stays until the next drawing. The band of a drag is
// not drawn by it: the front end lays that one over the picture.
void DRBandHwnd(Long X1, Long Y1, Long X2, Long Y2);
// Tells the intensity between two frequencies (Hz, in the sign of the read-out), as a number of observed nuclei.
void IntegrateRange(Single Low, Single High);

}  // namespace zelvanor
