#pragma once

#include <functional>

#include "basic/Types.h"

namespace zelvanor {

// The commands of the Compute menu: they run the backend as a process of its own, once or twice, and keep the window
// alive while it works.
void mnuComputeNMR_Click();
void mnuComputeSpectra_Click();
void mnuComputeAll_Click();

// Runs the first stage, and the second where Stages is 2, without a question; Between runs when the results of the
// first are there. The number of stages that are done; what went wrong has been shown.
int ComputeStages(int Stages, const std::function<void()>& Between);

// Makes the file exist and be empty, so that no earlier result is taken for a new one. Reports its failure.
Flag EmptyResultFile(const Text& Path);
// Blocks the command, not the window, until the process has ended, in whatever way. False: the user has given it up.
bool WaitForBackend(Long ProcessId);
// The command line of a stage, "1" or "2"; it ends in a blank when no log runs.
Text BackendCommandLine(TextView Stage);

}  // namespace zelvanor
