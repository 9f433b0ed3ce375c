#include "convert/Worker.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <exception>

// AddressSanitizer reserves more than any limit would leave; each compiler tells of it in its own way.
#ifdef __SANITIZE_ADDRESS__
#define UNLIMITED_MEMORY
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define UNLIMITED_MEMORY
#endif
#endif

namespace zelvanor::convert {

namespace {

using Clock = std::chrono::steady_clock;

constexpr char Good = '+';
constexpr char Bad = '-';

void WriteAll(int Target, TextView Value) {
  while (!Value.empty()) {
    const ssize_t Done = write(Target, Value.data(), Value.size());
    if (Done < 0 && errno != EINTR) _exit(1);
    if (Done > 0) Value.remove_prefix(static_cast<std::size_t>(Done));
  }
}

void LimitMemory() {
#ifndef UNLIMITED_MEMORY
  constexpr rlim_t Most = rlim_t{3} << 30;
  const rlimit Limit{Most, Most};
  setrlimit(RLIMIT_AS, &Limit);
#endif
  const rlimit NoCore{0, 0};
  setrlimit(RLIMIT_CORE, &NoCore);
}

[[noreturn]] void Work(const std::function<Text()>& Do, int Target) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  LimitMemory();
  // The libraries talk of their own to both.
  const int Nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  dup2(Nowhere, STDOUT_FILENO);
  dup2(Nowhere, STDERR_FILENO);
  try {
    const Text Result = Do();
    WriteAll(Target, TextView(&Good, 1));
    WriteAll(Target, Result);
  } catch (const Failure& Problem) {
    WriteAll(Target, Bad + Problem.What);
  } catch (const std::bad_alloc&) {
    WriteAll(Target, Bad + Text("it takes more memory than it may"));
  } catch (const std::exception& Problem) {
    WriteAll(Target, Bad + Text(Problem.what()));
  }
  _exit(0);
}

// Milliseconds that are left, -1 for no limit.
int Left(Long Seconds, Clock::time_point Start) {
  if (Seconds == 0) return -1;
  const auto Used = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - Start).count();
  return static_cast<int>(std::clamp<long long>(Seconds * 1000LL - Used, 0, 1000000000));
}

// Until the other end closes. False when the time is up.
bool ReadAll(int Source, Text& Target, Long Seconds) {
  const Clock::time_point Start = Clock::now();
  std::array<char, 65536> Piece;
  for (;;) {
    pollfd Wait{Source, POLLIN, 0};
    const int Ready = poll(&Wait, 1, Left(Seconds, Start));
    if (Ready == 0) return false;
    const ssize_t Got = Ready < 0 ? -1 : read(Source, Piece.data(), Piece.size());
    if (Got < 0 && errno == EINTR) continue;
    if (Got <= 0) return true;
    Target.append(Piece.data(), static_cast<std::size_t>(Got));
  }
}

}  // namespace

Outcome DoApart(const std::function<Text()>& Do, Long Seconds) {
  int Ends[2];
  if (pipe2(Ends, O_CLOEXEC) != 0) return {{}, FailureTextFromErrno(errno)};
  const pid_t Child = fork();
  if (Child == 0) {
    close(Ends[0]);
    Work(Do, Ends[1]);
  }
  close(Ends[1]);
  Outcome Result;
  const bool InTime = Child > 0 && ReadAll(Ends[0], Result.Output, Seconds);
  close(Ends[0]);
  if (Child < 0) return {{}, FailureTextFromErrno(errno)};
  kill(Child, SIGKILL);
  waitpid(Child, nullptr, 0);
  if (!InTime) return {{}, "it takes longer than " + std::to_string(Seconds) + " s"};
  if (Result.Output.empty()) return {{}, "the conversion has crashed"};
  const bool Well = Result.Output[0] == Good;
  Result.Output.erase(0, 1);
  return Well ? std::move(Result) : Outcome{{}, std::move(Result.Output)};
}

}  // namespace zelvanor::convert
