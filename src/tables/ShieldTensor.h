#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Lays the shielding tensors out in the values dialog's table, three columns for each NMR atom; -1 when the table
// stands, 0 when it could not be filled, which has been told then.
Flag ShowShieldTensor();

}  // namespace zelvanor
