#pragma once

namespace zelvanor {

// File > Report...: asks for a file and writes the report there, in the form that its ending names.
void mnuFileReport_Click();
// Edit > Copy Publication Text.
void mnuEditPublication_Click();

}  // namespace zelvanor
