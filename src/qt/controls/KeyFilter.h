#pragma once

#include <QWidget>

#include "platform/Form.h"

namespace zelvanor {

// Shows every key that goes to a form's window to the form's KeyDown first; a key that it takes goes no further, not to
// shortcuts, menus or the widget with the focus. Lives as long as the window.
void InstallKeyFilter(QWidget* Window, Form& Target);

// The program's number of a key: of letters and digits their capital's character, of other keys the classic number.
// 0 for a key without one.
int KeyCodeOf(int QtKey);

}  // namespace zelvanor
