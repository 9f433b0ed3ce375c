#pragma once

namespace zelvanor {

// The dialog that says what computes stage 1: its settings stand in nmrback.ini, which the backend reads. Connects its
// handlers; once, at start-up.
void BuildBackendForm();

void mnuSetupBackend_Click();

}  // namespace zelvanor
