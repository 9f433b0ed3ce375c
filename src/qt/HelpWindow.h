#pragma once

#include "platform/Services.h"

namespace zelvanor {

// Opens the help file in a window beside the main one; without such a file the status line says so.
void ShowHelpWindow(const Text& File, HelpCommand Command);

}  // namespace zelvanor
