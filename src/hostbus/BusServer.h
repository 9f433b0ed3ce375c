#pragma once

#include <functional>
#include <memory>

#include "basic/Types.h"

namespace zelvanor::hostbus {

// The answering side of a conversation over the session bus.

// Partner tells the conversations apart: it is the bus's name of the one who asks. Each throws a Failure to refuse.
struct ServerHandlers {
  std::function<void(const Text& Partner, const Text& Command)> Execute;
  std::function<Text(const Text& Partner, const Text& Item)> Request;
};

struct BusServer;
struct DeleteServer {
  void operator()(BusServer* Server) const;
};
using ServerHandle = std::unique_ptr<BusServer, DeleteServer>;

// Takes the name of application and topic on the bus. Throws a Failure where there is no bus or the name is taken.
ServerHandle OpenServer(const Text& Application, const Text& Topic, ServerHandlers Handlers);

// The descriptor to watch: once it can be read, ServePending has something to do.
int ServerDescriptor(const BusServer& Server);
// Answers what has come in. False when the bus is gone.
bool ServePending(BusServer& Server);

}  // namespace zelvanor::hostbus
