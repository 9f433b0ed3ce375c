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

struct ParamTexts {
  std::string Results{};  // nmrparam.out
  std::string Errors{};   // nmrparam.err; empty when there are none
};

// Reads the input file and, from the parameter directory, nmr_shft.net, nmr_shft.abp and nmr_cupl.abp. Only what the
// options ask for is computed, the rest of the numbers are 0. Throws Failure with file, line and reason.
ParamTexts EstimateParameters(const std::string& InputPath, const std::string& ParameterDirectory, Log& Report);

// The option LogPrintLevel of the input file, 0 when it is absent. Throws Failure when the file cannot be read.
int ReadLogLevel(const std::string& InputPath);

}  // namespace nmrcalc
