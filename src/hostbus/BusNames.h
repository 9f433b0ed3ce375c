#pragma once

#include "basic/Types.h"

namespace zelvanor::hostbus {

// How a conversation is carried over D-Bus. Application and topic make the name of the one who answers and the path of
// its object: "Morvantis|System" is Morvantis.System and /System. The interface has Execute(s), which returns when the
// command has been carried out, and Request(s) -> s.

inline constexpr const char* ConversationInterface = "Morvantis.Conversation";
inline constexpr const char* ExecuteMethod = "Execute";
inline constexpr const char* RequestMethod = "Request";
// The error of a command or item that is refused; its message says why.
inline constexpr const char* RefusedError = "Morvantis.Conversation.Refused";

inline constexpr const char* HostApplication = "Morvantis";
inline constexpr const char* OwnApplication = "Zelvanor";
inline constexpr const char* Topic = "System";

inline Text BusName(const Text& Application, const Text& Topic) { return Application + "." + Topic; }
inline Text ObjectPath(const Text& Topic) { return "/" + Topic; }

}  // namespace zelvanor::hostbus
