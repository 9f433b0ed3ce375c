#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Gives a user of an installed program what it needs, before the settings are read. Where there is no win.ini at all,
// it makes one that names the installed directories, a working directory under the user's data, and nmr.ini with the
// installed defaults under the user's settings, to which a link leads from the working directory.
//
// Nothing that is there is written over. A win.ini with FollowInstallation=Yes, as the one made here has it, is looked
// after at later starts: directories of a program that has moved are named anew, and what has gone is made again.
//
// Does nothing where $ZELVANOR_WIN_INI is set, and for a program that is not installed: one without its data directory
// at its place. Returns what the user has to be told when something can't be made; empty for nothing.
Text PrepareUserFiles();

}  // namespace zelvanor
