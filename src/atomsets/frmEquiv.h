#pragma once

namespace zelvanor {

// The dialog of the equivalent sets: ten sets, one in view, in a copy that OK takes over.
void BuildEquivalentForm();
void ShowEquivalentSets();

}  // namespace zelvanor
