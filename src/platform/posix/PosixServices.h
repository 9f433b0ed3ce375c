#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Fills the slots of Platform that are the same in every front end: processes, directories, regional number format,
// instance lock. Interactive slots get answers that need nobody: no file is chosen, no host answers.
void UsePosixServices();

// For the program's own main: SIGTERM, SIGINT and SIGHUP end the program as ever, but a file that is being replaced is
// completed first and a running calculation is ended too. A write beyond a limit on file sizes, or into a pipe that
// nobody reads, fails instead of ending the program.
void TakeEndSignals();

// Whether a process started by Shell still runs; a front end's DoEvents may then wait a little.
bool AnyProcessRuns();

}  // namespace zelvanor
