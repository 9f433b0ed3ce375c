#include "nmrcalc/fit/Fit.h"

#include <ceres/ceres.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <random>

#include "basic/Failure.h"
#include "nmrcalc/Progress.h"
#include "nmrcalc/fit/FitErrors.h"
#include "nmrcalc/fit/FitModel.h"
#include "nmrcalc/input/InputText.h"

namespace nmrcalc {

namespace {

// Blurred further than this, in Hz, a spectrum does not tell a coupling, or a width.
constexpr double CouplingBlur = 20.0;
constexpr double WidthBlur = 5.0;
// Blurred, a spectrum tells little of a coupling: 1 Hz from its start counts as this share of the residual.
constexpr double HoldShare = 0.1;
constexpr long MostWithClusters = 100;  // free parameters; more would take hours
constexpr int StepsWhileBlurred = 12;
constexpr int StepsAtLast = 60;

struct Search {
  std::vector<double> Start{};
  std::vector<double> Values{};
  double Cost = 0.0;
  int Steps = 0;
  bool Converged = false;
};

// One comparison: at this blur, of these parameters.
class Comparison : public ceres::CostFunction {
 public:
  Comparison(const FitModel& Model, const Search& State, std::vector<std::size_t> Active, double Blur, double Hold)
      : OwnModel(Model), OwnState(State), OwnActive(std::move(Active)), OwnBlur(Blur), OwnHold(Hold) {
    set_num_residuals(static_cast<int>(Model.Input.Points.size() + OwnActive.size()));
    mutable_parameter_block_sizes()->push_back(static_cast<int>(OwnActive.size()));
  }

  bool Evaluate(double const* const* Parameters, double* Residuals, double** Jacobians) const override {
    std::vector<double> Values = OwnState.Values;
    for (std::size_t K = 0; K < OwnActive.size(); ++K) Values[OwnActive[K]] = Parameters[0][K];
    const bool WantsChanges = Jacobians != nullptr && Jacobians[0] != nullptr;
    const FitPoint Point =
        EvaluateFit(OwnModel, std::move(Values), WantsChanges ? OwnActive : std::vector<std::size_t>(), OwnBlur);
    std::copy_n(Point.Residual.data(), Point.Residual.size(), Residuals);
    const Eigen::Index NumPoints = Point.Residual.size();
    for (std::size_t K = 0; K < OwnActive.size(); ++K) {
      Residuals[NumPoints + static_cast<Eigen::Index>(K)] =
          HoldOf(K) * (Parameters[0][K] - OwnState.Start[OwnActive[K]]);
    }
    if (WantsChanges) {
      using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
      Eigen::Map<RowMajor> Target(Jacobians[0], num_residuals(), Point.Changes.cols());
      Target.topRows(NumPoints) = Point.Changes;
      Target.bottomRows(Point.Changes.cols()).setZero();
      for (std::size_t K = 0; K < OwnActive.size(); ++K) {
        Target(NumPoints + static_cast<Eigen::Index>(K), static_cast<Eigen::Index>(K)) = HoldOf(K);
      }
    }
    return true;
  }

 private:
  double HoldOf(std::size_t Place) const {
    return OwnModel.Input.Parameters[OwnActive[Place]].Kind == FitKind::Coupling ? OwnHold : 0.0;
  }

  const FitModel& OwnModel;
  Search OwnState;
  std::vector<std::size_t> OwnActive;
  double OwnBlur;
  double OwnHold;
};

// Tells each step to whoever waits.
class Teller : public ceres::IterationCallback {
 public:
  Teller(int& Steps, double Whole, double Blur) : OwnSteps(Steps), OwnWhole(Whole), OwnBlur(Blur) {}
  ceres::CallbackReturnType operator()(const ceres::IterationSummary& Summary) override {
    ++OwnSteps;
    std::string Text = "residual " + FixedNumber(100.0 * std::sqrt(2.0 * Summary.cost / OwnWhole), 2) + " percent";
    if (OwnBlur > 0.0) Text += ", blurred by " + FixedNumber(OwnBlur, 1) + " Hz";
    ReportProgress(OwnSteps, 0, Text);
    return ceres::SOLVER_CONTINUE;
  }

 private:
  int& OwnSteps;
  double OwnWhole;
  double OwnBlur;
};

std::vector<std::size_t> ActiveAt(const FitInput& Input, double Blur) {
  std::vector<std::size_t> Active;
  for (std::size_t K = 0; K < Input.Parameters.size(); ++K) {
    const FitParameter& Each = Input.Parameters[K];
    if (!Each.IsFree || IsLinear(Each.Kind)) continue;
    if (Each.Kind == FitKind::Coupling && Blur > CouplingBlur) continue;
    if ((Each.Kind == FitKind::Width || Each.Kind == FitKind::Gauss) && Blur > WidthBlur) continue;
    Active.push_back(K);
  }
  return Active;
}

void RunComparison(const FitModel& Model, double Blur, Search& State) {
  const std::vector<std::size_t> Active = ActiveAt(Model.Input, Blur);
  if (!Active.empty()) {
    std::vector<double> Block;
    Block.reserve(Active.size());
    for (const std::size_t Each : Active) Block.push_back(State.Values[Each]);
    ceres::Problem Problem;
    const FitPoint Before = EvaluateFit(Model, State.Values, {}, Blur);
    const double Hold = Blur > 0.0 ? HoldShare * Before.Residual.norm() : 0.0;
    Problem.AddResidualBlock(new Comparison(Model, State, Active, Blur, Hold), nullptr, Block.data());
    for (std::size_t K = 0; K < Active.size(); ++K) {
      const FitParameter& Each = Model.Input.Parameters[Active[K]];
      Problem.SetParameterLowerBound(Block.data(), static_cast<int>(K), Each.Low);
      Problem.SetParameterUpperBound(Block.data(), static_cast<int>(K), Each.High);
    }
    Teller Tell(State.Steps, Before.Measured.squaredNorm(), Blur);
    ceres::Solver::Options Options;
    Options.linear_solver_type = ceres::DENSE_QR;
    Options.logging_type = ceres::SILENT;
    Options.max_num_iterations = Blur > 0.0 ? StepsWhileBlurred : StepsAtLast;
    Options.function_tolerance = Blur > 0.0 ? 1e-3 : 1e-7;
    Options.callbacks.push_back(&Tell);
    ceres::Solver::Summary Summary;
    ceres::Solve(Options, &Problem, &Summary);
    if (!Summary.IsSolutionUsable()) throw zelvanor::Failure("The fit does not converge: " + Summary.message);
    for (std::size_t K = 0; K < Active.size(); ++K) State.Values[Active[K]] = Block[K];
    State.Converged = Summary.termination_type == ceres::CONVERGENCE;
  } else {
    State.Converged = true;
  }
  const FitPoint Point = EvaluateFit(Model, State.Values, {}, Blur);
  State.Values = Point.Values;
  State.Cost = Point.Residual.squaredNorm();
}

// First blurred, so that signals that stand beside one another meet, then sharper and sharper.
Search RunSearch(const FitModel& Model, const std::vector<double>& Start, double Broadening) {
  Search State{.Start = Start, .Values = Start};
  const double Narrow = std::max(2.0 * Model.Input.StepHz, 1.5 * Start[Model.Width]);
  double Blur = Broadening;
  while (Blur > Narrow) {
    RunComparison(Model, Blur, State);
    Blur *= 0.5;
  }
  RunComparison(Model, 0.0, State);
  return State;
}

// The parameter of a site's shift; none for one that stays where it is.
std::size_t ShiftOf(const FitInput& Input, std::size_t Site) {
  const auto Found = std::find_if(Input.Parameters.begin(), Input.Parameters.end(), [Site](const FitParameter& Each) {
    return std::find(Each.Sites.begin(), Each.Sites.end(), Site) != Each.Sites.end();
  });
  return static_cast<std::size_t>(Found - Input.Parameters.begin());
}

// Free couplings between sites of one shift. A spectrum of pairs such as AA'BB' hardly tells which of two of them is
// which, and what signs they have, so that a search may end at the wrong one.
std::vector<std::size_t> FindInnerCouplings(const FitInput& Input) {
  std::vector<std::size_t> Inner;
  for (std::size_t K = 0; K < Input.Parameters.size(); ++K) {
    const FitParameter& Each = Input.Parameters[K];
    if (!Each.IsFree || Each.Kind != FitKind::Coupling) continue;
    const std::size_t Shift = ShiftOf(Input, Each.Pairs.front().first);
    if (Shift < Input.Parameters.size() && Shift == ShiftOf(Input, Each.Pairs.front().second)) Inner.push_back(K);
  }
  return Inner;
}

// Other places from where to search: with two inner couplings exchanged, or one turned about.
std::vector<std::vector<double>> FindMirrors(const FitInput& Input, const std::vector<double>& Values) {
  std::vector<std::vector<double>> Mirrors;
  const std::vector<std::size_t> Inner = FindInnerCouplings(Input);
  for (std::size_t K = 0; K < Inner.size(); ++K) {
    for (std::size_t Other = 0; Other <= K; ++Other) {
      Mirrors.push_back(Values);
      double& First = Mirrors.back()[Inner[K]];
      double& Second = Mirrors.back()[Inner[Other]];
      if (Other == K)
        First = -First;
      else
        std::swap(First, Second);
    }
  }
  return Mirrors;
}

// The values with each free coupling to one side of where it began, in the ways that fit best, the best one first.
std::vector<std::vector<double>> ScatterCouplings(const FitModel& Model, const std::vector<double>& Start,
                                                  const std::vector<double>& Values, double Blur) {
  constexpr double Aside = 2.0;             // Hz
  constexpr std::size_t MostCouplings = 6;  // of which all combinations are tried; others by chance
  constexpr std::size_t MostKept = 6;
  std::vector<std::size_t> Couplings;
  for (std::size_t K = 0; K < Values.size(); ++K) {
    const FitParameter& Each = Model.Input.Parameters[K];
    if (Each.IsFree && Each.Kind == FitKind::Coupling) Couplings.push_back(K);
  }
  struct Ranked {
    double Cost;
    std::vector<double> Values;
  };
  std::vector<Ranked> All;
  std::mt19937 Random(1);
  const unsigned NumSides = 1U << std::min(Couplings.size(), MostCouplings);
  for (unsigned Sides = 0; Sides < NumSides; ++Sides) {
    const unsigned Chosen = Couplings.size() <= MostCouplings ? Sides : static_cast<unsigned>(Random());
    std::vector<double> Moved = Values;
    for (std::size_t K = 0; K < Couplings.size(); ++K) {
      const FitParameter& Each = Model.Input.Parameters[Couplings[K]];
      const double Side = (Chosen >> (K % 32) & 1U) != 0 ? Aside : -Aside;
      Moved[Couplings[K]] = std::clamp(Start[Couplings[K]] + Side, Each.Low, Each.High);
    }
    All.push_back({EvaluateFit(Model, Moved, {}, Blur).Residual.squaredNorm(), Moved});
  }
  std::stable_sort(All.begin(), All.end(), [](const Ranked& A, const Ranked& B) { return A.Cost < B.Cost; });
  std::vector<std::vector<double>> Kept;
  for (std::size_t K = 0; K < std::min(MostKept, All.size()); ++K) Kept.push_back(std::move(All[K].Values));
  return Kept;
}

void KeepBetter(const FitModel& Model, std::vector<double> Start, double Blur, Search& Best) {
  for (std::size_t K = 0; K < Start.size(); ++K) {
    Start[K] = std::clamp(Start[K], Model.Input.Parameters[K].Low, Model.Input.Parameters[K].High);
  }
  Search Other = RunSearch(Model, Start, Blur);
  Other.Steps += Best.Steps;
  // What is no more than chance leaves the values where they are nearer to their start.
  constexpr double Significant = 9.0;  // of chi squared
  const auto NumPoints = double(std::count(Model.Input.Counts.begin(), Model.Input.Counts.end(), true));
  const double Times = CorrelationTime(Model.Input, EvaluateFit(Model, Best.Values, {}, 0.0).Residual);
  if (Other.Cost < Best.Cost * (1.0 - std::min(0.5, Significant * Times / NumPoints)))
    Best = std::move(Other);
  else
    Best.Steps = Other.Steps;
}

// What a single search may miss. Where the residual is no more than noise nothing is left to be found.
void SearchFurther(const FitModel& Model, const std::vector<double>& Start, Search& Best) {
  constexpr double TrialBlur = 3.0;    // Hz
  constexpr double NoiseAlone = 2.0;   // correlation time in points
  constexpr double LongestTime = 5.0;  // s
  const auto Began = std::chrono::steady_clock::now();
  const auto IsOver = [Began] {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - Began).count() > LongestTime;
  };
  const auto IsDone = [&] {
    return IsOver() || CorrelationTime(Model.Input, EvaluateFit(Model, Best.Values, {}, 0.0).Residual) < NoiseAlone;
  };
  if (!IsDone()) {
    for (const auto& Other : ScatterCouplings(Model, Start, Best.Values, TrialBlur)) {
      KeepBetter(Model, Other, TrialBlur, Best);
      if (IsDone()) break;
    }
  }
  for (const auto& Mirror : FindMirrors(Model.Input, Best.Values)) {
    if (!IsOver()) KeepBetter(Model, Mirror, 0.0, Best);
  }
}

std::vector<double> StartValues(const FitInput& Input) {
  std::vector<double> Values;
  for (const FitParameter& Each : Input.Parameters) {
    double Start = Each.Start;
    // Spins without any coupling are computed apart; a free coupling must not begin so.
    constexpr double Seed = 0.02;  // Hz
    if (Each.Kind == FitKind::Coupling && Each.IsFree && Start == 0.0) Start = Each.High > Seed ? Seed : -Seed;
    Values.push_back(std::clamp(Start, Each.Low, Each.High));
  }
  return Values;
}

double CorrelationOf(const FitInput& Input, const std::vector<double>& Simulated) {
  double Sums[5] = {};
  double Count = 0.0;
  for (std::size_t K = 0; K < Simulated.size(); ++K) {
    if (!Input.Counts[K]) continue;
    const double X = Simulated[K];
    const double Y = Input.Points[K];
    Count += 1.0;
    Sums[0] += X;
    Sums[1] += Y;
    Sums[2] += X * X;
    Sums[3] += Y * Y;
    Sums[4] += X * Y;
  }
  const double Below = (Sums[2] - Sums[0] * Sums[0] / Count) * (Sums[3] - Sums[1] * Sums[1] / Count);
  return Below > 0.0 ? (Sums[4] - Sums[0] * Sums[1] / Count) / std::sqrt(Below) : 0.0;
}

void CheckFreedom(const FitInput& Input) {
  const auto NumFree = std::count_if(Input.Parameters.begin(), Input.Parameters.end(),
                                     [](const FitParameter& Each) { return Each.IsFree && !IsLinear(Each.Kind); });
  if (NumFree == 0) throw zelvanor::Failure("No shift, coupling or width is free: there is nothing to fit");
  const auto NumPoints = std::count(Input.Counts.begin(), Input.Counts.end(), true);
  if (NumPoints == 0) throw zelvanor::Failure("There is no measured point in the windows");
  if (NumPoints <= NumFree + 2) {
    throw zelvanor::Failure("There are " + std::to_string(NumFree) + " free parameters, and only " +
                            std::to_string(NumPoints) + " measured points in the windows");
  }
}

}  // namespace

FitResult FitSpectrum(const FitInput& Input, Log& Report) {
  CheckFreedom(Input);
  FitInput Seeded = Input;
  const std::vector<double> Start = StartValues(Input);
  Seeded.System = SystemWith(Input, Start);
  const FitModel Model = MakeFitModel(Seeded);
  const auto NumFree = std::count_if(Input.Parameters.begin(), Input.Parameters.end(),
                                     [](const FitParameter& Each) { return Each.IsFree; });
  if (AnyCut(Model.Parts) && NumFree > MostWithClusters) {
    throw zelvanor::Failure("There are too many spins: " + std::to_string(NumFree) +
                            " values are free, and a system that is as large as this can have " +
                            std::to_string(MostWithClusters) + "; fix some, or fit in a smaller window");
  }
  Search Found = RunSearch(Model, Start, Input.Broadening);
  if (!AnyCut(Model.Parts)) SearchFurther(Model, Start, Found);
  AddToLog(Report, 1, std::to_string(Found.Steps) + " steps");
  FitResult Result{.Steps = Found.Steps, .Converged = Found.Converged, .IsCut = AnyCut(Model.Parts)};
  Result.Simulated = SimulateFit(Model, Found.Values);
  Result.R = CorrelationOf(Input, Result.Simulated);
  EstimateErrors(Model, Found.Values, Result);
  return Result;
}

}  // namespace nmrcalc
