#pragma once

#include <cstddef>
#include <vector>

namespace nmrcalc {

// Dense real matrices by LAPACK and BLAS, column-major. The library's own threads are switched off: the program runs
// one thread of its own for each core, and two layers of threads would fight for the same cores.

void UseOneLibraryThread();

// Whether several threads may call the library at once. False for OpenBLAS without threads, whose eigenvalue routines
// keep work arrays of their own between calls and then give wrong numbers without a word, and for unknown libraries.
bool LibraryTakesThreads();

// The largest matrix whose workspace the library can count, with its whole numbers of 32 bits.
inline constexpr std::size_t LargestMatrix = 32766;

// Eigenvalues (rising) of the symmetric Size x Size matrix; Matrix is replaced by the eigenvectors, one a column.
// Divide and conquer, with a workspace of 2 Size^2 numbers. Throws Failure when it does not converge.
void DiagonalizeSymmetric(std::vector<double>& Matrix, std::size_t Size, std::vector<double>& Eigenvalues);
// The same to 1e-7 of the largest eigenvalue, in half to two thirds of the time.
void DiagonalizeSymmetric(std::vector<float>& Matrix, std::size_t Size, std::vector<float>& Eigenvalues);

// Target (Rows x Columns) = transpose of Left (Inner x Rows) times Right (Inner x Columns).
void MultiplyTransposed(const double* Left, const double* Right, double* Target, std::size_t Rows, std::size_t Columns,
                        std::size_t Inner);
void MultiplyTransposed(const float* Left, const float* Right, float* Target, std::size_t Rows, std::size_t Columns,
                        std::size_t Inner);

// Target (Rows x Columns) = Left (Rows x Inner) times the transpose of Right (Columns x Inner). Fast for tiny ones too.
void MultiplyByTransposed(const double* Left, const double* Right, double* Target, std::size_t Rows,
                          std::size_t Columns, std::size_t Inner);
void MultiplyByTransposed(const float* Left, const float* Right, float* Target, std::size_t Rows, std::size_t Columns,
                          std::size_t Inner);

}  // namespace nmrcalc
