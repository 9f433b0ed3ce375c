#include "nmrcalc/engines/Supervise.h"

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <thread>

#include "basic/Failure.h"
#include "nmrcalc/engines/EngineFiles.h"

namespace nmrcalc {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int WatchMilliseconds = 200;
constexpr int KeeperMilliseconds = 50;

double SecondsSince(Clock::time_point Start) { return std::chrono::duration<double>(Clock::now() - Start).count(); }

volatile std::sig_atomic_t EndAsked = 0;

void AskForEnd(int) { EndAsked = 1; }

// SIGTERM and SIGINT ask for the end while it lives.
struct EndSignals {
  struct sigaction FormerTerm {};
  struct sigaction FormerInt {};
  EndSignals() {
    EndAsked = 0;
    struct sigaction Action {};
    Action.sa_handler = AskForEnd;
    sigaction(SIGTERM, &Action, &FormerTerm);
    sigaction(SIGINT, &Action, &FormerInt);
  }
  ~EndSignals() {
    sigaction(SIGTERM, &FormerTerm, nullptr);
    sigaction(SIGINT, &FormerInt, nullptr);
  }
  EndSignals(const EndSignals&) = delete;
  EndSignals& operator=(const EndSignals&) = delete;
};

// What the keeper tells at the end, in one write.
struct KeeperReport {
  int StartProblem = 0;  // errno; 0: the program was started
  int Status = 0;        // of waitpid
  int Stopped = 0;       // 1: it had to be ended; no bool, which would leave bytes behind it unset
};

// The parent of a process, from /proc/PID/stat, where the name in parentheses may hold anything; 0 when it is gone.
pid_t ParentOf(const char* Name) {
  const std::string Path = std::string("/proc/") + Name + "/stat";
  std::FILE* File = std::fopen(Path.c_str(), "re");
  if (File == nullptr) return 0;
  char Line[512];
  const std::size_t Count = std::fread(Line, 1, sizeof Line - 1, File);
  std::fclose(File);
  Line[Count] = '\0';
  const char* Behind = std::strrchr(Line, ')');
  if (Behind == nullptr || std::strlen(Behind) < 5) return 0;
  return static_cast<pid_t>(std::strtol(Behind + 4, nullptr, 10));  // ") S PARENT"
}

// Every process below this one.
std::vector<pid_t> ListDescendants() {
  std::map<pid_t, pid_t> Parents;
  if (DIR* Folder = opendir("/proc"); Folder != nullptr) {
    while (const dirent* Entry = readdir(Folder)) {
      if (Entry->d_name[0] < '0' || Entry->d_name[0] > '9') continue;
      if (const pid_t Parent = ParentOf(Entry->d_name); Parent > 0) {
        Parents[static_cast<pid_t>(std::strtol(Entry->d_name, nullptr, 10))] = Parent;
      }
    }
    closedir(Folder);
  }
  const pid_t Own = getpid();
  std::vector<pid_t> Below;
  for (const auto& [Process, Parent] : Parents) {
    pid_t Above = Parent;
    for (std::size_t Steps = 0; Above > 1 && Above != Own && Steps < Parents.size(); ++Steps) {
      const auto Next = Parents.find(Above);
      Above = Next == Parents.end() ? 0 : Next->second;
    }
    if (Above == Own) Below.push_back(Process);
  }
  return Below;
}

// Takes in the ended ones; keeps the status of the program itself. True when no process is left.
bool Reap(pid_t Program, KeeperReport& Report, bool& ProgramEnded) {
  for (;;) {
    int Status = 0;
    const pid_t Ended = waitpid(-1, &Status, WNOHANG);
    if (Ended < 0) return errno == ECHILD;
    if (Ended == 0) return false;
    if (Ended == Program) {
      Report.Status = Status;
      ProgramEnded = true;
    }
  }
}

void Pause(int Milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(Milliseconds)); }

// Asks everything below to end, waits, and ends what is left.
void EndDescendants(pid_t Program, KeeperReport& Report, bool& ProgramEnded, bool Grace) {
  if (Grace) {
    for (const pid_t Process : ListDescendants()) kill(Process, SIGTERM);
    const auto Start = Clock::now();
    while (SecondsSince(Start) < GraceSeconds && !Reap(Program, Report, ProgramEnded)) Pause(KeeperMilliseconds);
  }
  const auto Start = Clock::now();
  while (!Reap(Program, Report, ProgramEnded) && SecondsSince(Start) < KillSeconds) {
    for (const pid_t Process : ListDescendants()) kill(Process, SIGKILL);
    Pause(KeeperMilliseconds);
  }
}

// In the child that becomes the program; returns only when that fails.
void BecomeProgram(const ProgramRun& Run) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  for (const auto& [Name, Value] : Run.Environment) setenv(Name.c_str(), Value.c_str(), 0);
  const int Output = open(Run.OutputPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  const int Nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
  if (Output < 0 || Nothing < 0 || chdir(Run.Directory.c_str()) != 0) return;
  dup2(Nothing, STDIN_FILENO);
  dup2(Output, STDOUT_FILENO);
  dup2(Output, STDERR_FILENO);
  std::signal(SIGTERM, SIG_DFL);
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGPIPE, SIG_DFL);
  std::vector<char*> Arguments;
  for (const std::string& Word : Run.Words) Arguments.push_back(const_cast<char*>(Word.c_str()));
  Arguments.push_back(nullptr);
  execvp(Arguments[0], Arguments.data());
}

// The child's errno comes through a pipe that closes when the program has started.
pid_t StartProgram(const ProgramRun& Run, int& Problem) {
  int Line[2];
  if (pipe2(Line, O_CLOEXEC) != 0) {
    Problem = errno;
    return 0;
  }
  const pid_t Program = fork();
  if (Program == 0) {
    BecomeProgram(Run);
    const int Reason = errno;
    [[maybe_unused]] const ssize_t Written = write(Line[1], &Reason, sizeof Reason);
    _exit(127);
  }
  if (Program < 0) Problem = errno;
  close(Line[1]);
  if (read(Line[0], &Problem, sizeof Problem) != sizeof Problem && Program > 0) Problem = 0;
  close(Line[0]);
  return Program;
}

[[noreturn]] void KeepProgram(const ProgramRun& Run, int FromParent, int ToParent) {
  setsid();
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  std::signal(SIGHUP, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
  const EndSignals Signals;
  KeeperReport Report;
  const pid_t Program = StartProgram(Run, Report.StartProblem);
  bool Ended = Report.StartProblem != 0;
  while (!Ended && Report.Stopped == 0) {
    pollfd Parent{.fd = FromParent, .events = POLLIN, .revents = 0};
    poll(&Parent, 1, KeeperMilliseconds);
    Report.Stopped = EndAsked != 0 || Parent.revents != 0 ? 1 : 0;
    Reap(Program, Report, Ended);
  }
  EndDescendants(Program, Report, Ended, Report.Stopped != 0);
  if (write(ToParent, &Report, sizeof Report) == sizeof Report) {
    // The parent looks at what the run has left before it hangs up.
    pollfd Parent{.fd = FromParent, .events = POLLIN, .revents = 0};
    while (poll(&Parent, 1, -1) < 0 && errno == EINTR) {
    }
  }
  for (const std::string& Directory : Run.Remove) {
    std::error_code Error;
    std::filesystem::remove_all(Directory, Error);
  }
  _exit(0);
}

// The line to a keeper. At its end the keeper is let go and clears up; without one that is done here.
struct KeeperLine {
  const ProgramRun& Run;
  pid_t Keeper = -1;
  int ToKeeper = -1;
  int FromKeeper = -1;
  explicit KeeperLine(const ProgramRun& Owner) : Run(Owner) {}
  ~KeeperLine() {
    if (ToKeeper >= 0) close(ToKeeper);
    while (Keeper > 0 && waitpid(Keeper, nullptr, 0) < 0 && errno == EINTR) {
    }
    if (FromKeeper >= 0) close(FromKeeper);
    std::error_code Error;
    for (const std::string& Directory : Run.Remove) std::filesystem::remove_all(Directory, Error);
  }
  KeeperLine(const KeeperLine&) = delete;
  KeeperLine& operator=(const KeeperLine&) = delete;
};

// Starts a keeper; why that failed, else an empty text.
std::string StartKeeper(const ProgramRun& Run, KeeperLine& Line) {
  int Down[2] = {-1, -1};
  int Up[2] = {-1, -1};
  if (pipe2(Down, O_CLOEXEC) != 0 || pipe2(Up, O_CLOEXEC) != 0) {
    std::string Problem = zelvanor::FailureTextFromErrno(errno);
    for (const int End : Down) close(End);
    return Problem;
  }
  Line.Keeper = fork();
  if (Line.Keeper == 0) {
    close(Down[1]);
    close(Up[0]);
    KeepProgram(Run, Down[0], Up[1]);
  }
  const int Problem = errno;
  close(Down[0]);
  close(Up[1]);
  Line.ToKeeper = Down[1];
  Line.FromKeeper = Up[0];
  return Line.Keeper < 0 ? zelvanor::FailureTextFromErrno(Problem) : "";
}

// Waits for the keeper's report; asks it to end the run when that has to end before.
RunOutcome WatchKeeper(const ProgramRun& Run, const KeeperLine& Line, const std::function<void(double)>& Watch) {
  const auto Start = Clock::now();
  const pid_t Starter = getppid();
  RunOutcome Outcome{.End = RunEnd::Ended};
  KeeperReport Report;
  ssize_t Count = -1;
  for (;;) {
    pollfd Keeper{.fd = Line.FromKeeper, .events = POLLIN, .revents = 0};
    if (poll(&Keeper, 1, WatchMilliseconds) > 0) {
      Count = read(Line.FromKeeper, &Report, sizeof Report);
      if (Count >= 0 || errno != EINTR) break;
    }
    const double Seconds = SecondsSince(Start);
    if (Outcome.End == RunEnd::Ended) {
      if (Run.TimeLimit > 0 && Seconds > Run.TimeLimit) Outcome.End = RunEnd::TimedOut;
      if (EndAsked != 0 || getppid() != Starter) Outcome.End = RunEnd::Cancelled;
    }
    // Each time again: one that comes before the keeper listens is lost.
    if (Outcome.End != RunEnd::Ended) {
      kill(Line.Keeper, SIGTERM);
    } else if (Watch) {
      Watch(Seconds);
    }
  }
  Outcome.Seconds = SecondsSince(Start);
  if (Outcome.End != RunEnd::Ended) return Outcome;
  if (Count != sizeof Report) {
    Outcome.Signal = SIGKILL;  // the keeper itself was killed
  } else if (Report.StartProblem != 0) {
    Outcome.End = RunEnd::NotStarted;
    Outcome.Problem = zelvanor::FailureTextFromErrno(Report.StartProblem);
  } else if (WIFSIGNALED(Report.Status)) {
    Outcome.Signal = WTERMSIG(Report.Status);
  } else {
    Outcome.ExitCode = WEXITSTATUS(Report.Status);
  }
  return Outcome;
}

}  // namespace

void RunSupervised(const ProgramRun& Run, const std::function<void(double)>& Watch,
                   const std::function<void(const RunOutcome&)>& Finish) {
  const EndSignals Signals;
  KeeperLine Line(Run);
  for (const auto& [Path, Text] : Run.Files) WriteScratchFile(Path, Text);
  const std::string Problem = StartKeeper(Run, Line);
  Finish(Problem.empty() ? WatchKeeper(Run, Line, Watch) : RunOutcome{.End = RunEnd::NotStarted, .Problem = Problem});
}

std::string FindProgram(const std::string& Name) {
  if (Name.empty()) return "";
  if (Name.find('/') != std::string::npos) return access(Name.c_str(), X_OK) == 0 ? Name : "";
  const char* Value = std::getenv("PATH");
  std::string Rest = Value != nullptr ? Value : "/usr/local/bin:/usr/bin:/bin";
  while (!Rest.empty()) {
    const std::size_t Colon = std::min(Rest.find(':'), Rest.size());
    std::string Path = (Colon == 0 ? "." : Rest.substr(0, Colon)) + "/" + Name;
    std::error_code Error;
    if (access(Path.c_str(), X_OK) == 0 && std::filesystem::is_regular_file(Path, Error)) return Path;
    Rest.erase(0, Colon + 1);
  }
  return "";
}

}  // namespace nmrcalc
