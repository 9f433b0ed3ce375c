#include "fuzz/Harness.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <vector>

#include "files/DocumentReader.h"
#include "files/DocumentWriter.h"
#include "files/FileCommands.h"
#include "files/ZMatrixImport.h"
#include "fuzz/Promises.h"
#include "molecule/TakeSystem.h"
#include "platform/Grid.h"
#include "platform/RenderRaster.h"
#include "platform/Services.h"
#include "platform/posix/PosixServices.h"
#include "program.h"
#include "settings/SettingsState.h"
#include "shell/Frame.h"
#include "spectrum/SpectrumView.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

// Short stacks of allocations: most of the time goes into them otherwise.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" const char* __asan_default_options() { return "malloc_context_size=4"; }

namespace zelvanor::fuzz {

namespace {

namespace fs = std::filesystem;

WorkspaceState& W = Workspace;

struct HarnessState {
  int Boxes = 0;
  std::deque<Text> Files;
  std::array<std::optional<Text>, 2> Results;  // of the stages
};

HarnessState& State() {
  static HarnessState Only;
  return Only;
}

// The answer that lets the program go on.
BoxAnswer AnswerBox(const MessageBox& Box) {
  ++State().Boxes;
  Demand(Box.Title == ProgramTitle, "a box has no title");
  return Box.Buttons == BoxButtons::Ok || Box.Buttons == BoxButtons::OkCancel ? BoxAnswer::Ok : BoxAnswer::Yes;
}

std::optional<Text> AnswerDialog(const FileDialog& /*Dialog*/) {
  if (State().Files.empty()) return {};
  Text Chosen = State().Files.front();
  State().Files.pop_front();
  return Chosen;
}

// The backend: a process that has ended at once and left the result that is queued for its stage.
Long StartBackend(const Text& CommandLine) {
  for (const int Stage : {1, 2}) {
    std::optional<Text>& Result = State().Results[static_cast<std::size_t>(Stage) - 1];
    if (!Result || CommandLine.find(" " + std::to_string(Stage) + " ") == Text::npos) continue;
    std::ofstream(Stage == 1 ? Settings.ParamOutputFile : Settings.SpectOutputFile, std::ios::binary) << *Result;
    Result.reset();
    return 1;
  }
  throw Failure(failures::FileNotFound);
}

void FillServices() {
  UsePosixServices();
  Platform.ControlChanged = nullptr;
  Platform.ShowBox = AnswerBox;
  Platform.ShowFileDialog = AnswerDialog;
  Platform.SetClipboardPicture = [](const ChartControl& /*Chart*/) {};
  Platform.PrepareUserFiles = [] { return Text(); };
  Platform.OtherInstanceRuns = [] { return false; };
  Platform.DecimalSeparator = [] { return Text("."); };
  Platform.ProgramDirectory = Folder;
  Platform.WinIniPath = [] { return PathOf("win.ini"); };
  Platform.Shell = StartBackend;
  Platform.OpenProcess = [](Long Process) { return Process; };
  Platform.GetExitCodeProcess = [](Long /*Handle*/) { return ProcessStatus{.Known = true, .ExitCode = 0}; };
}

// Start-up once; every further reset goes back to the state behind it.
struct StartedProgram {
  WorkspaceState Document;
  SettingsState Options;
  SpectrumViewState View;

  StartedProgram() {
    FillServices();
    BuildProgram();
    Main.frmNMR.Width = TwipsFromPixels(300);
    Main.frmNMR.Height = TwipsFromPixels(240);
    Main.StatusBar.Height = TwipsFromPixels(20);
    Main.HScroll1.Height = Main.HScroll2.Height = TwipsFromPixels(10);
    WriteInput("win.ini", Join("[Zelvanor]\nNMRExePath=", Folder(), "\nNMRParmPath=", SourceFile("data"), "\n"));
    WriteOwnSettings();
    Form_Load("");
    Document = Workspace;
    Options = Settings;
    View = SpectrumView;
  }
};

void ReadGrid(const GridControl& Grid) {
  constexpr int Most = 20;
  for (int Row = 0; Row < std::min(RowsOf(Grid), Most); ++Row) {
    for (int Col = 0; Col < std::min(ColsOf(Grid), Most); ++Col) CellText(Grid, Row, Col);
  }
}

// What the window draws of the molecule, smooth and plain, and the atom under its middle.
void DrawMolecule() {
  const RenderControl& View = Main.MolRender1;
  static ShadeTables Shades;
  RenderScene Scene;
  BuildScene(View, Scene);
  constexpr int Width = 200;
  constexpr int Height = 150;
  std::vector<std::uint32_t> Pixels(std::size_t{Width} * Height);
  for (const Double Ratio : {1.0, 1.5}) {
    const PixelPicture Target = {Pixels.data(), Width, Height, Width, Ratio};
    FillPicture(Target, Scene.Background);
    for (const DrawItem& Item : Scene.Items) DrawForms(Target, Item, Ratio == 1.0, Shades);
  }
  PickAtom(View, Width / 2.0, Height / 2.0);
}

bool IsReadBackAs(int Number) {
  const int Atom = Number - 1;
  if (Atom < 0 || Atom > W.AtomMolecule.UpperBound() || Atom > W.AtomInMolecule.UpperBound()) return false;
  const int Molecule = W.AtomMolecule[Atom];
  if (Molecule < 1 || Molecule > W.NumMolecules + 1) return false;
  // Behind the atoms stands the placeholder molecule alone; a line without a whole atom may have left another number.
  if (Atom >= W.NumAtoms && Molecule != W.NumMolecules + 1) return false;
  int Read = W.AtomInMolecule[Atom];
  for (int Before = 0; Before <= Molecule - 2; ++Before) Read += W.MoleculeAtomCount[Before];
  return Read == Number;
}

bool AreReadBack(const Array<Integer>& Entries, int Count) {
  for (int Entry = 0; Entry < Count; ++Entry) {
    if (!IsReadBackAs(Entries[Entry])) return false;
  }
  return true;
}

}  // namespace

void ResetProgram() {
  static const StartedProgram Fresh;
  FillServices();
  State() = {};
  Workspace = Fresh.Document;
  LineWork = {};
  Settings = Fresh.Options;
  SpectrumView = Fresh.View;
  if (MoleculeTree.TreeHandle != 0) DestroyHtr(MoleculeTree.TreeHandle);
  MoleculeTree = {};
  mnuFileNew_Click();
  State() = {};
}

int NumBoxes() { return State().Boxes; }
void QueueFile(const Text& Path) { State().Files.push_back(Path); }
void QueueResult(int Stage, TextView Content) { State().Results[static_cast<std::size_t>(Stage) - 1] = Content; }

const Text& Folder() {
  static const struct Own {
    Text Path;
    Own() {
      const char* Given = std::getenv("TMPDIR");
      std::error_code Problem;
      const bool Memory = Given == nullptr && fs::is_directory("/dev/shm", Problem);
      const Text Above = Given != nullptr ? Given : Memory ? "/dev/shm" : "/tmp";
      Path = Above + "/zelvanor-fuzz-" + std::to_string(getpid());
      fs::create_directories(Path);
    }
    ~Own() {
      std::error_code Problem;
      fs::remove_all(Path, Problem);
    }
  } Only;
  return Only.Path;
}

Text PathOf(TextView Name) { return Join(Folder(), "/", Name); }

Text WriteInput(TextView Name, TextView Content) {
  static fs::file_time_type Time{};
  Text Path = PathOf(Name);
  std::ofstream(Path, std::ios::binary | std::ios::trunc) << Content;
  Time += std::chrono::seconds(1);
  fs::last_write_time(Path, Time);
  return Path;
}

Text ReadBack(const Text& Path) {
  std::ifstream Stream(Path, std::ios::binary);
  Demand(Stream.good(), "a written file is not there");
  Text Content(fs::file_size(Path), '\0');
  Stream.read(Content.data(), static_cast<std::streamsize>(Content.size()));
  return Content;
}

void WriteOwnSettings() {
  // With looks of its own the molecule view asks once and not for every element.
  WriteInput("nmr.ini", "[MorvantisColors]\nDefault=RGB(1,2,3)\n[BallsSticksRadii]\nDefault=0.4\n");
}

Text SourceFile(TextView Name) { return Join(ZELVANOR_SOURCE, "/", Name); }

void Stop(const Text& Reason) {
  std::fprintf(stderr, "BROKEN: %s\n", Reason.c_str());
  std::abort();
}

void Demand(bool Holds, const char* Reason) {
  if (!Holds) Stop(Reason);
}

void CheckPromises() {
  if (const Text Broken = BrokenPromise(); !Broken.empty()) Stop(Broken);
}

void OpenAsUser(const Text& Path) {
  QueueFile(Path);
  mnuFileOpen_Click();
  CheckPromises();
}

void LookAround() {
  for (MenuItem* View : {&Main.mnuViewShielding, &Main.mnuViewCoupling, &Main.mnuViewSpectra, &Main.mnuViewMolecule}) {
    if (!IsSet(View->Enabled)) continue;
    Fire(View->Click);
    ReadGrid(Main.ShieldTable);
  }
  DrawMolecule();
  if (IsSet(Main.mnuFileSaveAs.Enabled)) {
    QueueFile(PathOf("saved.NMR"));
    mnuFileSaveAs_Click();
  }
  CheckPromises();
}

bool CanBeSaved() {
  // No reader takes the count of a spectrum without peaks.
  if (IsSet(W.SpectraAvailable) && W.PeakCount < 1) return false;
  for (int Set = 0; Set < NumSavedSets; ++Set) {
    if (Set > 0 && W.EquivalentSetSize[Set] > 0 && W.EquivalentSetSize[Set - 1] == 0) return false;
    for (int Member = 0; Member < W.EquivalentSetSize[Set]; ++Member) {
      if (!IsReadBackAs(W.EquivalentAtom(Set, Member))) return false;
    }
  }
  return AreReadBack(W.NMRAtom, W.NumNMRAtoms) && AreReadBack(W.QuantumAtom, W.NumQuantumAtoms) &&
         AreReadBack(W.LabelledAtom, W.NumLabelledAtoms);
}

void CheckRoundTrip() {
  const Text Path = PathOf("round.NMR");
  Demand(IsSet(WriteDocument(Path)), "the document can't be written");
  const Text First = ReadBack(Path);
  ResetProgram();
  Demand(IsSet(ReadDocument(Path)), "the written document can't be read");
  CheckPromises();
  Demand(IsSet(WriteDocument(Path)), "the document can't be written again");
  Demand(ReadBack(Path) == First, "the document comes out in other bytes");
}

}  // namespace zelvanor::fuzz
