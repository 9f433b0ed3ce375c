#pragma once

#include "basic/Types.h"

namespace zelvanor {

// "Replace Selection": one number for all selected cells of the table that is shown.
void BuildReplaceForm();
void mnuReplace_Click();

// -1 if cells were changed. In the coupling table the mirror cells change as well.
Flag ReplaceSelectedCells(Double Value);

}  // namespace zelvanor
