#include <sys/statvfs.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <thread>

#include "basic/Failure.h"
#include "basic/TextTools.h"
#include "nmrcalc/Memory.h"
#include "nmrcalc/Progress.h"
#include "nmrcalc/engines/Cache.h"
#include "nmrcalc/engines/Engine.h"
#include "nmrcalc/engines/EngineFiles.h"
#include "nmrcalc/engines/NwchemInput.h"
#include "nmrcalc/engines/NwchemOutput.h"
#include "nmrcalc/engines/Supervise.h"
#include "nmrcalc/input/InputText.h"

namespace nmrcalc {

namespace {

namespace fs = std::filesystem;

// The builds that Debian has, each with the launcher of its own message passing; the first one that is there is taken.
// The build with MPICH first: the other has failed across machines.
struct BuildRow {
  const char* Program;
  const char* Launcher;
};
constexpr BuildRow Builds[] = {
    {"nwchem.mpich", "mpirun.mpich -np %n"},
    {"nwchem.openmpi", "mpirun.openmpi --oversubscribe -np %n"},
    {"nwchem", "mpirun -np %n"},
};

constexpr const char* NotInstalled =
    "NWChem was not found; install the Debian package nwchem-mpich, or name the program in Setup, Backend";
constexpr double BytesPerMegabyte = 1048576.0;
constexpr double FullDisk = 4.0 * BytesPerMegabyte;  // less than that is taken for full
constexpr int LeastMemory = 200;                     // MB for a process; with less the smallest molecules fail
constexpr const char* VectorFile = "zelvanor.movecs";

// One calculation: the input without where and how, and what the output has to hold.
struct NwchemJob {
  std::string Input{};
  std::size_t NumTensors = 0;
  std::size_t NumCouplings = 0;
  std::size_t NumGroups = 0;  // of couplings
};

int CountProcesses(const EngineSettings& Settings) {
  if (Settings.Processes > 0) return Settings.Processes;
  return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

std::string ChooseProgram(const EngineSettings& Settings) {
  if (!Settings.Program.empty()) return Settings.Program;
  for (const BuildRow& Row : Builds) {
    if (!FindProgram(Row.Program).empty()) return Row.Program;
  }
  return "";
}

std::string ChooseLauncher(const EngineSettings& Settings, const std::string& Program) {
  if (!Settings.Launcher.empty()) return Settings.Launcher;
  if (CountProcesses(Settings) == 1) return "";
  for (const BuildRow& Row : Builds) {
    if (fs::path(Program).filename() == Row.Program) return Row.Launcher;
  }
  return Builds[std::size(Builds) - 1].Launcher;
}

std::vector<std::string> LaunchWords(const EngineSettings& Settings, const std::string& InputName) {
  const std::string Program = ChooseProgram(Settings);
  std::vector<std::string> Words;
  const std::string Launcher = ChooseLauncher(Settings, Program);
  for (const std::string_view Token : SplitTokens(Launcher)) {
    std::string Word(Token);
    if (const std::size_t Place = Word.find("%n"); Place != std::string::npos) {
      Word.replace(Place, 2, std::to_string(CountProcesses(Settings)));
    }
    Words.push_back(Word);
  }
  Words.push_back(Program);
  Words.push_back(InputName);
  return Words;
}

// A program on other machines need not be on this one: with a launcher of the user's own only that is looked for.
std::string FindMissing(const EngineSettings& Settings) {
  const std::string Program = ChooseProgram(Settings);
  if (Program.empty()) return NotInstalled;
  if (Settings.Launcher.empty() && FindProgram(Program).empty()) {
    return "The program \"" + Program +
           "\" was not found; install the Debian package nwchem-mpich, or name another "
           "one in Setup, Backend";
  }
  const std::string Launcher = LaunchWords(Settings, "")[0];
  if (!FindProgram(Launcher).empty()) return "";
  return "The launcher \"" + Launcher +
         "\" was not found; install it (Debian: mpich, openmpi-bin or slurm-client), or "
         "change the launcher line in Setup, Backend";
}

int MemoryOfProcess(const EngineSettings& Settings) {
  const double Whole = Settings.Memory > 0 ? Settings.Memory : FreeMemory() / 2.0 / BytesPerMegabyte;
  // The engine counts its memory in 32 bits of 8-byte words; what nobody asked for is no more than it can use.
  const double MostMemory = Settings.Memory > 0 ? 16000.0 : 2000.0;
  return std::max(LeastMemory, static_cast<int>(std::min(MostMemory, Whole / CountProcesses(Settings))));
}

bool IsFull(const std::string& Directory) {
  struct statvfs Disk {};
  if (statvfs(Directory.c_str(), &Disk) != 0) return false;
  return static_cast<double>(Disk.f_bavail) * static_cast<double>(Disk.f_frsize) < FullDisk;
}

// The head that tells where and how, then the job; with a wave function to go on from.
std::string WholeInput(const NwchemJob& Job, const EngineSettings& Settings, const std::string& Scratch,
                       const std::string& Permanent, bool Restart) {
  std::string Text = "start zelvanor\npermanent_dir " + Permanent + "\nscratch_dir " + Scratch + "\nmemory total " +
                     std::to_string(MemoryOfProcess(Settings)) + " mb\n" + Job.Input;
  if (Restart) Text.replace(Text.find("dft\n"), 4, "dft\n vectors input " + std::string(VectorFile) + "\n");
  return Text;
}

// Why a run that ended gave no result; empty when it gave all of it.
std::string JudgeOutput(const NwchemJob& Job, const RunOutcome& Outcome, const NwchemOutput& Result,
                        const std::string& Output, const std::vector<std::string>& Directories) {
  const bool All = Result.Tensors.size() >= Job.NumTensors && Result.Couplings.size() >= Job.NumCouplings;
  if (Result.Finished && All && Result.Problem.empty()) return "";
  if (!Result.Problem.empty()) return Result.Problem;
  for (const std::string& Directory : Directories) {
    if (!IsFull(Directory)) continue;
    return "The disk of " + Directory +
           " is full; free space on it, or choose another scratch directory or no kept results in Setup, Backend";
  }
  if (Result.Version.empty()) {
    return "The launcher line did not start NWChem; check it in Setup, Backend. It said: " + LastWords(Output);
  }
  if (!Result.Finished && Outcome.Signal != 0) {
    return "NWChem was killed by signal " + std::to_string(Outcome.Signal) +
           "; if nobody did so, the machine lacks memory: give less of it or fewer processes in Setup, Backend. "
           "Compute goes on from the last wave function";
  }
  if (!Result.Finished) {
    return "NWChem ended before it was done (exit status " + std::to_string(Outcome.ExitCode) +
           "); Compute goes on from the last wave function. It said: " + LastWords(Output);
  }
  return "The output of NWChem " + Result.Version +
         " could not be understood; 7.0 is what this program was made for (Debian package nwchem-mpich)";
}

void ThrowUnlessEnded(const RunOutcome& Outcome, const EngineSettings& Settings, const std::string& Launcher) {
  switch (Outcome.End) {
    case RunEnd::Cancelled:
      throw zelvanor::Failure("The calculation was cancelled; Compute goes on from where it was");
    case RunEnd::TimedOut:
      throw zelvanor::Failure("The time limit of " + std::to_string(Settings.TimeLimit) +
                              " minutes (Setup, Backend) is over; Compute goes on from where it was");
    case RunEnd::NotStarted:
      throw zelvanor::Failure("Could not start \"" + Launcher + "\": " + Outcome.Problem +
                              "; check the launcher line in Setup, Backend");
    case RunEnd::Ended:
      break;
  }
}

void ReportSteps(const NwchemJob& Job, const std::string& OutputPath, std::size_t& KnownSize) {
  constexpr long Steps = 1000;
  std::error_code Error;
  const auto Size = fs::file_size(OutputPath, Error);
  if (Error || Size == KnownSize) return;
  KnownSize = Size;
  const NwchemProgress Progress = FindNwchemProgress(ReadWholeFile(OutputPath), Job.NumTensors, Job.NumGroups);
  ReportProgress(std::lround(Progress.Share * Steps), Steps, Progress.Step);
}

// One start of the engine, from what an earlier one has left when Restart says so.
std::string StartOnce(const NwchemJob& Job, const EngineSettings& Settings, const std::string& Permanent, bool Restart,
                      NwchemOutput& Result, std::string& Problem, Log& Report) {
  const std::string Scratch = MakeScratchDirectory(Settings.Scratch);
  ProgramRun Run{
      .Words = LaunchWords(Settings, Scratch + "/zelvanor.nw"),
      .Directory = Scratch,
      .OutputPath = Scratch + "/zelvanor.out",
      .Environment = {{"OMP_NUM_THREADS", "1"}, {"OPENBLAS_NUM_THREADS", "1"}, {"ARMCI_USE_WIN_ALLOCATE", "0"}},
      .Remove = {Scratch},
      .TimeLimit = 60.0 * Settings.TimeLimit};
  // The output outlives the run, everything else goes with it.
  const std::string Kept = Permanent.empty() ? Scratch : Permanent;
  const std::string Input = WholeInput(Job, Settings, Scratch, Kept, Restart);
  AddToLog(Report, 0, "NWChem starts" + std::string(Restart ? ", from the wave function of an earlier run" : "") + ":");
  for (const std::string& Word : Run.Words) Report.Text += Report.Path.empty() ? "" : " " + Word;
  AddToLog(Report, 0, "\n" + Input);
  WriteLog(Report);
  Run.Files = {{Run.Words.back(), Input}};
  std::size_t KnownSize = 0;
  std::string Output;
  RunSupervised(
      Run, [&](double) { ReportSteps(Job, Run.OutputPath, KnownSize); },
      [&](const RunOutcome& Outcome) {
        Output = ReadWholeFile(Run.OutputPath);
        AddToLog(Report, 0, Output);
        Result = ReadNwchemOutput(Output);
        ThrowUnlessEnded(Outcome, Settings, Run.Words[0]);
        Problem = JudgeOutput(Job, Outcome, Result, Output, {Scratch, Kept});
      });
  return Output;
}

NwchemOutput RunJob(const NwchemJob& Job, const EngineSettings& Settings, Log& Report) {
  NwchemOutput Result;
  const bool Keeps = Settings.CacheSize > 0;
  if (Keeps) {
    if (const std::string Known = FindInCache(Job.Input); !Known.empty()) {
      Result = ReadNwchemOutput(Known);
      AddToLog(Report, 0, "Found among the results that were kept:\n" + Job.Input + Known);
      return Result;
    }
  }
  RestartFolder Folder(Keeps ? Job.Input : "");
  std::error_code Error;
  bool Restart = !Folder.Path.empty() && fs::exists(Folder.Path + "/" + VectorFile, Error);
  std::string Problem;
  std::string Output = StartOnce(Job, Settings, Folder.Path, Restart, Result, Problem, Report);
  if (!Problem.empty() && Restart && !Result.Finished) {
    // A wave function that is cut short is no place to start from.
    fs::remove(Folder.Path + "/" + VectorFile, Error);
    Output = StartOnce(Job, Settings, Folder.Path, false, Result, Problem, Report);
  }
  if (!Problem.empty()) throw zelvanor::Failure(Problem);
  DropRestart(Folder);
  if (Keeps) KeepInCache(Job.Input, Output, Settings.CacheSize * BytesPerMegabyte);
  return Result;
}

void TakeTensor(const ComputedTensor& From, ShieldingTensor& To) {
  To.Components = From.Components;
  To.Eigenvalues = {From.Principal[2], From.Principal[1], From.Principal[0]};
  To.Isotropic = From.Isotropic;
  To.Anisotropy = From.Anisotropy;
}

void ComputeShieldings(const EngineTask& Task, const QuantumRegion& Region, const Level& Theory, ParamResults& Results,
                       Log& Report) {
  const ParamInput& Input = Task.Input;
  const LevelVariant& Variant =
      Theory.Variants[UsesShieldingBasis(Input.Quantum) ? 1 : 0][UsesD(Theory, Input.Quantum) ? 1 : 0];
  const NwchemJob Job{.Input = ShieldingInput(Input, Region, Theory),
                      .NumTensors = Region.Atoms.size() + Region.Caps.size()};
  const NwchemOutput Output = RunJob(Job, Task.Settings, Report);
  Results.Tensors.assign(Input.NMRAtoms.size(), {});
  if (Task.Settings.Scaling) Results.Errors.assign(Input.NMRAtoms.size(), 0.0);
  for (std::size_t K = 0; K < Input.NMRAtoms.size(); ++K) {
    const int Element = Input.System.Atoms[Input.NMRAtoms[K]].AtomicNumber;
    const ComputedTensor& Tensor = Output.Tensors[PlaceInRegion(Region, Input.NMRAtoms[K])];
    if (!zelvanor::EqualsIgnoringCase(Tensor.Symbol, SymbolOf(Element))) {
      throw zelvanor::Failure("The output of NWChem " + Output.Version + " tells its atoms in an unknown order");
    }
    TakeTensor(Tensor, Results.Tensors[K]);
    double Shielding = Tensor.Isotropic;
    const auto Scale = Variant.Scales.find(Element);
    const auto Reference = Variant.References.find(Element);
    if (Task.Settings.Scaling && Scale != Variant.Scales.end() && Reference != Variant.References.end()) {
      Shielding = Reference->second - (Scale->second.Intercept - Scale->second.Slope * Tensor.Isotropic);
    }
    if (const auto Error = Variant.Errors.find(Element); Task.Settings.Scaling && Error != Variant.Errors.end()) {
      Results.Errors[K] = Error->second;
    }
    if (Input.WantsShielding) Results.Shieldings[K] = Shielding;
  }
  Results.References = Variant.References;
  Results.Level =
      Theory.Title + (UsesShieldingBasis(Input.Quantum) ? ", " + Theory.ShieldingBasis : ", " + Theory.Basis);
  Results.Description = "Shieldings by NWChem " + Output.Version + ", " + Results.Level;
  if (Task.Settings.Scaling) Results.Description += ", shifts on the line of measured ones";
}

void ComputeCouplings(const EngineTask& Task, const QuantumRegion& Region, const Level& Theory, ParamResults& Results,
                      Log& Report) {
  const ParamInput& Input = Task.Input;
  const std::vector<CouplingGroup> Groups = ChooseCouplings(Input, Region);
  Results.Description += (Results.Description.empty() ? "Couplings" : "; couplings") + std::string(" by NWChem, ") +
                         Theory.Title + ", " + Theory.CouplingBasis;
  if (Groups.empty()) return;
  NwchemJob Job{.Input = CouplingInput(Input, Region, Theory, Groups), .NumGroups = Groups.size()};
  for (const CouplingGroup& Group : Groups) Job.NumCouplings += Group.Partners.size();
  const NwchemOutput Output = RunJob(Job, Task.Settings, Report);
  const std::size_t NumAtoms = Input.NMRAtoms.size();
  const auto Find = [&](std::size_t Place) {
    const auto Found = std::find_if(Input.NMRAtoms.begin(), Input.NMRAtoms.end(),
                                    [&](std::size_t Atom) { return PlaceInRegion(Region, Atom) == Place; });
    return static_cast<std::size_t>(Found - Input.NMRAtoms.begin());
  };
  for (const ComputedCoupling& Pair : Output.Couplings) {
    const std::size_t First = Find(Pair.First);
    const std::size_t Second = Find(Pair.Second);
    if (First >= NumAtoms || Second >= NumAtoms) continue;
    Results.Couplings[First * NumAtoms + Second] = Results.Couplings[Second * NumAtoms + First] = Pair.J;
  }
}

// From two molecules with the basis for shieldings on one core of 2.6 GHz: benzene (144 functions) 131 s, ethylene (60)
// 11 s.
double EstimateSeconds(const EngineTask& Task) {
  constexpr double PerHeavyAtom = 18.0;
  constexpr double PerHydrogen = 6.0;
  constexpr double Functions = 144.0;
  constexpr double Seconds = 131.0;
  constexpr double Power = 2.9;
  double Count = 0.0;
  for (const auto& Atom : Task.Input.System.Atoms) Count += Atom.AtomicNumber == 1 ? PerHydrogen : PerHeavyAtom;
  if (!Task.Input.QuantumAtoms.empty()) Count = PerHeavyAtom * static_cast<double>(Task.Input.QuantumAtoms.size());
  return Seconds * std::pow(Count / Functions, Power) / CountProcesses(Task.Settings);
}

void Compute(const EngineTask& Task, ParamResults& Results, Log& Report) {
  const QuantumRegion Region = CutQuantumRegion(Task.Input);
  const Level Theory = ReadLevel(Task.ParameterDirectory, Task.Settings.Level, Task.Input.Quantum.Method);
  AddToLog(Report, 0,
           "Stage 1 by NWChem: " + Theory.Title + ", " + std::to_string(Region.Atoms.size()) + " atoms, " +
               std::to_string(Region.Caps.size()) + " capping hydrogens, " + std::to_string(Region.Charges.size()) +
               " point charges, " + std::to_string(Region.NumElectrons) + " electrons");
  if (Task.Shieldings) ComputeShieldings(Task, Region, Theory, Results, Report);
  if (Task.Couplings) ComputeCouplings(Task, Region, Theory, Results, Report);
}

}  // namespace

const Engine NwchemEngine{
    .Name = "nwchem",
    .Title = "NWChem",
    .FindMissing = FindMissing,
    .EstimateSeconds = EstimateSeconds,
    .Compute = Compute,
};

}  // namespace nmrcalc
