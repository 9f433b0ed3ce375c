#pragma once

namespace zelvanor {

// The choice of NMR atoms by element. It only records what was chosen.
void BuildElementChoiceForm();
void ShowElementChoice();

}  // namespace zelvanor
