#pragma once

#include <functional>

#include "basic/Types.h"

namespace zelvanor::convert {

struct Outcome {
  Text Output;
  Text Problem;  // empty where all went well
};

// Does a piece of work in a process of its own, which dies with this one, and gives what it returns. What it throws, a
// crash, a lack of memory and work of more than Seconds (0: no limit) are problems in one line.
Outcome DoApart(const std::function<Text()>& Work, Long Seconds);

}  // namespace zelvanor::convert
