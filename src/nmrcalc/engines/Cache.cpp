#include "nmrcalc/engines/Cache.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

#include "nmrcalc/engines/EngineFiles.h"

namespace nmrcalc {

namespace {

namespace fs = std::filesystem;

std::string PathOf(const std::string& Input, const char* Ending) {
  const std::string Directory = CacheDirectory();
  return Directory.empty() ? "" : Directory + "/" + HashOf(Input) + Ending;
}

constexpr const char* LockName = "lock";

bool WriteWhole(const std::string& Path, const std::string& Text) {
  const std::string Temporary = Path + "." + std::to_string(getpid());
  std::error_code Error;
  {
    std::ofstream File(Temporary, std::ios::binary | std::ios::trunc);
    File << Text;
    File.close();
    if (!File) {
      fs::remove(Temporary, Error);
      return false;
    }
  }
  fs::rename(Temporary, Path, Error);
  return !Error;
}

struct Entry {
  fs::path Path{};
  fs::file_time_type Time{};
  double Bytes = 0.0;
};

double BytesOf(const fs::path& Path) {
  std::error_code Error;
  if (!fs::is_directory(Path, Error)) return static_cast<double>(fs::file_size(Path, Error));
  double Sum = 0.0;
  for (fs::recursive_directory_iterator Place(Path, Error), End; !Error && Place != End; Place.increment(Error)) {
    if (Place->is_regular_file(Error)) Sum += static_cast<double>(Place->file_size(Error));
  }
  return Sum;
}

bool IsLocked(const fs::path& Path) {
  const int File = open(Path.c_str(), O_RDWR | O_CLOEXEC);
  if (File < 0) return false;
  const bool Locked = flock(File, LOCK_EX | LOCK_NB) != 0;
  close(File);
  return Locked;
}

void Prune(double Limit) {
  std::vector<Entry> Entries;
  std::error_code Error;
  double Sum = 0.0;
  for (fs::directory_iterator Place(CacheDirectory(), Error), End; !Error && Place != End; Place.increment(Error)) {
    std::error_code Ignored;
    Entries.push_back({Place->path(), Place->last_write_time(Ignored), BytesOf(Place->path())});
    Sum += Entries.back().Bytes;
  }
  std::sort(Entries.begin(), Entries.end(),
            [](const Entry& Left, const Entry& Right) { return Left.Time < Right.Time; });
  for (const Entry& Item : Entries) {
    if (Sum <= Limit) return;
    if (IsLocked(Item.Path / LockName)) continue;  // a run that lives
    fs::remove_all(Item.Path, Error);
    Sum -= Item.Bytes;
  }
}

}  // namespace

std::string CacheDirectory() {
  const char* Own = std::getenv("XDG_CACHE_HOME");
  const char* Home = std::getenv("HOME");
  if (Own != nullptr && Own[0] == '/') return std::string(Own) + "/zelvanor/engines";
  if (Home != nullptr && Home[0] == '/') return std::string(Home) + "/.cache/zelvanor/engines";
  return "";
}

std::string HashOf(const std::string& Text) {
  // Prime 2^88 + 0x13B and offset basis of the 128-bit variant.
  __extension__ using Wide = unsigned __int128;
  const Wide Prime = (Wide{1} << 88) + 0x13B;
  Wide Hash = (Wide{0x6C62272E07BB0142} << 64) + 0x62B821756295C58D;
  for (const char C : Text) {
    Hash ^= static_cast<unsigned char>(C);
    Hash *= Prime;
  }
  std::string Digits(32, '0');
  for (std::size_t K = 32; K-- > 0; Hash >>= 4) Digits[K] = "0123456789abcdef"[static_cast<unsigned>(Hash & 15)];
  return Digits;
}

std::string FindInCache(const std::string& Input) {
  const std::string Path = PathOf(Input, ".out");
  if (Path.empty() || ReadWholeFile(PathOf(Input, ".in")) != Input) return "";
  std::error_code Error;
  for (const char* Ending : {".in", ".out"}) {  // in use: the oldest go first
    fs::last_write_time(PathOf(Input, Ending), fs::file_time_type::clock::now(), Error);
  }
  return ReadWholeFile(Path);
}

void KeepInCache(const std::string& Input, const std::string& Output, double Limit) {
  const std::string Path = PathOf(Input, ".out");
  std::error_code Error;
  if (Path.empty() || (fs::create_directories(CacheDirectory(), Error), Error)) return;
  // The input last: what it stands for is then there.
  if (WriteWhole(Path, Output)) WriteWhole(PathOf(Input, ".in"), Input);
  Prune(Limit);
}

RestartFolder::RestartFolder(const std::string& Input) {
  const std::string Wanted = PathOf(Input, ".run");
  std::error_code Error;
  if (Wanted.empty() || (fs::create_directories(Wanted, Error), Error)) return;
  Lock = open((fs::path(Wanted) / LockName).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (Lock < 0 || flock(Lock, LOCK_EX | LOCK_NB) != 0) return;
  // The run that held the lock until now may have taken the folder away.
  struct stat Locked {};
  if (fstat(Lock, &Locked) == 0 && Locked.st_nlink > 0) Path = Wanted;
}

RestartFolder::~RestartFolder() {
  if (Lock >= 0) close(Lock);
}

void DropRestart(RestartFolder& Folder) {
  std::error_code Error;
  if (!Folder.Path.empty()) fs::remove_all(Folder.Path, Error);
  Folder.Path.clear();
}

}  // namespace nmrcalc
