#pragma once

namespace zelvanor {

// The options of stage 1 and the way to the atom set dialogs. It edits the Workspace at once and restores it on Cancel.
void BuildParamOptionsForm();
void mnuSetupNMRParam_Click();

}  // namespace zelvanor
