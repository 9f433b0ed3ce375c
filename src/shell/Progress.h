#pragma once

#include "basic/Types.h"

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

// A process starts, and has ended; between the two FollowProgress looks at the file that it writes, at most ten times a
// second: one line "STAGE STEP STEPS SECONDS TEXT". The file goes at both ends.
void BeginProgress(const Text& File);
void FollowProgress();
void EndProgress();

// The user gives the running process up; nothing without one.
void AskCancel();
// The next process is given up 0.2 s after its start, where it still runs then.
void AskCancelLater();

}  // namespace zelvanor
