#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "nmrcalc/Command.h"

int main(int ArgumentCount, char** ArgumentTexts) {
  const std::vector<std::string> Arguments(ArgumentTexts + (ArgumentCount > 0 ? 1 : 0), ArgumentTexts + ArgumentCount);
  // A limit on the size of files is a failure with a message, as a full disk is.
  std::signal(SIGXFSZ, SIG_IGN);
  const int ExitCode = nmrcalc::RunProgram(Arguments);
  // All files are closed. The libraries' leave-taking would take longer than a small spectrum.
  std::fflush(nullptr);
  std::_Exit(ExitCode);
}
