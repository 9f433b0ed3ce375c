#include <poll.h>

#include <cstdio>

#include "hostbus/BusNames.h"
#include "hostbus/ClipboardFile.h"
#include "morvantis-sim/Display.h"

namespace zelvanor::morvantis_sim {

namespace {

constexpr int CannotRun = 2;

int Complain(const Text& Reason) {
  std::fprintf(stderr, "morvantis-sim: %s\n", Reason.c_str());
  return CannotRun;
}

int RunWithoutDisplay(Simulator& Sim) {
  Sim.Host.SetClipboard = hostbus::WriteClipboardFile;
  StartProgram(Sim);
  for (;;) {
    if (!hostbus::ServePending(*Sim.Server)) return 1;
    if (const std::optional<int> Status = StatusOfEnded(Sim)) return *Status;
    constexpr int Often = 100;  // milliseconds
    pollfd Requests{hostbus::ServerDescriptor(*Sim.Server), POLLIN, 0};
    poll(&Requests, 1, Sim.Started == 0 ? -1 : Often);
  }
}

}  // namespace

int Run(int Count, char** Words) {
  try {
    Options Given = ReadOptions({Words + 1, Words + Count});
    if (Given.Help) {
      std::fputs(Usage, stdout);
      return 0;
    }
    Simulator Sim;
    OpenSimulator(Sim, std::move(Given));
    std::printf("morvantis-sim: %s\n", hostbus::BusName(hostbus::HostApplication, hostbus::Topic).c_str());
    std::fflush(stdout);
    if (!hostbus::IsClipboardFileNamed() && HasDisplay()) return RunOnDisplay(Sim, Count, Words);
    return RunWithoutDisplay(Sim);
  } catch (const Failure& Problem) {
    return Complain(Problem.What);
  }
}

}  // namespace zelvanor::morvantis_sim

int main(int Count, char** Words) { return zelvanor::morvantis_sim::Run(Count, Words); }
