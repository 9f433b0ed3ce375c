#pragma once

#include "basic/Types.h"

namespace zelvanor::batch {

// The ending of a path in upper case, with its dot; empty for none.
Text EndingOf(const Text& Path);
// Makes a file of this content. Throws ScriptStop where it can't be written.
void WriteText(const Text& Path, const Text& Content);

}  // namespace zelvanor::batch
