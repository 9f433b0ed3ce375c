// What the fuzzer calls; FUZZ_TARGET names the target that this program is for.

#include <cstddef>
#include <cstdint>

#include "fuzz/Targets.h"

// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  zelvanor::fuzz::FUZZ_TARGET.Read({reinterpret_cast<const char*>(Data), Size});
  return 0;
}
