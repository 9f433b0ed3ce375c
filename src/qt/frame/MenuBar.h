#pragma once

#include <QMenuBar>

namespace zelvanor {

// The menu bar from the menu items of the main window.
void BuildMenus(QMenuBar* Bar);

}  // namespace zelvanor
