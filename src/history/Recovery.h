#pragma once

#include <functional>
#include <optional>

#include "basic/Types.h"

namespace zelvanor {

// Unsaved work is kept in the user's state directory, so that a crash or a power cut loses little. Each run has files
// of its own, "work-PROCESS.NMR" with the document and "work-PROCESS.txt" with its names, and holds a lock on the
// second one for as long as it lives: what nobody holds was left behind by a run that did not end.

// From now on this run keeps its work. Write writes the document to a file, without a message; false: it could not.
void UseRecovery(std::function<bool(const Text& Path)> Write);
// Keeps unsaved work that is not kept yet, and drops what has been saved meanwhile.
void KeepWork();
// The same once a minute; to be called whenever nothing else is to be done.
void KeepWorkAtTimes();
// A clean end: nothing stays behind.
void DropKeptWork();

// Work that a run has left behind, the newest first.
struct LeftWork {
  Text File;  // a document
  Text Names;
  Text DocumentTitle;
  Text DocumentPath;
  Text HostTextPath;
  Text ZMatrixPath;
};
std::optional<LeftWork> FindLeftWork();
void DropLeftWork(const LeftWork& Left);

}  // namespace zelvanor
