#include <unistd.h>

#include <cstdio>

#include "predict/Run.h"

int main(int Count, char** Words) {
  using namespace zelvanor;
  int Status = predict::CannotRun;
  try {
    const predict::Options Given = predict::ReadOptions({Words + 1, Words + Count});
    if (Given.Help || Given.Version) {
      std::fputs(Given.Help ? predict::Usage : "zelvanor-predict " ZELVANOR_VERSION "\n", stdout);
      Status = predict::AllWell;
    } else {
      Status = predict::RunAll(Given);
    }
  } catch (const Failure& Problem) {
    std::fprintf(stderr, "zelvanor-predict: %s\n", Problem.What.c_str());
  }
  std::fflush(nullptr);
  _exit(Status);
}
