#pragma once

namespace zelvanor {

// The dialog of the reference shieldings.
void BuildReferenceForm();
void mnuSetupReferenceShielding_Click();

}  // namespace zelvanor
