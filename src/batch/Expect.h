#pragma once

#include "batch/Batch.h"

namespace zelvanor::batch {

// The command expect in all its forms. A difference prints a FAIL line and ends the script, unless it keeps going.
void Expect(const std::vector<Argument>& All);

}  // namespace zelvanor::batch
