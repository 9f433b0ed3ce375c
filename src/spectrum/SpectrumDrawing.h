#pragma once

#include "basic/Types.h"
#include "platform/Picture.h"

namespace zelvanor {

// Takes a new peak list into the view: negates the frequencies, brings the window to the whole spectrum, makes the
// envelope. Throws a Failure where the list has nothing to scale by.
void TransferVBX();
// The same for the spectrum of an opened document, whose frequencies are stored negated.
void TakeOpenedSpectrum();

// PeakWork1, PeakWork2 and EnvelopeSamples for the present CurrentLineWidth; with UpdateScale also the scales.
void ComputeLineWidths(bool UpdateScale);

// Clears and redraws the surface.
void DrawSpectra();
void PaintSpectrum(DrawingContext& Context);
void DrawWithLineWidths(DrawingContext& Context);

// Commands of the spectrum menu.
void mnuLines_Click();
void mnuEnvelop_Click();
void mnuLinesAndEnvelop_Click();
void mnuGaussian_Click();
void mnuLorentzian_Click();
void mnuMultipleLineWidths_Click();

}  // namespace zelvanor
