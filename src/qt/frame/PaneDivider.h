#pragma once

#include <QWidget>

namespace zelvanor {

// The bar between the spectrum and the molecule beside it: dragged, or moved by the left and right keys, it gives the
// pane another share of the window. PlacePaneDivider puts it where the pane is, or hides it.
QWidget* MakePaneDivider(QWidget* WorkArea);
void PlacePaneDivider(QWidget* Divider);

}  // namespace zelvanor
