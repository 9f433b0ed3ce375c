#pragma once

#include <cstddef>

namespace nmrcalc {

// Eigenvalues (rising) of a small symmetric matrix in single precision, column-major; Matrix is replaced by the
// eigenvectors, one a column. By QR iterations. False when they do not converge.
//
// Once for every processor, and once for those that have AVX2 and FMA: it is half of the work of a long chain, and runs
// almost twice as fast there. Both come from the same source.
bool SolveSmallMatrix(float* Matrix, std::size_t Size, float* Eigenvalues);
bool SolveSmallMatrixByAvx2(float* Matrix, std::size_t Size, float* Eigenvalues);

}  // namespace nmrcalc
