#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "nmrcalc/input/Molecule.h"

namespace nmrcalc {

// The file nmrparam.in: options, selections, the molecular system as host text.

struct ParamInput {
  int LogPrintLevel = 0;
  int Frequency = 0;  // MHz, handed through
  bool WantsShielding = false;
  bool WantsTensor = false;
  bool WantsCoupling = false;
  std::vector<std::size_t> NMRAtoms{};  // indices into System.Atoms, in the order of the file
  Molecule System{};                    // structure perceived
};

// Reads the file. Blanks around "=" and unknown options do no harm. Throws Failure with file, line and reason.
ParamInput ReadParamInput(const std::string& Path);

}  // namespace nmrcalc
