#include "platform/posix/UserFolders.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace zelvanor {

namespace {

constexpr const char* WinIniInFolder = "/zelvanor/win.ini";

bool IsFullPath(TextView Path) { return Path.starts_with('/'); }

Text WithoutEndSeparators(Text Path) {
  while (Path.size() > 1 && Path.back() == '/') Path.pop_back();
  return Path;
}

Text HomeFolder() {
  if (Text Home = Environment("HOME"); IsFullPath(Home)) return WithoutEndSeparators(std::move(Home));
  const passwd* User = getpwuid(getuid());
  return User != nullptr && IsFullPath(User->pw_dir) ? WithoutEndSeparators(User->pw_dir) : Text();
}

Text BaseFolder(const char* Name, const char* InHome) {
  if (Text Given = Environment(Name); IsFullPath(Given)) return WithoutEndSeparators(std::move(Given));
  const Text Home = HomeFolder();
  return Home.empty() ? Home : Home + InHome;
}

}  // namespace

Text Environment(const char* Name) {
  const char* Value = std::getenv(Name);
  return Value == nullptr ? Text() : Text(Value);
}

Text ConfigFolder() { return BaseFolder("XDG_CONFIG_HOME", "/.config"); }

Text DataFolder() { return BaseFolder("XDG_DATA_HOME", "/.local/share"); }

Text StateFolder() { return BaseFolder("XDG_STATE_HOME", "/.local/state"); }

Text OwnWinIni() {
  const Text Folder = ConfigFolder();
  return Folder.empty() ? Folder : Folder + WinIniInFolder;
}

Text FindWinIni() {
  if (Text Named = Environment("ZELVANOR_WIN_INI"); !Named.empty()) return Named;
  Text Own = OwnWinIni();
  if (access(Own.c_str(), R_OK) == 0) return Own;
  Text Folders = Environment("XDG_CONFIG_DIRS");
  if (Folders.empty()) Folders = "/etc/xdg";
  for (std::size_t Place = 0; Place <= Folders.size();) {
    const std::size_t End = std::min(Folders.find(':', Place), Folders.size());
    Text Shared = Folders.substr(Place, End - Place) + WinIniInFolder;
    if (End > Place && IsFullPath(Shared) && access(Shared.c_str(), R_OK) == 0) return Shared;
    Place = End + 1;
  }
  return Own;
}

}  // namespace zelvanor
