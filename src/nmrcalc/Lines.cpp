#include "nmrcalc/Lines.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <tuple>

namespace nmrcalc {

void SortAndMerge(std::vector<Line>& Lines, double Width) {
  std::sort(Lines.begin(), Lines.end(), [](const Line& A, const Line& B) {
    return std::tie(A.Frequency, A.Intensity, A.Count) < std::tie(B.Frequency, B.Intensity, B.Count);
  });
  std::size_t Kept = 0;
  for (std::size_t Start = 0; Start < Lines.size();) {
    const double First = Lines[Start].Frequency;
    Line Merged;
    double Moment = 0.0;  // about the first line, so that no digits are lost to the carrier
    std::size_t Next = Start;
    for (; Next < Lines.size() && Lines[Next].Frequency - First < Width; ++Next) {
      Merged.Intensity += Lines[Next].Intensity;
      Merged.Count += Lines[Next].Count;
      Moment += Lines[Next].Intensity * (Lines[Next].Frequency - First);
    }
    if (Next == Start) ++Next;  // only with a frequency that is no number
    Merged.Frequency = Merged.Intensity > 0.0 ? First + Moment / Merged.Intensity : First;
    Lines[Kept++] = Merged;
    Start = Next;
  }
  Lines.resize(Kept);
}

void DropHopelessLines(std::vector<Line>& Lines, double MinimalIntensity, double Width) {
  // Sums over cells of the merge width; cells far apart share a place, which only makes sums too large. A merged line
  // spans two neighbouring cells at most.
  constexpr std::size_t FewestPlaces = 1024;
  constexpr std::size_t MostPlaces = std::size_t{1} << 25;
  constexpr double RoundingShare = 0.999;  // the sums are Singles
  const std::size_t NumPlaces = std::clamp(std::bit_ceil(2 * Lines.size()), FewestPlaces, MostPlaces);
  std::vector<float> Sums(NumPlaces);
  const auto PlaceOf = [NumPlaces, Width](const Line& Item) {
    return static_cast<std::size_t>(static_cast<std::int64_t>(std::floor(Item.Frequency / Width))) & (NumPlaces - 1);
  };
  for (const Line& Item : Lines) Sums[PlaceOf(Item)] += static_cast<float>(Item.Intensity);
  std::erase_if(Lines, [&](const Line& Item) {
    const std::size_t Place = PlaceOf(Item);
    const double Sum = double(Sums[Place]) + double(Sums[(Place + 1) & (NumPlaces - 1)]) +
                       double(Sums[(Place + NumPlaces - 1) & (NumPlaces - 1)]);
    return Sum < RoundingShare * MinimalIntensity;
  });
}

void DropFaintLines(std::vector<Line>& Lines, double MinimalIntensity) {
  std::erase_if(Lines, [MinimalIntensity](const Line& Item) { return Item.Intensity < MinimalIntensity; });
}

}  // namespace nmrcalc
