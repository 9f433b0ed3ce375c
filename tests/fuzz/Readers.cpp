// The readers of files and all that stands behind them, one after the other.

#include <algorithm>
#include <cstdio>

#include "backend/Compute.h"
#include "backend/Results.h"
#include "files/DocumentReader.h"
#include "files/HostText.h"
#include "files/ZMatrixImport.h"
#include "fuzz/Harness.h"
#include "fuzz/Targets.h"
#include "host/GetCommand.h"
#include "hostsim/SimulatedHost.h"
#include "nmrcalc/Estimate.h"
#include "nmrcalc/engines/ParamResults.h"
#include "nmrcalc/input/ParamInput.h"
#include "nmrcalc/input/SpectrumInput.h"
#include "nmrcalc/input/SpinSettings.h"
#include "nmrcalc/spins/LinearAlgebra.h"
#include "nmrcalc/spins/Spectrum.h"
#include "platform/Profile.h"
#include "platform/Services.h"
#include "platform/TextFiles.h"
#include "settings/ProfileAccess.h"
#include "settings/Settings.h"
#include "settings/SettingsState.h"
#include "setup/ReferenceShieldings.h"
#include "shell/MainForm.h"
#include "typing/AtomTyping.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor::fuzz {

namespace {

WorkspaceState& W = Workspace;

}  // namespace

// Documents, as the reader takes them and as the user opens them.

bool TryDocument(TextView Input) {
  ResetProgram();
  const Text Path = WriteInput("input.NMR", Input);
  const bool Taken = IsSet(ReadDocument(Path));
  CheckPromises();
  Demand(!IsSet(Workspace.NMRAtomsValid) || (Workspace.NumAtoms > 0 && Workspace.NumNMRAtoms != 0),
         "NMR atoms are valid without atoms");
  const bool Filled = Workspace.NumAtoms > 0 || Workspace.NumNMRAtoms > 0;
  if (Taken && CanBeSaved()) CheckRoundTrip();

  ResetProgram();
  OpenAsUser(Path);
  LookAround();
  return Taken && Filled;
}

// Z-matrices: rows, places, bonds, orders and types, up to the saved document.

bool TryZMatrix(TextView Input) {
  ResetProgram();
  OpenAsUser(WriteInput("input.zmt", Input));
  const bool Taken = IsSet(Workspace.MoleculeLoaded);
  Demand(!Taken || Workspace.NumAtoms > 0, "a molecule without atoms");
  LookAround();
  if (Taken) CheckRoundTrip();
  return Taken;
}

namespace {

// Host text: from a file, from the host over the clipboard, and as the simulated host itself takes it.

bool ReadSystem(const Text& Path) {
  const bool Taken = IsSet(ReadHostFile(Path)) && IsSet(ParseHostText(Path));
  W.MoleculeLoaded = ToFlag(Taken);
  CheckPromises();
  return Taken;
}

Text WriteSystemText() {
  const Text Path = PathOf("written.mvs");
  LineWork.FileNumber = FreeFile();
  OpenForOutput(Path, LineWork.FileNumber);
  Demand(IsSet(WriteHostText(LineWork.FileNumber)), "the host text can't be written");
  CloseFile(LineWork.FileNumber);
  return Path;
}

// What was read is written, and what is written reads as the same.
void CheckHostRoundTrip() {
  const int NumAtoms = W.NumAtoms;
  const Text First = ReadBack(WriteSystemText());
  ResetProgram();
  Demand(ReadSystem(PathOf("written.mvs")), "the written host text can't be read");
  Demand(W.NumAtoms == NumAtoms, "the written host text holds other atoms");
  Demand(ReadBack(WriteSystemText()) == First, "the host text comes out in other bytes");
}

// The host holds the input; its selections make the atom sets.
void GetFromHost(TextView Input) {
  static hostsim::SimulatedHost Host;
  static Text Clipboard;
  Host = {};
  hostsim::LoadSystem(Host, hostsim::ReadHostSystem(Text(Input)));
  hostsim::AddSelection(Host, "nmr-atoms", hostsim::AllAtoms(Host.System));
  hostsim::AddSelection(Host, "labelled-atoms", {{1, 1}});
  hostsim::AddSelection(Host, "equivalent-atoms-1", {{1, 1}, {1, 2}});
  Host.Current = {{1, 1}};
  Host.SetClipboard = [](const Text& Value) { Clipboard = Value; };
  Platform.SetClipboard = Host.SetClipboard;
  Platform.GetClipboard = [] { return Clipboard; };
  Platform.Host.Open = [](const Text&) { hostsim::BeginConversation(Host); };
  Platform.Host.Execute = [](const Text& Command) { hostsim::ExecuteCommand(Host, Command); };
  Platform.Host.Request = [](const Text& Item) { return hostsim::AnswerItem(Host, Item); };
  mnuFileGet_Click();
  CheckPromises();
  hostsim::CopyAtoms(Host.System, {{1, 1}, {1, 2}, {2, 1}});
}

}  // namespace

bool TryHostText(TextView Input) {
  ResetProgram();
  const Text Path = WriteInput("input.mvs", Input);
  const bool Taken = ReadSystem(Path) && W.NumAtoms > 0;
  if (Taken) CheckHostRoundTrip();

  ResetProgram();
  OpenAsUser(Path);
  LookAround();

  ResetProgram();
  GetFromHost(Input);
  LookAround();
  return Taken;
}

namespace {

// The two result files of the backend, as the readers take them and as the compute commands meet them.

// A system with atom sets, whose results the input stands for.
void TakeExample() {
  ResetProgram();
  Demand(IsSet(ReadDocument(SourceFile("examples/ethanol.NMR"))), "the example can't be read");
}

}  // namespace

bool TryParamResults(TextView Input) {
  TakeExample();
  const bool Taken = IsSet(ReadParamResults(WriteInput("input.out", Input)));
  // The command behind the reader gives the flags.
  W.ShieldingAvailable = W.CouplingAvailable = ToFlag(Taken);
  W.SpectraAvailable = False;
  CheckPromises();

  TakeExample();
  QueueResult(1, Input);
  mnuComputeNMR_Click();
  CheckPromises();
  Demand(IsSet(W.ShieldingAvailable) == Taken, "the command and the reader don't agree");
  // Tables of millions of couplings take seconds to show and to save.
  constexpr int Most = 300;
  if (W.NumNMRAtoms > Most) return Taken;
  LookAround();
  // The sites of the second stage are made of these results.
  QueueResult(2, "spectrum\n1\nFREQUENCY\n1 1 1 1\n");
  mnuComputeSpectra_Click();
  LookAround();
  return Taken;
}

bool TrySpectResults(TextView Input) {
  TakeExample();
  const bool Taken = IsSet(ReadSpectResults(WriteInput("input.out", Input)));
  W.SpectraAvailable = ToFlag(Taken);
  CheckPromises();

  TakeExample();
  QueueResult(2, Input);
  mnuComputeSpectra_Click();
  CheckPromises();
  Demand(IsSet(W.SpectraAvailable) == Taken, "the command and the reader don't agree");
  LookAround();
  return Taken;
}

namespace {

// The bundled backend: both inputs, and the tables of the first stage. What it writes has to be what the program reads.

// Enough for ten spins; what needs more is refused, so that no input takes seconds.
constexpr double FreeBytes = 4 << 20;

nmrcalc::Log AllLines() { return {.Path = {}, .Level = 2, .Text = {}}; }

// What the stage makes of the input, empty where it is refused with a reason.
template <class Routine>
Text RunStage(Routine Stage) {
  try {
    return Stage();
  } catch (const Failure& Problem) {
    Demand(!Problem.What.empty(), "a refusal without a reason");
    return {};
  }
}

Text Estimate(const Text& Input, const Text& Tables) {
  return RunStage([&] {
    nmrcalc::Log Report = AllLines();
    const nmrcalc::ParamInput Read = nmrcalc::ReadParamInput(Input);
    const bool Shieldings = Read.WantsShielding || Read.WantsTensor;
    return nmrcalc::FormatResults(Read, nmrcalc::Estimate(Read, Tables, Shieldings, Read.WantsCoupling, Report));
  });
}

}  // namespace

bool TryBackendParam(TextView Input) {
  ResetProgram();
  const Text Path = WriteInput("nmrparam.in", Input);
  const Text Output = Estimate(Path, SourceFile("data"));
  RunStage([&] { return std::to_string(nmrcalc::ReadLogLevel(Path)); });
  if (!Output.empty()) Demand(TryParamResults(Output), "the output of the first stage can't be read");
  return !Output.empty();
}

bool TryBackendSpect(TextView Input) {
  ResetProgram();
  const Text Path = WriteInput("nmrspect.in", Input);
  const Text Output = RunStage([&] {
    nmrcalc::Log Report = AllLines();
    const nmrcalc::SpectrumInput System = nmrcalc::ReadSpectrumInput(Path);
    // One thread in all, whatever else the machine does, and no time for large clusters.
    nmrcalc::UseOneLibraryThread();
    const nmrcalc::Spectrum Result = nmrcalc::SimulateSpectrum(System, {.TimeBudget = 0.05}, FreeBytes, Report);
    const Text Map = nmrcalc::FormatSpectrumMap(System, Result);
    Demand(static_cast<std::size_t>(std::count(Map.begin(), Map.end(), '\n')) == Result.Lines.size() + 1,
           "the map has other lines than the spectrum");
    return nmrcalc::FormatSpectrum(Result);
  });
  if (!Output.empty()) Demand(TrySpectResults(Output), "the output of the second stage can't be read");
  return !Output.empty();
}

// The input in the place of the table that it looks like, with the other one as it is installed.
bool TryBackendTables(TextView Input) {
  if (Input.find("TimeBudget") != TextView::npos) {
    const Text Path = WriteInput("nmr_spin.abp", Input);
    return !RunStage([&] { return std::to_string(nmrcalc::ReadSpinSettings(Path).TimeBudget); }).empty();
  }
  static const Text System = WriteInput("tables.in", ReadBack(SourceFile("tests/fuzz/seeds/BackendParam/ok-ethanol")));
  static const Text Shifts = ReadBack(SourceFile("data/nmr_shft.abp"));
  static const Text Couplings = ReadBack(SourceFile("data/nmr_cupl.abp"));
  const bool HoldsCouplings = Input.find("[J") != TextView::npos;
  static const Text Model = WriteInput("nmr_shft.net", ReadBack(SourceFile("data/nmr_shft.net")));
  WriteInput("nmr_shft.abp", HoldsCouplings ? TextView(Shifts) : Input);
  WriteInput("nmr_cupl.abp", HoldsCouplings ? Input : TextView(Couplings));
  return !Estimate(System, Folder()).empty();
}

namespace {

// win.ini, and the initialisation files as such: what is written is found again, and nothing else is lost.

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

}  // namespace

bool TryProfile(TextView Input) {
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

namespace {

// nmr.ini as a start and an exit of the program take it.

// False where a value ends the program.
bool TakeSettings() {
  try {
    InitReferenceElements();
    ReadSettings();
  } catch (const ProgramEnded&) {
    return false;
  }
  Demand(W.TotalCharge >= -10 && W.TotalCharge <= 10, "the charge is out of its range");
  Demand(W.SpinMultiplicity == 1, "the multiplicity is out of its range");
  Demand(W.SCFConvergenceLimit >= 0 && W.SCFConvergenceLimit <= 1000, "the convergence limit is out of its range");
  Demand(W.SCFIterationLimit >= 0 && W.SCFIterationLimit <= 10000, "the iteration limit is out of its range");
  Demand(W.MinimalIntensity >= 0 && W.MinimalIntensity <= 1000, "the minimal intensity is out of its range");
  Demand(W.NMRFrequency >= 1 && W.NMRFrequency <= 1000000, "the frequency is out of its range");
  Demand(W.SpectraType >= 0 && W.SpectraType <= 4, "the kind of spectrum is out of its range");
  Demand(Settings.CurrentColorSet >= 0 && Settings.CurrentColorSet < NumSets, "there is no such set of colours");
  Demand(Settings.CurrentRadiusSet >= 0 && Settings.CurrentRadiusSet < NumSets, "there is no such set of radii");
  for (const Single Radius : Settings.AtomRadii) Demand(Radius >= 0 && Radius <= 1000, "a radius is out of its range");
  return true;
}

}  // namespace

bool TrySettings(TextView Input) {
  ResetProgram();
  const Text Path = WriteInput("nmr.ini", Input);
  if (!TakeSettings()) {
    Demand(NumBoxes() > 0, "the program ends without a word");
    return false;
  }
  const bool Taken = NumBoxes() == 0;
  // What an exit writes, the next start and exit leave as it is.
  Settings.PrefGraphColor = Settings.SpectrumLineColor;
  Settings.PrefEnvelopColor = Settings.SpectrumEnvelopColor;
  Settings.PrefSelectionColor = Settings.SpectrumSelectionColor;
  WriteSettings();
  const Text First = ReadBack(Path);
  Demand(TakeSettings(), "the written settings end the program");
  WriteSettings();
  Demand(ReadBack(Path) == First, "the settings come out in other bytes");
  CheckPromises();
  return Taken;
}

namespace {

// The files of the atom typing: the rules, and the types that they may give.

constexpr const char* RuleFile = "nmrtype.rul";
constexpr const char* TypeFile = "nmrtype.txt";

// Types the atoms of an example by the input and a file that fits it. Whether the rules could be compiled.
bool TypeExample(TextView Name, TextView Input, TextView OtherName) {
  static const Text Types = ReadBack(SourceFile("data/nmrtype.txt"));
  static const Text Rules = ReadBack(SourceFile("data/nmrtype.rul"));
  ResetProgram();
  WriteInput(OtherName, OtherName == RuleFile ? Rules : Types);
  const Text Path = WriteInput(Name, Input);
  OpenAsUser(SourceFile("examples/acetic-acid.zmt"));
  PrepareTypeRules(TypingTime::Shutdown);
  Settings.NMRParmPath = Folder();
  mnuEditCalculateTypes_Click();
  const bool Taken = AtomTyping.TypeRuleHandle != 0;
  if (Taken) Demand(TypeFileMatches(), "the types are not those that the rules were compiled for");
  CompareTypeFile(Path);
  CheckPromises();
  for (int Atom = 0; Atom < Workspace.NumAtoms; ++Atom) {
    Demand(!Taken || !Workspace.AtomType[Atom].Trimmed().empty(), "an atom has no type");
  }
  LookAround();
  PrepareTypeRules(TypingTime::Shutdown);
  return Taken;
}

}  // namespace

bool TryTypeRules(TextView Input) { return TypeExample(RuleFile, Input, TypeFile); }
bool TryTypeFile(TextView Input) {
  // Another force field's file may be anything that has a heading.
  WriteInput("ambertype.txt", Input);
  const bool Taken = TypeExample(TypeFile, Input, RuleFile);
  std::remove(PathOf("ambertype.txt").c_str());
  return Taken;
}

}  // namespace zelvanor::fuzz
