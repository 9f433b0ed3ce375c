#include "platform/TextFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <map>
#include <utility>

#include "basic/TextTools.h"

namespace zelvanor {

namespace {

constexpr std::size_t WritePiece = 1 << 16;
constexpr int LargestFileNumber = 511;

struct OpenFile {
  int Descriptor = -1;  // of a writer
  Text Content;         // of a reader: the file; of a writer: what waits to be written
  std::size_t Place = 0;
  std::size_t Feed = 0;  // the line feed at Place or behind it, or the content's end; found once, not for each line
};

std::map<int, OpenFile>& OpenFiles() {
  static std::map<int, OpenFile> Files;
  return Files;
}

OpenFile& FileOf(Integer FileNumber) {
  const auto Entry = OpenFiles().find(FileNumber);
  if (Entry == OpenFiles().end()) throw Failure(failures::BadFileNumber);
  return Entry->second;
}

[[noreturn]] void ThrowErrno() { throw Failure(FailureTextFromErrno(errno)); }

// A descriptor that closes itself.
struct Descriptor {
  int Value;
  explicit Descriptor(int Value) : Value(Value) {}
  ~Descriptor() {
    if (Value >= 0) close(Value);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
};

// A missing folder is told from a missing file.
Descriptor OpenToRead(const Text& Path, int MoreFlags) {
  const int File = open(Path.c_str(), O_RDONLY | O_CLOEXEC | MoreFlags);
  if (File >= 0) return Descriptor(File);
  const int Problem = errno;
  if (Problem == ENOENT && Path.find('/') != Text::npos) {
    struct stat Folder {};
    if (stat(Path.substr(0, Path.rfind('/') + 1).c_str(), &Folder) != 0) throw Failure(failures::PathNotFound);
  }
  throw Failure(FailureTextFromErrno(Problem));
}

Text ReadWhole(const Text& Path) {
  const Descriptor File = OpenToRead(Path, 0);
  Text Content;
  struct stat Status {};
  if (fstat(File.Value, &Status) == 0 && S_ISREG(Status.st_mode)) {
    Content.reserve(static_cast<std::size_t>(Status.st_size) + 1);
  }
  std::array<char, WritePiece> Piece{};
  for (;;) {
    const ssize_t Count = read(File.Value, Piece.data(), Piece.size());
    if (Count == 0) return Content;
    if (Count > 0) {
      Content.append(Piece.data(), static_cast<std::size_t>(Count));
    } else if (errno != EINTR) {
      ThrowErrno();
    }
  }
}

void WriteAll(int Target, TextView Content) {
  while (!Content.empty()) {
    const ssize_t Count = write(Target, Content.data(), Content.size());
    if (Count > 0) {
      Content.remove_prefix(static_cast<std::size_t>(Count));
    } else if (Count < 0 && errno != EINTR) {
      ThrowErrno();
    }
  }
}

void Flush(OpenFile& File) {
  // What is handed over counts as written, even where it fails: a later close must not try it again.
  const Text Waiting = std::exchange(File.Content, {});
  WriteAll(File.Descriptor, Waiting);
}

Text FormerPath(const Text& Path) { return Path + "~"; }

}  // namespace

Integer FreeFile() {
  for (int Number = 1; Number <= LargestFileNumber; ++Number) {
    if (!OpenFiles().contains(Number)) return {Number};
  }
  throw Failure(failures::TooManyFiles);
}

void OpenForInput(const Text& Path, Integer FileNumber) {
  OpenFile File;
  File.Content = ReadWhole(Path);
  OpenFiles()[FileNumber] = std::move(File);
}

void OpenForOutput(const Text& Path, Integer FileNumber) {
  OpenFile File;
  File.Descriptor = open(Path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (File.Descriptor < 0) throw Failure(errno == ENOENT ? failures::PathNotFound : FailureTextFromErrno(errno));
  OpenFiles()[FileNumber] = std::move(File);
}

bool AtEnd(Integer FileNumber) {
  const OpenFile& File = FileOf(FileNumber);
  return File.Place >= File.Content.size();
}

TextView LineInput(Integer FileNumber) {
  OpenFile& File = FileOf(FileNumber);
  const TextView Content = File.Content;
  if (File.Place >= Content.size()) throw Failure(failures::PastEnd);
  if (File.Feed <= File.Place) File.Feed = std::min(Content.find('\n', File.Place), Content.size());
  // Up to the line feed, less the carriage return in front of it; a return farther forward ends the line by itself.
  const TextView Rest = Content.substr(File.Place, File.Feed - File.Place);
  const std::size_t Return = std::min(Rest.find('\r'), Rest.size());
  File.Place += (Return + 1 == Rest.size() ? Rest.size() : Return) + 1;
  return Rest.substr(0, Return);
}

Double RemainingBytes(Integer FileNumber) {
  const OpenFile& File = FileOf(FileNumber);
  return static_cast<Double>(File.Content.size() - std::min(File.Place, File.Content.size()));
}

void PrintLine(Integer FileNumber, TextView Line) {
  OpenFile& File = FileOf(FileNumber);
  File.Content.append(Line).append("\r\n");
  if (File.Content.size() >= WritePiece) Flush(File);
}

void CloseFile(Integer FileNumber) {
  const auto Entry = OpenFiles().find(FileNumber);
  if (Entry == OpenFiles().end()) return;
  OpenFile File = std::move(Entry->second);
  OpenFiles().erase(Entry);
  if (File.Descriptor < 0) return;
  const Descriptor Target(File.Descriptor);
  Flush(File);
}

void CloseFileQuietly(Integer FileNumber) {
  try {
    CloseFile(FileNumber);
  } catch (const Failure&) {
    // The caller reports the failure that brought it here.
  }
}

Text WhyUnreadable(const Text& Path) {
  try {
    // Non-blocking, so that a pipe without a writer does not hold the program up.
    const Descriptor File = OpenToRead(Path, O_NONBLOCK);
    struct stat Status {};
    if (fstat(File.Value, &Status) == 0 && S_ISDIR(Status.st_mode)) return failures::PathAccess;
    return {};
  } catch (const Failure& Problem) {
    return Problem.What;
  }
}

Flag FileExists(const Text& Path) { return ToFlag(WhyUnreadable(Path).empty()); }

bool KeepFormerContent(const Text& Path) {
  struct stat Status {};
  if (stat(Path.c_str(), &Status) != 0 || !S_ISREG(Status.st_mode) || Status.st_size == 0) return false;
  const Text Content = ReadWhole(Path);
  const Descriptor Copy(
      open(FormerPath(Path).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, Status.st_mode & 0777));
  if (Copy.Value < 0) ThrowErrno();
  WriteAll(Copy.Value, Content);
  if (fsync(Copy.Value) != 0) ThrowErrno();
  return true;
}

void DropFormerContent(const Text& Path) {
  // The new content is on the disk before the old one goes.
  const Descriptor Fresh(open(Path.c_str(), O_RDONLY | O_CLOEXEC));
  if (Fresh.Value >= 0 && fsync(Fresh.Value) == 0) unlink(FormerPath(Path).c_str());
}

}  // namespace zelvanor
