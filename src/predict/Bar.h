#pragma once

#include <chrono>

#include "basic/Types.h"

namespace zelvanor::predict {

// The progress bar on a terminal: molecule, count, time left.
struct Bar {
  bool Shown = false;
  Long Total = 0;  // 0: not known
  std::chrono::steady_clock::time_point Start = std::chrono::steady_clock::now();
};

void ShowBar(const Bar& This, Long Done, const Text& Name);
// Makes room for a line of its own.
void ClearBar(const Bar& This);

}  // namespace zelvanor::predict
