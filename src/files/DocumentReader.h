#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Reads a document into an empty Workspace. Reports its failures; what was read until then stays, with the flags that
// were set. Closes the file in all cases.
Flag ReadDocument(const Text& Path);

// The pieces of it. Each works on the open file, reports its failures, where it names Path, and leaves the file
// behind its section.
Flag ReadHostBlock(Integer FileNumber);
Flag ReadSelections(const Text& Path, Integer FileNumber);
Flag ReadOptions(const Text& Path, Integer FileNumber);
Flag ReadNMRAtomicNumbers(const Text& Path, Integer FileNumber);
Flag ReadShieldingCoupling(const Text& Path, Integer FileNumber);
Flag ReadSpectra(const Text& Path, Integer FileNumber);

// The warning for a line that an option or a list of values can't be read from.
void WarnOfLine(TextView Line, const Text& Path);

}  // namespace zelvanor
