#pragma once

#include <optional>
#include <vector>

#include "hostsim/SimulatedHost.h"

namespace zelvanor::morvantis_sim {

struct Options {
  Text File;
  std::optional<Text> Method;
  std::vector<hostsim::NamedSelection> Selections;
  hostsim::AtomList Current;
  std::vector<Text> Refused;
  std::vector<std::pair<Text, Text>> Answers;  // item, answer
  Text DieAt;                                  // the beginning of the command or item at which the process ends
  Text HangAt;                                 // ... at which it stops answering
  std::vector<Text> Start;                     // the words of a program to start; empty for none
  bool Log = false;
  bool Help = false;
};

// Throws a Failure that says what is wrong with the words.
Options ReadOptions(const std::vector<Text>& Words);

extern const char* const Usage;

}  // namespace zelvanor::morvantis_sim
