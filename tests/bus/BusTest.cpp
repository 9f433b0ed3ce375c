#include <gtest/gtest.h>
#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <cstdlib>

#include "hostbus/BusNames.h"
#include "hostbus/BusServer.h"
#include "hostbus/HostBus.h"
#include "platform/Services.h"

// The conversation over a real session bus. Both sides live in this one process: the answering one is served while the
// asking one waits, so every answer also shows that waiting lets events pass.
namespace zelvanor::hostbus {
namespace {

constexpr const char* LinkTopic = "Morvantis|System";

Failure FailureOf(const std::function<void()>& Call) {
  try {
    Call();
  } catch (const Failure& Problem) {
    return Problem;
  }
  return Failure("no failure");
}

class BusTest : public testing::Test {
 protected:
  BusTest() {
    Platform.Host.LinkTimeout = -1;
    Platform.DoEvents = [this] {
      ++NumServices;
      if (Server && Serving) ServePending(*Server);
      ServeConversations();
    };
  }
  ~BusTest() override { Platform.Host.Close(); }

  void OpenHost() {
    Server = OpenServer(HostApplication, Topic,
                        {[this](const Text& Partner, const Text& Command) {
                           Asked.push_back(Partner + " " + Command);
                           if (Command == "[no]") throw Failure("Not that.");
                         },
                         [this](const Text& Partner, const Text& Item) {
                           Asked.push_back(Partner + " " + Item);
                           if (Item == "nothing") throw Failure("");
                           return Item == "long" ? Text(3000000, 'x') : "value of " + Item;
                         }});
  }

  ServerHandle Server;
  bool Serving = true;
  int NumServices = 0;
  int Watched = -1;
  std::vector<Text> Asked;
};

TEST_F(BusTest, CommandsAndItems) {
  OpenHost();
  Platform.Host.Open(LinkTopic);
  Platform.Host.Execute("[select-none]");
  EXPECT_EQ(Platform.Host.Request("selected-atom 1"), "value of selected-atom 1");
  EXPECT_EQ(Platform.Host.Request(""), "value of ");
  EXPECT_EQ(Platform.Host.Request("long").size(), 3000000U);
  EXPECT_GE(NumServices, 4);
  EXPECT_EQ(FailureOf([] { Platform.Host.Execute("[no]"); }).What, "Not that");
  EXPECT_NE(FailureOf([] { Platform.Host.Request("nothing"); }).What, "no failure");
  // A text that the bus can't carry.
  EXPECT_NE(FailureOf([] { Platform.Host.Execute("\xff"); }).What, "no failure");
  EXPECT_EQ(Platform.Host.Request("last"), "value of last");

  // A conversation that is opened anew is another partner's.
  const Text First = Asked.back().substr(0, Asked.back().find(' '));
  Platform.Host.Close();
  EXPECT_EQ(FailureOf([] { Platform.Host.Request("x"); }).What, "No conversation is open");
  Platform.Host.Open(LinkTopic);
  Platform.Host.Execute("[a]");
  EXPECT_FALSE(Asked.back().starts_with(First));
}

TEST_F(BusTest, AHostThatDoesNotAnswerInTime) {
  OpenHost();
  Platform.Host.Open(LinkTopic);
  Serving = false;
  Platform.Host.LinkTimeout = 3;
  const auto Start = std::chrono::steady_clock::now();
  EXPECT_EQ(FailureOf([] { Platform.Host.Request("x"); }).What, "Morvantis does not answer in time");
  const auto Waited = std::chrono::steady_clock::now() - Start;
  EXPECT_GE(Waited, std::chrono::milliseconds(290));
  EXPECT_LE(Waited, std::chrono::milliseconds(3000));
  EXPECT_GE(NumServices, 5) << "the window is served while the call waits";
  Serving = true;
  EXPECT_EQ(Platform.Host.Request("y"), "value of y") << "an answer that comes too late is not taken for the next";
}

TEST_F(BusTest, AnAnswerThatIsNoText) {
  const auto Connection = sdbus::createSessionBusConnection();
  const auto Object = sdbus::createObject(*Connection, ObjectPath(Topic));
  Object->registerMethod(RequestMethod).onInterface(ConversationInterface).implementedAs([](const std::string&) {
    return 7;
  });
  Object->finishRegistration();
  Connection->requestName(BusName(HostApplication, Topic));
  Platform.DoEvents = [&] {
    while (Connection->processPendingRequest()) {
    }
  };
  Platform.Host.Open(LinkTopic);
  EXPECT_EQ(FailureOf([] { Platform.Host.Request("x"); }).What, "The answer of Morvantis is not a text");
  EXPECT_NE(FailureOf([] { Platform.Host.Execute("x"); }).What, "no failure") << "there is no such method";
}

TEST_F(BusTest, TheProgramEndsWhileACallWaits) {
  OpenHost();
  Platform.Host.Open(LinkTopic);
  Platform.DoEvents = [] { throw ProgramEnded(); };
  EXPECT_THROW(Platform.Host.Request("x"), ProgramEnded);
  Platform.DoEvents = [this] { ServePending(*Server); };
  EXPECT_EQ(Platform.Host.Request("y"), "value of y") << "the answer to x is not taken for y's";
}

TEST_F(BusTest, TheProgramAcceptsConversations) {
  EXPECT_FALSE(ServeConversations());
  Flag Answer = False;
  int NumOpened = 0;
  Platform.Host.Accept([&](Flag& Cancel) {
    ++NumOpened;
    Cancel = Answer;
  });
  EXPECT_GE(Watched, 0);
  Platform.Host.Open("Zelvanor|System");
  Platform.Host.Execute("[hello]");
  EXPECT_EQ(Platform.Host.Request("anything"), "");
  EXPECT_EQ(NumOpened, 1);
  Answer = True;
  Platform.Host.Close();
  Platform.Host.Open("Zelvanor|System");
  EXPECT_NE(FailureOf([] { Platform.Host.Execute("[hello]"); }).What, "no failure");
}

}  // namespace
}  // namespace zelvanor::hostbus
