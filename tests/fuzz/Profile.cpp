// win.ini, and the initialisation files as such: what is written is found again, and nothing else is lost.

#include "platform/Profile.h"

#include <algorithm>

#include "fuzz/Harness.h"
#include "fuzz/Targets.h"
#include "platform/Services.h"
#include "settings/ProfileAccess.h"
#include "settings/SettingsState.h"

namespace zelvanor::fuzz {

namespace {

void CheckWrites(const Text& Path, TextView Input) {
  const std::vector<ProfileEntry> Entries = {{"Zelvanor", "NMRExePath", "/one"},
                                             {"morvantis", "NMRINIPATH", "two = [three]"},
                                             {"New", "Key", ""},
                                             {"Zelvanor", "Other", "; five"}};
  Demand(WritePrivateProfileStrings(Entries, Path), "the file can't be written");
  for (const ProfileEntry& Entry : Entries) {
    Demand(GetPrivateProfileString(Entry.Section, Entry.Key, "none", Path) == Entry.Value, "a written value is lost");
  }
  const Text Written = ReadBack(Path);
  Demand(Written.size() + 64 >= Input.size() &&
             std::count(Written.begin(), Written.end(), '\n') + 1 >= std::count(Input.begin(), Input.end(), '\n'),
         "lines are lost");
  Demand(WritePrivateProfileStrings(Entries, Path), "the file can't be written again");
  Demand(ReadBack(Path) == Written, "the second writing changes the file");
}

bool Read(TextView Input) {
  ResetProgram();
  const Text Path = WriteInput("profile.ini", Input);
  Platform.WinIniPath = [] { return PathOf("profile.ini"); };
  const bool Taken = IsSet(LoadProfilePaths());
  for (const Text* Folder : {&Settings.NMRExePath, &Settings.NMRIniPath, &Settings.NMRParmPath}) {
    Demand(!Folder->empty(), "a folder has no name");
    Demand(!Taken || Folder->size() <= ProfileTextLimit, "a folder's name is too long");
    Demand(Folder->find('\n') == Text::npos, "a folder's name holds a line end");
  }
  CheckWrites(Path, Input);
  return Taken;
}

}  // namespace

const Target ProfileTarget = {"Profile", Read};

}  // namespace zelvanor::fuzz
