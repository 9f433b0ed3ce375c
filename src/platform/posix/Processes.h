#pragma once

#include <vector>

#include "platform/Services.h"

namespace zelvanor {

// Starts the program named by the first word, with the other words as its arguments, whatever stands in them: no shell
// is between. Its input is empty and its output dropped. Should the program that starts it die, in whatever way, the
// process goes with all of its group. Returns the process id; throws a Failure when the program can't be started.
Long StartProcess(const std::vector<Text>& Words);

// A handle is the process id itself; 0 when no such process was started here or it has been waited for already.
Long OpenStartedProcess(Long ProcessId);
// Takes the process off the table once it has ended, and ends what it has left running of its own process group: a
// result that came later would be taken for that of another run. One that a signal ended has 128 + the signal's number.
ProcessStatus QueryProcess(Long Handle);

// Ends a process that still runs, with all of its group.
void StopProcess(Long Handle);

// Ends the process started last, where it still runs, with all of its group. Safe in a signal handler.
void StopRunningProcess();

}  // namespace zelvanor
