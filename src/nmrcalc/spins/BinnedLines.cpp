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

std::vector<Line> ReadLines(const BinnedLines& Bins, double Faintest) {
  const auto IsKept = [Faintest](const BinnedLines::Bin& Bin) {
    return Bin.Intensity != 0.0 && std::fabs(Bin.Intensity) >= Faintest;
  };
  std::ptrdiff_t NumLines = 0;
  for (const auto& Page : Bins.Pages) {
    if (Page) NumLines += std::count_if(Page.get(), Page.get() + BinnedLines::PageSize, IsKept);
  }
  std::vector<Line> Lines;
  Lines.reserve(static_cast<std::size_t>(NumLines));
  for (std::size_t Slot = 0; Slot < Bins.Pages.size(); ++Slot) {
    const auto First = (Bins.FirstPage + static_cast<std::int64_t>(Slot)) * BinnedLines::PageSize;
    for (std::int64_t K = 0; Bins.Pages[Slot] && K < BinnedLines::PageSize; ++K) {
      const BinnedLines::Bin& Bin = Bins.Pages[Slot][K];
      if (!IsKept(Bin)) continue;
      const double Middle = (double(First + K) + 0.5) * BinWidth;
      const double Mean = std::clamp(Bin.Moment / Bin.Intensity, -0.5 * BinWidth, 0.5 * BinWidth);
      Lines.push_back({Middle + Mean, Bin.Intensity, Bin.Count});
    }
  }
  return Lines;
}

std::vector<Line> TakeLines(const BinnedLines& Bins, double Area, double Faintest) {
  double Sum = 0.0;
  for (const auto& Page : Bins.Pages) {
    for (std::int64_t K = 0; Page && K < BinnedLines::PageSize; ++K) Sum += Page[K].Intensity;
  }
  if (!(Sum > 0.0)) return {};
  std::vector<Line> Lines = ReadLines(Bins, Faintest * Sum);
  double Kept = 0.0;
  for (const Line& Item : Lines) Kept += Item.Intensity;
  for (Line& Item : Lines) Item.Intensity *= Area / Kept;
  return Lines;
}

}  // namespace nmrcalc
