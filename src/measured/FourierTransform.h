#pragma once

#include <complex>
#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// The discrete Fourier transform in place, X[k] = sum over n of x[n] exp(-2 pi i k n / N), and with Inverse its
// inverse, divided by N. N is a power of two; throws a Failure for another one.
void Transform(std::vector<std::complex<Double>>& Values, bool Inverse);

// The least power of two that is not below Count.
std::size_t PowerOfTwoFor(std::size_t Count);

}  // namespace zelvanor
