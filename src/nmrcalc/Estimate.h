#pragma once

#include <string>

#include "nmrcalc/Log.h"
#include "nmrcalc/engines/ParamResults.h"

namespace nmrcalc {

// Stage 1: shieldings by the shift model, couplings by path.

// The built-in engine: what is asked for, from the tables of the parameter directory. Throws Failure with file, line
// and reason.
ParamResults Estimate(const ParamInput& Input, const std::string& ParameterDirectory, bool Shieldings, bool Couplings,
                      Log& Report);

}  // namespace nmrcalc
