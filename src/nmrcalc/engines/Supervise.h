#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace nmrcalc {

// Running a program that starts others, on this machine or through a launcher on many, so that nothing of it is left
// when it ends, is cancelled, or this process dies, however that happens.
//
// A keeper process stands between: it leads a session of its own, adopts every process below it whose parent ends, and
// holds the other end of a pipe that closes when this process is gone.

struct ProgramRun {
  std::vector<std::string> Words{};  // program and arguments; the program is looked for as a shell does
  std::string Directory{};           // where it runs
  std::string OutputPath{};          // takes its standard output and error
  std::vector<std::pair<std::string, std::string>> Environment{};  // set unless they are set already
  std::vector<std::pair<std::string, std::string>> Files{};        // path and text, written before the start
  std::vector<std::string> Remove{};  // directories that go with the run, even if this process is gone before
  double TimeLimit = 0.0;             // seconds; 0: none
};

enum class RunEnd { Ended, NotStarted, TimedOut, Cancelled };

struct RunOutcome {
  RunEnd End = RunEnd::NotStarted;
  int ExitCode = 0;       // of a program that ended by itself
  int Signal = 0;         // that ended it, else 0
  std::string Problem{};  // why it could not start
  double Seconds = 0.0;
};

// From SIGTERM or SIGINT to the last process gone: GraceSeconds for the program to end by itself and KillSeconds more.
inline constexpr double GraceSeconds = 1.2;
inline constexpr double KillSeconds = 1.2;

// Runs the program to its end. Watch is called with the seconds gone, some five times a second.
// SIGTERM and SIGINT, and the end of the process that started this one, cancel the run. Finish, which may throw, is
// called once with the outcome, when no process of the run is left and before its directories go. Throws Failure for a
// file that cannot be written.
void RunSupervised(const ProgramRun& Run, const std::function<void(double)>& Watch,
                   const std::function<void(const RunOutcome&)>& Finish);

// The path of a program as a shell would find it; empty when there is none.
std::string FindProgram(const std::string& Name);

}  // namespace nmrcalc
