#include "platform/posix/FirstStart.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "basic/Failure.h"
#include "basic/TextTools.h"
#include "platform/Profile.h"
#include "platform/Services.h"
#include "platform/TextFiles.h"
#include "platform/posix/UserFolders.h"

namespace zelvanor {

namespace {

namespace fs = std::filesystem;

constexpr const char* Section = "Zelvanor";
constexpr const char* FollowKey = "FollowInstallation";

constexpr const char* SetDataHome = "Set XDG_DATA_HOME to another directory and start Zelvanor again.";
constexpr const char* SetConfigHome = "Set XDG_CONFIG_HOME to another directory and start Zelvanor again.";
constexpr const char* InstallElsewhere = "Install Zelvanor in another directory.";

// The directories of an installed program, from the place of the running one.
struct Installation {
  Text Backend;
  Text Data;
};

bool IsFolder(const Text& Path) {
  std::error_code Ignored;
  return fs::is_directory(Path, Ignored);
}

// A link to nowhere is there too.
bool IsThere(const Text& Path) {
  std::error_code Ignored;
  return fs::symlink_status(Path, Ignored).type() != fs::file_type::not_found;
}

Installation FindInstallation() {
  const fs::path Own = Platform.ProgramDirectory();
  return {(Own / ZELVANOR_BACKEND_FROM_PROGRAM).lexically_normal(),
          (Own / ZELVANOR_DATA_FROM_PROGRAM).lexically_normal()};
}

[[noreturn]] void ThrowCannotMake(const char* What, const Text& Path, const Text& Reason, const char* Remedy) {
  throw Failure(Text("Can't make ") + What + " " + Path + ": " + Reason + ". " + Remedy);
}

// A profile look-up is cut at its limit.
void CheckPath(const Text& Path, const char* Remedy) {
  if (Path.size() > ProfileTextLimit) {
    throw Failure("The directory " + Path + " can't be used: its name has " + std::to_string(Path.size()) +
                  " characters, and " + std::to_string(ProfileTextLimit) + " are allowed. " + Remedy);
  }
}

// With all directories above it, for the user alone, as the XDG rules want it. 0, or why it can't be made.
int TryToMakeFolder(const fs::path& Path) {
  if (Path.has_relative_path() && !IsThere(Path.parent_path())) {
    if (const int Problem = TryToMakeFolder(Path.parent_path()); Problem != 0) return Problem;
  }
  if (mkdir(Path.c_str(), S_IRWXU) == 0) return 0;
  const int Problem = errno;
  return IsFolder(Path) ? 0 : Problem;
}

void MakeFolder(const Text& Path, const char* What, const char* Remedy) {
  const int Problem = IsFolder(Path) ? 0 : TryToMakeFolder(Path);
  if (Problem == 0) return;
  ThrowCannotMake(What, Path, Problem == EEXIST ? "a file has this name" : FailureTextFromErrno(Problem), Remedy);
}

void CopyDefaults(const Text& From, const Text& To, const char* Remedy) {
  try {
    ReplaceFile(To, ReadWholeFile(From));
  } catch (const Failure& Problem) {
    ThrowCannotMake("the settings", To, Problem.What, Remedy);
  }
}

Text WorkFolder() {
  const Text Folder = DataFolder();
  return Folder.empty() ? Folder : Folder + "/zelvanor";
}

// The working directory, and in it nmr.ini: a link to the one that stands with the user's settings, or a copy of that
// where there are no links. A program without its defaults writes nmr.ini itself when it ends.
void MakeWorkingFiles(const Installation& Installed) {
  const Text Work = WorkFolder();
  const Text Config = ConfigFolder() + "/zelvanor";
  const Text Link = Work + "/nmr.ini";
  const Text Settings = Config + "/nmr.ini";
  const Text Defaults = Installed.Data + "/nmr.ini";
  MakeFolder(Work, "the working directory", SetDataHome);
  if (access(Link.c_str(), F_OK) == 0) return;
  MakeFolder(Config, "the directory of the settings", SetConfigHome);
  if (access(Defaults.c_str(), R_OK) == 0 && !IsThere(Settings)) CopyDefaults(Defaults, Settings, SetConfigHome);
  if (IsThere(Link) || symlink(Settings.c_str(), Link.c_str()) == 0) return;
  if (access(Settings.c_str(), R_OK) == 0) CopyDefaults(Settings, Link, SetDataHome);
}

void WriteWinIni(const std::vector<ProfileEntry>& Entries) {
  const Text WinIni = OwnWinIni();
  if (!WritePrivateProfileStrings(Entries, WinIni)) {
    ThrowCannotMake("the settings", WinIni, "it can't be written", SetConfigHome);
  }
}

void CheckInstallation(const Installation& Installed) {
  CheckPath(Installed.Backend, InstallElsewhere);
  CheckPath(Installed.Data, InstallElsewhere);
}

// win.ini comes last: a first start that was cut off is begun anew by the next one.
void MakeFirstFiles(const Installation& Installed) {
  const Text Work = WorkFolder();
  if (Work.empty() || ConfigFolder().empty())
    throw Failure("There is no home directory for the settings. Set HOME and start Zelvanor again.");
  CheckInstallation(Installed);
  CheckPath(Work, SetDataHome);
  MakeWorkingFiles(Installed);
  MakeFolder(ConfigFolder() + "/zelvanor", "the directory of the settings", SetConfigHome);
  WriteWinIni({{Section, "NMRExePath", Installed.Backend},
               {Section, "NMRIniPath", Work},
               {Section, "NMRParmPath", Installed.Data},
               {Section, FollowKey, "Yes"}});
}

// A program that was installed anew elsewhere, a working directory that has gone.
void LookAfterFiles(const Installation& Installed, const Text& WinIni) {
  if (!EqualsIgnoringCase(GetPrivateProfileString(Section, FollowKey, "", WinIni), "Yes")) return;
  std::vector<ProfileEntry> Moved;
  const auto Follow = [&](const char* Key, const Text& Folder) {
    if (!IsFolder(GetPrivateProfileString(Section, Key, "", WinIni))) Moved.push_back({Section, Key, Folder});
  };
  Follow("NMRExePath", Installed.Backend);
  Follow("NMRParmPath", Installed.Data);
  if (!Moved.empty()) {
    CheckInstallation(Installed);
    WriteWinIni(Moved);
  }
  if (GetPrivateProfileString(Section, "NMRIniPath", "", WinIni) == WorkFolder()) MakeWorkingFiles(Installed);
}

}  // namespace

Text PrepareUserFiles() {
  const Installation Installed = FindInstallation();
  const bool IsInstalled = Installed.Data.starts_with('/') && IsFolder(Installed.Data);
  if (!IsInstalled || !Environment("ZELVANOR_WIN_INI").empty()) return {};
  const Text Own = OwnWinIni();
  const Text WinIni = FindWinIni();
  try {
    if (!IsThere(WinIni)) {
      MakeFirstFiles(Installed);
    } else if (WinIni == Own) {
      LookAfterFiles(Installed, WinIni);
    }
    return {};
  } catch (const Failure& Problem) {
    return Problem.What;
  }
}

}  // namespace zelvanor
