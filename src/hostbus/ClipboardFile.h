#pragma once

#include "basic/Types.h"

namespace zelvanor::hostbus {

// A file that stands for the clipboard between two programs that run without a display. The environment variable
// ZELVANOR_CLIPBOARD tells its path to both; without it, it stands in the user's runtime directory.

// Whether the environment names the file: it then stands for the clipboard even where there is a display.
bool IsClipboardFileNamed();
// The file's content; empty when there is no file yet.
Text ReadClipboardFile();
// Replaces the content; throws a Failure when it can't be written.
void WriteClipboardFile(const Text& Value);

}  // namespace zelvanor::hostbus
