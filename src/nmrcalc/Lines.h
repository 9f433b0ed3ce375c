#pragma once

#include <vector>

namespace nmrcalc {

// Spectral lines and their merging.

struct Line {
  double Frequency = 0.0;  // Hz
  double Intensity = 0.0;  // 1 is a first-order line of the part
  double Count = 0.0;      // transitions merged in the line; a Double, since products of multiplicities grow large
};

// Lines nearer than this are one line, in Hz. Two orders below the digital resolution of any spectrometer, and four
// above the rounding noise of the eigenvalues (about 1e-8 Hz), so that neither true splittings nor noise show.
inline constexpr double MergeWidth = 1e-4;

// Sorts by rising frequency and merges runs that lie within Width of their first line. A merged line stands at the
// mean frequency, weighted by intensity. The result depends on the set of lines alone, not on their order.
void SortAndMerge(std::vector<Line>& Lines, double Width);

// Removes lines that cannot be part of a merged line of this intensity, to spare the sorting: what lies within Width to
// both sides of such a line, together, is fainter. Some others may stay.
void DropHopelessLines(std::vector<Line>& Lines, double MinimalIntensity, double Width);

// Removes the lines below the intensity.
void DropFaintLines(std::vector<Line>& Lines, double MinimalIntensity);

}  // namespace nmrcalc
