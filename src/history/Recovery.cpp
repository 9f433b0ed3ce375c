#include "history/Recovery.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <sstream>
#include <vector>

#include "history/History.h"
#include "history/Snapshot.h"
#include "platform/TextFiles.h"
#include "platform/posix/UserFolders.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds BetweenTimes(60);
constexpr const char* NamesEnding = ".txt";
constexpr const char* WorkEnding = ".NMR";

std::function<bool(const Text&)> WriteWork;
int OwnLock = -1;
Trial LastKept;
Clock::time_point NextTime;

Text RecoveryFolder() {
  const Text Folder = StateFolder();
  return Folder.empty() ? Folder : Folder + "/zelvanor";
}

// Without its ending.
Text OwnFile() { return RecoveryFolder() + "/work-" + std::to_string(getpid()); }

// A lock on the file; -1 where another one holds it or there is none to be had. It ends with the descriptor.
int TakeLock(const Text& Path, int Flags) {
  const int Lock = open(Path.c_str(), Flags | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (Lock < 0 || flock(Lock, LOCK_EX | LOCK_NB) == 0) return Lock;
  close(Lock);
  return -1;
}

// Names hold no line ends; one that does is as good as none.
Text NameLines() {
  Text Lines;
  for (const Text& Name : {W.DocumentTitle, W.DocumentPath, W.HostTextPath, W.ZMatrixPath}) {
    Lines += (Name.find_first_of("\r\n") == Text::npos ? Name : Text()) + "\n";
  }
  return Lines;
}

bool WriteNames() {
  const Text Lines = NameLines();
  return ftruncate(OwnLock, 0) == 0 &&
         pwrite(OwnLock, Lines.data(), Lines.size(), 0) == static_cast<ssize_t>(Lines.size());
}

bool MakeOwnFiles() {
  if (OwnLock >= 0) return true;
  std::error_code Ignored;
  std::filesystem::create_directories(RecoveryFolder(), Ignored);
  OwnLock = TakeLock(OwnFile() + NamesEnding, O_RDWR | O_CREAT);
  return OwnLock >= 0;
}

// The former copy stays until the new one is whole.
bool KeepNow() {
  if (!MakeOwnFiles()) return false;
  const Text Fresh = OwnFile() + ".new";
  if (!WriteNames() || !WriteWork(Fresh)) {
    RemoveFile(Fresh);
    return false;
  }
  std::error_code Problem;
  std::filesystem::rename(Fresh, OwnFile() + WorkEnding, Problem);
  return !Problem;
}

LeftWork ReadLeftWork(const Text& Stem) {
  LeftWork Left;
  Left.File = Stem + WorkEnding;
  Left.Names = Stem + NamesEnding;
  std::istringstream Lines(ReadWholeFile(Left.Names));
  for (Text* Name : {&Left.DocumentTitle, &Left.DocumentPath, &Left.HostTextPath, &Left.ZMatrixPath}) {
    std::getline(Lines, *Name);
  }
  return Left;
}

}  // namespace

void UseRecovery(std::function<bool(const Text& Path)> Write) {
  WriteWork = std::move(Write);
  NextTime = Clock::now() + BetweenTimes;
}

void KeepWork() {
  if (!WriteWork || RecoveryFolder().empty()) return;
  NextTime = Clock::now() + BetweenTimes;
  if (!IsSet(W.DocumentDirty)) return DropKeptWork();
  if (LastKept != nullptr && IsUnchanged(*LastKept)) return;
  LastKept = KeepNow() ? BeginTrial() : nullptr;
}

void KeepWorkAtTimes() {
  if (WriteWork && Clock::now() >= NextTime) KeepWork();
}

void DropKeptWork() {
  LastKept = nullptr;
  if (OwnLock < 0) return;
  for (const char* Ending : {".new", WorkEnding, NamesEnding}) RemoveFile(OwnFile() + Ending);
  close(OwnLock);
  OwnLock = -1;
}

std::optional<LeftWork> FindLeftWork() {
  std::optional<LeftWork> Newest;
  std::filesystem::file_time_type NewestTime;
  std::error_code Problem;
  for (std::filesystem::directory_iterator Each(RecoveryFolder(), Problem), End; !Problem && Each != End;
       Each.increment(Problem)) {
    if (Each->path().extension() != WorkEnding) continue;
    const Text Stem = (Each->path().parent_path() / Each->path().stem()).string();
    const auto Time = std::filesystem::last_write_time(Each->path(), Problem);
    const int Lock = TakeLock(Stem + NamesEnding, O_RDWR);
    if (Lock < 0) continue;
    close(Lock);
    if (Newest && Time <= NewestTime) continue;
    try {
      Newest = ReadLeftWork(Stem);
      NewestTime = Time;
    } catch (const Failure&) {
      // Gone meanwhile, or unreadable: not to be offered.
    }
  }
  return Newest;
}

void DropLeftWork(const LeftWork& Left) {
  RemoveFile(Left.File);
  RemoveFile(Left.Names);
}

}  // namespace zelvanor
