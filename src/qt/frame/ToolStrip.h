#pragma once

#include <QWidget>

namespace zelvanor {

// The toolbar: the tool buttons of the main window, in groups.
QWidget* MakeToolStrip(QWidget* Parent);

}  // namespace zelvanor
