#pragma once

#include "platform/Services.h"

namespace zelvanor {

void ShowPointer(MousePointer Pointer);

// The plain pointer as long as it lives: a box over a working program is not waiting itself.
struct PlainPointer {
  PlainPointer();
  ~PlainPointer();
  PlainPointer(const PlainPointer&) = delete;
  PlainPointer& operator=(const PlainPointer&) = delete;

  MousePointer Former;
};

}  // namespace zelvanor
