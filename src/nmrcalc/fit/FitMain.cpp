#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "basic/Failure.h"
#include "nmrcalc/Command.h"
#include "nmrcalc/fit/Fit.h"
#include "nmrcalc/input/InputText.h"

namespace nmrcalc {
namespace {

StageOutput RunFit(const CommandLine& Command, Log& Report) {
  const FitInput Input = ReadFitInput(InputPath(Command));
  AddToLog(Report, 0,
           "Stage 3: fit of " + std::to_string(Input.Parameters.size()) + " parameters of " +
               std::to_string(Input.System.Sites.size()) + " sites to " + std::to_string(Input.Points.size()) +
               " points");
  const FitResult Result = FitSpectrum(Input, Report);
  AddToLog(Report, 0, "Done: R " + FixedNumber(Result.R, 6));
  return {.Text = FormatFit(Input, Result)};
}

int RunFitCommand(const CommandLine& Command) {
  if (Command.Stage != 3) throw zelvanor::Failure("nmrfit.exe is started by nmrcalc.exe, for stage 3");
  return RunStageCommand(Command, RunFit);
}

}  // namespace
}  // namespace nmrcalc

int main(int ArgumentCount, char** ArgumentTexts) {
  const std::vector<std::string> Arguments(ArgumentTexts + (ArgumentCount > 0 ? 1 : 0), ArgumentTexts + ArgumentCount);
  std::signal(SIGXFSZ, SIG_IGN);  // a limit on the size of files is a failure with a message
  const int ExitCode = nmrcalc::RunProgram(Arguments, nmrcalc::RunFitCommand);
  std::fflush(nullptr);
  std::_Exit(ExitCode);
}
