#include "batch/HostCommands.h"

#include <map>

#include "hostbus/ClipboardFile.h"
#include "hostbus/HostBus.h"
#include "hostsim/SimulatedHost.h"

namespace zelvanor::batch {

namespace {

using Words = std::vector<Argument>;

struct HostState {
  hostsim::SimulatedHost Host;
  bool Present = false;
  bool ConversationOpen = false;
  bool MethodGiven = false;  // by the script: a system's own force field does not replace it
};

HostState& Simulated() {
  static HostState Only;
  return Only;
}

hostsim::SimulatedHost& OpenHost() {
  if (!Simulated().ConversationOpen) throw Failure("No conversation is open");
  return Simulated().Host;
}

// What the script says about the host stays over a change of system, but for the selections of the former one.
void TakeSystem(const Text& Path) {
  HostState& H = Simulated();
  const hostsim::SimulatedHost Former = H.Host;
  hostsim::LoadSystem(H.Host, hostsim::ReadHostSystemFile(Path));
  if (H.MethodGiven) H.Host.Method = Former.Method;
  if (!H.Present) {
    H.Host.Named = Former.Named;
    H.Host.Current = Former.Current;
  }
  H.Present = true;
  UseSimulatedHost();
}

void LeaveHost(const Words& /*All*/) {
  HostState& H = Simulated();
  hostsim::LoadSystem(H.Host, {});
  H.Present = H.ConversationOpen = H.MethodGiven = false;
  UseSimulatedHost();
}

const Text& Need(const Words& All, std::size_t Place) {
  if (Place >= All.size()) throw ScriptStop{CannotCarryOut, "arguments are missing behind host " + All[1].Value};
  return All[Place].Value;
}

void NeedNoMore(const Words& All, std::size_t Count) {
  if (All.size() > Count) {
    throw ScriptStop{CannotCarryOut, "too many arguments; one with blanks stands in double quotes"};
  }
}

hostsim::AtomList ReadAtoms(const Words& All, std::size_t From) {
  hostsim::AtomList Atoms;
  for (std::size_t Word = From; Word < All.size(); ++Word) {
    const hostsim::AtomList More = hostsim::ReadAtomList(All[Word].Value);
    Atoms.insert(Atoms.end(), More.begin(), More.end());
  }
  return Atoms;
}

void GiveMethod(const Words& All) {
  Simulated().Host.Method = Need(All, 2);
  Simulated().MethodGiven = true;
}

void GiveName(const Words& All) { hostsim::AddSelection(Simulated().Host, Need(All, 2), ReadAtoms(All, 3)); }

void GiveCurrent(const Words& All) { Simulated().Host.Current = ReadAtoms(All, 2); }

void RefuseWhat(const Words& All) {
  NeedNoMore(All, 3);
  if (All.size() == 2) {
    Simulated().Host.Refused.clear();
  } else {
    Simulated().Host.Refused.push_back(All[2].Value);
  }
}

void ReplyWith(const Words& All) {
  NeedNoMore(All, 4);
  Simulated().Host.Answers[Need(All, 2)] = Need(All, 3);
}

void PrintLog(const Words& /*All*/) {
  for (const Text& Line : Simulated().Host.Log) PrintOut(Line);
  Simulated().Host.Log.clear();
}

void UseFileClipboard() {
  Platform.GetClipboard = hostbus::ReadClipboardFile;
  Platform.SetClipboard = hostbus::WriteClipboardFile;
}

// A host in another process needs a clipboard that it reaches too.
void UseBus(const Words& /*All*/) {
  hostbus::UseHostBus([](int) {});
  UseFileClipboard();
}

const std::map<Text, void (*)(const Words& All)>& Forms() {
  static const std::map<Text, void (*)(const Words& All)> Rows = {
      {"none", LeaveHost},    {"method", GiveMethod}, {"name", GiveName}, {"current", GiveCurrent},
      {"refuse", RefuseWhat}, {"reply", ReplyWith},   {"bus", UseBus},    {"log", PrintLog},
  };
  return Rows;
}

}  // namespace

void HostCommand(const Words& All) {
  const auto Form = Forms().find(All[1].Value);
  if (Form != Forms().end() && !All[1].WasQuoted) return Form->second(All);
  NeedNoMore(All, 2);
  TakeSystem(All[1].Value);
}

void UseSimulatedHost() {
  if (hostbus::IsClipboardFileNamed()) {
    UseFileClipboard();
  } else {
    Platform.GetClipboard = [] { return State.Clipboard; };
    Platform.SetClipboard = [](const Text& Value) { State.Clipboard = Value; };
  }
  Simulated().Host.SetClipboard = [](const Text& Value) { Platform.SetClipboard(Value); };
  Platform.Host.Open = [](const Text&) {
    if (!Simulated().Present) throw Failure("No application answers", NoApplicationAnswers);
    hostsim::BeginConversation(Simulated().Host);
    Simulated().ConversationOpen = true;
  };
  Platform.Host.Close = [] { Simulated().ConversationOpen = false; };
  Platform.Host.Execute = [](const Text& Command) { hostsim::ExecuteCommand(OpenHost(), Command); };
  Platform.Host.Request = [](const Text& Item) { return hostsim::AnswerItem(OpenHost(), Item); };
  Platform.Host.Accept = [](const std::function<void(Flag&)>&) {};
}

}  // namespace zelvanor::batch
