// What the fuzzer calls. FUZZ_TARGET of the environment names the reader that this run is for.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "fuzz/Harness.h"
#include "fuzz/Targets.h"

namespace zelvanor::fuzz {

namespace {

const Target& ChosenTarget() {
  const char* Name = std::getenv("FUZZ_TARGET");
  const Target* Found = FindTarget(Name == nullptr ? "" : Name);
  if (Found == nullptr) Stop("FUZZ_TARGET names no reader");
  return *Found;
}

}  // namespace

}  // namespace zelvanor::fuzz

// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  static const zelvanor::fuzz::Target& Chosen = zelvanor::fuzz::ChosenTarget();
  Chosen.Try({reinterpret_cast<const char*>(Data), Size});
  return 0;
}
