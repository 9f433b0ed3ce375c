#include "nmrcalc/spins/Lines.h"

#include <algorithm>
#include <bit>
#include <tuple>

namespace nmrcalc {

namespace {

// An object and not a function, so that the sort has it in line: most lines differ in the first number.
constexpr auto ComesBefore = [](const Line& A, const Line& B) {
  if (A.Frequency != B.Frequency) return A.Frequency < B.Frequency;
  return std::tie(A.Intensity, A.Count) < std::tie(B.Intensity, B.Count);
};

}  // namespace

void SortLines(std::vector<Line>& Lines) {
  if (!std::is_sorted(Lines.begin(), Lines.end(), ComesBefore)) std::sort(Lines.begin(), Lines.end(), ComesBefore);
}

void MergeSortedLines(std::vector<Line>& Target, const std::vector<Line>& Source) {
  const auto Middle = static_cast<std::ptrdiff_t>(Target.size());
  Target.insert(Target.end(), Source.begin(), Source.end());
  std::inplace_merge(Target.begin(), Target.begin() + Middle, Target.end(), ComesBefore);
}

void SortAndMerge(std::vector<Line>& Lines, double Width) {
  SortLines(Lines);
  std::size_t Kept = 0;
  for (std::size_t Start = 0; Start < Lines.size();) {
    const double First = Lines[Start].Frequency;
    Line Merged;
    double Moment = 0.0;    // about the first line, so that no digits are lost to the carrier
    double Positive = 0.0;  // what is left when lines nearly cancel says nothing of their place
    double Mean = 0.0;
    std::size_t Next = Start;
    while (Next < Lines.size() && (Next == Start || Lines[Next].Frequency - First - Mean < Width)) {
      Merged.Intensity += Lines[Next].Intensity;
      Merged.Count += Lines[Next].Count;
      const double Own = std::max(Lines[Next].Intensity, 0.0);
      Positive += Own;
      Moment += Own * (Lines[Next].Frequency - First);
      Mean = Positive > 0.0 ? Moment / Positive : 0.0;
      ++Next;
    }
    Merged.Frequency = First + Mean;
    Lines[Kept++] = Merged;
    Start = Next;
  }
  Lines.resize(Kept);
}

IntensityCells MakeCells(std::size_t ExpectedLines, double MinimalIntensity) {
  constexpr std::size_t FewestPlaces = 1024;
  constexpr std::size_t MostPlaces = std::size_t{1} << 26;
  const std::size_t NumPlaces = std::bit_ceil(std::clamp(2 * ExpectedLines, FewestPlaces, MostPlaces));
  return {std::vector<std::uint8_t>(NumPlaces), UnitsPerMinimum / std::max(MinimalIntensity, 1e-12)};
}

void MergeCells(IntensityCells& Target, const IntensityCells& Source) {
  std::transform(Target.Counts.begin(), Target.Counts.end(), Source.Counts.begin(), Target.Counts.begin(),
                 [](std::uint8_t A, std::uint8_t B) { return static_cast<std::uint8_t>(std::min(A + B, 255)); });
}

void DropHopelessLines(std::vector<Line>& Lines, const IntensityCells& Cells) {
  const std::size_t Mask = Cells.Counts.size() - 1;
  std::erase_if(Lines, [&](const Line& Item) {
    // A merged line is no wider than a cell, two merge widths, and lies in two neighbouring ones at most.
    const std::size_t Place = CellOf(Cells, Item.Frequency);
    return Cells.Counts[Place] + Cells.Counts[(Place + 1) & Mask] + Cells.Counts[(Place - 1) & Mask] < UnitsPerMinimum;
  });
}

void DropFaintLines(std::vector<Line>& Lines, double MinimalIntensity) {
  std::erase_if(Lines, [MinimalIntensity](const Line& Item) { return Item.Intensity < MinimalIntensity; });
}

}  // namespace nmrcalc
