#pragma once

#include "morvantis-sim/Simulator.h"

namespace zelvanor::morvantis_sim {

// The clipboard of the display, in builds that have the window's toolkit.

// Whether this build and the environment have a display's clipboard.
bool HasDisplay();
// Serves with the display's clipboard until the started program or the bus ends; the exit status.
int RunOnDisplay(Simulator& Sim, int& Count, char** Words);

}  // namespace zelvanor::morvantis_sim
