#pragma once

namespace zelvanor {

// While one lives, a signal that ends the program waits: what is being replaced on the disk is not left half.
struct EndHeld {
  EndHeld();
  ~EndHeld();
  EndHeld(const EndHeld&) = delete;
  EndHeld& operator=(const EndHeld&) = delete;
};

}  // namespace zelvanor
