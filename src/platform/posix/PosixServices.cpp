#include "platform/posix/PosixServices.h"

#include <fcntl.h>
#include <langinfo.h>
#include <locale.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/Form.h"
#include "platform/Services.h"
#include "platform/posix/FirstStart.h"
#include "platform/posix/Processes.h"
#include "platform/posix/UserFolders.h"

namespace zelvanor {

namespace {

// Read from a locale object of its own: the process keeps the plain locale for its numbers.
Text ReadDecimalSeparator() {
  const locale_t Regional = newlocale(LC_NUMERIC_MASK, "", nullptr);
  if (Regional == nullptr) return ".";
  Text Separator = nl_langinfo_l(RADIXCHAR, Regional);
  freelocale(Regional);
  return Separator;
}

// The lock stays with the process; the file itself is left behind and means nothing. Where no lock can be had the
// program starts unguarded: that is better than not at all.
bool FindOtherInstance() {
  for (const Text& Folder : {Environment("XDG_RUNTIME_DIR"), Text("/tmp")}) {
    if (Folder.empty()) continue;
    const Text Path = Folder + "/zelvanor-" + std::to_string(getuid()) + ".lock";
    const int Lock = open(Path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (Lock >= 0) return flock(Lock, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  }
  return false;
}

Text FindProgramDirectory() {
  std::array<char, 4096> Buffer{};
  const ssize_t Length = readlink("/proc/self/exe", Buffer.data(), Buffer.size());
  const Text Path(Buffer.data(), Length > 0 ? static_cast<std::size_t>(Length) : 0);
  const std::size_t Slash = Path.rfind('/');
  return Slash == Text::npos ? "." : Path.substr(0, Slash);
}

}  // namespace

void UsePosixServices() {
  Platform.ShowBox = [](const MessageBox& Box) {
    return Box.Buttons == BoxButtons::Ok ? BoxAnswer::Ok : BoxAnswer::Cancel;
  };
  Platform.ShowFileDialog = [](const FileDialog&) { return std::optional<Text>(); };
  Platform.ShowColourDialog = [](Colour) { return std::optional<Colour>(); };
  Platform.RunModal = [](Form& Target) { HideForm(Target); };
  Platform.DoEvents = [] {};
  Platform.RunLater = [](int, const Event&) {};
  Platform.SetPointer = [](MousePointer) {};
  Platform.ShowHelp = [](const Text&, HelpCommand, int) {};
  Platform.GetClipboard = [] { return Text(); };
  Platform.SetClipboard = [](const Text&) {};
  Platform.DecimalSeparator = ReadDecimalSeparator;
  Platform.OtherInstanceRuns = FindOtherInstance;
  Platform.ProgramDirectory = FindProgramDirectory;
  Platform.PrepareUserFiles = PrepareUserFiles;
  Platform.WinIniPath = FindWinIni;
  Platform.Shell = StartProcess;
  Platform.OpenProcess = OpenStartedProcess;
  Platform.GetExitCodeProcess = QueryProcess;
  Platform.StopProcess = StopProcess;
  Platform.Host.Open = [](const Text&) { throw Failure("No application answers", NoApplicationAnswers); };
  Platform.Host.Close = [] {};
  Platform.Host.Execute = [](const Text&) { throw Failure("No conversation is open"); };
  Platform.Host.Request = [](const Text&) -> Text { throw Failure("No conversation is open"); };
  Platform.Host.Accept = [](const std::function<void(Flag&)>&) {};
}

}  // namespace zelvanor
