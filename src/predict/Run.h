#pragma once

#include "predict/Options.h"

namespace zelvanor::predict {

enum ExitStatus { AllWell = 0, SomeFailed = 1, CannotRun = 2, Interrupted = 130 };

// The whole run. Throws a Failure where it can't begin.
ExitStatus RunAll(const Options& Given);

}  // namespace zelvanor::predict
