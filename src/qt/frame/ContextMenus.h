#pragma once

namespace zelvanor {

// Menus of the most used commands on table, molecule and spectrum: by the menu key, and by the right button where a
// click of it means nothing else (not while atoms are selected, nor in a zoomed spectrum, which it shows whole).
void AddContextMenus();

}  // namespace zelvanor
