#pragma once

#include "basic/Types.h"

namespace zelvanor::fuzz {

// The first promise of the program's state that does not hold, in words; empty when all hold. They are those that stand
// after every reader, whether it has succeeded or not: what a flag declares is there, arrays are as long as their
// counts, the program is not busy and no file is open.
Text BrokenPromise();

}  // namespace zelvanor::fuzz
