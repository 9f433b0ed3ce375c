#include "platform/posix/Processes.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <set>
#include <vector>

#include "basic/TextTools.h"
#include "platform/posix/PosixServices.h"

namespace zelvanor {

namespace {

std::set<pid_t>& Running() {
  static std::set<pid_t> Processes;
  return Processes;
}

}  // namespace

Long StartProcess(const Text& CommandLine) {
  std::vector<Text> Words = SplitAtBlanks(CommandLine);
  if (Words.empty()) throw Failure(failures::FileNotFound);
  std::vector<char*> Arguments;
  Arguments.reserve(Words.size() + 1);
  for (Text& Word : Words) Arguments.push_back(Word.data());
  Arguments.push_back(nullptr);

  posix_spawn_file_actions_t Actions;
  posix_spawn_file_actions_init(&Actions);
  posix_spawn_file_actions_addopen(&Actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&Actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t Process = 0;
  const int Outcome = posix_spawn(&Process, Arguments[0], &Actions, nullptr, Arguments.data(), environ);
  posix_spawn_file_actions_destroy(&Actions);
  if (Outcome != 0) throw Failure(FailureTextFromErrno(Outcome));
  Running().insert(Process);
  return Process;
}

Long OpenStartedProcess(Long ProcessId) { return Running().contains(ProcessId) ? ProcessId : 0; }

ProcessStatus QueryProcess(Long Handle) {
  if (!Running().contains(Handle)) return {};
  int Status = 0;
  const pid_t Ended = waitpid(Handle, &Status, WNOHANG);
  if (Ended == 0 || (Ended < 0 && errno == EINTR)) return {true, StillActive};
  Running().erase(Handle);
  if (Ended < 0) return {};
  return {true, WIFEXITED(Status) ? WEXITSTATUS(Status) : 128 + WTERMSIG(Status)};
}

bool AnyProcessRuns() { return !Running().empty(); }

}  // namespace zelvanor
