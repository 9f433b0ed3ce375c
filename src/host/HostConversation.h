#pragma once

#include "basic/Types.h"

namespace zelvanor {

// The conversation with the host modelling program: commands in brackets that it carries out, items it answers.

// Opens the conversation afresh. Reports its failure.
Flag LinkToHost();
// Each throws a Failure when the host refuses or is gone.
void HostExecute(const Text& Command);
Text HostRequest(const Text& Item);

inline constexpr const char* HostTopic = "Morvantis|System";

}  // namespace zelvanor
