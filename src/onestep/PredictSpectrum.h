#pragma once

#include "onestep/Nuclei.h"

namespace zelvanor {

// From a molecule to its spectrum in one step. What it sets is what the dialogs set, and can be changed there.

// Chooses the NMR atoms of the nucleus (of the molecules with selected atoms where there are any), labels them where it
// is a rare isotope, finds the equivalent sets and sets spectrum and frequency (MHz; 0 takes the spectrometer on which
// the present settings observe). False where the molecules have no such nucleus.
bool SetUpNucleus(const Nucleus& Observed, Long Frequency);

// Computes the stages that the nucleus has; atoms of one class share one shielding. The number of stages that are done;
// what went wrong has been shown.
int ComputeNucleus(const Nucleus& Observed);

// Compute > Predict Spectrum for this nucleus: all of it, to the spectrum on the screen.
void PredictSpectrum(const Nucleus& Observed);

}  // namespace zelvanor
