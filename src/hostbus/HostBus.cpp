#include "hostbus/HostBus.h"

#include <poll.h>
#include <sdbus-c++/sdbus-c++.h>

#include <map>
#include <memory>
#include <optional>
#include <set>

#include "hostbus/BusNames.h"
#include "hostbus/BusServer.h"
#include "platform/Services.h"

namespace zelvanor::hostbus {

namespace {

constexpr const char* ConversationEnded = "Morvantis has ended the conversation";
// A wait this long goes by before the window is served, and between its services; most answers are here sooner.
constexpr int PatienceMilliseconds = 10;
constexpr std::uint64_t MicrosecondsInTenth = 100000;

// An open conversation: with the one process that owned the name when it was opened, so that another one that takes the
// name later is not mistaken for it.
// Shared, since a call keeps it to its end even where it is closed meanwhile.
struct Conversation {
  std::unique_ptr<sdbus::IConnection> Connection;
  std::unique_ptr<sdbus::IProxy> Partner;
};

struct BusState {
  std::shared_ptr<Conversation> Open;
  std::function<void(int Descriptor)> Watch;
  ServerHandle Server;
  std::set<Text> Partners;  // whose conversations have been accepted
};

BusState& State() {
  static BusState Only;
  return Only;
}

// The failure of the program for an error of the bus.
Failure FailureOf(const sdbus::Error& Problem) {
  static const std::map<Text, const char*> Known = {
      {"org.freedesktop.DBus.Error.NoReply", ConversationEnded},
      {"org.freedesktop.DBus.Error.NameHasNoOwner", ConversationEnded},
      {"org.freedesktop.DBus.Error.ServiceUnknown", ConversationEnded},
      {"org.freedesktop.DBus.Error.Disconnected", ConversationEnded},
      {"System.Error.ECONNRESET", ConversationEnded},
      {"System.Error.ENOTCONN", ConversationEnded},
  };
  // Under the same name as a partner that is gone.
  if (Problem.getMessage() == "Method call timed out") return Failure("Morvantis does not answer in time");
  if (const auto Entry = Known.find(Problem.getName()); Entry != Known.end()) return Failure(Entry->second);
  Text What = Problem.getMessage().empty() ? Problem.getName() : Problem.getMessage();
  while (What.ends_with('.')) What.pop_back();
  return Failure(What);
}

std::uint64_t WaitInMicroseconds() {
  const Long Tenths = Platform.Host.LinkTimeout < 0 ? LongestWait : Platform.Host.LinkTimeout;
  return static_cast<std::uint64_t>(Tenths) * MicrosecondsInTenth;
}

// What has come of a call. It outlives a wait that an ending program has left.
struct Outcome {
  bool Done = false;
  std::optional<Failure> Problem;
  Text Value;
};

// Withdraws a call whose wait has been left early.
struct CallGuard {
  sdbus::PendingAsyncCall Call;
  ~CallGuard() { Call.cancel(); }
};

void TakeReply(Outcome& Result, sdbus::MethodReply& Reply, const sdbus::Error* Problem, bool HasValue) {
  Result.Done = true;
  if (Problem != nullptr) {
    Result.Problem = FailureOf(*Problem);
    return;
  }
  if (!HasValue) return;
  std::string Type;
  std::string Contents;
  Reply.peekType(Type, Contents);
  if (Type == "s") {
    Reply >> Result.Value;
  } else {
    Result.Problem = Failure("The answer of Morvantis is not a text");
  }
}

void WaitForAnswer(sdbus::IConnection& Connection, const Outcome& Result) {
  while (!Result.Done) {
    if (Connection.processPendingRequest()) continue;
    const sdbus::IConnection::PollData Pending = Connection.getEventLoopPollData();
    pollfd Watched{Pending.fd, Pending.events, 0};
    if (poll(&Watched, 1, PatienceMilliseconds) == 0) Platform.DoEvents();
  }
}

// One call of the partner, to its answer; the value where it has one.
Text CallPartner(sdbus::IConnection& Connection, sdbus::IProxy& Partner, const char* Interface, const char* Method,
                 const Text& Argument, bool HasValue) {
  const auto Result = std::make_shared<Outcome>();
  try {
    sdbus::MethodCall Call = Partner.createMethodCall(Interface, Method);
    Call << Argument;
    const CallGuard Guard{Partner.callMethod(
        Call,
        [Result, HasValue](sdbus::MethodReply& Reply, const sdbus::Error* Problem) {
          TakeReply(*Result, Reply, Problem, HasValue);
        },
        WaitInMicroseconds())};
    WaitForAnswer(Connection, *Result);
  } catch (const sdbus::Error& Problem) {
    throw FailureOf(Problem);
  }
  if (Result->Problem) throw Failure(*Result->Problem);
  return Result->Value;
}

// Who owns a name of the bus now. Throws number 282 where nobody does.
Text FindOwner(sdbus::IConnection& Connection, const Text& Name) {
  constexpr const char* Bus = "org.freedesktop.DBus";
  const auto Daemon = sdbus::createProxy(Connection, Bus, "/org/freedesktop/DBus");
  try {
    return CallPartner(Connection, *Daemon, Bus, "GetNameOwner", Name, true);
  } catch (const Failure& Problem) {
    if (Problem.What == ConversationEnded) throw Failure("No application answers", NoApplicationAnswers);
    throw;
  }
}

std::unique_ptr<sdbus::IConnection> ConnectToBus() {
  try {
    return sdbus::createSessionBusConnection();
  } catch (const sdbus::Error&) {
    throw Failure("No application answers", NoApplicationAnswers);
  }
}

void OpenConversation(const Text& LinkTopic) {
  const std::size_t Bar = LinkTopic.find('|');
  if (Bar == Text::npos) throw Failure("No application and topic: " + LinkTopic);
  const Text Subject = LinkTopic.substr(Bar + 1);
  const auto Fresh = std::make_shared<Conversation>();
  Fresh->Connection = ConnectToBus();
  const Text Owner = FindOwner(*Fresh->Connection, BusName(LinkTopic.substr(0, Bar), Subject));
  Fresh->Partner = sdbus::createProxy(*Fresh->Connection, Owner, ObjectPath(Subject));
  State().Open = Fresh;
}

Text Converse(const char* Method, const Text& Argument, bool HasValue) {
  const std::shared_ptr<Conversation> Kept = State().Open;
  if (!Kept) throw Failure("No conversation is open");
  return CallPartner(*Kept->Connection, *Kept->Partner, ConversationInterface, Method, Argument, HasValue);
}

// The first word of a partner opens its conversation.
void AcceptPartner(const std::function<void(Flag&)>& LinkOpen, const Text& Partner) {
  if (State().Partners.contains(Partner)) return;
  Flag Cancel = True;
  LinkOpen(Cancel);
  if (Cancel != False) throw Failure("Zelvanor accepts no conversation");
  State().Partners.insert(Partner);
}

// The program has no commands and no items for the host: what it is told has no effect, what it is asked is empty.
void AcceptConversations(const std::function<void(Flag&)>& LinkOpen) {
  BusState& S = State();
  S.Server = OpenServer(OwnApplication, Topic,
                        {[LinkOpen](const Text& Partner, const Text&) { AcceptPartner(LinkOpen, Partner); },
                         [LinkOpen](const Text& Partner, const Text&) {
                           AcceptPartner(LinkOpen, Partner);
                           return Text();
                         }});
  if (S.Watch) S.Watch(ServerDescriptor(*S.Server));
  ServeConversations();
}

}  // namespace

void UseHostBus(std::function<void(int Descriptor)> Watch) {
  State().Watch = std::move(Watch);
  Platform.Host.Open = OpenConversation;
  Platform.Host.Close = [] { State().Open.reset(); };
  Platform.Host.Execute = [](const Text& Command) { Converse(ExecuteMethod, Command, false); };
  Platform.Host.Request = [](const Text& Item) { return Converse(RequestMethod, Item, true); };
  Platform.Host.Accept = AcceptConversations;
}

bool ServeConversations() {
  BusState& S = State();
  if (S.Server && !ServePending(*S.Server)) S.Server.reset();
  return S.Server != nullptr;
}

}  // namespace zelvanor::hostbus
