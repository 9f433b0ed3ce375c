#include "shell/Progress.h"

#include <chrono>
#include <optional>

#include "basic/Numbers.h"
#include "basic/TextTools.h"
#include "platform/TextFiles.h"

namespace zelvanor {

ProgressState Progress;

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds BetweenLooks(100);
constexpr std::chrono::milliseconds BeforeCancel(200);

Text ProgressFile;
Clock::time_point NextLook;
std::optional<Clock::time_point> CancelAt;
bool CancelNext = false;

// A line that is cut or makes no sense leaves what was known.
void TakeLine(TextView Line) {
  constexpr std::size_t NumNumbers = 4;
  const std::vector<Text> Words = SplitAtBlanks(Text(Line));
  if (Words.size() < NumNumbers) return;
  Progress.Stage = ToLong(PrefixNumber(Words[0]));
  Progress.Step = ToLong(PrefixNumber(Words[1]));
  Progress.Steps = ToLong(PrefixNumber(Words[2]));
  Progress.Seconds = PrefixNumber(Words[3]);
  Progress.What.clear();
  for (std::size_t Word = NumNumbers; Word < Words.size(); ++Word) {
    Progress.What += (Progress.What.empty() ? "" : " ") + Words[Word];
  }
}

void BeginProgress(const Text& File) {
  RemoveFile(File);
  ProgressFile = File;
  Progress = {};
  Progress.Runs = true;
  CancelAt.reset();
  if (CancelNext) CancelAt = Clock::now() + BeforeCancel;
  CancelNext = false;
}

void FollowProgress() {
  const Clock::time_point Now = Clock::now();
  if (CancelAt && Now >= *CancelAt) Progress.CancelAsked = true;
  if (Now < NextLook) return;
  NextLook = Now + BetweenLooks;
  try {
    const Text Whole = ReadWholeFile(ProgressFile);
    TakeLine(TextView(Whole).substr(0, Whole.find('\n')));
  } catch (const Failure&) {
    // There is none yet, or it is being replaced.
  }
}

void EndProgress() {
  RemoveFile(ProgressFile);
  Progress = {};
  CancelAt.reset();
}

}  // namespace

ProcessEnd WaitForProcess(Long ProcessId, const Text& File) {
  const Long Handle = Platform.OpenProcess(ProcessId);
  ProcessEnd End;
  BeginProgress(File);
  for (;;) {
    Platform.DoEvents();
    End.Status = Platform.GetExitCodeProcess(Handle);
    if (!End.Status.Known || End.Status.ExitCode != StillActive) break;
    FollowProgress();
    if (!Progress.CancelAsked || End.Cancelled) continue;
    Platform.StopProcess(Handle);
    End.Cancelled = true;
  }
  EndProgress();
  return End;
}

void AskCancel() { Progress.CancelAsked = Progress.Runs; }
void AskCancelLater() { CancelNext = true; }

}  // namespace zelvanor
