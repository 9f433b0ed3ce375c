#pragma once

#include <cstddef>
#include <cstdint>
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

// Sorts by rising frequency, equal ones by their other numbers.
void SortLines(std::vector<Line>& Lines);

// Adds sorted lines to sorted lines.
void MergeSortedLines(std::vector<Line>& Target, const std::vector<Line>& Source);

// Sorts by rising frequency and merges: a line joins the one below when it lies within Width of the mean frequency,
// weighted by intensity, of what is merged there already. So a faint line does not decide where strong ones are parted.
// A merged line stands at that mean and spans less than two widths. The result depends on the set of lines alone.
void SortAndMerge(std::vector<Line>& Lines, double Width);

// What the cells of the frequency axis hold, to tell the lines that matter from the many that do not before anything is
// sorted. Intensities are counted in small units, rounded up, and cells far apart share a place, so a count may be too
// large and is never too small. Bytes, so that the counts of a large spectrum stay in the cache.
struct IntensityCells {
  std::vector<std::uint8_t> Counts{};  // a power of two of them; 255: that much or more
  double UnitsPerIntensity = 0.0;
};
inline constexpr double UnitsPerMinimum = 200.0;

inline std::size_t CellOf(const IntensityCells& Cells, double Frequency) {
  constexpr double Offset = 1e15;  // makes cutting off the decimals a rounding down, without a call
  const auto Cell = static_cast<std::int64_t>(Frequency * (0.5 / MergeWidth) + Offset);
  return static_cast<std::size_t>(Cell) & (Cells.Counts.size() - 1);
}

inline void AddToCells(IntensityCells& Cells, double Frequency, double Intensity) {
  std::uint8_t& Count = Cells.Counts[CellOf(Cells, Frequency)];
  const double Sum = Count + Intensity * Cells.UnitsPerIntensity + 1.0;
  Count = Sum < 255.0 ? static_cast<std::uint8_t>(Sum) : std::uint8_t{255};
}

IntensityCells MakeCells(std::size_t ExpectedLines, double MinimalIntensity);
void MergeCells(IntensityCells& Target, const IntensityCells& Source);  // of equal size

// Removes lines that cannot be part of a merged line of the cells' minimal intensity: what the cells hold around them,
// together, is fainter. Some other faint lines stay.
void DropHopelessLines(std::vector<Line>& Lines, const IntensityCells& Cells);

// Removes the lines below the intensity.
void DropFaintLines(std::vector<Line>& Lines, double MinimalIntensity);

}  // namespace nmrcalc
