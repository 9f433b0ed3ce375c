#pragma once

namespace zelvanor {

void BuildSmilesForm();

// Asks for a SMILES and makes its molecule the document.
void mnuFileNewSmiles_Click();

}  // namespace zelvanor
