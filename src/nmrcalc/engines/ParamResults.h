#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "nmrcalc/input/ParamInput.h"
#include "nmrcalc/shifts/Tensor.h"

namespace nmrcalc {

// What an engine of stage 1 computes. An engine fills what it was asked for; the rest keeps its zeros.
struct ParamResults {
  std::string Description{};               // the first line of nmrparam.out: what the numbers are
  std::vector<double> Shieldings{};        // ppm, one for each NMR atom
  std::vector<ShieldingTensor> Tensors{};  // as the shieldings, or empty
  std::vector<double> Couplings{};         // Hz, NMR atoms x NMR atoms
  std::vector<double> Errors{};            // ppm, one for each NMR atom, 0 unknown; or empty
  std::string Level{};                     // level of theory that References belong to; empty for the built-in model
  std::map<int, double> References{};      // ppm by atomic number
};

// Room for the NMR atoms, all zero.
ParamResults EmptyResults(const ParamInput& Input);

// The text of nmrparam.err: an error bar a line, empty when the engine knows none.
std::string FormatErrors(const ParamResults& Results);

// The text of nmrparam.out.
std::string FormatResults(const ParamInput& Input, const ParamResults& Results);

}  // namespace nmrcalc
