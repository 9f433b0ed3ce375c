#pragma once

#include "basic/Types.h"

// All readers under test, one a line; the build and ./fuzz take the names from here. Try and the name is the routine
// that takes one input through the reader and all that stands behind it, and stops the process where a promise is
// broken. It returns whether the reader has taken the input: the verdict of the seeds' names.
#define FUZZ_TARGETS(TARGET) \
  TARGET(BackendParam)       \
  TARGET(BackendSpect)       \
  TARGET(BackendTables)      \
  TARGET(Document)           \
  TARGET(FitInput)           \
  TARGET(FitResults)         \
  TARGET(HostText)           \
  TARGET(MeasuredFile)       \
  TARGET(MeasuredFolder)     \
  TARGET(MoleculeFile)       \
  TARGET(NmreData)           \
  TARGET(ParamResults)       \
  TARGET(PeakMap)            \
  TARGET(Profile)            \
  TARGET(Script)             \
  TARGET(Settings)           \
  TARGET(SpectResults)       \
  TARGET(TypeFile)           \
  TARGET(TypeRules)          \
  TARGET(ZMatrix)

namespace zelvanor::fuzz {

struct Target {
  const char* Name;
  bool (*Try)(TextView Input);
};

#define DECLARE_TARGET(NAME) bool Try##NAME(TextView Input);
FUZZ_TARGETS(DECLARE_TARGET)
#undef DECLARE_TARGET

#define TARGET_ROW(NAME) {#NAME, Try##NAME},
inline constexpr Target AllTargets[] = {FUZZ_TARGETS(TARGET_ROW)};
#undef TARGET_ROW

// Null for a name that is no target's.
inline const Target* FindTarget(TextView Name) {
  for (const Target& Each : AllTargets) {
    if (Name == Each.Name) return &Each;
  }
  return nullptr;
}

}  // namespace zelvanor::fuzz
