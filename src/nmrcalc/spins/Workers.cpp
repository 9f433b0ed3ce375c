#include "nmrcalc/spins/Workers.h"

#include <algorithm>

#include "nmrcalc/spins/LinearAlgebra.h"

namespace nmrcalc {

std::size_t NumUsableCores() {
  if (!LibraryTakesThreads()) return 1;
  return std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, 64);
}

}  // namespace nmrcalc
