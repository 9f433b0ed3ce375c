#include "host/GetCommand.h"

#include <algorithm>

#include "basic/Numbers.h"
#include "files/FileCommands.h"
#include "files/HostText.h"
#include "host/HostAtomSets.h"
#include "host/HostConversation.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

// What stands for the source in the messages of the host text reader.
constexpr const char* SystemTitle = "System from Morvantis";

bool SelectionSaved = false;  // by the Get at hand

// An answer that is to be read as a value comes without its item's name in front.
Text RequestWithoutTag(const Text& Item) {
  HostExecute("[query-response-has-tag no]");
  return HostRequest(Item);
}

// Keeps the user's selection under a name of its own; false where nothing is selected.
bool SaveHostSelection() {
  if (PrefixNumber(RequestWithoutTag("selected-atom-count")) == 0.0) return false;
  HostExecute(Text("[name-selection ") + SavedSelection + "]");
  return true;
}

Text CopyHostSystem() {
  HostExecute("[menu-select-select-all]");
  Platform.SetClipboard("");
  HostExecute("[menu-edit-copy]");
  return Platform.GetClipboard();
}

// A line ends at its line feed; what stands behind the last one is dropped. A carriage return stays in its line.
Array<FixedText<HostLineLength>> SplitTextLines(TextView Value, Long Count) {
  Array<FixedText<HostLineLength>> Lines;
  Lines.ReDim(Count);
  for (FixedText<HostLineLength>& Line : Lines.Span().first(static_cast<std::size_t>(Count))) {
    const std::size_t Feed = Value.find('\n');
    Line = Value.substr(0, Feed);
    Value.remove_prefix(Feed + 1);
  }
  return Lines;
}

void EmptyForHostSystem() {
  ClearSpectrum();
  ClearWorkspace();
  W.DocumentPath.clear();
  W.ZMatrixPath.clear();
  W.DocumentTitle.clear();
  W.MoleculeLoaded = W.ShieldingAvailable = W.CouplingAvailable = W.SpectraAvailable = False;
  W.DocumentDirty = W.AtomTypesChanged = False;
  W.ParamResultsStale = W.SpectResultsStale = True;
  UpdateTitle();
}

// The command between entering and leaving the busy state.
void TakeHostSystem() {
  ShowStatus("Linking to Morvantis...");
  if (!IsSet(LinkToHost())) return;
  ShowStatus("Getting Molecule from Morvantis...");
  if (!IsSet(GetSystemFromHost())) return;
  EmptyForHostSystem();
  if (!IsSet(ParseHostText(SystemTitle))) {
    // Nothing of a system that could not be read in full is kept.
    ClearWorkspace();
    return;
  }
  W.MoleculeLoaded = True;
  W.DocumentDirty = True;  // whatever the host does from here on
  ShowStatus("Getting NMR atoms from Morvantis...");
  GetHostAtomSets(SelectionSaved);
}

}  // namespace

Long CountTextLines(TextView Value) {
  const auto Count = std::count(Value.begin(), Value.end(), '\n');
  return ToLong(static_cast<Double>(Count) - (Value.starts_with('\n') ? 1.0 : 0.0));
}

Flag GetSystemFromHost() {
  try {
    if (PrefixNumber(RequestWithoutTag("molecule-count")) == 0.0) {
      ShowWarning("No Molecule in Morvantis.");
      return False;
    }
    if (UpperCase(RequestWithoutTag("molecular-mechanics-method")) != "AMBER") {
      HostExecute("[molecular-mechanics-method amber]");
    }
    SelectionSaved = SaveHostSelection();
    const Text System = CopyHostSystem();
    HostExecute("[select-none]");
    if (SelectionSaved) HostExecute(Text("[select-name ") + SavedSelection + "]");
    const Long Count = CountTextLines(System);
    if (static_cast<std::size_t>(Count) > MostHostLines) throw Failure(failures::OutOfMemory);
    W.HostTextLine = SplitTextLines(System, Count);
    W.HostTextLineCount = Count;
    W.HostTextPath.clear();
    return True;
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
    return False;
  }
}

void mnuFileGet_Click() {
  if (QuerySave() != False) return;
  {
    const BusyState Busy;
    // A failure that nothing has reported leaves what has been done so far.
    IgnoreFailure(TakeHostSystem);
  }
  W.ViewMode = MoleculeView;
  RefreshView();
}

}  // namespace zelvanor
