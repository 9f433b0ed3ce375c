#pragma once

namespace zelvanor {

// The dialog that processes the measured spectrum: apodisation, phase, baseline, reference. Once, at start-up.
void BuildProcessForm();

void mnuMeasuredProcess_Click();

}  // namespace zelvanor
