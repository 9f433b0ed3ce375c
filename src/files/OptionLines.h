#pragma once

#include "basic/Types.h"

namespace zelvanor {

// The calculation options as lines "key = value", the same in a document and in the input of stage 1.

// Writes the 14 lines to an open file. Reports its failure; Path is not looked at.
Flag WriteOptionLines(const Text& Path, Integer FileNumber);

// Takes one value over into its option. False when there is no such key; throws a Failure for a bad number.
bool TakeOption(TextView Key, const Text& Value);

}  // namespace zelvanor
