#include "hostbus/ClipboardFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace zelvanor::hostbus {

namespace {

constexpr const char* PathVariable = "ZELVANOR_CLIPBOARD";

Text Environment(const char* Name) {
  const char* Value = std::getenv(Name);
  return Value == nullptr ? Text() : Text(Value);
}

Text FilePath() {
  if (Text Named = Environment(PathVariable); !Named.empty()) return Named;
  if (const Text Folder = Environment("XDG_RUNTIME_DIR"); !Folder.empty()) return Folder + "/zelvanor-clipboard";
  return "/tmp/zelvanor-" + std::to_string(getuid()) + ".clipboard";
}

bool WriteAll(int File, TextView Content) {
  while (!Content.empty()) {
    const ssize_t Count = write(File, Content.data(), Content.size());
    if (Count < 0 && errno != EINTR) return false;
    if (Count > 0) Content.remove_prefix(static_cast<std::size_t>(Count));
  }
  return true;
}

}  // namespace

bool IsClipboardFileNamed() { return !Environment(PathVariable).empty(); }

Text ReadClipboardFile() {
  const Text Path = FilePath();
  // A pipe without a writer would hold the program up, a device might never end.
  std::error_code Ignored;
  if (!std::filesystem::is_regular_file(Path, Ignored)) return {};
  std::ifstream Stream(Path, std::ios::binary);
  return {std::istreambuf_iterator<char>(Stream), std::istreambuf_iterator<char>()};
}

void WriteClipboardFile(const Text& Value) {
  const Text Path = FilePath();
  // For the user's eyes, as a clipboard is, and through no link that somebody else has laid in a shared directory.
  const int File = open(Path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
  const bool Written = File >= 0 && WriteAll(File, Value);
  const int Problem = errno;
  if (File >= 0) close(File);
  if (!Written) throw Failure("Can't write the clipboard file " + Path + ": " + FailureTextFromErrno(Problem));
}

}  // namespace zelvanor::hostbus
