#include "nmrcalc/fit/FitErrors.h"

#include <algorithm>
#include <cmath>

namespace nmrcalc {

namespace {

constexpr double Undetermined = 1e-12;  // eigenvalue of the matrix of correlations below which a value is not told

}  // namespace

double CorrelationTime(const FitInput& Input, const Eigen::VectorXd& Residual) {
  const double Whole = Residual.squaredNorm();
  const auto NumPoints = static_cast<double>(std::count(Input.Counts.begin(), Input.Counts.end(), true));
  if (!(Whole > 0.0)) return 1.0;
  double Sum = 1.0;
  for (Eigen::Index Lag = 1; Lag < Residual.size() / 4; ++Lag) {
    const double Own = Residual.head(Residual.size() - Lag).dot(Residual.tail(Residual.size() - Lag)) / Whole;
    if (Own < 2.0 / std::sqrt(NumPoints)) break;
    Sum += 2.0 * Own;
  }
  return Sum;
}

void EstimateErrors(const FitModel& Model, const std::vector<double>& Values, FitResult& Result) {
  const FitInput& Input = Model.Input;
  std::vector<std::size_t> Free;
  Result.Values.resize(Values.size());
  for (std::size_t K = 0; K < Values.size(); ++K) {
    const FitParameter& Each = Input.Parameters[K];
    Result.Values[K] = {.Value = Values[K], .Partner = K};
    if (!Each.IsFree) continue;
    Free.push_back(K);
    const auto Meets = [&](double Bound) {
      constexpr double Near = 1e-9;
      return std::fabs(Values[K] - Bound) <= Near * std::max(1.0, std::fabs(Bound));
    };
    Result.Values[K].IsAtBound = Meets(Each.Low) || Meets(Each.High);
  }
  const FitPoint Point = EvaluateFit(Model, Values, Free, 0.0, false);
  const auto NumPoints = static_cast<double>(std::count(Input.Counts.begin(), Input.Counts.end(), true));
  const double Variance = Point.Residual.squaredNorm() / (NumPoints - double(Free.size()));
  Result.Noise = std::sqrt(Variance) * Model.Largest;
  Eigen::MatrixXd Normal = Point.Changes.transpose() * Point.Changes;
  const Eigen::VectorXd Lengths = Normal.diagonal().cwiseSqrt();
  for (Eigen::Index I = 0; I < Normal.rows(); ++I) {
    for (Eigen::Index K = 0; K < Normal.cols(); ++K) {
      const double Length = Lengths(I) * Lengths(K);
      Normal(I, K) = Length > 0.0 ? Normal(I, K) / Length : (I == K ? 0.0 : Normal(I, K));
    }
  }
  const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> Solver(Normal);
  const Eigen::VectorXd Inverse =
      Solver.eigenvalues().unaryExpr([](double Value) { return 1.0 / std::max(Value, Undetermined); });
  const Eigen::MatrixXd Covariance = Solver.eigenvectors() * Inverse.asDiagonal() * Solver.eigenvectors().transpose();
  const double Factor = Variance * CorrelationTime(Input, Point.Residual);
  for (std::size_t K = 0; K < Free.size(); ++K) {
    const auto Row = static_cast<Eigen::Index>(K);
    FittedValue& Own = Result.Values[Free[K]];
    const bool IsTold = Lengths(Row) > 0.0 && Covariance(Row, Row) < 0.01 / Undetermined;
    Own.Error = IsTold ? std::sqrt(Factor * Covariance(Row, Row)) / Lengths(Row) : -1.0;
    for (std::size_t Other = 0; Other < Free.size() && IsTold; ++Other) {
      const auto Column = static_cast<Eigen::Index>(Other);
      if (Other == K || !(Lengths(Column) > 0.0)) continue;
      const double Value = Covariance(Row, Column) / std::sqrt(Covariance(Row, Row) * Covariance(Column, Column));
      if (std::fabs(Value) <= std::fabs(Own.Correlation)) continue;
      Own.Correlation = Value;
      Own.Partner = Free[Other];
    }
  }
}

}  // namespace nmrcalc
