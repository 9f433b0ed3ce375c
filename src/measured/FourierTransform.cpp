#include "measured/FourierTransform.h"

#include <bit>
#include <numbers>
#include <utility>

#include "basic/Failure.h"

namespace zelvanor {

namespace {

// Bit reversal puts the values where the butterflies of rising length find them.
void Reorder(std::vector<std::complex<Double>>& Values) {
  const std::size_t Count = Values.size();
  std::size_t Mirrored = 0;
  for (std::size_t Place = 1; Place < Count; ++Place) {
    std::size_t Bit = Count >> 1;
    for (; (Mirrored & Bit) != 0; Bit >>= 1) Mirrored ^= Bit;
    Mirrored |= Bit;
    if (Place < Mirrored) std::swap(Values[Place], Values[Mirrored]);
  }
}

}  // namespace

std::size_t PowerOfTwoFor(std::size_t Count) { return std::bit_ceil(Count); }

void Transform(std::vector<std::complex<Double>>& Values, bool Inverse) {
  const std::size_t Count = Values.size();
  if (!std::has_single_bit(Count)) throw Failure("a transform needs a power of two");
  Reorder(Values);
  // One table of roots for all lengths: recurrences would lose digits.
  std::vector<std::complex<Double>> Roots(Count / 2);
  for (std::size_t Place = 0; Place < Roots.size(); ++Place) {
    const Double Angle = 2.0 * std::numbers::pi * static_cast<Double>(Place) / static_cast<Double>(Count);
    Roots[Place] = std::polar(1.0, Inverse ? Angle : -Angle);
  }
  for (std::size_t Length = 2; Length <= Count; Length *= 2) {
    const std::size_t Half = Length / 2;
    const std::size_t Stride = Count / Length;
    for (std::size_t Start = 0; Start < Count; Start += Length) {
      for (std::size_t Place = 0; Place < Half; ++Place) {
        std::complex<Double>& Low = Values[Start + Place];
        std::complex<Double>& High = Values[Start + Place + Half];
        const std::complex<Double>& Root = Roots[Place * Stride];
        const std::complex<Double> Turned(High.real() * Root.real() - High.imag() * Root.imag(),
                                          High.real() * Root.imag() + High.imag() * Root.real());
        High = Low - Turned;
        Low += Turned;
      }
    }
  }
  if (!Inverse) return;
  for (std::complex<Double>& Value : Values) Value /= static_cast<Double>(Count);
}

}  // namespace zelvanor
