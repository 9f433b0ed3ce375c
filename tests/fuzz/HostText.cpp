// Host text: from a file, from the host over the clipboard, and as the simulated host itself takes it.

#include "files/HostText.h"

#include "fuzz/Harness.h"
#include "fuzz/Targets.h"
#include "host/GetCommand.h"
#include "hostsim/SimulatedHost.h"
#include "platform/Services.h"
#include "platform/TextFiles.h"
#include "shell/MainForm.h"
#include "workspace/Workspace.h"

namespace zelvanor::fuzz {

namespace {

WorkspaceState& W = Workspace;

bool ReadSystem(const Text& Path) {
  const bool Taken = IsSet(ReadHostFile(Path)) && IsSet(ParseHostText(Path));
  W.MoleculeLoaded = ToFlag(Taken);
  CheckPromises();
  return Taken;
}

Text WriteSystemText() {
  const Text Path = PathOf("written.mvs");
  LineWork.FileNumber = FreeFile();
  OpenForOutput(Path, LineWork.FileNumber);
  Demand(IsSet(WriteHostText(LineWork.FileNumber)), "the host text can't be written");
  CloseFile(LineWork.FileNumber);
  return Path;
}

// What was read is written, and what is written reads as the same.
void CheckHostRoundTrip() {
  const int NumAtoms = W.NumAtoms;
  const Text First = ReadBack(WriteSystemText());
  ResetProgram();
  Demand(ReadSystem(PathOf("written.mvs")), "the written host text can't be read");
  Demand(W.NumAtoms == NumAtoms, "the written host text holds other atoms");
  Demand(ReadBack(WriteSystemText()) == First, "the host text comes out in other bytes");
}

// The host holds the input; its selections make the atom sets.
void GetFromHost(TextView Input) {
  static hostsim::SimulatedHost Host;
  static Text Clipboard;
  Host = {};
  hostsim::LoadSystem(Host, hostsim::ReadHostSystem(Text(Input)));
  hostsim::AddSelection(Host, "nmr-atoms", hostsim::AllAtoms(Host.System));
  hostsim::AddSelection(Host, "labelled-atoms", {{1, 1}});
  hostsim::AddSelection(Host, "equivalent-atoms-1", {{1, 1}, {1, 2}});
  Host.Current = {{1, 1}};
  Host.SetClipboard = [](const Text& Value) { Clipboard = Value; };
  Platform.SetClipboard = Host.SetClipboard;
  Platform.GetClipboard = [] { return Clipboard; };
  Platform.Host.Open = [](const Text&) { hostsim::BeginConversation(Host); };
  Platform.Host.Execute = [](const Text& Command) { hostsim::ExecuteCommand(Host, Command); };
  Platform.Host.Request = [](const Text& Item) { return hostsim::AnswerItem(Host, Item); };
  mnuFileGet_Click();
  CheckPromises();
  hostsim::CopyAtoms(Host.System, {{1, 1}, {1, 2}, {2, 1}});
}

bool Read(TextView Input) {
  ResetProgram();
  const Text Path = WriteInput("input.mvs", Input);
  const bool Taken = ReadSystem(Path) && W.NumAtoms > 0;
  if (Taken) CheckHostRoundTrip();

  ResetProgram();
  OpenAsUser(Path);
  LookAround();

  ResetProgram();
  GetFromHost(Input);
  LookAround();
  return Taken;
}

}  // namespace

const Target HostTextTarget = {"HostText", Read};

}  // namespace zelvanor::fuzz
