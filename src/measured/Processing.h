#pragma once

#include "measured/MeasuredSpectrum.h"

namespace zelvanor {

// How a spectrum is made of what a file holds.
struct Processing {
  Double Broadening = 0.3;  // Hz: the FID is multiplied by exp(-pi times this times the time)
  int ZeroFilling = 2;      // the FID becomes this many times as long, and then a power of two
  Double Phase0 = 0;        // degrees, of the whole spectrum
  Double Phase1 = 0;        // degrees, from its left to its right end, 0 in its middle
  int BaselineOrder = -1;   // of the polynomial that is subtracted; -1: none
  Double MovePpm = 0;       // added to all shifts
};

inline constexpr int HighestBaselineOrder = 9;

// The spectrum of an FID, its highest frequency first, without phase and baseline correction. A spectrum comes back as
// it is, with an imaginary part where it had none.
MeasuredSpectrum TransformToSpectrum(const MeasuredSpectrum& From, const Processing& By);

// The phases at which the lines have the least area by magnitude and the least of it below zero.
void FindPhases(const MeasuredSpectrum& Of, Processing& To);

// Carries out phase, baseline and move on a transformed spectrum, which afterwards has no imaginary part.
void ApplyProcessing(MeasuredSpectrum& To, const Processing& By);

}  // namespace zelvanor
