#include "typing/AtomTyping.h"

#include <algorithm>
#include <optional>

#include "files/ZMatrixImport.h"
#include "platform/Paths.h"
#include "platform/TextFiles.h"
#include "platform/Variables.h"
#include "settings/SettingsState.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

AtomTypingState AtomTyping;

namespace {

WorkspaceState& W = Workspace;
AtomTypingState& T = AtomTyping;

constexpr const char* RuleFile = "nmrtype.rul";
constexpr const char* CalculationField = "krdo";

struct TypeFileRow {
  const char* ForceField;
  const char* File;
  bool Needed;
};

// The first one lists the types of the calculation; the others are declared when they are there.
constexpr TypeFileRow TypeFileRows[] = {
    {CalculationField, "nmrtype.txt", true},
    {"amber", "ambertype.txt", false},
};
constexpr int NumTypeFiles = std::size(TypeFileRows);

Text ParmFile(TextView Name) { return Join(Settings.NMRParmPath, PathSeparator, Name); }

// A file's lines, or the failure of reading it.
std::vector<Text> ReadLines(const Text& Path) {
  std::vector<Text> Lines;
  LineWork.FileNumber = FreeFile();
  try {
    OpenForInput(Path, LineWork.FileNumber);
    constexpr std::size_t MostLines = std::size_t{1} << 20;
    while (!AtEnd(LineWork.FileNumber)) {
      if (Lines.size() == MostLines) throw Failure(failures::FileTooLarge);
      Lines.emplace_back(LineInput(LineWork.FileNumber));
    }
  } catch (const Failure& Problem) {
    CloseFileQuietly(LineWork.FileNumber);
    throw Failure(Join("Failure on ", Path, ": ", Problem.What, "."));
  }
  CloseFile(LineWork.FileNumber);
  return Lines;
}

// The first word of a line, cut to a type's length.
FixedText<TypeNameLength> TypeWord(TextView Line) {
  const std::size_t First = Line.find_first_not_of(Separators);
  if (First == TextView::npos) return {};
  return Line.substr(First, Line.find_first_of(Separators, First) - First);
}

void AddTypes(const TypeFileRow& Row, const std::vector<Text>& Lines) {
  if (!IsSet(FAddForceFieldHtrcLsz(T.TypeRuleHandle, Row.ForceField))) {
    throw Failure(Join("Failed on ", Row.ForceField, "."));
  }
  for (std::size_t Line = 1; Line < Lines.size(); ++Line) {
    const auto Type = TypeWord(Lines[Line]);
    if (Type.Trimmed().empty()) continue;
    if (!IsSet(FAddAtomTypeHtrcLsz(T.TypeRuleHandle, Type.Trimmed()))) {
      throw Failure(Join("Failed on ", Type.Trimmed(), "."));
    }
  }
}

void KeepKnownTypes(const std::vector<Text>& Lines) {
  T.NumKnownAtomTypes = ToInteger(static_cast<Double>(Lines.size()));
  T.KnownAtomTypes.ReDim(T.NumKnownAtomTypes);
  for (int Line = 0; Line < T.NumKnownAtomTypes; ++Line) {
    T.KnownAtomTypes[Line] = TypeWord(Lines[static_cast<std::size_t>(Line)]);
  }
}

void AddTypeFiles() {
  T.TypeFiles.ReDim(NumTypeFiles);
  for (int File = 1; File <= NumTypeFiles; ++File) {
    const TypeFileRow& Row = TypeFileRows[File - 1];
    T.TypeFiles[File] = ParmFile(Row.File);
    if (!Row.Needed && !IsSet(FileExists(T.TypeFiles[File]))) continue;
    const std::vector<Text> Lines = ReadLines(T.TypeFiles[File]);
    if (Lines.empty()) throw Failure("Empty type file.");
    AddTypes(Row, Lines);
    if (File == 1) KeepKnownTypes(Lines);
  }
}

// The failures of this step hold the whole message.
void CompileRules() {
  T.TypeRuleHandle = HtrcCreate();
  AddTypeFiles();
  if (!IsSet(FCompileHtrcLsz(T.TypeRuleHandle, ParmFile(RuleFile)))) {
    throw Failure(Join("Compilation failed.  ", ParmFile(RuleFile), ", ", FTyperuleErrorLszCb(ErrorTextSize), "."));
  }
  if (!IsSet(FSetForceFieldHtrcLsz(T.TypeRuleHandle, CalculationField))) throw Failure("Set FF Failed.");
}

void FreeRules() {
  if (T.TypeRuleHandle != 0) DestroyHtrc(T.TypeRuleHandle);
  T.TypeRuleHandle = 0;
  T.NumKnownAtomTypes = 0;
  T.KnownAtomTypes.ReDim(0);
  T.CompiledText.clear();
}

Text RuleText() {
  Text All = ParmFile(RuleFile);
  for (const Text& Line : ReadLines(All)) All += "\n" + Line;
  return All;
}

// From the tree into the atom table.
void BringTypesBack() {
  LoopRecord Walk;
  Loop(Walk, TreeHandleValue(), SystemNodeValue(), 0, AtomNodeKind);
  for (int Atom = 0; Atom < W.NumAtoms; ++Atom) {
    const Text Type = AtomTypeHtrId(TreeHandleValue(), Next(Walk));
    W.AtomType[Atom] = TextView(Type);
  }
}

void RunCalculation() {
  try {
    FitTreeToAtomTable();
    const Htr Tree = TreeHandleValue();
    const Id System = SystemNodeValue();
    const Flag Done = FCalcTypesFromRules(T.TypeRuleHandle, CalculationField, Tree, System);
    if (!IsSet(Done)) ShowMessage(CbTyperuleErrorLszCb(ErrorTextSize) + ".");
    BringTypesBack();
    LoopRecord Walk;
    Loop(Walk, Tree, System, 0, AtomNodeKind);
    if (Next(Walk) != 0) W.AtomTypesChanged = True;
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
  }
}

}  // namespace

void AddTypingVariables() {
  AddVariable("TypeRuleHandle", T.TypeRuleHandle);
  AddVariable("NumKnownAtomTypes", T.NumKnownAtomTypes);
  AddArray("KnownAtomTypes", T.KnownAtomTypes, [] { return int(T.NumKnownAtomTypes); });
  AddArray("TypeFiles", T.TypeFiles, [] { return T.TypeFiles.UpperBound() + 1; });
}

void PrepareTypeRules(TypingTime Time) {
  if (Time == TypingTime::Shutdown) return FreeRules();
  try {
    const Text Present = RuleText();
    if (T.TypeRuleHandle != 0 && Present == T.CompiledText) return;
    FreeRules();
    CompileRules();
    T.CompiledText = Present;
  } catch (const Failure& Problem) {
    FreeRules();
    if (Time != TypingTime::StartUp) ShowMessage(Problem.What);
  }
}

bool TypeFileMatches() { return T.TypeRuleHandle != 0 && CompareTypeFile(T.TypeFiles[1]) == False; }

Flag CompareTypeFile(const Text& Path) {
  Flag Result = False;
  try {
    LineWork.FileNumber = FreeFile();
    OpenForInput(Path, LineWork.FileNumber);
    if (AtEnd(LineWork.FileNumber)) {
      ShowMessage(Join("Empty type file - ", Path, "."));
    } else {
      LineInput(LineWork.FileNumber);
      Long Count = 1;
      while (!AtEnd(LineWork.FileNumber) && Result == False) {
        const auto Word = TypeWord(LineInput(LineWork.FileNumber));
        ++Count;
        if (Count <= T.NumKnownAtomTypes && Word != T.KnownAtomTypes[Count - 1]) Result = True;
      }
      if (Count != T.NumKnownAtomTypes) Result = True;
    }
  } catch (const Failure& Problem) {
    Result = True;
    WarnOfFailure(Problem);
  }
  CloseFileQuietly(LineWork.FileNumber);
  return Result;
}

void CalculateAtomTypes() {
  Platform.DoEvents();
  PrepareTypeRules();
  if (!TypeFileMatches()) ShowMessage("Calc types in MV, Please");
  RunCalculation();
}

void mnuEditCalculateTypes_Click() {
  W.IsBusy = True;
  SetBusy(False);
  CalculateAtomTypes();
  W.IsBusy = False;
  SetBusy(True);
  RefreshView();
}

}  // namespace zelvanor
