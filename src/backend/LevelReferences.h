#pragma once

namespace zelvanor {

// References of the level that has computed the shieldings, from the file beside the results of stage 1; without such a
// file the user's own are in force.
void TakeLevelReferences();

// The section of the document that says which references of which level it holds; once, at start-up.
void AddLevelReferencesSection();

}  // namespace zelvanor
