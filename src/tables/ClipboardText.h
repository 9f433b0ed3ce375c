#pragma once

#include "platform/Grid.h"

namespace zelvanor {

// The selected cells of a table as text for a spreadsheet, with the table's own headers around them: tabs between
// cells, CR LF between lines. Failures are told; the result is always -1.
Flag CopyTableSelection();                    // of the main window's table
Flag CopyValuesSelection(GridControl& Grid);  // of the values dialog's

void mnuCopy_Click();

}  // namespace zelvanor
