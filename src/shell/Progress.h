#pragma once

#include "basic/Types.h"
#include "platform/Services.h"

namespace zelvanor {

// What a process that the program waits for tells of its work, and whether it is to be given up.
struct ProgressState {
  bool Runs = false;
  bool CancelAsked = false;
  Long Stage = 0;
  Long Step = 0;
  Long Steps = 0;  // 0: nobody knows how many, or the process tells nothing
  Double Seconds = 0;
  Text What;
};

extern ProgressState Progress;

// How a process that was waited for has ended. One that was given up is stopped, with whatever it has started.
struct ProcessEnd {
  bool Cancelled = false;
  ProcessStatus Status;
};

// Waits for a process while the window lives on. At most ten times a second the file that the process writes is looked
// at: one line "STAGE STEP STEPS SECONDS TEXT", or nothing for one that does not tell. The file goes at both ends.
ProcessEnd WaitForProcess(Long ProcessId, const Text& ProgressFile);

// The user gives the running process up; nothing without one.
void AskCancel();
// The next process is given up 0.2 s after its start, where it still runs then.
void AskCancelLater();

}  // namespace zelvanor
