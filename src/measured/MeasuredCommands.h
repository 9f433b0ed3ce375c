#pragma once

#include <functional>

#include "basic/Types.h"
#include "measured/Processing.h"

namespace zelvanor {

// Reads a file of a measured spectrum into the document and shows it; an FID is transformed and phased on the way.
// Tells what went wrong, and what does not fit the simulation. False: the document is as it was.
bool OpenMeasured(const Text& Path);
void RemoveMeasured();

// Takes an SD file, whose signals are assigned to atoms of a molecule, in place of a spectrum; program.cpp fills it.
extern std::function<bool(const Text& Path)> OpenAssignedSignals;

// Whether a path is one that File > Open Measured would take rather than File > Open, by its name.
bool LooksMeasured(const Text& Path);

// What the present measured spectrum was made from, and how.
const MeasuredSpectrum& MeasuredSource();
const Processing& PresentProcessing();
// Makes the spectrum anew from its source. Throws a Failure.
void ReprocessMeasured(const Processing& By);

// The window of the spectrum view for a measured spectrum without a simulated one; does nothing where it is that
// already, where there is a simulated one, or no measured one.
void TakeMeasuredIntoView();

void mnuFileOpenMeasured_Click();
void mnuMeasuredRemove_Click();

}  // namespace zelvanor
