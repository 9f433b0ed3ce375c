#pragma once

#include <vector>

#include "nmrcalc/fit/Fit.h"
#include "nmrcalc/fit/FitModel.h"

namespace nmrcalc {

// By what the variance of a mean of the residual is larger than for points that are independent: 1 + 2 sum of the
// autocorrelation, up to where it is lost in the scatter.
double CorrelationTime(const FitInput& Input, const Eigen::VectorXd& Residual);

// Fills Values and Noise of the result: standard errors and correlations from the changes of the spectrum with all free
// parameters, scale and offset too, at these values, and from the residual. Where neighbouring points of the residual
// go together, as in spectra filled with zeros, there is less to average over, and the errors are the larger.
void EstimateErrors(const FitModel& Model, const std::vector<double>& Values, FitResult& Result);

}  // namespace nmrcalc
