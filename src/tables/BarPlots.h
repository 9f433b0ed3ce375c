#pragma once

#include "platform/Grid.h"

namespace zelvanor {

// The selected cells of a table become the chart's data: a set for each selected row, a point for each selected column.
// 1 when the selection is too small, which has been told; 0 when the data stand.
int PlotTableSelection();
int PlotValuesSelection(GridControl& Grid);

void mnuView2DBar_Click();
void mnuView3DBar_Click();
// The Plot button of the values dialog, whose table it is.
void PlotValues(GridControl& Grid);

}  // namespace zelvanor
