#pragma once

#include <functional>
#include <vector>

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

// Computes the spectrum without a question about its size; what went wrong has been shown.
bool ComputeSpectrum();
// Runs the third stage, the fit, once Prepare has written its input. False: Prepare has refused, the backend does not
// start, or the user has given it up; nothing has changed then.
bool ComputeFit(const std::function<bool()>& Prepare);

// Makes the file exist and be empty, so that no earlier result is taken for a new one. Reports its failure.
Flag EmptyResultFile(const Text& Path);
// Blocks the command, not the window, until the process has ended, in whatever way. False: the user has given it up.
bool WaitForBackend(Long ProcessId);
// Program and arguments of a stage, as "1", that works in this folder; the log's path is the last one while a log runs.
std::vector<Text> BackendWords(TextView Stage, const Text& Folder);

}  // namespace zelvanor
