#pragma once

#include <string>
#include <vector>

#include "nmrcalc/Log.h"

namespace nmrcalc {

// The command line: PARAMETER-DIRECTORY WORK-DIRECTORY STAGE [LOG-FILE], STAGE being 1 to 4.

struct CommandLine {
  std::string ParameterDirectory;
  std::string WorkDirectory;
  int Stage = 0;
  std::string LogPath;  // empty: no log
};

// Arguments without the program's name. Throws Failure with the usage.
CommandLine ParseCommandLine(const std::vector<std::string>& Arguments);

// Runs the stage: input file of the work directory to its output file. The output is written whole, at the end; a
// failure stands on its first line behind "ERRMSG: ". The return value is the exit code: 0, or 1 after a failure.
int RunCommand(const CommandLine& Command);

// What a stage writes: its output file and, where it has more to tell, another file beside it.
struct StageOutput {
  std::string Text{};
  std::string Map{};
};
// Does the work of a stage, from its input file on. Throws Failure.
using StageRoutine = StageOutput (*)(const CommandLine& Command, Log& Report);
std::string InputPath(const CommandLine& Command);

// The same by this routine, for a program that has one stage only.
int RunStageCommand(const CommandLine& Command, StageRoutine Routine);

// The whole program: parses, runs, tells a bad command line on the standard error (exit code 2).
int RunProgram(const std::vector<std::string>& Arguments, int (*Run)(const CommandLine&) = RunCommand);

}  // namespace nmrcalc
