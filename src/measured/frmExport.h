#pragma once

namespace zelvanor {

// The dialog that writes what is shown for other programs. Once, at start-up.
void BuildExportForm();

void mnuFileExport_Click();

}  // namespace zelvanor
