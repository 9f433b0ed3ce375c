#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "nmrcalc/input/Molecule.h"

namespace nmrcalc {

// The file nmrparam.in: options, selections, the molecular system as host text.

// What steers a quantum-chemical calculation; the built-in model has no use for it.
struct QuantumOptions {
  std::string Method = "KRDO2";
  int Charge = 0;
  int Multiplicity = 1;
  double ConvergenceLimit = 0.01;
  int IterationLimit = 50;
  bool Accelerate = false;
  bool SpecialExponents = true;
  bool ThreeCenterTerms = false;
  bool DOrbitals = false;
};

struct ParamInput {
  int LogPrintLevel = 0;
  int Frequency = 0;  // MHz, handed through
  bool WantsShielding = false;
  bool WantsTensor = false;
  bool WantsCoupling = false;
  std::vector<std::size_t> NMRAtoms{};      // indices into System.Atoms, in the order of the file
  std::vector<std::size_t> QuantumAtoms{};  // the same; empty: all atoms
  QuantumOptions Quantum{};
  Molecule System{};  // structure perceived
};

// Reads the file. Blanks around "=" and unknown options do no harm. Throws Failure with file, line and reason.
ParamInput ReadParamInput(const std::string& Path, bool NeedsNMRAtoms = true);

// The option LogPrintLevel of the input file, 0 when it is absent. Throws Failure when the file cannot be read.
int ReadLogLevel(const std::string& InputPath);

}  // namespace nmrcalc
