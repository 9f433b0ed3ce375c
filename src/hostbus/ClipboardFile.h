#pragma once

#include "basic/Types.h"

namespace zelvanor::hostbus {

// A file that stands for the clipboard where programs run without a display. The environment variable
// ZELVANOR_CLIPBOARD tells its path to both sides of a conversation.

// Empty when no file stands for the clipboard.
Text ClipboardFilePath();
// The file's content; empty when there is no file yet.
Text ReadClipboardFile();
// Replaces the content; throws a Failure when it can't be written.
void WriteClipboardFile(const Text& Value);

}  // namespace zelvanor::hostbus
