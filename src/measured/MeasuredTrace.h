#pragma once

#include <vector>

#include "measured/MeasuredSpectrum.h"
#include "workspace/Workspace.h"

namespace zelvanor {

// The measured spectrum of the document, Workspace.Measured..., and the simulated one on the same grid.

inline bool HasMeasured() { return Workspace.MeasuredCount > 0; }

// Whether a document can hold this axis: MHz, and in Hz the place of the first point, the highest, and of the last.
bool IsSoundAxis(Double MHz, Double First, Double Last);

// A text as a line of the document can hold it: cut, and without control characters.
Text OneLine(TextView Value);

// Takes a spectrum (no FID) over into the document, the largest shift first. One without a frequency gets that of the
// simulation. Throws a Failure and leaves the document as it was.
void TakeOverMeasured(const MeasuredSpectrum& From);
// The other way round, for processing.
MeasuredSpectrum MeasuredOfDocument();

// The shift of a point, in ppm; points may be broken numbers. And the point of a shift.
Double MeasuredPpmAt(Double Point);
Double MeasuredPointAt(Double Ppm);
Double MeasuredIntensityAt(Long Point);

// The simulated envelope and the measured intensities at the same shifts: every measured point between two shifts.
struct CommonGrid {
  Double FirstPpm = 0;  // of the first point, the largest shift
  Double StepPpm = 0;   // below 0
  std::vector<Double> Measured;
  std::vector<Double> Simulated;
};
// The line width is that of the view, or 1 Hz where none has been set. Throws a Failure where one of the two is not
// there.
CommonGrid BuildCommonGrid(Double HighPpm, Double LowPpm);

// What of the measured spectrum does not fit the simulation: nucleus, frequency; empty where all fits.
Text DescribeMismatch();

// The section of the document, and the variables of scripts.
void AddMeasuredSection();
void AddMeasuredVariables();

}  // namespace zelvanor
