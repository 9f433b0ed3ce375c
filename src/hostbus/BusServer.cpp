#include "hostbus/BusServer.h"

#include <sdbus-c++/sdbus-c++.h>

#include "hostbus/BusNames.h"

namespace zelvanor::hostbus {

struct BusServer {
  std::unique_ptr<sdbus::IConnection> Connection;
  std::unique_ptr<sdbus::IObject> Object;  // taken down before its connection
  ServerHandlers Handlers;
};

namespace {

Text Partner(const BusServer& Server) { return Server.Object->getCurrentlyProcessedMessage()->getSender(); }

[[noreturn]] void ThrowRefusal(const Failure& Problem) { throw sdbus::Error(RefusedError, Problem.What); }

void AddMethods(BusServer& Server) {
  BusServer* const Serving = &Server;
  Server.Object->registerMethod(ExecuteMethod)
      .onInterface(ConversationInterface)
      .withInputParamNames("command")
      .implementedAs([Serving](const std::string& Command) {
        try {
          Serving->Handlers.Execute(Partner(*Serving), Command);
        } catch (const Failure& Problem) {
          ThrowRefusal(Problem);
        }
      });
  Server.Object->registerMethod(RequestMethod)
      .onInterface(ConversationInterface)
      .withInputParamNames("item")
      .withOutputParamNames("value")
      .implementedAs([Serving](const std::string& Item) -> std::string {
        try {
          return Serving->Handlers.Request(Partner(*Serving), Item);
        } catch (const Failure& Problem) {
          ThrowRefusal(Problem);
        }
      });
  Server.Object->finishRegistration();
}

}  // namespace

void DeleteServer::operator()(BusServer* Server) const { delete Server; }

ServerHandle OpenServer(const Text& Application, const Text& Topic, ServerHandlers Handlers) {
  try {
    ServerHandle Server(new BusServer);
    Server->Handlers = std::move(Handlers);
    Server->Connection = sdbus::createSessionBusConnection();
    Server->Object = sdbus::createObject(*Server->Connection, ObjectPath(Topic));
    AddMethods(*Server);
    // Last, so that whoever sees the name finds the object.
    Server->Connection->requestName(BusName(Application, Topic));
    return Server;
  } catch (const sdbus::Error& Problem) {
    throw Failure("Can't be reached over the bus as " + BusName(Application, Topic) + ": " + Problem.getMessage());
  }
}

int ServerDescriptor(const BusServer& Server) { return Server.Connection->getEventLoopPollData().fd; }

bool ServePending(BusServer& Server) {
  try {
    while (Server.Connection->processPendingRequest()) {
    }
    return true;
  } catch (const sdbus::Error&) {
    return false;
  }
}

}  // namespace zelvanor::hostbus
