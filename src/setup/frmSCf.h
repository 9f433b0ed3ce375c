#pragma once

namespace zelvanor {

// The options of the wave function, on top of the options of stage 1.
void BuildSCFForm();
// Opens it with the multiplicity fixed at 1.
void ShowSCFOptions();

}  // namespace zelvanor
