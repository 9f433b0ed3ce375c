#include "platform/posix/Processes.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <set>
#include <vector>

#include "basic/TextTools.h"
#include "platform/EndSignals.h"
#include "platform/posix/PosixServices.h"

namespace zelvanor {

namespace {

std::set<pid_t>& Running() {
  static std::set<pid_t> Processes;
  return Processes;
}

// The group of the process started last; 0 once it has ended.
std::atomic<pid_t> LatestGroup = 0;

}  // namespace

Long StartProcess(const std::vector<Text>& Words) {
  if (Words.empty()) throw Failure(failures::FileNotFound);
  std::vector<char*> Arguments;
  Arguments.reserve(Words.size() + 1);
  for (const Text& Word : Words) Arguments.push_back(const_cast<char*>(Word.c_str()));
  Arguments.push_back(nullptr);

  posix_spawn_file_actions_t Actions;
  posix_spawn_file_actions_init(&Actions);
  posix_spawn_file_actions_addopen(&Actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&Actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  // A group of its own: a backend that is a script is ended with what it has started. Ignored signals are the program's
  // own affair.
  posix_spawnattr_t Attributes;
  posix_spawnattr_init(&Attributes);
  sigset_t Defaults;
  sigemptyset(&Defaults);
  sigaddset(&Defaults, SIGPIPE);
  posix_spawnattr_setsigdefault(&Attributes, &Defaults);
  posix_spawnattr_setflags(&Attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF);

  const EndHeld Held;
  pid_t Process = 0;
  const int Outcome = posix_spawn(&Process, Arguments[0], &Actions, &Attributes, Arguments.data(), environ);
  posix_spawnattr_destroy(&Attributes);
  posix_spawn_file_actions_destroy(&Actions);
  if (Outcome != 0) throw Failure(FailureTextFromErrno(Outcome));
  Running().insert(Process);
  LatestGroup = Process;
  return Process;
}

Long OpenStartedProcess(Long ProcessId) { return Running().contains(ProcessId) ? ProcessId : 0; }

ProcessStatus QueryProcess(Long Handle) {
  if (!Running().contains(Handle)) return {};
  siginfo_t Ended{};
  const int Outcome = waitid(P_PID, static_cast<id_t>(Handle), &Ended, WEXITED | WNOHANG | WNOWAIT);
  if (Outcome == 0 ? Ended.si_pid == 0 : errno == EINTR) return {true, StillActive};
  Running().erase(Handle);
  if (Outcome != 0) return {};
  // Its id is still its own: the group can be no other one's.
  LatestGroup = 0;
  kill(-Handle, SIGKILL);
  int Status = 0;
  waitpid(Handle, &Status, 0);
  return {true, WIFEXITED(Status) ? WEXITSTATUS(Status) : 128 + WTERMSIG(Status)};
}

void StopRunningProcess() {
  if (const pid_t Group = LatestGroup; Group > 0) kill(-Group, SIGKILL);
}

bool AnyProcessRuns() { return !Running().empty(); }

}  // namespace zelvanor
