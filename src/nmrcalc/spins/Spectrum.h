#pragma once

#include <string>
#include <vector>

#include "nmrcalc/Log.h"
#include "nmrcalc/input/SpectrumInput.h"
#include "nmrcalc/input/SpinSettings.h"
#include "nmrcalc/spins/Lines.h"
#include "nmrcalc/spins/Origins.h"

namespace nmrcalc {

// Stage 2: from the spin system to the line list.

// Natural full width at half height given to every line, in Hz: what a well shimmed spectrometer shows of a small
// molecule in a mobile solvent.
inline constexpr double NaturalLineWidth = 0.5;

// The largest number of spins in one part for which intensities stay within the single precision of the readers. Beyond
// it, and where a part is cut, a nucleus has the intensity CutNucleusIntensity in all.
inline constexpr int LargestPart = 120;

// Transitions fainter than this (a first-order line is 1) are rounding noise or nothing anyone can see.
inline constexpr double FaintestTransition = 1e-9;

struct Spectrum {
  std::vector<Line> Lines{};  // by rising frequency
  std::string Method{};       // what was done, in words; sizes and error where a part was cut
  double Error = 0.0;         // estimated, of the area; 0 where all is exact
  // Where the lines come from: sites of Members, each of which stands for some of the input.
  LineOrigins Origins{};
  double OriginReach = 0.0;  // Hz
  std::vector<std::vector<std::size_t>> Members{};
};

// Lines of the observed nuclei. One intensity scale for the whole spectrum: a first-order line of the largest part has
// intensity 1, and every observed nucleus contributes the same total. The minimal intensity is compared on the scale of
// each part's own first-order line, after the part's coinciding lines have been merged; in a cut part on the scale of
// the result. Throws Failure when no line is left.
Spectrum SimulateSpectrum(const SpectrumInput& Input, const SpinSettings& Settings, double FreeBytes, Log& Report);

// The texts of nmrspect.out and nmrspect.map.
std::string FormatSpectrum(const Spectrum& Result);
std::string FormatSpectrumMap(const SpectrumInput& Input, const Spectrum& Result);

}  // namespace nmrcalc
