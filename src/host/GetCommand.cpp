#include "host/GetCommand.h"

#include "files/FileCommands.h"
#include "host/HostConversation.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

// No front end offers a conversation yet, so that the link is refused and the transfer behind it does not begin.
void mnuFileGet_Click() {
  if (QuerySave() != False) return;
  Workspace.IsBusy = True;
  SetBusy(False);
  ShowStatus("Linking to Morvantis...");
  LinkToHost();
  Workspace.IsBusy = False;
  SetBusy(True);
  Workspace.ViewMode = MoleculeView;
  RefreshView();
}

}  // namespace zelvanor
