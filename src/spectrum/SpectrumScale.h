#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Limits, scales and window of the spectrum view. Each routine throws a Failure where the view has nothing to divide
// by.

// Cuts the tail of a peak list behind the point where it stops making sense: the peaks of nuclei out of range.
void Normalize();
// FullLow and FullHigh from the peaks, with one whole range of margin on each side, or 20 Hz for a single line.
void NewFrequencyLimits();
void FindCenterFrequency();
void SetHorizontalScale(Double Zoom);
// ViewLow and ViewHigh from the offset and scale.
void SetFreqLabel();
// MaxIntensity and VerticalScale from the peaks in the window.
void NewMaxIntensity();
// LoadedHigh - LoadedLow, and ViewHigh - ViewLow, in Hz.
Double GetFrequencyRange();
Double GetHighLow();
// The pixel column of a frequency; one that is farther out than a pixel count reaches stands at the end of the range.
Long FGetPeakRX(Double Frequency);
// The spectrometer's frequency; the view takes its own copy with each peak list.
void UpdateSpectrometer(Long Frequency);
// ViewWidth and ViewHeight from the surface.
void TakeViewSize();
// The scales for a surface that has got another width, the window being the same.
void FollowSurface();
// HorizontalScale and HorizontalOffset for the window; the scale only for one wider than 1 Hz.
void FitHorizontalScale();

// Brings the view up. A failure of one step is passed over and the next runs.
void ShowSpectrumView();

// The steps of a window's resizing that belong to the spectrum: before and after the controls are placed.
void BeginSpectrumResize();
void EndSpectrumResize();

}  // namespace zelvanor
