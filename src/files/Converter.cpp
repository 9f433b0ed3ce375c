#include "files/Converter.h"

#include <algorithm>

#include "basic/Numbers.h"
#include "files/HostText.h"
#include "platform/Paths.h"
#include "platform/TextFiles.h"
#include "settings/SettingsState.h"
#include "shell/Progress.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr const char* ProgramName = "zelvanor-convert";
constexpr int CancelledStatus = -1;
constexpr const char* Endings[] = {".MOL", ".SDF", ".SD", ".MOL2", ".PDB", ".ENT", ".XYZ", ".SMI", ".CML", ".CIF"};

// What went wrong, in a box; what the user has given up needs none.
void Report(const ConverterAnswer& Answer) {
  const Text Said = Answer.Message + ".";
  Answer.Status == CancelledStatus ? ShowStatus(Said) : ShowWarning(Said);
}

struct IsotopeRow {
  int Element;
  int Mass;
};
// The isotopes that a label stands for.
constexpr IsotopeRow LabelIsotopes[] = {{1, 2}, {6, 13}, {7, 15}, {8, 17}};

Text WorkFile(const char* Name) { return Settings.NMRIniPath + PathSeparator + Name; }

Text FirstLine(const Text& Path) {
  Text Said;
  try {
    Said = ReadWholeFile(Path);
  } catch (const Failure&) {
    return {};
  }
  Said = Said.substr(0, Said.find_first_of("\r\n"));
  const Text Own = Text(ProgramName) + ": ";
  return Said.starts_with(Own) ? Said.substr(Own.size()) : Said;
}

// The text behind "; KEY: " of a comment line.
bool IsNote(TextView Line, TextView Key, TextView& Value) {
  if (!Line.starts_with("; ") || Line.substr(2, Key.size()) != Key || Line.substr(2 + Key.size(), 2) != ": ") {
    return false;
  }
  Value = Line.substr(Key.size() + 4);
  return true;
}

void LabelIsotope(TextView Value, std::vector<int>& Labels) {
  const Long Number = PrefixIndex(Value);
  const Long Mass = PrefixIndex(Value.substr(std::min(Value.find(' '), Value.size())));
  if (Number < 1 || Number > W.NumAtoms) return;
  const int Element = W.AtomicNumber[Number - 1];
  for (const IsotopeRow& Row : LabelIsotopes) {
    if (Row.Element == Element && Row.Mass == Mass) Labels.push_back(Number);
  }
}

void TakeNotes() {
  std::vector<int> Labels;
  for (Long Line = 0; Line < W.HostTextLineCount; ++Line) {
    const TextView Stored = W.HostTextLine[Line].Trimmed();
    TextView Value;
    if (IsNote(Stored, "TotalCharge", Value)) W.TotalCharge = ToInteger(PrefixNumber(Value));
    if (IsNote(Stored, "Isotope", Value)) LabelIsotope(Value, Labels);
  }
  W.NumLabelledAtoms = static_cast<int>(Labels.size());
  W.LabelledAtom.ReDim(W.NumLabelledAtoms);
  for (int K = 0; K < W.NumLabelledAtoms; ++K) W.LabelledAtom[K] = Labels[static_cast<std::size_t>(K)];
}

RecordRow RowOf(TextView Line) {
  const std::size_t First = std::min(Line.find('\t'), Line.size());
  const std::size_t Second = std::min(Line.find('\t', First + 1), Line.size());
  RecordRow Row;
  Row.Number = PrefixIndex(Line);
  if (First < Line.size()) Row.Name = Line.substr(First + 1, Second - First - 1);
  if (Second < Line.size()) Row.Formula = Line.substr(Second + 1);
  return Row;
}

Long StartConverter(std::vector<Text> Words, const Text& Output, const Text& Messages) {
  const Text Program = FindConverter();
  if (Program.empty()) throw Failure("The program zelvanor-convert, which reads molecule files, is not installed");
  Words.insert(Words.begin(), {Program, "--out", Output, "--messages", Messages});
  WriteWholeFile(Output, "");
  WriteWholeFile(Messages, "");
  return Platform.Shell(Words);
}

ConverterAnswer AnswerOf(const ProcessStatus& End, const Text& Messages) {
  ConverterAnswer Answer{End.Known ? static_cast<int>(End.ExitCode) : 1, FirstLine(Messages)};
  if (Answer.Status != 0 && Answer.Message.empty()) Answer.Message = "zelvanor-convert has ended without a word";
  return Answer;
}

ConverterAnswer TryConverter(std::vector<Text> Words, const Text& Output) {
  try {
    return RunConverter(std::move(Words), Output);
  } catch (const Failure& Problem) {
    return {2, Problem.What};
  }
}

}  // namespace

bool IsMoleculeFile(TextView Path) {
  const Text Ending = EndingOf(Path);
  return std::any_of(std::begin(Endings), std::end(Endings), [&](const char* Known) { return Ending == Known; });
}

Text FindConverter() {
  for (const Text& Folder : {Platform.ProgramDirectory(), Settings.NMRExePath}) {
    Text Path = Folder + PathSeparator + ProgramName;
    if (IsSet(FileExists(Path))) return Path;
  }
  return {};
}

ConverterAnswer RunConverter(std::vector<Text> Words, const Text& Output) {
  const Text Messages = WorkFile("convert.msg");
  const Long Process = StartConverter(std::move(Words), Output, Messages);
  const auto [Cancelled, Status] = WaitForProcess(Process, WorkFile("convert.progress"));
  return Cancelled ? ConverterAnswer{CancelledStatus, "The conversion was cancelled"} : AnswerOf(Status, Messages);
}

Text PreviewPath() { return WorkFile("preview.mvs"); }

Long StartPreview(const Text& Smiles) {
  return Platform.OpenProcess(
      StartConverter({"--flat", "--time", "5", "--smiles", Smiles}, PreviewPath(), WorkFile("preview.msg")));
}

// What stands before the reason is the SMILES, which the user sees.
ConverterAnswer PreviewAnswer(const ProcessStatus& End) {
  constexpr TextView Head = " record 1: ";
  ConverterAnswer Answer = AnswerOf(End, WorkFile("preview.msg"));
  if (const std::size_t Place = Answer.Message.find(Head); Place != Text::npos) {
    Answer.Message.erase(0, Place + Head.size());
  }
  return Answer;
}

Text ConvertedPath() { return WorkFile("convert.mvs"); }

bool ConvertMolecule(const MoleculeOrigin& Origin, const Text& Output) {
  ShowStatus("Converting the molecule...");
  std::vector<Text> Words = {"--source", Origin.Source, "--record", GeneralForm(Origin.Record), "--", Origin.Path};
  if (!Origin.Smiles.empty()) Words = {"--smiles", Origin.Smiles};
  const ConverterAnswer Answer = TryConverter(std::move(Words), Output);
  if (Answer.Status != 0) Report(Answer);
  if (Answer.Status == 0) ShowStatus("The molecule has been converted.");
  return Answer.Status == 0;
}

Flag ReadConverted(const Text& Path, const Text& Title) {
  if (!IsSet(ReadHostFile(Path)) || !IsSet(ParseHostText(Title))) return False;
  TakeNotes();
  return True;
}

std::vector<RecordRow> ListRecords(const Text& Path, bool& Known) {
  const Text Output = WorkFile("convert.lst");
  ShowStatus("Reading the records of the file...");
  const ConverterAnswer Answer = TryConverter({"--list", "--", Path}, Output);
  Known = Answer.Known();
  std::vector<RecordRow> Rows;
  if (Answer.Status != 0) {
    if (Known) Report(Answer);
    return Rows;
  }
  const Text Listed = ReadWholeFile(Output);
  for (std::size_t Place = 0; Place < Listed.size();) {
    const std::size_t End = std::min(Listed.find('\n', Place), Listed.size());
    Rows.push_back(RowOf(TextView(Listed).substr(Place, End - Place)));
    Place = End + 1;
  }
  return Rows;
}

}  // namespace zelvanor
