#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// The system as a V2000 mol block up to "M  END": its places in angstrom, each bond once. Throws a Failure beyond 999
// atoms or bonds.
Text BuildMolBlock();

struct AtomCharge {
  int Atom;    // number
  int Charge;  // e
};
// The formal charges that the converter has noted in the host text.
std::vector<AtomCharge> FormalCharges();

// The document's title as the first line of a record: one line, nothing that ends the record.
Text RecordTitle();

}  // namespace zelvanor
