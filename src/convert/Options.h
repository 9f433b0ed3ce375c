#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor::convert {

extern const char* const Usage;

enum class Work { One, All, List };

struct Options {
  Text Input;     // a file, or "-"
  Text Smiles;    // instead of Input
  Text Output;    // empty for standard output
  Text Source;    // what the output names as its source; empty for the file itself
  Text Messages;  // empty for standard error
  Work Does = Work::One;
  Long Record = 1;
  Long Seconds = 30;  // for a record; 0 for no limit
  bool Flat = false;
  bool Help = false;
  bool Version = false;
};

// Throws a Failure that says what is wrong with the words.
Options ReadOptions(const std::vector<Text>& Words);

}  // namespace zelvanor::convert
