#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "nmrcalc/spins/Lines.h"

namespace nmrcalc {

// The many lines of one site in a cut spectrum, gathered as they come. A bin holds the sum of its lines and where they
// stand in the mean, so that no frequency is put onto a grid: only what lies within a bin becomes one line, which adds
// BinWidth^2 / 12 to the square of a line's width.

inline constexpr double BinWidth = 0.02;  // Hz

struct BinnedLines {
  struct Bin {
    double Intensity = 0.0;
    double Moment = 0.0;  // intensity times distance from the middle of the bin, Hz
    double Count = 0.0;
  };
  static constexpr std::int64_t PageSize = 256;
  static constexpr double FarthestLine = 1e6;  // Hz; farther from the first line there is nothing but rounding
  std::int64_t FirstPage = 0;
  std::vector<std::unique_ptr<Bin[]>> Pages{};
};

// Makes the page of the bin, or returns null when it is too far out.
BinnedLines::Bin* OpenPage(BinnedLines& Target, std::int64_t Page);

// False when the line is too far out and was left out.
inline bool AddLine(BinnedLines& Target, double Frequency, double Intensity, double Count) {
  constexpr double Offset = 1e15;  // makes cutting off the decimals a rounding down, without a call
  const auto Index =
      static_cast<std::int64_t>(Frequency * (1.0 / BinWidth) + Offset) - static_cast<std::int64_t>(Offset);
  const auto Place = static_cast<double>(Index);
  const std::int64_t Page = Index >> 8;
  const auto Slot = static_cast<std::size_t>(Page - Target.FirstPage);
  BinnedLines::Bin* Bins = Slot < Target.Pages.size() ? Target.Pages[Slot].get() : nullptr;
  if (Bins == nullptr) Bins = OpenPage(Target, Page);
  if (Bins == nullptr) return false;
  BinnedLines::Bin& Bin = Bins[Index & (BinnedLines::PageSize - 1)];
  Bin.Intensity += Intensity;
  Bin.Moment += Intensity * (Frequency - (Place + 0.5) * BinWidth);
  Bin.Count += Count;
  return true;
}

void AddBins(BinnedLines& Target, const BinnedLines& Source);

// The lines by rising frequency; those fainter than Faintest are left out. Negative ones stay: another site that is
// strongly coupled to this one has what they take away.
std::vector<Line> ReadLines(const BinnedLines& Bins, double Faintest);
// The same scaled to the area, with Faintest in terms of it; none when there is no area.
std::vector<Line> TakeLines(const BinnedLines& Bins, double Area, double Faintest);

// Lets every line that is fainter than the limit join the nearest stronger one within MergeReach, at their mean place;
// lines must be sorted. Those that find none stay.
void MergeFaintLines(std::vector<Line>& Lines, double Limit);
inline constexpr double MergeReach = 0.1;  // Hz

}  // namespace nmrcalc
