// The files of the fit: what the program hands over and the backend reads, and the way back.

#include <algorithm>
#include <cmath>

#include "files/DocumentReader.h"
#include "fit/FitPlan.h"
#include "fuzz/Harness.h"
#include "fuzz/Targets.h"
#include "measured/MeasuredCommands.h"
#include "nmrcalc/fit/FitInput.h"
#include "workspace/Workspace.h"

namespace zelvanor::fuzz {

bool TryFitInput(TextView Input) {
  ResetProgram();
  nmrcalc::FitInput Read;
  try {
    Read = nmrcalc::ReadFitInput(WriteInput("nmrfit.in", Input));
  } catch (const Failure&) {
    return false;
  }
  Demand(Read.Counts.size() == Read.Points.size() && Read.StepHz > 0, "points without an axis");
  std::vector<double> Starts;
  for (const nmrcalc::FitParameter& Each : Read.Parameters) {
    Demand(Each.Low <= Each.Start && Each.Start <= Each.High, "a start outside its bounds");
    Starts.push_back(Each.Start);
  }
  for (const nmrcalc::SpinSite& Site : nmrcalc::SystemWith(Read, Starts).Sites) {
    Demand(std::isfinite(Site.Frequency), "a site without a frequency");
  }
  return true;
}

// The result of a fit of ethanol to two points.
bool TryFitResults(TextView Input) {
  ResetProgram();
  Demand(IsSet(ReadDocument(SourceFile("examples/ethanol.NMR"))), "the example can't be read");
  Demand(OpenMeasured(WriteInput("measured", "6 1\n0 2\n")), "the spectrum can't be read");
  PlanFit({.Windows = {{7.0, -1.0}}});
  const Text Path = PathOf("nmrfit.in");
  WriteFitInput(Path);
  Demand(nmrcalc::ReadFitInput(Path).Points.size() == 2, "the backend reads another spectrum");
  try {
    ReadFitResults(WriteInput("nmrfit.out", Input));
  } catch (const Failure&) {
    return false;
  }
  TakeFitIntoTables();
  LookAround();
  CheckRoundTrip();
  return true;
}

}  // namespace zelvanor::fuzz
