#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

#include "measured/JcampTable.h"
#include "measured/MeasuredView.h"
#include "platform/Picture.h"

// A measured spectrum of 131,072 points drawn over 1282 columns, whole and in a zoom where points stand apart; and its
// JCAMP-DX table read.

namespace zelvanor {
namespace {

constexpr int NumPoints = 131072;
constexpr int Width = 1282;

std::vector<Long> MakePoints() {
  std::mt19937 Random(7);
  std::normal_distribution<double> Noise(0, 200);
  std::vector<Long> Points;
  for (int Point = 0; Point < NumPoints; ++Point) {
    const double D = (Point % 9000) - 4500;
    Points.push_back(static_cast<Long>(Noise(Random) + 4.0e9 / (1 + D * D)));
  }
  return Points;
}

void DrawMeasured(benchmark::State& State) {
  const std::vector<Long> Points = MakePoints();
  const double Step = static_cast<double>(Width) / static_cast<double>(State.range(0));
  PictureSurface Surface(nullptr, "bench");
  for (auto _ : State) {
    ClearPicture(Surface);
    DrawingContext Context = GetDC(Surface);
    DrawTrace(Context, Points,
              {.First = 0, .Step = Step, .Scale = 1.0e-7, .Foot = 570, .Top = 0, .Bottom = 570, .Width = Width});
    benchmark::DoNotOptimize(Surface.Lines.data());
  }
}
BENCHMARK(DrawMeasured)->Arg(NumPoints)->Arg(500)->Unit(benchmark::kMillisecond);

void ReadTable(benchmark::State& State) {
  const Text Table = "\n" + WriteJcampTable(MakePoints(), 0, 1);
  for (auto _ : State) benchmark::DoNotOptimize(ReadJcampTable(Table, {0, 1, 1, true, 0}).Values.data());
}
BENCHMARK(ReadTable)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zelvanor
