#pragma once

#include "basic/Types.h"

namespace zelvanor {

// The separator this system writes; paths are cut at either separator.
inline constexpr const char* PathSeparator = "/";

// Where the last separator stands, at From (0-based) or behind it; npos for none.
std::size_t LastSeparator(TextView Path, std::size_t From = 0);
// The name without its directories.
TextView FileTitleOf(TextView Path);
// The ending of a path in upper case, with its dot; empty for none.
Text EndingOf(TextView Path);

}  // namespace zelvanor
