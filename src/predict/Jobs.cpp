#include "predict/Jobs.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "platform/TextFiles.h"
#include "platform/posix/PosixServices.h"

namespace zelvanor::predict {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int Grace = 2;  // seconds that a job has for ending its own processes

sigset_t Watched() {
  sigset_t All;
  sigemptyset(&All);
  for (const int Signal : {SIGCHLD, SIGINT, SIGTERM, SIGHUP}) sigaddset(&All, Signal);
  return All;
}

Text ResultPath(const Text& Folder) { return Folder + "/result"; }

// Four lines: whether it failed, the message, the numbers, the object.
void WriteResult(const Text& Folder, const Result& Made) {
  WriteWholeFile(ResultPath(Folder), Text(Made.Failed ? "failed" : "ok") + "\n" + Made.Message + "\n" + Made.Numbers +
                                         "\n" + Made.Json + "\n");
}

bool ReadResult(const Text& Folder, Result& Made) {
  Text All;
  try {
    All = ReadWholeFile(ResultPath(Folder));
  } catch (const Failure&) {
    return false;
  }
  Text* const Parts[] = {&Made.Message, &Made.Numbers, &Made.Json};
  std::size_t Place = All.find('\n');
  Made.Failed = All.substr(0, Place) != "ok";
  for (Text* Part : Parts) {
    if (Place == Text::npos) return false;
    const std::size_t End = All.find('\n', Place + 1);
    if (End == Text::npos) return false;
    *Part = All.substr(Place + 1, End - Place - 1);
    Place = End;
  }
  return true;
}

[[noreturn]] void Work(const Options& Given, const Molecule& One, const Text& Folder) {
  const sigset_t Signals = Watched();
  TakeEndSignals();
  sigprocmask(SIG_UNBLOCK, &Signals, nullptr);
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  try {
    WriteResult(Folder, ComputeMolecule(Given, One, Folder));
  } catch (...) {
    _exit(1);
  }
  _exit(0);
}

double SecondsOf(const Job& One) { return std::chrono::duration<double>(Clock::now() - One.Start).count(); }

void EndLate(Jobs& All) {
  for (Job& One : All.Running) {
    if (All.Given.Seconds == 0) return;
    const double Late = SecondsOf(One) - All.Given.Seconds;
    if (Late > 0 && !One.OutOfTime) {
      One.OutOfTime = true;
      kill(One.Process, SIGTERM);
    } else if (Late > Grace) {
      kill(One.Process, SIGKILL);
    }
  }
}

Text ReasonOf(const Job& One, int Status, Long Seconds) {
  if (One.OutOfTime) return "it takes longer than " + std::to_string(Seconds) + " s";
  if (WIFSIGNALED(Status)) return "the computation was ended by signal " + std::to_string(WTERMSIG(Status));
  return "the computation has crashed";
}

}  // namespace

void BlockSignals() {
  const sigset_t Signals = Watched();
  sigprocmask(SIG_BLOCK, &Signals, nullptr);
}

void StartJob(Jobs& All, Molecule One) {
  Job Next;
  Next.Folder = All.Root + "/" + std::to_string(One.Place);
  std::filesystem::create_directory(Next.Folder);
  Next.Start = Clock::now();
  std::fflush(nullptr);
  Next.Process = fork();
  if (Next.Process == 0) Work(All.Given, One, Next.Folder);
  if (Next.Process < 0) throw Failure(FailureTextFromErrno(errno));
  Next.One = std::move(One);
  All.Running.push_back(std::move(Next));
}

int WaitForJobs(Jobs& All, int Milliseconds) {
  const sigset_t Signals = Watched();
  const timespec Longest{Milliseconds / 1000, Milliseconds % 1000 * 1000000L};
  const int Signal = sigtimedwait(&Signals, nullptr, &Longest);
  EndLate(All);
  return Signal == SIGINT || Signal == SIGTERM || Signal == SIGHUP ? Signal : 0;
}

bool TakeEnded(Jobs& All, Job& Ended, Result& Made) {
  for (std::size_t K = 0; K < All.Running.size(); ++K) {
    int Status = 0;
    if (waitpid(All.Running[K].Process, &Status, WNOHANG) == 0) continue;
    Ended = std::move(All.Running[K]);
    All.Running.erase(All.Running.begin() + static_cast<std::ptrdiff_t>(K));
    if (!ReadResult(Ended.Folder, Made)) {
      Made = {.Failed = true, .Message = ReasonOf(Ended, Status, All.Given.Seconds)};
      Made.Json = FailedJson(All.Given, Ended.One.Name, Made.Message, SecondsOf(Ended));
    }
    return true;
  }
  return false;
}

void EndAll(Jobs& All) {
  for (const Job& One : All.Running) kill(One.Process, SIGTERM);
  const auto Start = Clock::now();
  while (!All.Running.empty()) {
    const bool Late = Clock::now() - Start > std::chrono::seconds(Grace);
    std::erase_if(All.Running, [&](const Job& One) {
      if (Late) kill(One.Process, SIGKILL);
      return waitpid(One.Process, nullptr, Late ? 0 : WNOHANG) != 0;
    });
    if (!All.Running.empty()) usleep(20000);
  }
}

}  // namespace zelvanor::predict
