#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "batch/Batch.h"
#include "files/DocumentWriter.h"
#include "history/Recovery.h"
#include "platform/posix/PosixServices.h"
#include "program.h"

namespace {

int Complain(const char* Reason, const char* Path) {
  std::fprintf(stderr, "zelvanor-batch: %s%s\nusage: zelvanor-batch SCRIPT [WORD...]\n", Reason, Path);
  return zelvanor::batch::CannotCarryOut;
}

}  // namespace

int main(int Count, char** Words) {
  using namespace zelvanor;
  if (Count < 2) return Complain("no script is named", "");
  Text CommandLine;
  for (int Word = 2; Word < Count; ++Word) CommandLine += (Word > 2 ? " " : "") + Text(Words[Word]);

  TakeEndSignals();
  UsePosixServices();
  batch::UseBatchServices();
  BuildProgram();
  UseRecovery(WriteCopy);

  batch::ExitStatus Status = batch::RanToItsEnd;
  if (Text(Words[1]) == "--commands") {
    for (const Text& Name : batch::CommandNames()) std::puts(Name.c_str());
    return Status;
  }
  if (Text(Words[1]) == "-") {
    Status = batch::RunWholeScript(std::cin, CommandLine);
  } else {
    std::ifstream Script(Words[1]);
    // A folder opens as a stream too, and fails at its first read.
    if (!Script || (Script.peek(), Script.bad())) return Complain("can't read the script ", Words[1]);
    Script.clear();
    Status = batch::RunWholeScript(Script, CommandLine);
  }
  DropKeptWork();
  std::fflush(nullptr);
  // The document, its results and the recorded picture need not be taken apart piece by piece.
  _exit(Status);
}
