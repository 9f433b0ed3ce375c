#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "Support.h"
#include "platform/Profile.h"
#include "platform/posix/FirstStart.h"
#include "platform/posix/UserFolders.h"
#include "program.h"
#include "settings/ProfileAccess.h"

namespace zelvanor::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* Defaults = "[nmr]\nNMRFrequency=400\n";
constexpr const char* Variables[] = {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CONFIG_DIRS", "ZELVANOR_WIN_INI"};

// An installed program below PREFIX, and a user whose home is there and empty.
class FirstStartTest : public ProgramTest {
 protected:
  FirstStartTest() {
    for (const char* Name : Variables) {
      const char* Value = getenv(Name);
      Former.emplace_back(Value == nullptr ? std::nullopt : std::optional<Text>(Value));
    }
    SetUser(TempPath("home"));
    Install("prefix");
  }

  ~FirstStartTest() override {
    for (std::size_t Place = 0; Place < Former.size(); ++Place) Put(Variables[Place], Former[Place]);
  }

  static void Put(const char* Name, const std::optional<Text>& Value) {
    Value ? setenv(Name, Value->c_str(), 1) : unsetenv(Name);
  }

  static void SetUser(const Text& Home) {
    for (const char* Name : Variables) unsetenv(Name);
    setenv("HOME", Home.c_str(), 1);
    setenv("XDG_CONFIG_DIRS", TempPath("xdg").c_str(), 1);
  }

  static void Install(const Text& Prefix) {
    for (const char* Folder : {"/bin", "/libexec/zelvanor", "/share/zelvanor"}) {
      fs::create_directories(TempPath(Prefix + Folder));
    }
    WriteFile(Prefix + "/share/zelvanor/nmr.ini", Defaults);
    Platform.ProgramDirectory = [=] { return TempPath(Prefix + "/bin"); };
    Platform.WinIniPath = FindWinIni;
  }

  std::vector<std::optional<Text>> Former;
};

Text Home(const Text& Name) { return TempPath("home/" + Name); }

mode_t ModeOf(const Text& Path) {
  struct stat Status {};
  EXPECT_EQ(stat(Path.c_str(), &Status), 0) << Path;
  return Status.st_mode & 0777;
}

Texts AllBelow(const Text& Folder) {
  Texts Names;
  if (!fs::exists(Folder)) return Names;
  for (const auto& Entry : fs::recursive_directory_iterator(Folder)) {
    if (!Entry.is_directory())
      Names.push_back(fs::relative(Entry.path().parent_path(), Folder) / Entry.path().filename());
  }
  std::sort(Names.begin(), Names.end());
  return Names;
}

const Texts FreshFiles = {".config/zelvanor/nmr.ini", ".config/zelvanor/win.ini", ".local/share/zelvanor/nmr.ini"};

TEST_F(FirstStartTest, AFreshUserGetsTheFiles) {
  EXPECT_EQ(PrepareUserFiles(), "");
  EXPECT_EQ(AllBelow(TempPath("home")), FreshFiles);
  EXPECT_EQ(fs::read_symlink(Home(".local/share/zelvanor/nmr.ini")), Home(".config/zelvanor/nmr.ini"));
  EXPECT_EQ(ReadBytes(Home(".config/zelvanor/nmr.ini")), Defaults);
  EXPECT_EQ(ModeOf(Home(".config/zelvanor")), 0700U);
  EXPECT_EQ(ModeOf(Home(".local/share")), 0700U);

  EXPECT_TRUE(IsSet(LoadProfilePaths()));
  EXPECT_EQ(
      (Texts{Settings.NMRExePath, Settings.NMRIniPath, Settings.NMRParmPath}),
      (Texts{TempPath("prefix/libexec/zelvanor"), Home(".local/share/zelvanor"), TempPath("prefix/share/zelvanor")}));

  // What the user sets lands where users look for it, and stays over the next start.
  const Text WinIni = ReadBytes(Home(".config/zelvanor/win.ini"));
  WritePrivateProfileStrings({{"nmr", "NMRFrequency", "60"}}, Home(".local/share/zelvanor/nmr.ini"));
  EXPECT_EQ(PrepareUserFiles(), "");
  EXPECT_EQ(ReadBytes(Home(".config/zelvanor/nmr.ini")), "[nmr]\nNMRFrequency=60\n");
  EXPECT_EQ(ReadBytes(Home(".config/zelvanor/win.ini")), WinIni);
  EXPECT_EQ(AllBelow(TempPath("home")), FreshFiles);
}

TEST_F(FirstStartTest, NothingIsMadeWhereSomethingIsThere) {
  const struct {
    const char* What;
    std::function<void()> Prepare;
  } Rows[] = {
      {"a program that is not installed", [] { fs::remove_all(TempPath("prefix/share")); }},
      {"the variable names a win.ini", [] { setenv("ZELVANOR_WIN_INI", "/nowhere/win.ini", 1); }},
      {"the system has one", [] { WriteFile("xdg/zelvanor/win.ini", "[Zelvanor]\nNMRExePath=/e\n"); }},
      {"one of the user's hand, to nowhere",
       [] { WriteFile("home/.config/zelvanor/win.ini", "[Zelvanor]\nNMRExePath=/e\n"); }},
      {"an empty one", [] { WriteFile("home/.config/zelvanor/win.ini", ""); }},
      {"a link to nowhere", [] { fs::create_symlink("/nowhere/win.ini", Home(".config/zelvanor/win.ini")); }},
  };
  for (const auto& R : Rows) {
    for (const char* Folder : {"home", "xdg"}) fs::remove_all(TempPath(Folder));
    fs::create_directories(TempPath("xdg/zelvanor"));
    fs::create_directories(Home(".config/zelvanor"));
    Install("prefix");
    SetUser(TempPath("home"));
    R.Prepare();
    const Texts Before = AllBelow(TempPath("home"));
    EXPECT_EQ(PrepareUserFiles(), "") << R.What;
    EXPECT_EQ(AllBelow(TempPath("home")), Before) << R.What;
    EXPECT_FALSE(Exists(Home(".local"))) << R.What;
  }
}

TEST_F(FirstStartTest, WhatCannotBeMadeIsTold) {
  const Text File = WriteFile("file", "");
  MakeFolder("data");
  WriteFile("data/zelvanor", "");
  const Text Just = TempPath(Text(128 - TempPath("").size() - Text("/zelvanor").size(), 'd'));
  const struct {
    const char* What;
    const char* Variable;
    Text Value;
    Text Told;  // empty: all is made
  } Rows[] = {
      {"128 characters", "XDG_DATA_HOME", Just, ""},
      {"129 characters", "XDG_DATA_HOME", Just + "d",
       "The directory " + Just +
           "d/zelvanor can't be used: its name has 129 characters, and 128 are allowed. "
           "Set XDG_DATA_HOME to another directory and start Zelvanor again."},
      {"a blank", "HOME", TempPath("my home"),
       "The directory " + TempPath("my home/.local/share/zelvanor") +
           " can't be used: there must be no blank in its name. "
           "Set XDG_DATA_HOME to another directory and start Zelvanor again."},
      {"a blank where it does no harm", "XDG_CONFIG_HOME", TempPath("my settings"), ""},
      {"a file for a home", "HOME", File,
       "Can't make the working directory " + File +
           "/.local/share/zelvanor: Path not found. Set XDG_DATA_HOME to another directory and start Zelvanor again."},
      {"a file for the working directory", "XDG_DATA_HOME", TempPath("data"),
       "Can't make the working directory " + TempPath("data/zelvanor") +
           ": a file has this name. Set XDG_DATA_HOME to another directory and start Zelvanor again."},
      {"a file for the settings", "XDG_CONFIG_HOME", File,
       "Can't make the directory of the settings " + File +
           "/zelvanor: Path not found. Set XDG_CONFIG_HOME to another directory and start Zelvanor again."},
  };
  for (const auto& R : Rows) {
    fs::remove_all(TempPath("home"));
    SetUser(TempPath("home"));
    setenv(R.Variable, R.Value.c_str(), 1);
    EXPECT_EQ(PrepareUserFiles(), R.Told) << R.What;
    EXPECT_EQ(Exists(OwnWinIni()), R.Told.empty()) << R.What;
  }

  fs::remove_all(TempPath("home"));
  SetUser(TempPath("home"));
  Install("a prefix");
  EXPECT_EQ(PrepareUserFiles(), "The directory " + TempPath("a prefix/libexec/zelvanor") +
                                    " can't be used: there must be no blank in its name. "
                                    "Install Zelvanor in another directory.");
  EXPECT_FALSE(Exists(TempPath("home")));
}

TEST_F(FirstStartTest, AFullDiskLeavesNoHalfFiles) {
  {
    const FullDisk Full(8);
    EXPECT_EQ(PrepareUserFiles(),
              "Can't make the settings " + Home(".config/zelvanor/nmr.ini") +
                  ": Disk full. Set XDG_CONFIG_HOME to another directory and start Zelvanor again.");
    EXPECT_EQ(AllBelow(TempPath("home")), Texts{});
    fs::create_directories(Home(".local/share/zelvanor"));
    WriteFile("home/.local/share/zelvanor/nmr.ini", "");
    EXPECT_EQ(PrepareUserFiles(),
              "Can't make the settings " + Home(".config/zelvanor/win.ini") +
                  ": it can't be written. Set XDG_CONFIG_HOME to another directory and start Zelvanor again.");
    EXPECT_FALSE(Exists(Home(".config/zelvanor/win.ini")));
    fs::remove(Home(".local/share/zelvanor/nmr.ini"));
  }
  EXPECT_EQ(PrepareUserFiles(), "");
  EXPECT_EQ(AllBelow(TempPath("home")), FreshFiles);
}

TEST_F(FirstStartTest, AProgramThatMovedIsFollowed) {
  const Text WinIni = Home(".config/zelvanor/win.ini");
  ASSERT_EQ(PrepareUserFiles(), "");
  const Text Made = ReadBytes(WinIni) + "Mine=kept\n";
  const struct {
    const char* What;
    const char* Key;
    const char* Follow;
    bool OldIsGone;
    bool Followed;
  } Rows[] = {{"the old one has gone", "FollowInstallation=Yes", "FollowInstallation=Yes", true, true},
              {"the old one is still there", "FollowInstallation=Yes", "FollowInstallation=Yes", false, false},
              {"the user looks after it", "FollowInstallation=Yes", "FollowInstallation=No", true, false}};
  for (const auto& R : Rows) {
    WriteFile("home/.config/zelvanor/win.ini", Change(Made, R.Key, R.Follow));
    Install("prefix");
    if (R.OldIsGone) fs::remove_all(TempPath("prefix"));
    Install("moved");
    EXPECT_EQ(PrepareUserFiles(), "") << R.What;
    LoadProfilePaths();
    const Text Prefix = TempPath(R.Followed ? "moved" : "prefix");
    EXPECT_EQ((Texts{Settings.NMRExePath, Settings.NMRParmPath}),
              (Texts{Prefix + "/libexec/zelvanor", Prefix + "/share/zelvanor"}))
        << R.What;
    EXPECT_EQ(Settings.NMRIniPath, Home(".local/share/zelvanor")) << R.What;
    EXPECT_EQ(GetPrivateProfileString("Zelvanor", "Mine", "", WinIni), "kept") << R.What;
  }
}

TEST_F(FirstStartTest, SettingsThatAreThereStay) {
  for (const char* Place : {".config/zelvanor/nmr.ini", ".local/share/zelvanor/nmr.ini"}) {
    fs::remove_all(TempPath("home"));
    fs::create_directories(fs::path(Home(Place)).parent_path());
    WriteFile(Text("home/") + Place, "mine");
    EXPECT_EQ(PrepareUserFiles(), "") << Place;
    EXPECT_EQ(ReadBytes(Home(".local/share/zelvanor/nmr.ini")), "mine") << Place;
    EXPECT_TRUE(Exists(Home(".config/zelvanor/win.ini"))) << Place;
  }
}

}  // namespace
}  // namespace zelvanor::test
