#include "platform/TextFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <map>
#include <new>
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
  Descriptor(Descriptor&& Other) noexcept : Value(std::exchange(Other.Value, -1)) {}
  ~Descriptor() {
    if (Value >= 0) close(Value);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
};

// A missing folder is told from a missing file. A pipe without a writer does not hold the program up.
Descriptor OpenToRead(const Text& Path) {
  const int File = open(Path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (File >= 0) return Descriptor(File);
  const int Problem = errno;
  if (Problem == ENOENT && Path.find('/') != Text::npos) {
    struct stat Folder {};
    if (stat(Path.substr(0, Path.rfind('/') + 1).c_str(), &Folder) != 0) throw Failure(failures::PathNotFound);
  }
  throw Failure(FailureTextFromErrno(Problem));
}

struct stat StatusOf(const Descriptor& File) {
  struct stat Status {};
  if (fstat(File.Value, &Status) != 0) ThrowErrno();
  return Status;
}

// Pipes and devices may wait for ever or never end: they are no files to read.
Descriptor OpenRegular(const Text& Path) {
  Descriptor File = OpenToRead(Path);
  if (!S_ISREG(StatusOf(File).st_mode)) throw Failure(failures::PathAccess);
  return File;
}

Descriptor OpenForReader(const Text& Path) {
  Descriptor File = OpenRegular(Path);
  if (StatusOf(File).st_size > static_cast<off_t>(LargestFile)) throw Failure(failures::FileTooLarge);
  return File;
}

// Hands the rest of a file over in pieces.
template <class Routine>
void ReadPieces(const Descriptor& File, Routine Take) {
  std::array<char, WritePiece> Piece{};
  for (;;) {
    const ssize_t Count = read(File.Value, Piece.data(), Piece.size());
    if (Count == 0) return;
    if (Count > 0) {
      Take(TextView(Piece.data(), static_cast<std::size_t>(Count)));
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

// A new name is on the disk when its folder is.
void SyncFolderOf(const Text& Path) {
  const std::size_t Slash = Path.rfind('/');
  const Text Folder = Slash == Text::npos ? Text(".") : Path.substr(0, Slash + 1);
  const Descriptor Opened(open(Folder.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY));
  if (Opened.Value >= 0) fsync(Opened.Value);
}

// Whether the last line of a file begins with these words.
bool EndsWithLine(const Text& Path, TextView Words) {
  try {
    constexpr off_t Enough = 256;
    const Descriptor File = OpenRegular(Path);
    lseek(File.Value, std::max(StatusOf(File).st_size - Enough, off_t{0}), SEEK_SET);
    Text Tail;
    ReadPieces(File, [&](TextView Piece) { Tail += Piece; });
    while (!Tail.empty() && TextView("\r\n \t").find(Tail.back()) != TextView::npos) Tail.pop_back();
    return TextView(Tail).substr(Tail.find_last_of("\r\n") + 1).starts_with(Words);
  } catch (const Failure&) {
    return false;
  }
}

void CopyTo(const Text& Target, const Descriptor& Source) {
  const Descriptor Copy(
      open(Target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK, StatusOf(Source).st_mode & 0777));
  if (Copy.Value < 0) ThrowErrno();
  try {
    ReadPieces(Source, [&](TextView Piece) { WriteAll(Copy.Value, Piece); });
    if (fsync(Copy.Value) != 0) ThrowErrno();
  } catch (const Failure&) {
    unlink(Target.c_str());
    throw;
  }
}

// The file that a path means, through links; the last one may point to a file that is still to come.
Text ResolvedPath(const Text& Path) {
  constexpr int MostLinks = 40;
  std::filesystem::path Target = Path;
  std::error_code Ignored;
  for (int Link = 0; std::filesystem::is_symlink(Target, Ignored); ++Link) {
    if (Link == MostLinks) throw Failure(failures::PathNotFound);
    Target = Target.parent_path() / std::filesystem::read_symlink(Target, Ignored);
  }
  return Target.string();
}

}  // namespace

void WriteWholeFile(const Text& Path, TextView Content) {
  std::ofstream Stream(Path, std::ios::binary | std::ios::trunc);
  Stream << Content;
  Stream.flush();
  if (!Stream) throw Failure("can't write " + Path);
}

Text ReadWholeFile(const Text& Path) {
  const Descriptor File = OpenForReader(Path);
  try {
    Text Content;
    Content.reserve(static_cast<std::size_t>(StatusOf(File).st_size) + 1);
    ReadPieces(File, [&](TextView Piece) {
      // One that grows while it is read may never end.
      if (Content.size() + Piece.size() > LargestFile) throw Failure(failures::FileTooLarge);
      Content += Piece;
    });
    return Content;
  } catch (const std::bad_alloc&) {
    throw Failure(failures::OutOfMemory);
  }
}

void ReplaceFile(const Text& Path, TextView Content) {
  const Text Target = ResolvedPath(Path);
  struct stat Former {};
  const bool Exists = stat(Target.c_str(), &Former) == 0;
  // A device would be replaced by a plain file, for every program of the machine.
  if (Exists && !S_ISREG(Former.st_mode)) throw Failure(failures::PathAccess);
  // A name of its own for each process: two that end at a time do not write into one another's file.
  const Text Fresh = Target + "." + std::to_string(getpid()) + ".new";
  const Descriptor File(open(Fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0666));
  if (File.Value < 0) ThrowErrno();
  try {
    WriteAll(File.Value, Content);
    if (Exists) fchmod(File.Value, Former.st_mode & 0777);
    if (fsync(File.Value) != 0 || rename(Fresh.c_str(), Target.c_str()) != 0) ThrowErrno();
  } catch (const Failure&) {
    unlink(Fresh.c_str());
    throw;
  }
}

Integer FreeFile() {
  for (int Number = 1; Number <= LargestFileNumber; ++Number) {
    if (!OpenFiles().contains(Number)) return {Number};
  }
  throw Failure(failures::TooManyFiles);
}

void OpenForInput(const Text& Path, Integer FileNumber) {
  OpenFile File;
  File.Content = ReadWholeFile(Path);
  OpenFiles()[FileNumber] = std::move(File);
}

void OpenForOutput(const Text& Path, Integer FileNumber) {
  OpenFile File;
  // A pipe that nobody reads is refused at once; one with a reader is waited for from here on.
  File.Descriptor = open(Path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666);
  if (File.Descriptor < 0) throw Failure(errno == ENOENT ? failures::PathNotFound : FailureTextFromErrno(errno));
  fcntl(File.Descriptor, F_SETFL, 0);
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
  Descriptor Target(File.Descriptor);
  Flush(File);
  // Some file systems tell here only that there was no room.
  if (close(std::exchange(Target.Value, -1)) != 0 && errno != EINTR) ThrowErrno();
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
    OpenForReader(Path);
    return {};
  } catch (const Failure& Problem) {
    return Problem.What;
  }
}

Flag FileExists(const Text& Path) {
  try {
    const Descriptor File = OpenToRead(Path);
    return ToFlag(!S_ISDIR(StatusOf(File).st_mode));
  } catch (const Failure&) {
    return False;
  }
}

bool KeepFormerContent(const Text& Path, std::span<const TextView> LastLines) {
  const auto IsWhole = [&](const Text& File) {
    return std::any_of(LastLines.begin(), LastLines.end(), [&](TextView Line) { return EndsWithLine(File, Line); });
  };
  struct stat Status {};
  if (stat(Path.c_str(), &Status) != 0 || !S_ISREG(Status.st_mode)) return false;
  // What a failed save has left half must not take the place of what it has kept.
  if (!IsWhole(Path) && IsWhole(FormerPath(Path))) return true;
  if (Status.st_size == 0) return false;
  CopyTo(FormerPath(Path), OpenRegular(Path));
  SyncFolderOf(Path);
  return true;
}

void DropFormerContent(const Text& Path) {
  // The new content is on the disk before the old one goes.
  const Descriptor Fresh = OpenRegular(Path);
  if (fsync(Fresh.Value) != 0) ThrowErrno();
  unlink(FormerPath(Path).c_str());
}

}  // namespace zelvanor
