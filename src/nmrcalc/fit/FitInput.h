#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "nmrcalc/input/SpectrumInput.h"

namespace nmrcalc {

// What is fitted to what, from nmrfit.in.

enum class FitKind { Shift, Coupling, Width, Gauss, Scale, Offset };

// A number of the model. What one parameter stands for in several places is tied: it is the same everywhere.
struct FitParameter {
  FitKind Kind = FitKind::Shift;
  double Start = 0.0;  // ppm; Hz for couplings and widths; scale and offset in the units of the measured points
  double Low = 0.0;
  double High = 0.0;
  bool IsFree = true;
  std::vector<std::size_t> Sites{};                          // of a shift
  std::vector<std::pair<std::size_t, std::size_t>> Pairs{};  // of a coupling
};

struct FitInput {
  SpectrumInput System{};
  // Always one width, scale and offset among them, and one gauss, which is fixed at 0 where the file has none.
  std::vector<FitParameter> Parameters{};
  double Broadening = 0.0;  // Hz, by which the first comparison blurs both spectra
  double FirstHz = 0.0;     // of the first point, the lowest frequency
  double StepHz = 0.0;      // above 0
  std::vector<double> Points{};
  std::vector<bool> Counts{};  // whether a point lies in a window
};

// Reads the file. Throws Failure with file, line and reason for anything that does not fit.
FitInput ReadFitInput(const std::string& Path);

// The system with these values in the places of the parameters, as Parameters.
SpectrumInput SystemWith(const FitInput& Input, const std::vector<double>& Values);

const char* NameOfKind(FitKind Kind);

}  // namespace nmrcalc
