#include "nmrcalc/spins/BinnedLines.h"

#include <algorithm>
#include <cstdlib>
#include <numbers>

namespace nmrcalc {

BinnedLines::Bin* OpenPage(BinnedLines& Target, std::int64_t Page) {
  constexpr auto FarthestPage =
      static_cast<std::int64_t>(BinnedLines::FarthestLine / BinWidth / double(BinnedLines::PageSize));
  if (Target.Pages.empty()) Target.FirstPage = Page;
  const auto NumPages = static_cast<std::int64_t>(Target.Pages.size());
  if (std::llabs(Page - Target.FirstPage) > FarthestPage) return nullptr;
  if (Page < Target.FirstPage) {
    std::vector<std::unique_ptr<BinnedLines::Bin[]>> Grown(static_cast<std::size_t>(Target.FirstPage - Page));
    for (auto& Own : Target.Pages) Grown.push_back(std::move(Own));
    Target.Pages = std::move(Grown);
    Target.FirstPage = Page;
  } else if (Page >= Target.FirstPage + NumPages) {
    Target.Pages.resize(static_cast<std::size_t>(Page - Target.FirstPage + 1));
  }
  auto& Place = Target.Pages[static_cast<std::size_t>(Page - Target.FirstPage)];
  if (!Place) Place = std::make_unique<BinnedLines::Bin[]>(BinnedLines::PageSize);
  return Place.get();
}

void AddBins(BinnedLines& Target, const BinnedLines& Source) {
  for (std::size_t Slot = 0; Slot < Source.Pages.size(); ++Slot) {
    if (!Source.Pages[Slot]) continue;
    BinnedLines::Bin* Bins = OpenPage(Target, Source.FirstPage + static_cast<std::int64_t>(Slot));
    if (Bins == nullptr) continue;
    for (std::int64_t K = 0; K < BinnedLines::PageSize; ++K) {
      Bins[K].Intensity += Source.Pages[Slot][K].Intensity;
      Bins[K].Moment += Source.Pages[Slot][K].Moment;
      Bins[K].Count += Source.Pages[Slot][K].Count;
    }
  }
}

void MergeFaintLines(std::vector<Line>& Lines, double Limit) {
  const auto Join = [](Line& Target, const Line& Source) {
    const double Sum = Target.Intensity + Source.Intensity;
    if (Sum > 0.0 && Source.Intensity > 0.0) {
      Target.Frequency += Source.Intensity / Sum * (Source.Frequency - Target.Frequency);
    }
    Target.Intensity = Sum;
    Target.Count += Source.Count;
  };
  std::vector<Line> Kept;
  Kept.reserve(Lines.size());
  for (const Line& Item : Lines) {
    // A line below the limit waits as the last of the kept ones for a neighbour above.
    const bool Near = !Kept.empty() && Item.Frequency - Kept.back().Frequency < MergeReach;
    const bool IsFaint = Item.Intensity < Limit;
    if (Near && (Kept.back().Intensity < Limit || IsFaint)) {
      if (Kept.back().Intensity < Item.Intensity) {
        Line Sum = Item;
        Join(Sum, Kept.back());
        Kept.back() = Sum;
      } else {
        Join(Kept.back(), Item);
      }
    } else {
      Kept.push_back(Item);
    }
  }
  Lines = std::move(Kept);
}

std::vector<Line> TakeLines(const BinnedLines& Bins, double Area, double Faintest) {
  std::vector<Line> Lines;
  double Sum = 0.0;
  for (std::size_t Slot = 0; Slot < Bins.Pages.size(); ++Slot) {
    for (std::int64_t K = 0; Bins.Pages[Slot] && K < BinnedLines::PageSize; ++K) {
      const BinnedLines::Bin& Bin = Bins.Pages[Slot][K];
      if (Bin.Intensity == 0.0) continue;
      const double Middle =
          (double((Bins.FirstPage + static_cast<std::int64_t>(Slot)) * BinnedLines::PageSize + K) + 0.5) * BinWidth;
      const double Mean = std::clamp(Bin.Moment / Bin.Intensity, -0.5 * BinWidth, 0.5 * BinWidth);
      Lines.push_back({Middle + Mean, Bin.Intensity, Bin.Count});
      Sum += Bin.Intensity;
    }
  }
  if (!(Sum > 0.0)) return {};
  std::erase_if(Lines, [&](const Line& Item) { return std::fabs(Item.Intensity) < Faintest * Sum; });
  double Kept = 0.0;
  for (const Line& Item : Lines) Kept += Item.Intensity;
  for (Line& Item : Lines) Item.Intensity *= Area / Kept;
  return Lines;
}

double CompareLines(const std::vector<Line>& A, const std::vector<Line>& B, double LineWidth) {
  if (A.empty() || B.empty()) return 0.0;
  constexpr double StepsPerWidth = 5.0;
  constexpr double Reach = 15.0;  // widths; the difference has no area, so its wings fall off fast
  const double Step = LineWidth / StepsPerWidth;
  const double Lowest = std::min(A.front().Frequency, B.front().Frequency) - Reach * LineWidth;
  const double Highest = std::max(A.back().Frequency, B.back().Frequency) + Reach * LineWidth;
  // Far lines of a spectrum that is wide and empty are folded into a range that memory can hold.
  constexpr double LargestRange = 1 << 22;
  const auto NumPoints = static_cast<std::size_t>(std::clamp((Highest - Lowest) / Step + 2.0, 2.0, LargestRange));
  std::vector<double> Difference(NumPoints);
  const auto AddAll = [&](const std::vector<Line>& Lines, double Sign) {
    for (const Line& Item : Lines) {
      const double Place = std::clamp((Item.Frequency - Lowest) / Step, 0.0, double(NumPoints - 2));
      const auto Point = static_cast<std::size_t>(Place);
      const double Part = Place - double(Point);
      Difference[Point] += Sign * Item.Intensity * (1.0 - Part);
      Difference[Point + 1] += Sign * Item.Intensity * Part;
    }
  };
  AddAll(A, 1.0);
  AddAll(B, -1.0);
  const auto HalfSize = static_cast<std::size_t>(Reach * StepsPerWidth);
  std::vector<double> Shape(2 * HalfSize + 1);
  double ShapeSum = 0.0;
  for (std::size_t K = 0; K < Shape.size(); ++K) {
    const double X = 2.0 * (double(K) - double(HalfSize)) / StepsPerWidth;
    Shape[K] = 1.0 / (1.0 + X * X);
    ShapeSum += Shape[K];
  }
  std::vector<double> Broadened(NumPoints + 2 * HalfSize);
  for (std::size_t Point = 0; Point < NumPoints; ++Point) {
    const double Value = Difference[Point] / ShapeSum;
    if (Value == 0.0) continue;
    for (std::size_t K = 0; K < Shape.size(); ++K) Broadened[Point + K] += Value * Shape[K];
  }
  double Sum = 0.0;
  for (const double Value : Broadened) Sum += std::fabs(Value);
  return Sum;
}

}  // namespace nmrcalc
