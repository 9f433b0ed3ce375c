#include "nmrcalc/Progress.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <mutex>

#include "nmrcalc/input/InputText.h"

namespace nmrcalc {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds ShortestPause(100);

struct ProgressState {
  std::mutex Lock{};
  std::string Path{};  // empty: nobody wants to know
  int Stage = 0;
  Clock::time_point Start{};
  Clock::time_point Next{};
};
ProgressState Progress;

}  // namespace

void StartProgress(const std::string& WorkDirectory, int Stage) {
  const std::lock_guard<std::mutex> Guard(Progress.Lock);
  Progress.Path = (std::filesystem::path(WorkDirectory) / "nmrprogress.out").string();
  Progress.Stage = Stage;
  Progress.Start = Clock::now();
  // A run that is over sooner is not worth a file.
  Progress.Next = Progress.Start + ShortestPause;
  std::error_code Ignored;
  std::filesystem::remove(Progress.Path, Ignored);
}

void ReportProgress(long Step, long Steps, const std::string& Text) {
  const std::lock_guard<std::mutex> Guard(Progress.Lock);
  const auto Now = Clock::now();
  if (Progress.Path.empty() || Now < Progress.Next) return;
  Progress.Next = Now + ShortestPause;
  const std::string Temporary = Progress.Path + ".tmp";
  {
    std::ofstream File(Temporary, std::ios::binary | std::ios::trunc);
    File << Progress.Stage << ' ' << Step << ' ' << Steps << ' '
         << FixedNumber(std::chrono::duration<double>(Now - Progress.Start).count(), 1) << ' ' << Text << '\n';
    File.close();
    if (!File) return;
  }
  std::error_code Ignored;
  std::filesystem::rename(Temporary, Progress.Path, Ignored);
}

void EndProgress() {
  const std::lock_guard<std::mutex> Guard(Progress.Lock);
  if (Progress.Path.empty()) return;
  std::error_code Ignored;
  std::filesystem::remove(Progress.Path, Ignored);
  std::filesystem::remove(Progress.Path + ".tmp", Ignored);
  Progress.Path.clear();
}

}  // namespace nmrcalc
