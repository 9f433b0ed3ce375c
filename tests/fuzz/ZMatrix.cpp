// Z-matrices: rows, places, bonds, orders and types, up to the saved document.

#include "files/ZMatrixImport.h"
#include "fuzz/Harness.h"
#include "fuzz/Targets.h"
#include "workspace/Workspace.h"

namespace zelvanor::fuzz {

namespace {

bool Read(TextView Input) {
  ResetProgram();
  OpenAsUser(WriteInput("input.zmt", Input));
  const bool Taken = IsSet(Workspace.MoleculeLoaded);
  Demand(!Taken || Workspace.NumAtoms > 0, "a molecule without atoms");
  LookAround();
  if (Taken) CheckRoundTrip();
  return Taken;
}

}  // namespace

const Target ZMatrixTarget = {"ZMatrix", Read};

}  // namespace zelvanor::fuzz
