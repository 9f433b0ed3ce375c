#pragma once

#include <QWidget>

#include "platform/Form.h"
#include "platform/Services.h"

namespace zelvanor {

// Opens the manual in a window of its own, which dialogs leave open to use. Without a manual, or with a contents list
// that makes no sense, the status line says so.
void ShowHelpWindow(const Text& File, HelpCommand Command, int Context);

// F1 in a form's window opens the page of the form, in another window that with a number.
void AddHelpKey(QWidget* Window, const Form& Target);
void AddHelpKey(QWidget* Window, int Context);

}  // namespace zelvanor
