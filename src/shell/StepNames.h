#pragma once

#include "basic/Types.h"
#include "platform/Controls.h"

namespace zelvanor {

// The name of the undo step that a command makes: that of the table, else its caption; empty where it makes none.
Text StepNameOf(const MenuItem& Item);

}  // namespace zelvanor
