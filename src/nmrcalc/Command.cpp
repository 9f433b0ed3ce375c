#include "nmrcalc/Command.h"

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <new>

#include "basic/Failure.h"
#include "nmrcalc/Memory.h"
#include "nmrcalc/Progress.h"
#include "nmrcalc/engines/Engine.h"
#include "nmrcalc/engines/Geometry.h"
#include "nmrcalc/input/InputText.h"
#include "nmrcalc/input/ParamInput.h"
#include "nmrcalc/input/SpinSettings.h"
#include "nmrcalc/spins/LinearAlgebra.h"
#include "nmrcalc/spins/Spectrum.h"
#include "nmrcalc/spins/Workers.h"

namespace nmrcalc {

namespace {

// What is left to the rest of the machine.
constexpr double UsableShare = 0.9;

constexpr const char* Usage =
    "usage: nmrcalc.exe PARAMETER-DIRECTORY WORK-DIRECTORY 1|2|3|4 [LOG-FILE]\n"
    "  1  shieldings and couplings: nmrparam.in to nmrparam.out\n"
    "  2  simulates the spectrum: nmrspect.in to nmrspect.out\n"
    "  3  fits it to a measured one: nmrfit.in to nmrfit.out\n"
    "  4  optimises the geometry by xtb: nmrgeom.in to nmrgeom.out";

struct StageFiles {
  const char* Input;
  const char* Output;
};
constexpr const char* SettingsFile = "nmr_spin.abp";
constexpr const char* MapFile = "nmrspect.map";
constexpr StageFiles Stages[] = {{"nmrparam.in", "nmrparam.out"},
                                 {"nmrspect.in", "nmrspect.out"},
                                 {"nmrfit.in", "nmrfit.out"},
                                 {"nmrgeom.in", "nmrgeom.out"}};
constexpr int FitStage = 3;
constexpr const char* FitProgram = "nmrfit.exe";

bool IsStage(const std::string& Word) { return Word.size() == 1 && Word[0] >= '1' && Word[0] <= '4'; }

std::string PathIn(const std::string& Directory, const std::string& Name) {
  const bool Ends = Directory.empty() || Directory.back() == '/' || Directory.back() == '\\';
  return Directory + (Ends ? "" : "/") + Name;
}

// Opened without waiting for a reader, where the path is a pipe.
bool WriteBytes(const std::string& Path, const std::string& Text) {
  const int Descriptor = open(Path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK, 0666);
  if (Descriptor < 0) return false;
  std::size_t Written = 0;
  while (Written < Text.size()) {
    const ssize_t Count = write(Descriptor, Text.data() + Written, Text.size() - Written);
    if (Count < 0 && errno == EINTR) continue;
    if (Count <= 0) break;
    Written += static_cast<std::size_t>(Count);
  }
  const int Problem = errno;
  const bool Whole = close(Descriptor) == 0 && Written == Text.size();
  if (Written < Text.size()) errno = Problem;
  return Whole;
}

std::string ErrorReport(const std::string& Reason) { return "ERRMSG: " + Reason + ".\n"; }

// Writes beside the file and renames, so that nobody reads half a result. Where no file can be made beside it (a
// directory without write permission, a device), it is written in place; if that fails the file tells so or is empty.
void WriteOutput(const std::string& Path, const std::string& Text) {
  const std::string Temporary = Path + ".tmp";
  std::error_code Error;
  const bool Plain = !std::filesystem::exists(Path, Error) || std::filesystem::is_regular_file(Path, Error);
  if (Plain && WriteBytes(Temporary, Text)) {
    std::filesystem::rename(Temporary, Path, Error);
    if (!Error) return;
  }
  if (Plain) std::filesystem::remove(Temporary, Error);
  if (WriteBytes(Path, Text)) return;
  const std::string Reason = "Could not write " + Path + ": " + zelvanor::FailureTextFromErrno(errno);
  if (Plain && !WriteBytes(Path, ErrorReport(Reason))) WriteBytes(Path, "");
  throw zelvanor::Failure(Reason);
}

// The log level lies in the input of stage 1; stage 2 goes by the one of the latest stage 1.
int FindLogLevel(const CommandLine& Command) {
  try {
    return ReadLogLevel(PathIn(Command.WorkDirectory, Stages[0].Input));
  } catch (const zelvanor::Failure&) {
    return 0;
  }
}

// Becomes the program of the fit, which stands beside this one: what it links would cost the other stages a start of
// several times their own. Comes back where that is not possible.
StageOutput BecomeFit(const CommandLine& Command) {
  std::error_code Error;
  const auto Own = std::filesystem::read_symlink("/proc/self/exe", Error);
  const std::string Program = (Own.parent_path() / FitProgram).string();
  std::string Words[] = {Program, Command.ParameterDirectory, Command.WorkDirectory, "3", Command.LogPath};
  char* Pointers[] = {
      Words[0].data(), Words[1].data(), Words[2].data(), Words[3].data(), Words[4].empty() ? nullptr : Words[4].data(),
      nullptr};
  execv(Program.c_str(), Pointers);
  throw zelvanor::Failure("The program of the fit, " + Program +
                          ", could not be started: " + zelvanor::FailureTextFromErrno(errno));
}

StageOutput RunStage(const CommandLine& Command, Log& Report) {
  const std::string Input = InputPath(Command);
  if (Command.Stage == FitStage) return BecomeFit(Command);
  if (Command.Stage == 1) {
    return {.Text = RunEngines(Input, Command.ParameterDirectory, Command.WorkDirectory, Report)};
  }
  if (Command.Stage == 4) return {.Text = OptimiseGeometry(Input, Command.WorkDirectory, Report)};
  const SpinSettings Settings = ReadSpinSettings(PathIn(Command.ParameterDirectory, SettingsFile));
  const SpectrumInput System = ReadSpectrumInput(Input);
  AddToLog(Report, 0,
           std::string("Stage 2: ") + (System.WeakCoupling ? "first-order " : "") + "simulation of " +
               std::to_string(System.Sites.size()) + " sites at " + FixedNumber(System.Field, 3) + " MHz");
  for (std::size_t Site = 0; Site < System.Sites.size() && LogWants(Report, 2); ++Site) {
    const SpinSite& Own = System.Sites[Site];
    AddToLog(Report, 2,
             "site " + std::to_string(Site + 1) + ": atomic number " + std::to_string(Own.AtomicNumber) + ", " +
                 std::to_string(Own.Degeneracy) + " spins, " + FixedNumber(Own.Shift, 3) + " ppm" +
                 (Own.Observed ? "" : ", not observed"));
  }
  const Spectrum Result = SimulateSpectrum(System, Settings, UsableShare * FreeMemory(), Report);
  AddToLog(Report, 0, std::to_string(Result.Lines.size()) + " lines");
  return {.Text = FormatSpectrum(Result), .Map = FormatSpectrumMap(System, Result)};
}

// The output of the stage, or its failure as one ERRMSG line; Failed tells which.
StageOutput RunStageSafely(const CommandLine& Command, StageRoutine Routine, Log& Report, bool& Failed) {
  std::string Reason;
  try {
    Failed = false;
    return Routine(Command, Report);
  } catch (const zelvanor::Failure& Problem) {
    Reason = Problem.What;
  } catch (const std::bad_alloc&) {
    Reason = "Out of memory; use the weak coupling approximation or select fewer atoms";
  } catch (const std::exception& Problem) {
    Reason = std::string("Internal error: ") + Problem.what();
  }
  Failed = true;
  AddToLog(Report, 0, "Failed: " + Reason);
  return {.Text = ErrorReport(Reason)};
}

// Matrices come and go by the thousand. Kept in the heap, their pages are paid for once and not at each use.
void KeepFreedMemory() {
#ifdef __GLIBC__
  constexpr int LargestKept = 32 << 20;
  mallopt(M_MMAP_THRESHOLD, LargestKept);
  mallopt(M_TRIM_THRESHOLD, 4 * LargestKept);
  mallopt(M_ARENA_MAX, static_cast<int>(NumUsableCores()));  // more would hold what no thread uses, fewer wait
#endif
}

}  // namespace

std::string InputPath(const CommandLine& Command) {
  return PathIn(Command.WorkDirectory, Stages[Command.Stage - 1].Input);
}

CommandLine ParseCommandLine(const std::vector<std::string>& Arguments) {
  constexpr std::size_t WithoutLog = 3;
  const bool Right = Arguments.size() == WithoutLog || Arguments.size() == WithoutLog + 1;
  if (!Right || !IsStage(Arguments[2])) throw zelvanor::Failure(Usage);
  return {.ParameterDirectory = Arguments[0],
          .WorkDirectory = Arguments[1],
          .Stage = Arguments[2][0] - '0',
          .LogPath = Arguments.size() > WithoutLog ? Arguments[WithoutLog] : std::string()};
}

int RunCommand(const CommandLine& Command) { return RunStageCommand(Command, RunStage); }

int RunStageCommand(const CommandLine& Command, StageRoutine Routine) {
  const auto Start = std::chrono::steady_clock::now();
  UseOneLibraryThread();
  KeepFreedMemory();
  Log Report{.Path = Command.LogPath, .Level = Command.LogPath.empty() ? 0 : FindLogLevel(Command)};
  bool Failed = false;
  // The map of an earlier spectrum must never stand beside another one.
  const std::string MapPath = PathIn(Command.WorkDirectory, MapFile);
  std::error_code Ignored;
  if (Command.Stage == 2) std::filesystem::remove(MapPath, Ignored);
  StartProgress(Command.WorkDirectory, Command.Stage);
  const StageOutput Output = RunStageSafely(Command, Routine, Report, Failed);
  EndProgress();
  try {
    if (!Output.Map.empty()) WriteOutput(MapPath, Output.Map);
  } catch (const zelvanor::Failure& Problem) {
    AddToLog(Report, 0, "No map: " + Problem.What);
    std::filesystem::remove(MapPath, Ignored);
  }
  try {
    WriteOutput(PathIn(Command.WorkDirectory, Stages[Command.Stage - 1].Output), Output.Text);
  } catch (const zelvanor::Failure& Problem) {
    Failed = true;
    if (Command.Stage == 2) std::filesystem::remove(MapPath, Ignored);
    AddToLog(Report, 0, "Failed: " + Problem.What);
    std::fprintf(stderr, "nmrcalc.exe: %s.\n", Problem.What.c_str());
  }
  const std::chrono::duration<double> Elapsed = std::chrono::steady_clock::now() - Start;
  AddToLog(Report, 0, "Elapsed " + FixedNumber(Elapsed.count(), 3) + " s");
  if (!WriteLog(Report)) std::fprintf(stderr, "nmrcalc.exe: could not write the log %s.\n", Report.Path.c_str());
  return Failed ? 1 : 0;
}

int RunProgram(const std::vector<std::string>& Arguments, int (*Run)(const CommandLine&)) {
  try {
    return Run(ParseCommandLine(Arguments));
  } catch (const zelvanor::Failure& Problem) {
    std::fprintf(stderr, "%s\n", Problem.What.c_str());
    return 2;
  }
}

}  // namespace nmrcalc
