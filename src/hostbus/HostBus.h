#pragma once

#include <functional>

#include "basic/Types.h"

namespace zelvanor::hostbus {

// Carries the program's conversations over the session bus: fills the slots of Platform.Host. A call that is not
// answered within a moment runs Platform.DoEvents until it is, so that the window repaints.
//
// Once the program accepts conversations, Watch gets a descriptor; the front end calls ServeConversations when it can
// be read, or now and then.
void UseHostBus(std::function<void(int Descriptor)> Watch);

// Answers what other programs have asked of this one. False when it accepts none, or none any more: the descriptor is
// not to be watched then.
bool ServeConversations();

}  // namespace zelvanor::hostbus
