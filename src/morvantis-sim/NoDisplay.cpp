#include "morvantis-sim/Display.h"

namespace zelvanor::morvantis_sim {

bool HasDisplay() { return false; }
int RunOnDisplay(Simulator& /*Sim*/, int& /*Count*/, char** /*Words*/) { return 1; }

}  // namespace zelvanor::morvantis_sim
