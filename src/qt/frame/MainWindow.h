#pragma once

#include <QMainWindow>
#include <memory>

namespace zelvanor {

// The main window: menu bar, and a work area in which the program itself places tool strip, views, scroll bars and
// status line. Its inner size is frmNMR's. It is made hidden, with the geometry of the last session, and appears when
// the program makes frmNMR visible. Measures that come from fonts and style are given to the program here, so it has
// to be made before the start-up routine runs.
std::unique_ptr<QMainWindow> MakeMainWindow();

// The window that boxes and dialogs belong to: the dialog on top, or the main window when it is shown. May be null.
QWidget* TopWindow();

}  // namespace zelvanor
