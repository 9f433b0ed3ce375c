#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Fills the slots of Platform that are the same in every front end: processes, directories, regional number format,
// instance lock. Interactive slots get answers that need nobody: no file is chosen, no host answers.
void UsePosixServices();

// Whether a process started by Shell still runs; a front end's DoEvents may then wait a little.
bool AnyProcessRuns();

}  // namespace zelvanor
