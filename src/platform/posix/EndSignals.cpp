#include "platform/EndSignals.h"

#include <atomic>
#include <csignal>

#include "platform/posix/PosixServices.h"
#include "platform/posix/Processes.h"

namespace zelvanor {

namespace {

constexpr int EndingSignals[] = {SIGTERM, SIGINT, SIGHUP};

std::atomic<int> NumHeld = 0;
std::atomic<int> Waiting = 0;

// The process ends as the signal ends every other one, but for the calculation, which is not left behind.
void EndBy(int Signal) {
  StopRunningProcess();
  std::signal(Signal, SIG_DFL);
  std::raise(Signal);
}

void TakeSignal(int Signal) {
  Waiting = Signal;
  // A second look: what held it may have let go between the two.
  if (NumHeld == 0 && Waiting.exchange(0) != 0) EndBy(Signal);
}

}  // namespace

EndHeld::EndHeld() { ++NumHeld; }

EndHeld::~EndHeld() {
  if (--NumHeld > 0) return;
  if (const int Signal = Waiting.exchange(0); Signal != 0) EndBy(Signal);
}

void TakeEndSignals() {
  for (const int Signal : EndingSignals) {
    struct sigaction Action {};
    // One that is ignored, as under nohup, stays so.
    if (sigaction(Signal, nullptr, &Action) != 0 || Action.sa_handler == SIG_IGN) continue;
    Action = {};
    Action.sa_handler = TakeSignal;
    Action.sa_flags = SA_RESTART;
    sigaction(Signal, &Action, nullptr);
  }
  // A file that may not grow and a pipe without a reader are failures of the write, with a message.
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace zelvanor
