#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Makes what a text stands for the document, the question about unsaved work coming first: a SMILES, perhaps with a
// name behind a blank, the records of a molecule file, or the path or address of a file, which is opened.
void PasteText(const Text& Given);

// The same for the clipboard.
void mnuPaste_Click();

}  // namespace zelvanor
