#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// The commands of the Compute menu: they run the backend as a process of its own, once or twice, and keep the window
// alive while it works.
void mnuComputeNMR_Click();
void mnuComputeSpectra_Click();
void mnuComputeAll_Click();

// Makes the file exist and be empty, so that no earlier result is taken for a new one. Reports its failure.
Flag EmptyResultFile(const Text& Path);
// Blocks the command, not the window, until the process has ended, in whatever way.
void WaitForBackend(Long ProcessId);
// Program and arguments of a stage, "1" or "2"; the log's path is the last one while a log runs.
std::vector<Text> BackendWords(TextView Stage);

}  // namespace zelvanor
