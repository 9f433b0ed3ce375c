#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Where a user's files stand by the XDG base directory rules. A directory that is not given by a full path counts as
// not given, and the defaults lie in $HOME, or without it in the home of the user table.

// Empty for a variable that is not set.
Text Environment(const char* Name);

// Without a separator at the end; empty where the user has no home at all.
Text ConfigFolder();  // settings of all programs
Text DataFolder();    // their data
Text StateFolder();   // what they keep between sessions and a user would not miss

// The user's own win.ini, whether it is there or not.
Text OwnWinIni();
// $ZELVANOR_WIN_INI, else the user's own win.ini, else the first one in the system's directories, else where the user's
// own would be.
Text FindWinIni();

}  // namespace zelvanor
