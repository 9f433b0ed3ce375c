#pragma once

#include <Eigen/Dense>
#include <cstddef>
#include <vector>

#include "nmrcalc/fit/FitInput.h"
#include "nmrcalc/fit/ModelLines.h"

namespace nmrcalc {

// The simulated spectrum as a function of the parameters, beside the measured one. Scale and offset come into it
// linearly: they are found for each set of the others, and the changes of the others are those that are left when both
// follow (L. Kaufman, BIT 15 (1975) 49).

struct FitModel {
  const FitInput& Input;
  std::vector<LinePart> Parts{};
  int Level = 0;  // of clusters
  LineAxis Axis{};
  double Ground = 0.0;    // about where the baseline stands
  double Largest = 1.0;   // of the measured points that count; residuals are in its units
  std::size_t Width = 0;  // places in Input.Parameters
  std::size_t Gauss = 0;
  std::size_t Scale = 0;
  std::size_t Offset = 0;
};

// Throws Failure where no point counts or all that do are alike.
FitModel MakeFitModel(const FitInput& Input);

bool IsLinear(FitKind Kind);

// The spectrum at some values. Points that do not count are 0 in all of it.
struct FitPoint {
  std::vector<double> Values{};  // with the scale and the offset that fit best
  Eigen::VectorXd Residual{};    // simulated less measured, in units of Largest
  Eigen::VectorXd Measured{};    // in units of Largest, blurred alike
  Eigen::MatrixXd Changes{};     // of the residual, by the parameters in Active
};

// Active are places in Input.Parameters of those that are neither scale nor offset. Blur is in Hz, 0 for none. Where
// Follows is false scale and offset stay as they stand in Values, and Active may name them.
FitPoint EvaluateFit(const FitModel& Model, std::vector<double> Values, const std::vector<std::size_t>& Active,
                     double Blur, bool Follows = true);

// The simulated spectrum at all measured points, in their units.
std::vector<double> SimulateFit(const FitModel& Model, const std::vector<double>& Values);

}  // namespace nmrcalc
