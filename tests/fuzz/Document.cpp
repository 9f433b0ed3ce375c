// Documents, as the reader takes them and as the user opens them.

#include "files/DocumentReader.h"
#include "fuzz/Harness.h"
#include "fuzz/Targets.h"
#include "workspace/Workspace.h"

namespace zelvanor::fuzz {

namespace {

bool Read(TextView Input) {
  ResetProgram();
  const Text Path = WriteInput("input.NMR", Input);
  const bool Taken = IsSet(ReadDocument(Path));
  CheckPromises();
  Demand(!IsSet(Workspace.NMRAtomsValid) || (Workspace.NumAtoms > 0 && Workspace.NumNMRAtoms != 0),
         "NMR atoms are valid without atoms");
  const bool Filled = Workspace.NumAtoms > 0 || Workspace.NumNMRAtoms > 0;
  if (Taken && CanBeSaved()) CheckRoundTrip();

  ResetProgram();
  OpenAsUser(Path);
  LookAround();
  return Taken && Filled;
}

}  // namespace

const Target DocumentTarget = {"Document", Read};

}  // namespace zelvanor::fuzz
