// Stands for the session bus: nobody is on it, so that no script reaches another process.

#include "hostbus/HostBus.h"

namespace zelvanor::hostbus {

void UseHostBus(std::function<void(int Descriptor)> /*Watch*/) {}
bool ServeConversations() { return false; }

}  // namespace zelvanor::hostbus
