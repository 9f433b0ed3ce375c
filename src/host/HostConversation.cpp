#include "host/HostConversation.h"

#include "workspace/Helpers.h"

namespace zelvanor {

Flag LinkToHost() {
  try {
    Platform.Host.Close();
    Platform.Host.Open(HostTopic);
    return True;
  } catch (const Failure& Problem) {
    ShowWarning(Problem.Number == NoApplicationAnswers ? "No running Morvantis." : "Cannot link to Morvantis.");
    return False;
  }
}

void HostExecute(const Text& Command) { Platform.Host.Execute(Command); }

Text HostRequest(const Text& Item) {
  Platform.Host.LinkTimeout = -1;
  return Platform.Host.Request(Item);
}

}  // namespace zelvanor
