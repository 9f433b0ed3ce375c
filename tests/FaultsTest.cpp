#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <utility>

#include "Support.h"
#include "backend/Compute.h"
#include "backend/LogCommands.h"
#include "backend/ParamInput.h"
#include "backend/Results.h"
#include "backend/SpectInput.h"
#include "files/Converter.h"
#include "files/DocumentReader.h"
#include "files/DocumentWriter.h"
#include "files/FileCommands.h"
#include "files/HostText.h"
#include "platform/EndSignals.h"
#include "platform/Profile.h"
#include "platform/posix/PosixServices.h"
#include "platform/posix/Processes.h"
#include "settings/ProfileAccess.h"
#include "shell/Progress.h"
#include "typing/AtomTyping.h"

// Everything that can stand in a file's place, for every read and every write of the program.
namespace zelvanor::test {
namespace {

namespace fs = std::filesystem;
WorkspaceState& W = Workspace;

enum class Thing { Missing, Folder, ThroughFile, Pipe, Endless, Full, TooLarge };

struct ThingRow {
  Thing Is;
  const char* Name;
  const char* WhyUnreadable;
};
constexpr ThingRow Things[] = {
    {Thing::Missing, "missing", "File not found"},           {Thing::Folder, "folder", "Path/File access error"},
    {Thing::ThroughFile, "plain/through", "Path not found"}, {Thing::Pipe, "pipe", "Path/File access error"},
    {Thing::Endless, "endless", "Path/File access error"},   {Thing::Full, "full", "Path/File access error"},
    {Thing::TooLarge, "large", "The file is too large"}};

// The path of a fresh one.
Text Make(const ThingRow& Row, const Text& Ending = "") {
  Text Path = TempPath(Row.Name + Ending);
  switch (Row.Is) {
    case Thing::Folder:
      MakeFolder(Row.Name + Ending);
      break;
    case Thing::ThroughFile:
      WriteFile("plain", "x");
      break;
    case Thing::Pipe:
      EXPECT_EQ(mkfifo(Path.c_str(), 0600), 0);
      break;
    case Thing::Endless:
      EXPECT_EQ(symlink("/dev/zero", Path.c_str()), 0);
      break;
    case Thing::Full:
      EXPECT_EQ(symlink("/dev/full", Path.c_str()), 0);
      break;
    case Thing::TooLarge:
      WriteFile(Row.Name + Ending, "");
      EXPECT_EQ(truncate(Path.c_str(), static_cast<off_t>(LargestFile) + 1), 0);
      break;
    default:
      break;
  }
  return Path;
}

// What stands there, so that a test can say that it is still the same.
mode_t KindOf(const Text& Path) {
  struct stat Status {};
  return stat(Path.c_str(), &Status) == 0 ? Status.st_mode & S_IFMT : 0;
}

class FaultsTest : public ProgramTest {
 protected:
  // One hydrogen as molecule and NMR atom.
  static void UseOneAtom() {
    ASSERT_EQ(ReadHostFile(WriteFile("one.mvs", "mol 1\natom 1 H H HC - 0 0 0 0 0\nendmol 1\n")), -1);
    ASSERT_EQ(ParseHostText("one"), -1);
    W.MoleculeLoaded = True;
    W.NumNMRAtoms = 1;
    SetArray(W.NMRAtom, {1});
    SetArray(W.NMRAtomicNumber, {1});
    SetArray(W.Shielding, {30.0});
    SetArray(W.ChemicalShift, {0.0});
    SetMatrix(W.Coupling, {{0.0}});
    Shown() = {};
  }
};

TEST_F(FaultsTest, EveryReadRefusesWhatIsNoFile) {
  for (const ThingRow& Row : Things) {
    const Text Path = Make(Row);
    const Text Why = Row.WhyUnreadable;
    EXPECT_EQ(WhyUnreadable(Path), Why) << Row.Name;
    struct ReadRow {
      const char* What;
      std::function<void()> Read;
      Text Box;
    };
    const bool TooLarge = Row.Is == Thing::TooLarge;
    const ReadRow Reads[] = {
        {"document", [&] { EXPECT_EQ(ReadDocument(Path), 0); }, "warning " + Why + "."},
        {"host text", [&] { EXPECT_EQ(ReadHostFile(Path), 0); },
         "warning Could not open file \"" + Path + "\": " + Why + "."},
        {"kind", [&] { EXPECT_EQ(DetectFileType(Path), UnknownFile); }, "warning " + Why + "."},
        {"stage 1", [&] { EXPECT_EQ(ReadParamResults(Path), 0); }, TooLarge ? "warning " + Why + "." : Text()},
        {"stage 2", [&] { EXPECT_EQ(ReadSpectResults(Path), 0); }, TooLarge ? "warning " + Why + "." : Text()},
        {"profile", [&] { EXPECT_EQ(GetPrivateProfileString("a", "b", "none", Path), "none"); }, ""},
        {"type file", [&] { EXPECT_EQ(CompareTypeFile(Path), -1); }, "warning " + Why + "."}};
    for (const ReadRow& R : Reads) {
      Shown() = {};
      R.Read();
      EXPECT_EQ(Boxes(), R.Box) << R.What << " from " << Row.Name;
    }
  }
}

// What can't be read leaves the document that is open as it is.
TEST_F(FaultsTest, OpenOfWhatIsNoFileChangesNothing) {
  for (const char* Ending : {".NMR", ".mvs", ".zmt", ".dat"}) {
    for (const ThingRow& Row : Things) {
      const Text Path = Make(Row, Ending);
      ResetProgram();
      W.NumAtoms = 3;
      W.MoleculeLoaded = True;
      W.DocumentTitle = "BEFORE.NMR";
      Shown().Files = {Path};
      mnuFileOpen_Click();
      EXPECT_EQ(Boxes(), "warning Could not open file \"" + Path + "\" " + Row.WhyUnreadable + ".") << Row.Name;
      EXPECT_EQ(W.DocumentTitle, "BEFORE.NMR");
      ExpectValues("NumAtoms=3 MoleculeLoaded=-1 IsBusy=0", Path);
    }
  }
}

TEST_F(FaultsTest, EveryWriteTellsWhereItCannot) {
  UseOneAtom();
  W.SpectraType = 0;
  for (const ThingRow& Row : Things) {
    if (Row.Is == Thing::Missing || Row.Is == Thing::Endless || Row.Is == Thing::TooLarge) continue;
    const Text Path = Make(Row);
    const mode_t Kind = KindOf(Path);
    const bool Opens = Row.Is == Thing::Full;
    Settings.ParamInputFile = Settings.SpectInputFile = Path;
    struct WriteRow {
      const char* What;
      std::function<void()> Write;
      Text Box;
    };
    const WriteRow Writes[] = {
        {"document", [&] { EXPECT_EQ(WriteDocument(Path), 0); },
         Opens ? "warning Error saving the current information to file " + Path + "."
               : "warning Zelvanor cannot open file " + Path + "."},
        {"stage 1", [&] { EXPECT_EQ(WriteParamInput(Path), 0); }, "warning Error writing the " + Path + " file."},
        {"stage 2", [&] { EXPECT_EQ(WriteSpectInput(Path), 0); }, "warning Error writing the file " + Path + "."},
        {"results", [&] { EXPECT_EQ(EmptyResultFile(Path), ToFlag(Opens)); },
         Opens ? Text() : "warning Error opening file: " + Path + "."},
        {"profile",
         [&] {
           EXPECT_FALSE(WritePrivateProfileStrings({{"nmr", "A", "1"}}, Path));
         },
         ""}};
    for (const WriteRow& R : Writes) {
      Shown() = {};
      W.DocumentDirty = True;
      R.Write();
      EXPECT_EQ(Boxes(), R.Box) << R.What << " to " << Row.Name;
      EXPECT_EQ(KindOf(Path), Kind) << R.What << " replaced the " << Row.Name;
      ExpectValues("DocumentDirty=-1 IsBusy=0", R.What);
    }
    Shown() = {};
    Shown().Files = {Path};
    Shown().Answers = {BoxAnswer::Yes};
    mnuStartLog_Click();
    EXPECT_EQ(KindOf(Path), Kind);
    EXPECT_EQ(W.LogFilePath, Path);
  }
  for (const auto& Entry : fs::directory_iterator(TempPath(""))) {
    EXPECT_NE(Entry.path().extension(), ".new") << "left behind: " << Entry.path();
  }
}

TEST_F(FaultsTest, AProfileThatCannotBeReadIsNotReplaced) {
  const Text Path = WriteFile("large.ini", "[MyColors]\nH=1\n");
  ASSERT_EQ(truncate(Path.c_str(), static_cast<off_t>(LargestFile) + 1), 0);
  EXPECT_FALSE(WritePrivateProfileStrings({{"nmr", "A", "1"}}, Path));
  EXPECT_EQ(fs::file_size(Path), LargestFile + 1);
  const Text Plain = WriteFile("plain.ini", "[z]\nB=2\n");
  const Text Link = TempPath("link.ini");
  ASSERT_EQ(symlink(Plain.c_str(), Link.c_str()), 0);
  EXPECT_TRUE(WritePrivateProfileStrings({{"nmr", "A", "1"}}, Link));
  EXPECT_EQ(ReadBytes(Plain), "[z]\nB=2\n\n[nmr]\nA=1\n");
  EXPECT_TRUE(fs::is_symlink(Link));
  fs::remove(Plain);
  EXPECT_TRUE(WritePrivateProfileStrings({{"nmr", "A", "1"}}, Link)) << "a link to a file that is still to come";
  EXPECT_EQ(ReadBytes(Plain), "[nmr]\nA=1\n");
  EXPECT_TRUE(fs::is_symlink(Link));
}

// A disk that fills up at every place, and a document that can't be written: the former one stays whole.
TEST_F(FaultsTest, NoFailedSaveTouchesTheFormerDocument) {
  UseOneAtom();
  // A name so long that no second file can stand beside it is written in place, when all of it is there.
  for (const Text& Path : {TempPath("kept.NMR"), TempPath(Text(245, 'k') + ".NMR")}) {
    W.HostTextLine.ReDim(30);
    W.HostTextLineCount = 0;
    ASSERT_EQ(WriteDocument(Path), -1);
    const Text Former = ReadBytes(Path);
    W.HostTextLineCount = 30;
    for (int Line = 0; Line < 30; ++Line) W.HostTextLine[Line] = Text(200, 'x');
    const auto Save = [&](unsigned Limit) {
      W.DocumentDirty = True;
      const FullDisk Disk(Limit);
      const Flag Saved = WriteDocument(Path);
      EXPECT_EQ(W.DocumentDirty, ToFlag(!IsSet(Saved))) << Limit;
      return IsSet(Saved);
    };
    W.ShieldingAvailable = True;
    const Integer Count = std::exchange(W.NumNMRAtoms, 5000);  // more than the arrays hold
    EXPECT_FALSE(Save(1U << 20));
    EXPECT_EQ(ReadBytes(Path), Former);
    W.NumNMRAtoms = Count;
    W.ShieldingAvailable = False;
    const bool Beside = Path.size() < 200;
    for (unsigned Limit = 0; Beside && Limit < 6000; Limit += 512) {
      EXPECT_FALSE(Save(Limit)) << Limit;
      EXPECT_EQ(ReadBytes(Path), Former) << Limit;
    }
    EXPECT_TRUE(Save(1U << 20));
    EXPECT_TRUE(ReadBytes(Path).find(Text(200, 'x')) != Text::npos && ReadBytes(Path).ends_with("SpectraEnd\r\n"));
  }
  for (const auto& Entry : fs::directory_iterator(TempPath(""))) {
    EXPECT_NE(Entry.path().extension(), ".new") << "left behind: " << Entry.path();
  }
}

// The process that Work is run in ends by a signal, or by its return value.
int StatusOfChild(const std::function<int()>& Work) {
  const pid_t Child = fork();
  if (Child == 0) {
    alarm(20);
    _exit(Work());
  }
  int Status = 0;
  waitpid(Child, &Status, 0);
  return Status;
}

TEST_F(FaultsTest, ASignalWaitsForTheEndOfASave) {
  for (const int Signal : {SIGTERM, SIGINT, SIGHUP}) {
    const Text Path = TempPath("held-" + std::to_string(Signal));
    const int Status = StatusOfChild([&] {
      TakeEndSignals();
      const EndHeld Outer;
      {
        const EndHeld Inner;
        std::raise(Signal);
      }
      WriteFile("held-" + std::to_string(Signal), "whole");
      return 0;
    });
    EXPECT_TRUE(Exists(Path));
    EXPECT_TRUE(WIFSIGNALED(Status) && WTERMSIG(Status) == Signal) << Signal;
  }
  const int Status = StatusOfChild([] {
    std::signal(SIGHUP, SIG_IGN);
    TakeEndSignals();
    std::raise(SIGHUP);
    std::raise(SIGXFSZ);
    std::raise(SIGPIPE);
    return 7;
  });
  EXPECT_TRUE(WIFEXITED(Status) && WEXITSTATUS(Status) == 7) << "what is ignored ends nothing";
}

Text Script(const Text& Name, const Text& Body) {
  const Text Path = WriteFile(Name, "#!/bin/sh\n" + Body + "\n");
  chmod(Path.c_str(), 0700);
  return Path;
}

int OpenDescriptors() {
  return static_cast<int>(std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()));
}

TEST_F(FaultsTest, NoProcessOutlivesItsRun) {
  // The script dies, what it has started goes on and would write its result into the next run.
  const Text Mark = TempPath("late");
  const Text Late = Script("late.sh", "(sleep 0.3; echo late >" + Mark + ") & kill -KILL $$");
  WaitForBackend(Platform.Shell({Late}));
  usleep(500000);
  EXPECT_FALSE(Exists(Mark));

  const Text Quick = Script("quick.sh", "exit 3");
  const int Before = OpenDescriptors();
  for (int Run = 0; Run < 100; ++Run) WaitForBackend(Platform.Shell({Quick}));
  EXPECT_EQ(OpenDescriptors(), Before);
  EXPECT_FALSE(AnyProcessRuns());
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child is left";

  // A signal ends the program and the calculation with all that belongs to it.
  const Text Slow = Script("slow.sh", "(sleep 1; echo late >" + Mark + ") & wait");
  const int Status = StatusOfChild([&] {
    TakeEndSignals();
    Platform.Shell({Slow});
    usleep(200000);
    return std::raise(SIGTERM);
  });
  EXPECT_TRUE(WIFSIGNALED(Status));
  usleep(1200000);
  EXPECT_FALSE(Exists(Mark));

  const Text Prose = WriteFile("prose", "no program\n");
  chmod(Prose.c_str(), 0700);
  EXPECT_EQ(FailureOf([&] { Platform.Shell({Prose}); }), "The file is not a program");
  EXPECT_EQ(FailureOf([&] { Platform.Shell({TempPath("missing")}); }), "File not found");
  EXPECT_EQ(FailureOf([&] { Platform.Shell({MakeFolder("folder")}); }), "Permission denied");
}

TEST_F(FaultsTest, AConversionThatIsGivenUpSaysNoMore) {
  const Text Folder = MakeFolder("slow-converter");
  Script("slow-converter/zelvanor-convert", "sleep 20");
  const auto Former = std::exchange(Platform.ProgramDirectory, [Folder] { return Folder; });
  Settings.NMRIniPath = MakeFolder("converted");
  AskCancelLater();
  EXPECT_FALSE(ConvertMolecule({"", "CCO"}, ConvertedPath()));
  Platform.ProgramDirectory = Former;
  EXPECT_EQ(Boxes(), "");
  EXPECT_FALSE(AnyProcessRuns());
  EXPECT_FALSE(Progress.Runs);
}

// The lock of a first start, in a process of its own that is killed.
TEST_F(FaultsTest, AKilledProgramLeavesNoLock) {
  const char* Set = std::getenv("XDG_RUNTIME_DIR");
  const Text Former = Set == nullptr ? "" : Set;
  setenv("XDG_RUNTIME_DIR", TempPath("").c_str(), 1);
  UsePosixServices();
  int Ready[2];
  ASSERT_EQ(pipe(Ready), 0);
  const pid_t First = fork();
  if (First == 0) {
    const char Answer = Platform.OtherInstanceRuns() ? 'r' : 'f';
    alarm(20);
    if (write(Ready[1], &Answer, 1) == 1) pause();
    _exit(1);
  }
  char Answer = 0;
  ASSERT_EQ(read(Ready[0], &Answer, 1), 1);
  EXPECT_EQ(Answer, 'f') << "the first start is alone";
  const auto Asks = [] { return WEXITSTATUS(StatusOfChild([] { return Platform.OtherInstanceRuns() ? 1 : 0; })); };
  EXPECT_EQ(Asks(), 1) << "the second is not";
  kill(First, SIGKILL);
  waitpid(First, nullptr, 0);
  EXPECT_EQ(Asks(), 0) << "a lock is nobody's after its holder has died";

  // Where no lock can be had in one place it is taken in the other.
  const Text Lock = "zelvanor-" + std::to_string(getuid()) + ".lock";
  fs::remove(TempPath(Lock));
  MakeFolder(Lock);
  Asks();
  EXPECT_TRUE(Exists("/tmp/" + Lock));
  close(Ready[0]);
  close(Ready[1]);
  setenv("XDG_RUNTIME_DIR", Former.c_str(), 1);
  if (Former.empty()) unsetenv("XDG_RUNTIME_DIR");
}

}  // namespace
}  // namespace zelvanor::test
