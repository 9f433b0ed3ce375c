#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "nmrcalc/spins/Lines.h"

namespace nmrcalc {

// The line width at which errors of a spectrum count, in Hz, full width at half height.
inline constexpr double ErrorLineWidth = 1.0;

// The difference of two spectra before broadening, on a grid: what is added with a positive factor less what is added
// with a negative one. Differences of sites add up to that of the whole spectrum.
struct SpectrumDifference {
  std::int64_t First = 0;  // the place of the first stick, in steps of a fifth of the line width from 0 Hz
  std::vector<double> Sticks{};
};

void AddLinesTo(SpectrumDifference& Target, const std::vector<Line>& Lines, double Factor);
void AddDifference(SpectrumDifference& Target, const SpectrumDifference& Source);

// The integral of the absolute difference at ErrorLineWidth, on the scale of the intensities.
double IntegrateDifference(const SpectrumDifference& Difference);

// The same of two lists.
double CompareLines(const std::vector<Line>& A, const std::vector<Line>& B);

}  // namespace nmrcalc
