#include "backend/LogCommands.h"

#include "platform/TextFiles.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

// The backend appends to what it finds, so a file to be replaced is emptied here, down to one blank line.
void EmptyLogFile() {
  const Integer FileNumber = FreeFile();
  try {
    OpenForOutput(W.LogFilePath, FileNumber);
    PrintLine(FileNumber, " ");
    CloseFile(FileNumber);
  } catch (const Failure&) {
    CloseFileQuietly(FileNumber);
    throw;
  }
}

// False when the user does not want the log after all.
bool AgreeOnExistingFile() {
  switch (AskYesNoCancel("File already exists.  Do you wish to replace it (use No to append to it)?")) {
    case BoxAnswer::Yes:
      IgnoreFailure(EmptyLogFile);
      return true;
    case BoxAnswer::No:
      return true;
    default:
      return false;
  }
}

}  // namespace

void mnuStartLog_Click() {
  const std::optional<Text> Chosen = Platform.ShowFileDialog({.Title = "Start Log",
                                                              .FileName = "nmr.log",
                                                              .Filter = "Log Files (*.LOG)|*.LOG",
                                                              .DefaultExtension = "log",
                                                              .Save = true});
  if (!Chosen) return;
  W.LogFilePath = *Chosen;
  if (IsSet(FileExists(W.LogFilePath)) && !AgreeOnExistingFile()) {
    W.LogFilePath.clear();
    return;
  }
  SetEnabled(Main.mnuStartLog, False);
  SetEnabled(Main.mnuStopLog, True);
}

void mnuStopLog_Click() {
  SetEnabled(Main.mnuStopLog, False);
  SetEnabled(Main.mnuStartLog, True);
  W.LogFilePath.clear();
}

}  // namespace zelvanor
