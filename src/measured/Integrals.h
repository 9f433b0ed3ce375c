#pragma once

#include <vector>

#include "platform/Picture.h"

namespace zelvanor {

// The integrated ranges of the measured spectrum, Workspace.Integral....

// The value of each range, in nuclei: all together are IntegralTotal, or as many as the simulation observes, or where
// there is none the least is 1.
std::vector<Double> IntegralValues();

// A new range; an end of a range that is there already, near to one of the new ends, moves instead. Places in ppm.
void AddIntegral(Double LowPpm, Double HighPpm);
// The same behind the ranges that are there, whatever they are.
void AppendIntegral(Double LowPpm, Double HighPpm);
void RemoveIntegral(Long Range);
inline constexpr Long MostIntegrals = 500;

// Draws the curves and values; ColumnOf gives the column of a shift.
void DrawIntegrals(DrawingContext& Context, Colour Pen, int Height, int Width, Double (*ColumnOf)(Double Ppm));

void mnuMeasuredIntegrals_Click();
void BuildIntegralForm();

}  // namespace zelvanor
