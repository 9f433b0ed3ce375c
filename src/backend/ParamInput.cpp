#include "backend/ParamInput.h"

#include "files/DocumentFormat.h"
#include "files/DocumentWriter.h"
#include "files/HostText.h"
#include "files/OptionLines.h"
#include "platform/TextFiles.h"
#include "settings/SettingsState.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

void WriteSelection(const char* Begin, const Array<Integer>& Entries, Integer Count, const char* End) {
  PrintLine(W.FileNumber, Begin);
  PrintLine(W.FileNumber, GeneralForm(Count));
  WriteEntries(Entries, Count, W.FileNumber);
  PrintLine(W.FileNumber, End);
}

bool WriteInput() {
  if (!IsSet(WriteOptionLines(Settings.ParamInputFile, W.FileNumber))) return false;
  WriteSelection(document::NMRBegin, W.NMRAtom, W.NumNMRAtoms, document::NMREnd);
  if (W.NumQuantumAtoms > 0) {
    WriteSelection(document::QuantumBegin, W.QuantumAtom, W.NumQuantumAtoms, document::QuantumEnd);
  }
  PrintLine(W.FileNumber, "AtomsBegin");
  PrintLine(W.FileNumber, GeneralForm(W.NumAtoms));
  if (!IsSet(WriteSystem(W.FileNumber))) return false;
  PrintLine(W.FileNumber, "AtomsEnd");
  return true;
}

}  // namespace

Flag WriteParamInput(const Text& Path) {
  Flag Result = False;
  try {
    W.FileNumber = FreeFile();
    OpenForOutput(Path, W.FileNumber);
    Result = ToFlag(WriteInput());
    CloseFile(W.FileNumber);
  } catch (const Failure&) {
    Result = False;
  }
  CloseFileQuietly(W.FileNumber);
  if (!IsSet(Result)) ShowWarning(Join("Error writing the ", Settings.ParamInputFile, " file."));
  return Result;
}

}  // namespace zelvanor
