#include "nmrcalc/spins/SpectrumDifference.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace nmrcalc {

namespace {

constexpr int StepsPerWidth = 5;
constexpr int Reach = 15 * StepsPerWidth;  // of a line; the difference has no area, so its wings fall off fast
constexpr double Step = ErrorLineWidth / StepsPerWidth;
// Far sticks of a spectrum that is wide and empty are folded into a range that memory can hold.
constexpr std::int64_t LargestRange = 1 << 22;

// Makes room for the places from First to Last, as far as the range may reach.
void Widen(SpectrumDifference& Target, std::int64_t First, std::int64_t Last) {
  if (Target.Sticks.empty()) Target.First = First;
  const auto End = Target.First + static_cast<std::int64_t>(Target.Sticks.size());
  const std::int64_t NewFirst = std::max(std::min(First, Target.First), End - LargestRange);
  const std::int64_t NewEnd = std::min(std::max(Last + 1, End), NewFirst + LargestRange);
  if (NewFirst < Target.First) {
    Target.Sticks.insert(Target.Sticks.begin(), static_cast<std::size_t>(Target.First - NewFirst), 0.0);
    Target.First = NewFirst;
  }
  if (NewEnd > End) Target.Sticks.resize(static_cast<std::size_t>(NewEnd - Target.First));
}

std::array<double, 2 * Reach + 1> MakeShape() {
  std::array<double, 2 * Reach + 1> Shape{};
  double Sum = 0.0;
  for (std::size_t K = 0; K < Shape.size(); ++K) {
    const double X = 2.0 * (double(K) - Reach) / StepsPerWidth;
    Shape[K] = 1.0 / (1.0 + X * X);
    Sum += Shape[K];
  }
  for (double& Value : Shape) Value /= Sum;
  return Shape;
}

}  // namespace

void AddLinesTo(SpectrumDifference& Target, const std::vector<Line>& Lines, double Factor) {
  if (Lines.empty()) return;
  const auto PlaceOf = [](const Line& Item) { return static_cast<std::int64_t>(std::floor(Item.Frequency / Step)); };
  const auto [Lowest, Highest] = std::minmax_element(
      Lines.begin(), Lines.end(), [](const Line& A, const Line& B) { return A.Frequency < B.Frequency; });
  Widen(Target, PlaceOf(*Lowest), PlaceOf(*Highest) + 1);
  for (const Line& Item : Lines) {
    const double Place =
        std::clamp(Item.Frequency / Step - double(Target.First), 0.0, double(Target.Sticks.size() - 2));
    const auto Point = static_cast<std::size_t>(Place);
    const double Part = Place - double(Point);
    Target.Sticks[Point] += Factor * Item.Intensity * (1.0 - Part);
    Target.Sticks[Point + 1] += Factor * Item.Intensity * Part;
  }
}

void AddDifference(SpectrumDifference& Target, const SpectrumDifference& Source) {
  if (Source.Sticks.empty()) return;
  const auto NumSticks = static_cast<std::int64_t>(Source.Sticks.size());
  Widen(Target, Source.First, Source.First + NumSticks - 1);
  const std::int64_t Last = static_cast<std::int64_t>(Target.Sticks.size()) - 1;
  for (std::int64_t K = 0; K < NumSticks; ++K) {
    const std::int64_t Place = std::clamp(Source.First + K - Target.First, std::int64_t{0}, Last);
    Target.Sticks[static_cast<std::size_t>(Place)] += Source.Sticks[static_cast<std::size_t>(K)];
  }
}

double IntegrateDifference(const SpectrumDifference& Difference) {
  static const auto Shape = MakeShape();
  std::vector<double> Broadened(Difference.Sticks.size() + Shape.size() - 1);
  for (std::size_t Point = 0; Point < Difference.Sticks.size(); ++Point) {
    const double Value = Difference.Sticks[Point];
    if (Value == 0.0) continue;
    for (std::size_t K = 0; K < Shape.size(); ++K) Broadened[Point + K] += Value * Shape[K];
  }
  double Sum = 0.0;
  for (const double Value : Broadened) Sum += std::fabs(Value);
  return Sum;
}

double CompareLines(const std::vector<Line>& A, const std::vector<Line>& B) {
  SpectrumDifference Difference;
  AddLinesTo(Difference, A, 1.0);
  AddLinesTo(Difference, B, -1.0);
  return IntegrateDifference(Difference);
}

}  // namespace nmrcalc
