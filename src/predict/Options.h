#pragma once

#include <vector>

#include "onestep/Nuclei.h"

namespace zelvanor::predict {

extern const char* const Usage;

struct Input {
  Text Path;    // a file, or "-"
  Text Smiles;  // instead of Path
};

struct Options {
  std::vector<Input> Inputs;  // in the order of the command line
  const Nucleus* Observed = nullptr;
  Long MHz = 0;  // of the observed nucleus
  bool Quantum = false;
  Text Folder = ".";
  std::vector<Text> Formats;
  Double Width = 1;  // Hz
  int Jobs = 1;
  bool Resume = false;
  Long FirstRecord = 1, LastRecord = 0;  // 0: to the end
  Long Seconds = 600;                    // for a molecule; 0 no limit
  bool Json = false, Quiet = false, Help = false, Version = false;
};

// Throws a Failure that says what is wrong with the words.
Options ReadOptions(const std::vector<Text>& Words);

}  // namespace zelvanor::predict
