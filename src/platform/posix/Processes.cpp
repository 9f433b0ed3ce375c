#include "platform/posix/Processes.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <map>
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

// The writing end of the pipe that a keeper listens to, by the process that it keeps.
std::map<pid_t, int>& Keepers() {
  static std::map<pid_t, int> Pipes;
  return Pipes;
}

// Between fork and its end nothing but system calls is safe: another thread may hold any lock. The pipe brings the
// group; then its end means that the program is gone, and one more word that the process is.
[[noreturn]] void Keep(int Pipe) {
  setpgid(0, 0);  // what the terminal sends to the program is not for the keeper
  if (Pipe > 0) close_range(0, static_cast<unsigned>(Pipe) - 1, 0);
  close_range(static_cast<unsigned>(Pipe) + 1, ~0U, 0);
  for (int Signal : {SIGTERM, SIGINT, SIGHUP, SIGPIPE}) signal(Signal, SIG_IGN);
  pid_t Group = 0;
  pid_t Word = 0;
  const auto Read = [Pipe](pid_t& Value) {
    ssize_t Length = 0;
    do {
      Length = read(Pipe, &Value, sizeof Value);
    } while (Length < 0 && errno == EINTR);
    return Length == static_cast<ssize_t>(sizeof Value);
  };
  if (Read(Group) && !Read(Word)) kill(-Group, SIGKILL);
  _exit(0);
}

// A keeper outlives the program by the moment that it takes to end the process. Without one, when the system gives
// none, only the signals that can be caught end the process. The first fork makes it no one's child: nobody has to wait
// for it.
int StartKeeper() {
  int Pipe[2];
  if (pipe2(Pipe, O_CLOEXEC) != 0) return -1;
  const pid_t Between = fork();
  if (Between == 0) {
    if (fork() == 0) {
      close(Pipe[1]);
      Keep(Pipe[0]);
    }
    _exit(0);
  }
  close(Pipe[0]);
  if (Between > 0) waitpid(Between, nullptr, 0);
  return Pipe[1];
}

void TellKeeper(int Pipe, pid_t Word) {
  if (Pipe >= 0 && write(Pipe, &Word, sizeof Word) < 0) return;  // a keeper that is gone keeps nothing
}

void DismissKeeper(pid_t Process) {
  const auto Entry = Keepers().find(Process);
  if (Entry == Keepers().end()) return;
  TellKeeper(Entry->second, 0);
  close(Entry->second);
  Keepers().erase(Entry);
}

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
  const int Keeper = StartKeeper();
  pid_t Process = 0;
  const int Outcome = posix_spawn(&Process, Arguments[0], &Actions, &Attributes, Arguments.data(), environ);
  posix_spawnattr_destroy(&Attributes);
  posix_spawn_file_actions_destroy(&Actions);
  if (Outcome != 0) {
    TellKeeper(Keeper, 0);
    if (Keeper >= 0) close(Keeper);
    throw Failure(FailureTextFromErrno(Outcome));
  }
  TellKeeper(Keeper, Process);
  if (Keeper >= 0) Keepers()[Process] = Keeper;
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
  DismissKeeper(Handle);
  int Status = 0;
  waitpid(Handle, &Status, 0);
  return {true, WIFEXITED(Status) ? WEXITSTATUS(Status) : 128 + WTERMSIG(Status)};
}

void StopProcess(Long Handle) {
  if (Running().contains(Handle)) kill(-Handle, SIGKILL);
}

void StopRunningProcess() {
  if (const pid_t Group = LatestGroup; Group > 0) kill(-Group, SIGKILL);
}

bool AnyProcessRuns() { return !Running().empty(); }

}  // namespace zelvanor
