#include "nmrcalc/spins/LinearAlgebra.h"

#include <Eigen/Core>
#include <memory>
#include <string>

#include "basic/Failure.h"
#include "nmrcalc/spins/SmallEigen.h"

extern "C" {
void dsyevd_(const char* Job, const char* Triangle, const int* Size, double* Matrix, const int* Leading, double* Values,
             double* Work, const int* WorkSize, int* WholeWork, const int* WholeWorkSize, int* Info);
void ssyevd_(const char* Job, const char* Triangle, const int* Size, float* Matrix, const int* Leading, float* Values,
             float* Work, const int* WorkSize, int* WholeWork, const int* WholeWorkSize, int* Info);
void dgemm_(const char* LeftForm, const char* RightForm, const int* Rows, const int* Columns, const int* Inner,
            const double* Alpha, const double* Left, const int* LeftLeading, const double* Right,
            const int* RightLeading, const double* Beta, double* Target, const int* TargetLeading);
void sgemm_(const char* LeftForm, const char* RightForm, const int* Rows, const int* Columns, const int* Inner,
            const float* Alpha, const float* Left, const int* LeftLeading, const float* Right, const int* RightLeading,
            const float* Beta, float* Target, const int* TargetLeading);
// Only OpenBLAS has these; with another library they stay null.
#ifdef NMRCALC_OPENBLAS_ARCHIVE
#define NMRCALC_OPTIONAL
#else
#define NMRCALC_OPTIONAL __attribute__((weak))
#endif
void openblas_set_num_threads(int Count) NMRCALC_OPTIONAL;
int openblas_get_parallel(void) NMRCALC_OPTIONAL;
int blas_thread_shutdown_(void) NMRCALC_OPTIONAL;
}

namespace nmrcalc {

namespace {

// A null function is one that the library does not have. Taken through a variable, since the compiler knows that a
// function of an archive is never null and warns of the test.
template <class Function>
bool IsThere(Function* Entry) {
  return Entry != nullptr;
}

// Up to LargestSize rows QR iterations are faster than divide and conquer.
struct SmallSolver {
  bool (*Solve)(float* Matrix, std::size_t Size, float* Eigenvalues) = SolveSmallMatrix;
  std::size_t LargestSize = 63;
};

SmallSolver ChooseSmallSolver() {
#ifdef NMRCALC_AVX2
  if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) {
    return {.Solve = SolveSmallMatrixByAvx2, .LargestSize = 100};
  }
#endif
  return {};
}

template <class Number>
using Multiply = void(const char*, const char*, const int*, const int*, const int*, const Number*, const Number*,
                      const int*, const Number*, const int*, const Number*, Number*, const int*);

// The sizes of a product, Rows x Columns over Inner, as the library counts them.
struct ProductSizes {
  int Rows = 0;
  int Columns = 0;
  int Inner = 0;
};

ProductSizes SizesOf(std::size_t Rows, std::size_t Columns, std::size_t Inner) {
  return {.Rows = static_cast<int>(Rows), .Columns = static_cast<int>(Columns), .Inner = static_cast<int>(Inner)};
}

template <class Number>
void MultiplyLeftTransposed(Multiply<Number> Routine, const Number* Left, const Number* Right, Number* Target,
                            const ProductSizes& Size) {
  const Number One = 1;
  const Number Zero = 0;
  Routine("T", "N", &Size.Rows, &Size.Columns, &Size.Inner, &One, Left, &Size.Inner, Right, &Size.Inner, &Zero, Target,
          &Size.Rows);
}

// Clusters have hundreds of thousands of tiny products, where a call costs more than the work: the library locks its
// memory for each.
template <class Number>
void MultiplyRightTransposed(Multiply<Number> Routine, const Number* Left, const Number* Right, Number* Target,
                             const ProductSizes& Size) {
  constexpr double TinyProduct = 512.0;
  if (double(Size.Rows) * Size.Columns * Size.Inner <= TinyProduct) {
    using Matrix = Eigen::Matrix<Number, Eigen::Dynamic, Eigen::Dynamic>;
    const Eigen::Map<const Matrix> First(Left, Size.Rows, Size.Inner);
    const Eigen::Map<const Matrix> Second(Right, Size.Columns, Size.Inner);
    Eigen::Map<Matrix>(Target, Size.Rows, Size.Columns).noalias() = First.lazyProduct(Second.transpose());
    return;
  }
  const Number One = 1;
  const Number Zero = 0;
  Routine("N", "T", &Size.Rows, &Size.Columns, &Size.Inner, &One, Left, &Size.Rows, Right, &Size.Columns, &Zero, Target,
          &Size.Rows);
}

[[noreturn]] void ThrowNoConvergence(std::size_t Size) {
  throw zelvanor::Failure("The eigenvalues of a block of " + std::to_string(Size) + " states did not converge");
}

template <class Number>
using Solve = void(const char*, const char*, const int*, Number*, const int*, Number*, Number*, const int*, int*,
                   const int*, int*);

template <class Number>
void Diagonalize(Solve<Number> Routine, std::vector<Number>& Matrix, std::size_t Size,
                 std::vector<Number>& Eigenvalues) {
  Eigenvalues.resize(Size);
  if (Size == 1) {
    Eigenvalues[0] = Matrix[0];
    Matrix[0] = 1;
    return;
  }
  const std::size_t Needed = 1 + 6 * Size + 2 * Size * Size;
  if (Size > LargestMatrix) {
    throw zelvanor::Failure("A block of " + std::to_string(Size) + " states is too large for the linear algebra");
  }
  const int Order = static_cast<int>(Size);
  const int WorkSize = static_cast<int>(Needed);
  const int WholeWorkSize = 3 + 5 * Order;
  const auto Work = std::make_unique_for_overwrite<Number[]>(Needed);
  const auto WholeWork = std::make_unique_for_overwrite<int[]>(static_cast<std::size_t>(WholeWorkSize));
  int Info = 0;
  Routine("V", "L", &Order, Matrix.data(), &Order, Eigenvalues.data(), Work.get(), &WorkSize, WholeWork.get(),
          &WholeWorkSize, &Info);
  if (Info != 0) ThrowNoConvergence(Size);
}

}  // namespace

void UseOneLibraryThread() {
  if (IsThere(openblas_set_num_threads)) openblas_set_num_threads(1);
  // The threads made at the start would spin for some hundredths of a second, on the cores that we need.
  if (IsThere(blas_thread_shutdown_)) blas_thread_shutdown_();
}

bool LibraryTakesThreads() { return IsThere(openblas_get_parallel) && openblas_get_parallel() != 0; }

void DiagonalizeSymmetric(std::vector<double>& Matrix, std::size_t Size, std::vector<double>& Eigenvalues) {
  Diagonalize(dsyevd_, Matrix, Size, Eigenvalues);
}

void DiagonalizeSymmetric(std::vector<float>& Matrix, std::size_t Size, std::vector<float>& Eigenvalues) {
  static const SmallSolver Small = ChooseSmallSolver();
  if (Size > Small.LargestSize) {
    Diagonalize(ssyevd_, Matrix, Size, Eigenvalues);
    return;
  }
  Eigenvalues.resize(Size);
  if (!Small.Solve(Matrix.data(), Size, Eigenvalues.data())) ThrowNoConvergence(Size);
}

void MultiplyTransposed(const double* Left, const double* Right, double* Target, std::size_t Rows, std::size_t Columns,
                        std::size_t Inner) {
  MultiplyLeftTransposed(dgemm_, Left, Right, Target, SizesOf(Rows, Columns, Inner));
}

void MultiplyTransposed(const float* Left, const float* Right, float* Target, std::size_t Rows, std::size_t Columns,
                        std::size_t Inner) {
  MultiplyLeftTransposed(sgemm_, Left, Right, Target, SizesOf(Rows, Columns, Inner));
}

void MultiplyByTransposed(const double* Left, const double* Right, double* Target, std::size_t Rows,
                          std::size_t Columns, std::size_t Inner) {
  MultiplyRightTransposed(dgemm_, Left, Right, Target, SizesOf(Rows, Columns, Inner));
}

void MultiplyByTransposed(const float* Left, const float* Right, float* Target, std::size_t Rows, std::size_t Columns,
                          std::size_t Inner) {
  MultiplyRightTransposed(sgemm_, Left, Right, Target, SizesOf(Rows, Columns, Inner));
}

}  // namespace nmrcalc
