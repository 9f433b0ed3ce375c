#pragma once

#include <string>

namespace nmrcalc {

// The log of one run. Lines are gathered and appended to the file before a long computation and at the end; a log that
// cannot be written never disturbs the run.
//
// Level 0: what was asked and how it ended. 1: sizes, methods, costs. 2: every site, atom and number with its origin.
struct Log {
  std::string Path{};  // empty: no log
  int Level = 0;
  std::string Text{};
};

void AddToLog(Log& Report, int Level, const std::string& Text);

// Whether lines of this level are wanted, to spare the work of making them.
bool LogWants(const Log& Report, int Level);

// Appends the lines gathered to the file and forgets them; false when that was not possible.
bool WriteLog(Log& Report);

}  // namespace nmrcalc
