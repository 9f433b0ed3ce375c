#include "nmrcalc/Memory.h"

#include <sys/resource.h>

#include <algorithm>
#include <limits>
#include <string>

#include "basic/Failure.h"
#include "basic/Numbers.h"
#include "nmrcalc/input/InputText.h"

namespace nmrcalc {

namespace {

constexpr double Unknown = std::numeric_limits<double>::infinity();
constexpr double FallbackBytes = 2147483648.0;  // where the system tells nothing

double AvailableOnMachine() {
  try {
    const auto File = ReadTextFile("/proc/meminfo");
    for (const std::string& Text : File.Lines) {
      const auto Tokens = SplitTokens(Text);
      if (Tokens.size() >= 2 && Tokens[0] == "MemAvailable:") return zelvanor::PrefixNumber(Tokens[1]) * 1024.0;
    }
  } catch (const zelvanor::Failure&) {
  }
  return Unknown;
}

// A one-number file of the control group; "max" and a missing file tell nothing.
double ControlGroupNumber(const std::string& Path) {
  try {
    const TextFile File = ReadTextFile(Path);
    if (!File.Lines.empty() && !File.Lines[0].empty() && File.Lines[0] != "max") {
      return zelvanor::PrefixNumber(File.Lines[0]);
    }
  } catch (const zelvanor::Failure&) {
  }
  return Unknown;
}

}  // namespace

double FreeMemory() {
  double Free = AvailableOnMachine();
  const double GroupLimit = ControlGroupNumber("/sys/fs/cgroup/memory.max");
  const double GroupUsed = ControlGroupNumber("/sys/fs/cgroup/memory.current");
  if (GroupLimit < Unknown && GroupUsed < Unknown) Free = std::min(Free, std::max(0.0, GroupLimit - GroupUsed));
  rlimit Limit{};
  if (getrlimit(RLIMIT_AS, &Limit) == 0 && Limit.rlim_cur != RLIM_INFINITY) {
    Free = std::min(Free, static_cast<double>(Limit.rlim_cur));
  }
  return Free < Unknown ? Free : FallbackBytes;
}

}  // namespace nmrcalc
