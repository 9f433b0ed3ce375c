#pragma once

#include <memory>

#include "convert/Records.h"
#include "convert/Structure.h"

namespace zelvanor::convert {

// The chemistry toolkit: what reads MDL molecules and SMILES, adds hydrogens and makes places. All throw a Failure.

// Its own warnings go nowhere from now on.
void SilenceToolkit();

// A record as a whole molecule: with hydrogens, places, orders and charges. Flat gives a drawing instead: no hydrogens
// are added, and the places lie in a plane.
Structure ConvertRecord(FileKind Kind, const Record& Given, bool Flat);

// What a list shows of a record: its formula, hydrogens that are implied among it. Empty where it can't be told.
Text FormulaOfRecord(FileKind Kind, const Record& Given);

}  // namespace zelvanor::convert
