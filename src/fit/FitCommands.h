#pragma once

#include "basic/Types.h"
#include "fit/FitPlan.h"
#include "platform/Picture.h"

namespace zelvanor {

// Runs stage 3 for the rows and windows of Fit. What goes wrong, or that nothing has converged, is shown. False where
// there is no result: also where the user has given it up.
bool RunFit();

// Takes the result into the tables and computes the spectrum of it.
void AcceptFit();

// All of it for scripts: plans, runs, and takes over. False where there is no result; why has been shown.
bool FitToMeasured(const FitChoice& Choice);

// Behind the measured spectrum: what the fit leaves over, as long as the spectrum is the one that was fitted.
void DrawFitDifference(DrawingContext& Context);

void AddFitVariables();

}  // namespace zelvanor
