#include "shell/ShellVariables.h"

#include "platform/Variables.h"
#include "shell/MainForm.h"

namespace zelvanor {

void AddShellVariables() {
  AddArray("ToolHelp", Main.ToolHelp, [] { return NumToolButtons; });
  AddVariable("HelpFile", Main.HelpFile);
  AddVariable("LinkMode", Main.LinkMode);
  AddVariable("IsBusy", Main.IsBusy);
  AddVariable("MouseMode", Main.MouseMode);
  AddVariable("AtomLabelMode", Main.AtomLabelMode);
  const auto CountSelected = [] { return int(Main.NumSelectedAtoms); };
  AddVariable("NumSelectedAtoms", Main.NumSelectedAtoms);
  AddArray("SelectedAtom", Main.SelectedAtom, CountSelected);
  AddArray("SelectedAtomColor", Main.SelectedAtomColor, CountSelected);
}

}  // namespace zelvanor
