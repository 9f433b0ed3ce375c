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
  PrintLine(LineWork.FileNumber, Begin);
  PrintLine(LineWork.FileNumber, GeneralForm(Count));
  WriteEntries(Entries, Count, LineWork.FileNumber);
  PrintLine(LineWork.FileNumber, End);
}

bool WriteInput() {
  if (!IsSet(WriteOptionLines(Settings.ParamInputFile, LineWork.FileNumber))) return false;
  WriteSelection(document::NMRBegin, W.NMRAtom, W.NumNMRAtoms, document::NMREnd);
  if (W.NumQuantumAtoms > 0) {
    WriteSelection(document::QuantumBegin, W.QuantumAtom, W.NumQuantumAtoms, document::QuantumEnd);
  }
  PrintLine(LineWork.FileNumber, "AtomsBegin");
  PrintLine(LineWork.FileNumber, GeneralForm(W.NumAtoms));
  if (!IsSet(WriteSystem(LineWork.FileNumber))) return false;
  PrintLine(LineWork.FileNumber, "AtomsEnd");
  return true;
}

}  // namespace

Flag WriteParamInput(const Text& Path) {
  Flag Result = False;
  try {
    LineWork.FileNumber = FreeFile();
    OpenForOutput(Path, LineWork.FileNumber);
    Result = ToFlag(WriteInput());
    CloseFile(LineWork.FileNumber);
  } catch (const Failure&) {
    Result = False;
  }
  CloseFileQuietly(LineWork.FileNumber);
  if (!IsSet(Result)) ShowWarning(Join("Error writing the ", Settings.ParamInputFile, " file."));
  return Result;
}

}  // namespace zelvanor
