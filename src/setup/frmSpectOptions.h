#pragma once

namespace zelvanor {

// The options of stage 2, the number of nuclei among them.
void BuildSpectOptionsForm();
void mnuSetupNMRSpect_Click();

}  // namespace zelvanor
