#pragma once

#include <QLabel>

namespace zelvanor {

// What stands in the middle of the work area where no view covers it: what to do next, or what has been loaded.
QLabel* MakeWorkHint(QWidget* Parent);
void ShowWorkHint(QLabel* Hint);

}  // namespace zelvanor
