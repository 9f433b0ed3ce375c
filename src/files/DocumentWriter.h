#pragma once

#include "basic/Array.h"
#include "basic/Types.h"

namespace zelvanor {

// Writes the Workspace as a document, in the busy state, and refreshes the view. Reports its failures. A document that
// it replaces is kept beside it (same name with "~") until the new one is whole on the disk.
Flag WriteDocument(const Text& Path);

// The pieces of it. Each writes to the open file and reports its failure; Path is not looked at.
Flag WriteSelections(const Text& Path, Integer FileNumber);
Flag WriteNMRAtomicNumbers(const Text& Path, Integer FileNumber);
Flag WriteShieldingCoupling(const Text& Path, Integer FileNumber);
Flag WriteSpectra(const Text& Path, Integer FileNumber);

// One line "mol m atom a" for each entry.
void WriteEntries(const Array<Integer>& Entries, int Count, Integer FileNumber);

}  // namespace zelvanor
