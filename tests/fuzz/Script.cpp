// The script language with the whole program behind it. Scripts name files, so they are kept to a folder of their own:
// no path separator is left in them, the environment is empty, nothing starts, and nobody waits.

#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>

#include "batch/Batch.h"
#include "fuzz/Harness.h"
#include "fuzz/Targets.h"
#include "platform/TextFiles.h"
#include "settings/SettingsState.h"
#include "workspace/Helpers.h"

// The fonts of the pictures are the library's own business.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }

namespace zelvanor::fuzz {

namespace {

namespace fs = std::filesystem;

constexpr rlim_t LargestFile = 16 << 20;

Text ScriptFolder() { return PathOf("script"); }

void EnterFolder() {
  fs::create_directories(ScriptFolder());
  fs::current_path(ScriptFolder());
  clearenv();
  setenv("EXAMPLE", "document.NMR", 1);
  setenv("XDG_RUNTIME_DIR", ScriptFolder().c_str(), 1);
  rlimit Limit{LargestFile, LargestFile};
  setrlimit(RLIMIT_FSIZE, &Limit);
  std::signal(SIGXFSZ, SIG_IGN);
  if (std::freopen("/dev/null", "w", stdout) == nullptr) Stop("there is no /dev/null");
}

void FillFolder() {
  static const bool Entered = (EnterFolder(), true);
  Demand(Entered, "the folder is not there");
  for (const fs::directory_entry& Entry : fs::directory_iterator(ScriptFolder())) fs::remove_all(Entry.path());
  static const std::map<Text, Text> Contents = {
      {"ethanol.mvs", ReadBack(SourceFile("examples/ethanol.mvs"))},
      {"document.NMR", ReadBack(SourceFile("examples/ethanol.NMR"))},
      {"water.zmt", ReadBack(SourceFile("examples/water.zmt"))},
  };
  for (const auto& [Name, Content] : Contents) WriteInput("script/" + Name, Content);
  WriteOwnSettings();
}

void CutOut(Text& Line, TextView Piece) {
  for (std::size_t Place = 0; (Place = Line.find(Piece, Place)) != Text::npos;) Line.erase(Place, Piece.size());
}

// Whether the line makes the program wait, or assigns a count that asks for tables of gigabytes, whatever stands in it
// for an empty variable.
bool IsLeftOut(Text Line) {
  for (std::size_t Open = 0; (Open = Line.find("${")) != Text::npos;) {
    const std::size_t Close = Line.find('}', Open);
    if (Close == Text::npos) break;
    Line.erase(Open, Close - Open + 1);
  }
  if (Line.find("wait") != Text::npos) return true;
  constexpr int MostDigits = 3;
  int Digits = 0;
  for (const char C : Line) {
    Digits = C >= '0' && C <= '9' ? Digits + 1 : 0;
    if (Digits > MostDigits) break;
  }
  return Line.find("let") != Text::npos &&
         (Digits > MostDigits || Line.find_first_of("eEdD", Line.find('=')) != Text::npos);
}

Text Tamed(TextView Input) {
  Text Result;
  std::istringstream Lines{Text(Input)};
  for (Text Line; std::getline(Lines, Line);) {
    CutOut(Line, "/");
    CutOut(Line, "..");
    if (!IsLeftOut(Line)) Result += Line + "\n";
  }
  return Result;
}

void CloseForms() {
  for (Form* Window : AllForms()) {
    HideForm(*Window);
    Window->Loaded = false;
  }
}

}  // namespace

bool TryScript(TextView Input) {
  ResetProgram();
  FillFolder();
  CloseForms();
  batch::State = {};
  batch::UseBatchServices();
  Settings.NumColorSets = Settings.NumRadiusSets = 0;  // a start sets them up
  // The backend answers once.
  static const Text Params = ReadBack(SourceFile("tests/fuzz/seeds/ParamResults/ok-ethanol"));
  static const Text Peaks = ReadBack(SourceFile("tests/fuzz/seeds/SpectResults/ok-ethanol"));
  QueueResult(1, Params);
  QueueResult(2, Peaks);
  const Text Script = Tamed(Input);
  std::istringstream Stream(Script);
  batch::State.Script = &Stream;
  try {
    batch::RunScript(nullptr);
  } catch (const batch::ScriptStop& Stopped) {
    // It may have left the program in the midst of anything, which ends with it.
    for (int Number = FreeFile() - 1; Number > 0; --Number) CloseFileQuietly(Number);
    Demand(!Stopped.Reason.empty() || Stopped.Status == batch::ExpectationFailed, "a stop without a reason");
    return false;
  }
  // A script may assign what it likes.
  if (batch::State.Started && !batch::State.Ended && Script.find("let") == Text::npos) CheckPromises();
  return batch::State.Status == batch::RanToItsEnd;
}

}  // namespace zelvanor::fuzz
