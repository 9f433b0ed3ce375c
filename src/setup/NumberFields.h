#pragma once

#include "platform/Controls.h"

namespace zelvanor {

// The keys that a field takes without complaint; any other key still reaches the text, whose change then refuses it.
inline constexpr const char* UnsignedKeys = " +\b";
inline constexpr const char* SignedKeys = " +-\b";

// Whether a key is a digit or one of these. The keys of the dialog itself (Enter, Escape, Tab) type nothing and leave
// the verdict as it was.
inline Flag JudgeKey(int KeyAscii, TextView Others, Flag Before) {
  if (KeyAscii == '\r' || KeyAscii == '\t' || KeyAscii == 27) return Before;
  const bool Digit = KeyAscii >= '0' && KeyAscii <= '9';
  return ToFlag(Digit || (KeyAscii > 0 && KeyAscii < 128 && Others.find(static_cast<char>(KeyAscii)) != Text::npos));
}

}  // namespace zelvanor
