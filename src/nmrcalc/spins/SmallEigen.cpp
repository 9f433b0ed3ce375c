// Compiled twice. The library's routines are templates: under one name the linker would keep one of the two copies, and
// it might be the one that not every processor can run.
#ifdef NMRCALC_COMPILES_AVX2
#define Eigen EigenForAvx2
#define SolveSmallMatrix SolveSmallMatrixByAvx2
#endif

#include "nmrcalc/spins/SmallEigen.h"

#include <Eigen/Eigenvalues>

namespace nmrcalc {

bool SolveSmallMatrix(float* Matrix, std::size_t Size, float* Eigenvalues) {
  const auto Order = static_cast<Eigen::Index>(Size);
  Eigen::Map<Eigen::MatrixXf> Target(Matrix, Order, Order);
  const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXf> Solver(Target);
  if (Solver.info() != Eigen::Success) return false;
  Eigen::Map<Eigen::VectorXf>(Eigenvalues, Order) = Solver.eigenvalues();
  Target = Solver.eigenvectors();
  return true;
}

}  // namespace nmrcalc
