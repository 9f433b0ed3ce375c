#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "spectrum/Envelope.h"

// The envelope of 100,000 peaks over 1282 columns, all in the window, beside the plain double loop. The promise is a
// fourth of the plain loop's time.

namespace zelvanor {
namespace {

constexpr std::size_t NumPeaks = 100000;
constexpr std::size_t NumColumns = 1282;
constexpr double Low = -500;
constexpr double Range = 1000;  // Hz

struct PeakList {
  std::vector<Single> Frequency, Work1, Work2;
};

// Width in Hz: narrow lines are mostly wings, wide ones mostly flanks.
PeakList MakePeaks(bool Gaussian, double Width) {
  std::mt19937 Random(7);
  std::uniform_real_distribution<Single> Height(0.01F, 1.0F);
  const double Factor = Gaussian ? 2 / Width : Width / 2;
  PeakList List;
  for (std::size_t Peak = 0; Peak < NumPeaks; ++Peak) {
    List.Frequency.push_back(static_cast<Single>(Low + Range - Range * static_cast<double>(Peak) / NumPeaks));
    List.Work1.push_back(static_cast<Single>(Factor * Factor));
    List.Work2.push_back(static_cast<Single>(Factor * Height(Random)));
  }
  return List;
}

void FastSum(benchmark::State& State, bool Gaussian) {
  const PeakList List = MakePeaks(Gaussian, static_cast<double>(State.range(0)));
  std::vector<double> Samples(NumColumns);
  for (auto _ : State) {
    (Gaussian ? SumGaussians : SumLorentzians)({List.Frequency, List.Work1, List.Work2}, Low, Range / NumColumns,
                                               Samples);
    benchmark::DoNotOptimize(Samples.data());
  }
}

template <bool Gaussian>
void PlainSum(benchmark::State& State) {
  const PeakList List = MakePeaks(Gaussian, static_cast<double>(State.range(0)));
  std::vector<double> Samples(NumColumns);
  for (auto _ : State) {
    double X = Low;
    for (double& Sample : Samples) {
      double Sum = 0;
      for (std::size_t Peak = 0; Peak < NumPeaks; ++Peak) {
        const double D = X - List.Frequency[Peak];
        if constexpr (Gaussian) {
          const double A = List.Work1[Peak] * D * D;
          Sum += List.Work2[Peak] * (A < GaussianReach ? std::exp(-A) : GaussianWing);
        } else {
          Sum += List.Work2[Peak] / (List.Work1[Peak] + D * D);
        }
      }
      Sample = Sum;
      X += Range / NumColumns;
    }
    benchmark::DoNotOptimize(Samples.data());
  }
}

#define EACH_WIDTH ->Arg(5)->Arg(50)->Arg(300)->Unit(benchmark::kMillisecond)
BENCHMARK_CAPTURE(FastSum, Lorentzian, false) EACH_WIDTH;
BENCHMARK(PlainSum<false>)->Name("PlainSum/Lorentzian") EACH_WIDTH;
BENCHMARK_CAPTURE(FastSum, Gaussian, true) EACH_WIDTH;
BENCHMARK(PlainSum<true>)->Name("PlainSum/Gaussian") EACH_WIDTH;

}  // namespace
}  // namespace zelvanor
