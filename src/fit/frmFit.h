#pragma once

namespace zelvanor {

// The dialog that chooses what is fitted to the measured spectrum and shows what came out. Once, at start-up.
void BuildFitForm();

void mnuComputeFit_Click();

}  // namespace zelvanor
