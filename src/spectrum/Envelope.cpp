#include "spectrum/Envelope.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>

// The sum over columns and peaks, eight columns at a time in vector registers; the compiler makes one version for each
// width of register and the loader picks the one the processor has.
//
// Lorentzians: division is the slowest step by far, so four peaks share one: their fractions are brought to a common
// denominator first. With d below 1e18 Hz the product of four denominators stays far inside the range of a Double.
//
// Gaussians: exp(-a) = 2^-n exp(r) with n = round(a / ln 2), |r| <= ln 2 / 2, and a Taylor polynomial of degree 13 for
// exp(r), whose first dropped term is below 1e-17. Eight peaks that are all too far from the eight columns go into the
// wings at once, without the polynomial.

#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define ZELVANOR_FOR_EACH_VECTOR_WIDTH __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define ZELVANOR_FOR_EACH_VECTOR_WIDTH
#endif

namespace zelvanor {

namespace {

constexpr std::size_t Lanes = 8;
using Vector = double __attribute__((vector_size(Lanes * sizeof(double))));
using Mask = std::int64_t __attribute__((vector_size(Lanes * sizeof(std::int64_t))));
using Singles = float __attribute__((vector_size(Lanes * sizeof(float))));

// The columns' frequencies, in steps as a plain loop takes them, so that rounding is the same.
constexpr std::size_t MostColumns = 1536;
using Columns = std::array<Double, MostColumns>;

void FillColumns(Columns& Places, Double Start, Double Step, std::size_t Count) {
  Double Place = Start;
  for (std::size_t Column = 0; Column < Count; ++Column) {
    Places[Column] = Place;
    Place += Step;
  }
  std::fill(Places.begin() + static_cast<std::ptrdiff_t>(Count), Places.end(), Place);
}

}  // namespace

ZELVANOR_FOR_EACH_VECTOR_WIDTH
static void LorentzianBlock(const Single* Frequency, const Single* Work1, const Single* Work2, std::size_t NumPeaks,
                            const Double* Places, Double* Sums) {
  Vector X;
  std::memcpy(&X, Places, sizeof X);
  Vector Sum = {};
  std::size_t Peak = 0;
  for (; Peak + 4 <= NumPeaks; Peak += 4) {
    const Vector D0 = X - double{Frequency[Peak]};
    const Vector D1 = X - double{Frequency[Peak + 1]};
    const Vector D2 = X - double{Frequency[Peak + 2]};
    const Vector D3 = X - double{Frequency[Peak + 3]};
    const Vector Q0 = D0 * D0 + double{Work1[Peak]};
    const Vector Q1 = D1 * D1 + double{Work1[Peak + 1]};
    const Vector Q2 = D2 * D2 + double{Work1[Peak + 2]};
    const Vector Q3 = D3 * D3 + double{Work1[Peak + 3]};
    const Vector N01 = Q1 * double{Work2[Peak]} + Q0 * double{Work2[Peak + 1]};
    const Vector N23 = Q3 * double{Work2[Peak + 2]} + Q2 * double{Work2[Peak + 3]};
    const Vector Q01 = Q0 * Q1;
    const Vector Q23 = Q2 * Q3;
    Sum += (N01 * Q23 + N23 * Q01) / (Q01 * Q23);
  }
  for (; Peak < NumPeaks; ++Peak) {
    const Vector D = X - double{Frequency[Peak]};
    Sum += double{Work2[Peak]} / (D * D + double{Work1[Peak]});
  }
  std::memcpy(Sums, &Sum, sizeof Sum);
}

ZELVANOR_FOR_EACH_VECTOR_WIDTH
static void GaussianBlock(const Single* Frequency, const Single* Work1, const Single* Work2, std::size_t NumPeaks,
                          const Double* Places, Double* Sums) {
  constexpr double InverseLn2 = 1.4426950408889634;
  // ln 2 in two pieces, the first short enough that its products with n are exact.
  constexpr double Ln2High = 6.93147180369123816490e-01;
  constexpr double Ln2Low = 1.90821492927058770002e-10;
  // Adding and taking away 1.5 x 2^52 rounds to a whole number, which then stands in the low bits.
  constexpr double Rounder = 6755399441055744.0;
  Vector X;
  std::memcpy(&X, Places, sizeof X);
  const double Low = std::min(Places[0], Places[Lanes - 1]);
  const double High = std::max(Places[0], Places[Lanes - 1]);
  Vector Sum = {};
  Vector Wings = {};  // a lane for each of eight peaks
  for (std::size_t Peak = 0; Peak < NumPeaks; ++Peak) {
    // At every eighth peak, as long as the next eight are out of reach of all the columns.
    while (Peak % Lanes == 0 && Peak + Lanes <= NumPeaks) {
      Singles F;
      Singles W1;
      Singles W2;
      std::memcpy(&F, Frequency + Peak, sizeof F);
      std::memcpy(&W1, Work1 + Peak, sizeof W1);
      std::memcpy(&W2, Work2 + Peak, sizeof W2);
      const Vector Center = __builtin_convertvector(F, Vector);
      const Vector Above = Center - High;
      const Vector Below = Low - Center;
      const Vector Side = Above > Below ? Above : Below;
      const Vector Gap = Side > 0.0 ? Side : Vector{};
      const Mask Far = Gap * Gap * __builtin_convertvector(W1, Vector) >= GaussianReach;
      std::int64_t AllFar = -1;
      for (std::size_t Lane = 0; Lane < Lanes; ++Lane) AllFar &= Far[Lane];
      if (AllFar == 0) break;
      Wings += __builtin_convertvector(W2, Vector);
      Peak += Lanes;
    }
    if (Peak >= NumPeaks) break;
    const Vector D = X - double{Frequency[Peak]};
    const Vector A = D * D * double{Work1[Peak]};
    const Mask Near = A < GaussianReach;
    const Vector Y = Near ? -A : Vector{};
    const Vector Shifted = Y * InverseLn2 + Rounder;
    const Vector N = Shifted - Rounder;
    const Vector R = (Y - N * Ln2High) - N * Ln2Low;
    Vector P = R * (1.0 / 6227020800.0) + 1.0 / 479001600.0;
    P = P * R + 1.0 / 39916800.0;
    P = P * R + 1.0 / 3628800.0;
    P = P * R + 1.0 / 362880.0;
    P = P * R + 1.0 / 40320.0;
    P = P * R + 1.0 / 5040.0;
    P = P * R + 1.0 / 720.0;
    P = P * R + 1.0 / 120.0;
    P = P * R + 1.0 / 24.0;
    P = P * R + 1.0 / 6.0;
    P = P * R + 0.5;
    P = P * R + 1.0;
    P = P * R + 1.0;
    // 2^n is made by adding n to the exponent field of P, which lies between 0.7 and 1.42.
    Mask Bits;
    Mask Power;
    std::memcpy(&Bits, &P, sizeof Bits);
    std::memcpy(&Power, &Shifted, sizeof Power);
    Bits += Power << 52;
    Vector Shape;
    std::memcpy(&Shape, &Bits, sizeof Shape);
    Sum += (Near ? Shape : Vector{} + GaussianWing) * double{Work2[Peak]};
  }
  for (std::size_t Lane = 0; Lane < Lanes; ++Lane) Sum += Wings[Lane] * GaussianWing;
  std::memcpy(Sums, &Sum, sizeof Sum);
}

namespace {

using BlockRoutine = void (*)(const Single*, const Single*, const Single*, std::size_t, const Double*, Double*);

void SumBlocks(BlockRoutine Block, const EnvelopePeaks& Peaks, Double Start, Double Step, std::span<Double> Samples) {
  const std::size_t Count = Samples.size();
  if (Count > MostColumns) throw Failure(failures::Subscript);
  alignas(64) Columns Places{};
  FillColumns(Places, Start, Step, Count);
  alignas(64) std::array<Double, Lanes> Sums{};
  for (std::size_t Column = 0; Column < Count; Column += Lanes) {
    Block(Peaks.Frequency.data(), Peaks.Work1.data(), Peaks.Work2.data(), Peaks.Frequency.size(), &Places[Column],
          Sums.data());
    std::copy_n(Sums.begin(), std::min(Lanes, Count - Column), Samples.begin() + static_cast<std::ptrdiff_t>(Column));
  }
}

}  // namespace

void SumLorentzians(const EnvelopePeaks& Peaks, Double Start, Double Step, std::span<Double> Samples) {
  SumBlocks(LorentzianBlock, Peaks, Start, Step, Samples);
}

void SumGaussians(const EnvelopePeaks& Peaks, Double Start, Double Step, std::span<Double> Samples) {
  SumBlocks(GaussianBlock, Peaks, Start, Step, Samples);
}

}  // namespace zelvanor
