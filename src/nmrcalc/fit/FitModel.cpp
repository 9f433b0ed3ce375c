#include "nmrcalc/fit/FitModel.h"

#include <algorithm>
#include <cmath>

#include "basic/Failure.h"

namespace nmrcalc {

namespace {

constexpr int ClusterLevel = 7;

Eigen::VectorXd WindowOf(const FitModel& Model, std::vector<double> Samples, double Blur) {
  for (std::size_t K = 0; K < Samples.size(); ++K) {
    if (!Model.Input.Counts[K]) Samples[K] = 0.0;
  }
  BlurValues(Samples, Model.Input.StepHz, Blur);
  return Eigen::Map<Eigen::VectorXd>(Samples.data(), static_cast<Eigen::Index>(Samples.size()));
}

LineDirection DirectionOf(const FitModel& Model, std::size_t Parameter) {
  LineDirection Direction{.Pairs = Model.Input.Parameters[Parameter].Pairs};
  for (const std::size_t Site : Model.Input.Parameters[Parameter].Sites) {
    Direction.Offsets.emplace_back(Site, Model.Input.System.Field);
  }
  return Direction;
}

// The columns that scale and offset multiply, and which of the two may move.
struct LinearPart {
  Eigen::MatrixXd Columns{};  // of the free ones
  std::vector<std::size_t> Parameters{};
};

// Sets the values of scale and offset that fit best, within their bounds; returns what is left to follow the others.
// Blurred signals that do not meet would be taken for a hollow baseline: there the offset stays on the ground.
LinearPart FollowLinear(const FitModel& Model, const Eigen::VectorXd& Shape, const Eigen::VectorXd& Ones,
                        const Eigen::VectorXd& Measured, bool HoldsGround, std::vector<double>& Values) {
  const FitParameter& Offset = Model.Input.Parameters[Model.Offset];
  if (HoldsGround && Offset.IsFree) Values[Model.Offset] = std::clamp(Model.Ground, Offset.Low, Offset.High);
  const auto ColumnOf = [&](std::size_t Parameter) -> const Eigen::VectorXd& {
    return Parameter == Model.Scale ? Shape : Ones;
  };
  LinearPart Result;
  for (const std::size_t Each : {Model.Scale, Model.Offset}) {
    if (Each == Model.Offset && HoldsGround) continue;
    if (Model.Input.Parameters[Each].IsFree) Result.Parameters.push_back(Each);
  }
  while (!Result.Parameters.empty()) {
    const auto NumFree = static_cast<Eigen::Index>(Result.Parameters.size());
    Result.Columns.resize(Shape.size(), NumFree);
    Eigen::VectorXd Rest = Measured;
    for (const std::size_t Each : {Model.Scale, Model.Offset}) {
      const auto Place = std::find(Result.Parameters.begin(), Result.Parameters.end(), Each);
      if (Place == Result.Parameters.end()) {
        Rest -= Values[Each] * ColumnOf(Each);
      } else {
        Result.Columns.col(Place - Result.Parameters.begin()) = ColumnOf(Each);
      }
    }
    const Eigen::VectorXd Best = Result.Columns.colPivHouseholderQr().solve(Rest);
    bool IsWithin = true;
    for (Eigen::Index K = NumFree - 1; K >= 0; --K) {
      const std::size_t Each = Result.Parameters[static_cast<std::size_t>(K)];
      const FitParameter& Parameter = Model.Input.Parameters[Each];
      Values[Each] = std::clamp(Best(K), Parameter.Low, Parameter.High);
      if (Values[Each] == Best(K)) continue;
      IsWithin = false;
      Result.Parameters.erase(Result.Parameters.begin() + K);
    }
    if (IsWithin) return Result;
  }
  Result.Columns.resize(Shape.size(), 0);
  return Result;
}

}  // namespace

bool IsLinear(FitKind Kind) { return Kind == FitKind::Scale || Kind == FitKind::Offset; }

FitModel MakeFitModel(const FitInput& Input) {
  FitModel Model{.Input = Input, .Parts = PlanLineParts(Input.System), .Level = ClusterLevel};
  if (Model.Parts.empty()) throw zelvanor::Failure("There is no observed nucleus: all shifts are out of range");
  Model.Axis = MakeLineAxis(Input.FirstHz, Input.StepHz, Input.Points.size());
  std::vector<double> Points;
  for (std::size_t K = 0; K < Input.Points.size(); ++K) {
    if (Input.Counts[K]) Points.push_back(Input.Points[K]);
  }
  if (Points.empty()) throw zelvanor::Failure("There is no measured point in the windows");
  std::sort(Points.begin(), Points.end());
  if (!(Points.back() > Points.front())) throw zelvanor::Failure("The measured spectrum is flat in the windows");
  Model.Largest = Points.back() - Points.front();
  Model.Ground = Points[Points.size() / 4];
  for (std::size_t K = 0; K < Input.Parameters.size(); ++K) {
    if (Input.Parameters[K].Kind == FitKind::Width) Model.Width = K;
    if (Input.Parameters[K].Kind == FitKind::Gauss) Model.Gauss = K;
    if (Input.Parameters[K].Kind == FitKind::Scale) Model.Scale = K;
    if (Input.Parameters[K].Kind == FitKind::Offset) Model.Offset = K;
  }
  return Model;
}

FitPoint EvaluateFit(const FitModel& Model, std::vector<double> Values, const std::vector<std::size_t>& Active,
                     double Blur, bool Follows) {
  std::vector<LineDirection> Directions;
  for (const std::size_t Each : Active) {
    const FitKind Kind = Model.Input.Parameters[Each].Kind;
    if (Kind == FitKind::Shift || Kind == FitKind::Coupling) Directions.push_back(DirectionOf(Model, Each));
  }
  const SpectrumInput System = SystemWith(Model.Input, Values);
  const LineNodes Nodes = ComputeLines(System, Model.Parts, Directions, Model.Level, Model.Axis);
  const LineShape Shape{.Lorentz = Values[Model.Width], .Gauss = Values[Model.Gauss]};
  const auto Factors = FactorsOf(Model.Axis, Shape);
  const auto ShapeOf = [&](const std::vector<double>& Lines, const std::vector<double>& By) {
    return WindowOf(Model, ShapeLines(Model.Axis, Lines, By), Blur);
  };
  const Eigen::VectorXd Simulated = ShapeOf(Nodes.Lines, Factors);
  const Eigen::VectorXd Measured = WindowOf(Model, Model.Input.Points, Blur);
  const Eigen::VectorXd Ones = WindowOf(Model, std::vector<double>(Model.Input.Points.size(), 1.0), Blur);
  LinearPart Linear;
  if (Follows) Linear = FollowLinear(Model, Simulated, Ones, Measured, Blur > 0.0, Values);
  FitPoint Result{.Values = Values};
  Result.Residual = (Values[Model.Scale] * Simulated + Values[Model.Offset] * Ones - Measured) / Model.Largest;
  Result.Measured = Measured / Model.Largest;
  Result.Changes.resize(Simulated.size(), static_cast<Eigen::Index>(Active.size()));
  std::size_t Direction = 0;
  for (std::size_t K = 0; K < Active.size(); ++K) {
    const auto Column = static_cast<Eigen::Index>(K);
    const double Unit = Values[Model.Scale] / Model.Largest;
    switch (Model.Input.Parameters[Active[K]].Kind) {
      case FitKind::Shift:
      case FitKind::Coupling:
        Result.Changes.col(Column) = Unit * ShapeOf(Nodes.Changes[Direction++], Factors);
        break;
      case FitKind::Width:
        Result.Changes.col(Column) = Unit * ShapeOf(Nodes.Lines, FactorsOf(Model.Axis, Shape, ShapePart::ByLorentz));
        break;
      case FitKind::Gauss:
        Result.Changes.col(Column) = Unit * ShapeOf(Nodes.Lines, FactorsOf(Model.Axis, Shape, ShapePart::ByGauss));
        break;
      case FitKind::Scale:
        Result.Changes.col(Column) = Simulated / Model.Largest;
        break;
      case FitKind::Offset:
        Result.Changes.col(Column) = Ones / Model.Largest;
        break;
    }
  }
  if (Linear.Columns.cols() > 0 && !Active.empty()) {
    Result.Changes -= Linear.Columns * Linear.Columns.colPivHouseholderQr().solve(Result.Changes);
  }
  return Result;
}

std::vector<double> SimulateFit(const FitModel& Model, const std::vector<double>& Values) {
  const LineNodes Nodes = ComputeLines(SystemWith(Model.Input, Values), Model.Parts, {}, Model.Level, Model.Axis);
  std::vector<double> Samples = ShapeLines(
      Model.Axis, Nodes.Lines, FactorsOf(Model.Axis, {.Lorentz = Values[Model.Width], .Gauss = Values[Model.Gauss]}));
  for (double& Value : Samples) Value = Values[Model.Scale] * Value + Values[Model.Offset];
  return Samples;
}

}  // namespace nmrcalc
