#pragma once

namespace zelvanor {

// The log belongs to the calculation: these commands only name its file, which every run of the backend is given.
void mnuStartLog_Click();
void mnuStopLog_Click();

}  // namespace zelvanor
