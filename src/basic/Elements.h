#pragma once

#include "basic/Types.h"

namespace zelvanor {

// The symbol of an element: 0 is the lone pair "Lp", 1 to 103 are "H" to "Lr", every other number is "??".
Text ElementSymbol(int Number);
// The number of a symbol, without case, 0..128; -1 when there is none. "??" is 104.
Integer ElementNumber(TextView Symbol);
inline constexpr int LargestElement = 128;

}  // namespace zelvanor
