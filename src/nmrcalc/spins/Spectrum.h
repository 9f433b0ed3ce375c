#pragma once

#include <string>
#include <vector>

#include "nmrcalc/Log.h"
#include "nmrcalc/input/SpectrumInput.h"
#include "nmrcalc/spins/Lines.h"

namespace nmrcalc {

// Stage 2: from the spin system to the line list.

// Natural full width at half height given to every line, in Hz: what a well shimmed spectrometer shows of a small
// molecule in a mobile solvent.
inline constexpr double NaturalLineWidth = 0.5;

// The largest number of spins in one part for which intensities stay within the single precision of the readers.
inline constexpr int LargestPart = 120;

// Transitions fainter than this (a first-order line is 1) are rounding noise or nothing anyone can see.
inline constexpr double FaintestTransition = 1e-9;

// Lines of the observed nuclei by rising frequency. One intensity scale for the whole spectrum: a first-order line of
// the largest part has intensity 1, and every observed nucleus contributes the same total. The minimal intensity is
// compared on the scale of each part's own first-order line, after the part's coinciding lines have been merged.
// Throws Failure when the system does not fit into FreeBytes or no line is left.
std::vector<Line> SimulateSpectrum(const SpectrumInput& Input, double FreeBytes, Log& Report);

// The text of nmrspect.out.
std::string FormatSpectrum(const SpectrumInput& Input, const std::vector<Line>& Lines);

}  // namespace nmrcalc
