#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "nmrcalc/Log.h"
#include "nmrcalc/fit/FitInput.h"

namespace nmrcalc {

// Stage 3: the least squares.

struct FittedValue {
  double Value = 0.0;
  double Error = 0.0;  // standard error; 0 for a fixed one, below 0 where the spectrum does not tell the value
  // The parameter with which it goes together most, and their correlation; itself where there is no other.
  std::size_t Partner = 0;
  double Correlation = 0.0;
  bool IsAtBound = false;
};

struct FitResult {
  std::vector<FittedValue> Values{};  // as FitInput::Parameters
  double R = 0.0;      // correlation of the simulated with the measured spectrum, of the points that count
  double Noise = 0.0;  // standard deviation of the residual, in units of the measured points
  int Steps = 0;
  bool Converged = false;
  bool IsCut = false;               // the lines are those of clusters
  std::vector<double> Simulated{};  // at the measured points
};

// Throws Failure where nothing is free, no point counts, there are fewer points than free parameters, or the
// simulation comes to no end.
FitResult FitSpectrum(const FitInput& Input, Log& Report);

// The text of nmrfit.out.
std::string FormatFit(const FitInput& Input, const FitResult& Result);

}  // namespace nmrcalc
