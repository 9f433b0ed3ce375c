#pragma once

namespace zelvanor {

// Makes the main window's variables known by name.
void AddShellVariables();

}  // namespace zelvanor
