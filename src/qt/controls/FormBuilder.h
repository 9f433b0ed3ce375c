#pragma once

#include <QDialog>

#include "platform/Form.h"

namespace zelvanor {

// The dialog of a form, laid out by its Layout; without one its controls stand in a column, the buttons in a row below.
// Made once, it stays for the life of its parent and follows the form.
QDialog* DialogOf(Form& Target, QWidget* Parent);

// Shows a form's dialog and serves events until the form is hidden.
void RunModalForm(Form& Target);

}  // namespace zelvanor
