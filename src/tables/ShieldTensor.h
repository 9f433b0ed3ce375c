#pragma once

#include "platform/Grid.h"

namespace zelvanor {

// Lays the shielding tensors out in a table, that of the values dialog, three columns for each NMR atom; -1 when the
// table stands, 0 when it could not be filled, which has been told then.
Flag ShowShieldTensor(GridControl& Grid);

}  // namespace zelvanor
