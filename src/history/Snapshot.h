#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "workspace/Workspace.h"

namespace zelvanor {

// An array's bytes in pieces; pieces that did not change are those of the snapshot before.
struct SharedArray {
  static constexpr std::size_t PieceBytes = std::size_t{16} << 10;

  int UpperRow = 0;
  int UpperColumn = -1;  // -1: one dimension
  std::size_t Bytes = 0;
  std::vector<std::shared_ptr<const std::vector<std::byte>>> Pieces;
};

// The document at one moment. What is small is a plain copy; the arrays that grow with the system are shared.
struct Snapshot {
  WorkspaceState Rest;  // its large arrays are empty
  std::vector<std::shared_ptr<const SharedArray>> Arrays;
  std::size_t OwnBytes = 0;  // of pieces that no snapshot had before
};

// The Workspace as it is. Former gives what can be shared; it may be null. Throws Failure or bad_alloc.
std::shared_ptr<Snapshot> TakeSnapshot(const Snapshot* Former);
// Whether the document is what it was, wherever it stands and whether it is saved or not.
bool IsUnchanged(const Snapshot& Before);
// Puts the document back; the view and the log stay. Throws Failure or bad_alloc, and nothing has
// changed then.
void RestoreSnapshot(const Snapshot& Kept);

}  // namespace zelvanor
