#include "files/FileCommands.h"

#include <algorithm>
#include <array>

#include "basic/Numbers.h"
#include "files/Converter.h"
#include "files/DocumentReader.h"
#include "files/DocumentWriter.h"
#include "files/HostText.h"
#include "files/frmRecords.h"
#include "platform/Paths.h"
#include "platform/TextFiles.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr const char* AnyDocument = "*.NMR";
constexpr const char* AnyFile = "*.*";
constexpr const char* Extension = "NMR";
constexpr std::size_t EndingLength = 4;

// Counts of the lines that speak for each kind of file.
struct KindCounts {
  int HostText = 0;
  int Document = 0;
  int ZMatrix = 0;
};

bool IsOneOf(TextView Word, std::initializer_list<const char*> Words) {
  return std::any_of(Words.begin(), Words.end(), [&](const char* Known) { return Word == Known; });
}

// Line counts the lines with tokens from 1: three lines stand before a Z-matrix, whose rows are full from the fourth
// on.
bool IsZMatrixRow(const Text& First, int Line, int TokenCount) {
  constexpr int FirstRow = 4;
  constexpr int FirstFullRow = 7;
  constexpr int FullRowTokens = 10;
  constexpr Double BeyondElements = 109.0;
  if (Line < FirstRow || (Line >= FirstFullRow && TokenCount < FullRowTokens)) return false;
  const Double Number = PrefixNumber(First);
  return (Number > 0.0 && Number < BeyondElements) || ElementNumber(First) != -1;
}

void CountLine(KindCounts& Counts, int Line, int TokenCount) {
  const Text First = UpperCase(LineWork.Tokens[1]);
  if (IsOneOf(First, {"SYS", "FORCEFIELD", "VIEW", "MOL", "ATOM", "ENDMOL"})) {
    ++Counts.HostText;
    ++Counts.Document;
  } else if (IsOneOf(First, {"ENDMVS", "BEGINMVS", "NMRSELECTIONBEGIN", "NMRSELECTIONEND", "QUANTUMSELECTIONBEGIN",
                             "QUANTUMSELECTIONEND", "OPTIONSBEGIN", "OPTIONSEND"})) {
    ++Counts.Document;
  } else if (IsZMatrixRow(First, Line, TokenCount)) {
    ++Counts.ZMatrix;
  }
}

FileKind DecideKind(const KindCounts& Counts) {
  const auto [H, D, Z] = Counts;
  if (H == D && H != 0) return HostTextFile;
  if (D > H && D > Z) return DocumentFile;
  if (H > D && H > Z) return HostTextFile;
  if (Z > D && Z > H) return ZMatrixFile;
  return UnknownFile;
}

FileKind KindFromEnding(TextView Name) {
  const Text Ending = UpperCase(Name.substr(Name.size() - std::min(Name.size(), EndingLength)));
  if (Ending == ".NMR") return DocumentFile;
  if (Ending == ".MVS") return HostTextFile;
  if (Ending == ".ZMT") return ZMatrixFile;
  return UnknownFile;
}

void SetOrigin(FileKind Kind, const Text& Path) {
  W.DocumentPath = Kind == DocumentFile ? Path : Text();
  W.HostTextPath = Kind == HostTextFile ? Path : Text();
  W.ZMatrixPath = Kind == ZMatrixFile ? Path : Text();
}

void EmptyForOpen() {
  ClearSpectrum();
  ClearWorkspace();
  W.MoleculeLoaded = W.ShieldingAvailable = W.CouplingAvailable = W.SpectraAvailable = False;
  W.DocumentDirty = W.AtomTypesChanged = False;
  W.ParamResultsStale = W.SpectResultsStale = True;
}

void ReadOrigin() {
  if (!W.DocumentPath.empty()) {
    ReadDocument(W.DocumentPath);
  } else if (!W.HostTextPath.empty()) {
    if (IsSet(ReadHostFile(W.HostTextPath)) && IsSet(ParseHostText(W.HostTextPath))) W.MoleculeLoaded = True;
  } else if (!W.ZMatrixPath.empty()) {
    Fire(Rooms.OpenZMatrix);
  }
}

// A name without an ending means a document, unless there is something of just this name.
Text WithEnding(const Text& Path) {
  const bool HasEnding = FileTitleOf(Path).find('.') != Text::npos;
  return HasEnding || WhyUnreadable(Path) != failures::FileNotFound ? Path : Join(Path, ".", Extension);
}

// HostTextPath is the molecule file, so that a document saved from it gets its name.
void ReadConvertedSystem(const Text& Source, const Text& Path) {
  SetOrigin(HostTextFile, Path);
  EmptyForOpen();
  if (IsSet(ReadConverted(ConvertedPath(), Source))) W.MoleculeLoaded = True;
}

// Through the converter. False where nothing was opened: the Workspace is as it was.
bool OpenMolecule(const Text& Path) {
  bool Known = IsMoleculeFile(Path) || !FindConverter().empty();
  const std::vector<RecordRow> Rows = Known ? ListRecords(Path, Known) : std::vector<RecordRow>();
  if (!Known) ShowWarning(Join("Unknown file format: ", Path, "."));
  if (Rows.empty()) return false;
  const Long Record = Rows.size() == 1 ? Rows.front().Number : ChooseRecord(Rows);
  if (Record == 0 || !ConvertMolecule({.Path = Path, .Smiles = {}, .Record = Record}, ConvertedPath())) return false;
  ReadConvertedSystem(Path, Path);
  return true;
}

// Chooses the origin and reads it. False where nothing was opened: the Workspace is as it was.
bool OpenFile(const Text& Path) {
  if (Path != AnyFile) {
    FileKind Kind = KindFromEnding(FileTitleOf(Path));
    if (Kind == UnknownFile && !IsMoleculeFile(Path)) Kind = DetectFileType(Path);
    if (Kind == UnknownFile) return OpenMolecule(Path);
    SetOrigin(Kind, Path);
  }
  EmptyForOpen();
  ReadOrigin();
  return true;
}

bool AnythingRead() {
  return IsSet(W.MoleculeLoaded) || IsSet(W.ShieldingAvailable) || IsSet(W.CouplingAvailable) ||
         IsSet(W.SpectraAvailable) || W.MeasuredCount > 0;
}

int FirstViewWithContent() {
  if (IsSet(W.MoleculeLoaded)) return MoleculeView;
  if (IsSet(W.ShieldingAvailable)) return ShieldingView;
  if (IsSet(W.CouplingAvailable)) return CouplingView;
  return IsSet(W.SpectraAvailable) || W.MeasuredCount > 0 ? SpectrumViewMode : MoleculeView;
}

void SetTitleFrom(const Text& Path) {
  W.DocumentTitle = UpperCase(FileTitleOf(Path));
  UpdateTitle();
}

Text SuggestSaveName() {
  if (W.DocumentTitle.empty()) return AnyDocument;
  if (!W.DocumentPath.empty()) return W.DocumentPath;
  if (!W.HostTextPath.empty()) return SuggestDocumentName(W.HostTextPath);
  if (!W.ZMatrixPath.empty()) return SuggestDocumentName(W.ZMatrixPath);
  return AnyDocument;
}

// The name that the question about unsaved work shows.
Text ShownName() {
  if (!W.DocumentTitle.empty()) {
    if (!W.DocumentPath.empty()) return W.DocumentPath;
    if (!W.HostTextPath.empty()) return SuggestDocumentName(W.HostTextPath);
  }
  return "(untitled)";
}

}  // namespace

Text SuggestDocumentName(const Text& Path) {
  const std::size_t Separator = LastSeparator(Path, 1);
  const std::size_t Dot = Path.find('.', Separator == Text::npos ? 0 : Separator + 1);
  return (Dot == Text::npos ? Path + "." : Path.substr(0, Dot + 1)) + Extension;
}

Flag QuerySave() {
  Fire(Rooms.EndTableEdit);
  if (W.DocumentDirty == False) return False;
  switch (AskYesNoCancel(Join("Save the changes to ", ShownName(), "?"))) {
    case BoxAnswer::Yes:
      if (W.DocumentPath.empty() || W.DocumentTitle.empty()) {
        mnuFileSaveAs_Click();
      } else {
        mnuFileSave_Click();
      }
      return W.DocumentDirty;
    case BoxAnswer::No:
      return False;
    default:
      return True;
  }
}

FileKind DetectFileType(const Text& Path) {
  KindCounts Counts;
  bool Complete = false;
  try {
    LineWork.FileNumber = FreeFile();
    OpenForInput(Path, LineWork.FileNumber);
    int Line = 0;
    while (!AtEnd(LineWork.FileNumber)) {
      LineWork.TokenCount = Tokenize(LineInput(LineWork.FileNumber));
      if (LineWork.TokenCount > 0) CountLine(Counts, ++Line, LineWork.TokenCount);
    }
    Complete = true;
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
  }
  CloseFileQuietly(LineWork.FileNumber);
  return Complete ? DecideKind(Counts) : UnknownFile;
}

void TakeConverted(const Text& Source, const Text& Path) {
  try {
    ReadConvertedSystem(Source, Path);
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
  }
  if (IsSet(W.MoleculeLoaded)) {
    W.DocumentTitle = Path.empty() ? Source : UpperCase(FileTitleOf(Path));
    W.DocumentDirty = True;
    UpdateTitle();
  }
  W.ViewMode = MoleculeView;
  RefreshView();
}

void mnuFileNew_Click() {
  if (QuerySave() != False) return;
  ClearSpectrum();
  ClearWorkspace();
  W.MoleculeLoaded = W.DocumentDirty = False;
  W.HostTextPath.clear();
  W.DocumentPath.clear();
  W.DocumentTitle.clear();
  UpdateTitle();
  W.ViewMode = MoleculeView;
  UpdateCommands(MoleculeView);
  IgnoreFailure(Rooms.ShowMoleculeView);
  SetEnabled(Main.picToolbar[ToolNew], False);
  SetEnabled(Main.mnuFileNew, False);
}

void OpenPath(const Text& Path) {
  if (const Text Problem = WhyUnreadable(Path); Path != AnyFile && !Problem.empty()) {
    ShowWarning(Join("Could not open file ", Quoted(Path), " ", Problem, "."));
    return;
  }
  bool Opened = true;
  {
    const BusyState Busy;
    try {
      Opened = OpenFile(Path);
    } catch (const Failure& Problem) {
      WarnOfFailure(Problem);
    }
    if (Opened && AnythingRead()) SetTitleFrom(Path);
  }
  if (!Opened) return RefreshView();
  W.ViewMode = FirstViewWithContent();
  if (IsSet(W.SpectraAvailable)) Fire(Rooms.TakeOpenedSpectrum);
  RefreshView();
}

void mnuFileOpen_Click() {
  if (QuerySave() != False) return;
  const std::optional<Text> Chosen =
      Platform.ShowFileDialog({.Title = "Open File",
                               .FileName = AnyDocument,
                               .Filter = "Zelvanor (*.NMR)|*.NMR |Morvantis (*.MVS)|*.MVS|MOPAC Z-Matrix (*.ZMT)|*.ZMT"
                                         "|Molecules (*.mol;*.sdf;*.sd;*.mol2;*.pdb;*.ent;*.xyz;*.smi;*.cml;*.cif)"
                                         "|*.mol;*.sdf;*.sd;*.mol2;*.pdb;*.ent;*.xyz;*.smi;*.cml;*.cif"
                                         "|MDL Mol (*.mol)|*.mol|MDL SD (*.sdf;*.sd)|*.sdf;*.sd|Mol2 (*.mol2)|*.mol2"
                                         "|PDB (*.pdb;*.ent)|*.pdb;*.ent|XYZ (*.xyz)|*.xyz|SMILES (*.smi)|*.smi"
                                         "|CML (*.cml)|*.cml|CIF (*.cif)|*.cif",
                               .DefaultExtension = Extension,
                               .Save = false});
  if (Chosen) OpenPath(WithEnding(*Chosen));
}

bool TakeLeftWork(const LeftWork& Left) {
  if (QuerySave() != False) return false;
  {
    const BusyState Busy;
    IgnoreFailure([&] { OpenFile(Left.File); });
  }
  W.DocumentTitle = Left.DocumentTitle;
  W.DocumentPath = Left.DocumentPath;
  W.HostTextPath = Left.HostTextPath;
  W.ZMatrixPath = Left.ZMatrixPath;
  W.DocumentDirty = True;
  UpdateTitle();
  W.ViewMode = FirstViewWithContent();
  if (IsSet(W.SpectraAvailable)) Fire(Rooms.TakeOpenedSpectrum);
  RefreshView();
  KeepWork();
  if (AnythingRead()) DropLeftWork(Left);
  return true;
}

bool MayReplaceFile(const Text& Path) {
  return !IsSet(FileExists(Path)) ||
         AskOkCancel("The file already exists.  Do you want to replace this file?") != BoxAnswer::Cancel;
}

void mnuFileSave_Click() {
  if (W.DocumentTitle.empty() || W.DocumentPath.empty()) {
    mnuFileSaveAs_Click();
  } else {
    WriteDocument(W.DocumentPath);
  }
}

void mnuFileSaveAs_Click() {
  const std::optional<Text> Chosen = Platform.ShowFileDialog({.Title = "Save As",
                                                              .FileName = SuggestSaveName(),
                                                              .Filter = "Zelvanor Files (*.NMR)|*.NMR",
                                                              .DefaultExtension = Extension,
                                                              .Save = true});
  if (!Chosen) return;
  W.DocumentPath = MayReplaceFile(*Chosen) ? *Chosen : "";
  if (W.DocumentPath.empty()) return;
  if (IsSet(WriteDocument(W.DocumentPath))) SetTitleFrom(*Chosen);
}

}  // namespace zelvanor
