#include "Support.h"

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "platform/Variables.h"
#include "platform/posix/PosixServices.h"
#include "program.h"
#include "setup/ReferenceShieldings.h"

namespace zelvanor::test {

Record& Shown() {
  static Record All;
  return All;
}

Text Boxes() {
  Text All;
  for (const Text& Box : Shown().Boxes) All += (All.empty() ? "" : " | ") + Box;
  return All;
}

namespace {

BoxAnswer ShowBox(const MessageBox& Box) {
  constexpr const char* Words[] = {"warning ", "error ", "question ", "plain "};
  constexpr TextView Prefixes[] = {"WARNING: ", "ERROR: ", "", ""};
  const auto Kind = static_cast<std::size_t>(Box.Kind);
  EXPECT_EQ(Box.Title, "Zelvanor") << Box.Message;
  EXPECT_TRUE(Box.Message.starts_with(Prefixes[Kind])) << Box.Message;
  Shown().RawBoxes.push_back(Box);
  Shown().Boxes.push_back(Words[Kind] + Box.Message.substr(std::min(Box.Message.size(), Prefixes[Kind].size())));
  if (Box.Buttons == BoxButtons::Ok) return BoxAnswer::Ok;
  if (Shown().Answers.empty()) return BoxAnswer::Cancel;
  const BoxAnswer Answer = Shown().Answers.front();
  Shown().Answers.pop_front();
  return Answer;
}

std::optional<Text> ShowFileDialog(const FileDialog& Dialog) {
  Shown().Dialogs.push_back(Dialog);
  if (Shown().Files.empty()) return {};
  const std::optional<Text> Chosen = Shown().Files.front();
  Shown().Files.pop_front();
  return Chosen;
}

void FillServices() {
  UsePosixServices();
  Platform.ControlChanged = nullptr;
  Platform.ShowBox = ShowBox;
  Platform.ShowFileDialog = ShowFileDialog;
  Platform.DoEvents = [] { usleep(200); };
  Platform.SetPointer = [](MousePointer Pointer) { Shown().Pointers.push_back(Pointer); };
  Platform.ShowHelp = [](const Text& File, HelpCommand Command, int Context) {
    Shown().Helps.push_back(Join(File, " ", static_cast<int>(Command), " ", Context));
  };
  Platform.OtherInstanceRuns = [] { return false; };
  Platform.DecimalSeparator = [] { return Text("."); };
  Platform.ProgramDirectory = [] { return Text("/opt/own"); };
  Platform.PrepareUserFiles = [] { return Text(); };
  Platform.WinIniPath = [] { return TempPath("no-win.ini"); };
}

void ResetMainForm() {
  BuildMainForm();
  for (Control* Item : Main.frmNMR.Controls) {
    Item->Visible = True;
    if (Item->Kind == ControlKind::MenuItem) static_cast<MenuItem*>(Item)->Checked = False;
    if (Item->Kind == ControlKind::ToolButton) static_cast<ToolButton*>(Item)->Pressed = False;
  }
  for (Control* Item : {static_cast<Control*>(&Main.Spectrum1), static_cast<Control*>(&Main.ShieldTable)}) {
    Item->Visible = False;
  }
  Main.frmNMR.Width = TwipsFromPixels(500);
  Main.frmNMR.Height = TwipsFromPixels(400);
  Main.StatusBar.Height = TwipsFromPixels(20);
  Main.HScroll1.Height = Main.HScroll2.Height = TwipsFromPixels(10);
  Main.HScroll1.Value = 0;
  Main.MouseMode = 2;
  ClearPicture(Main.Spectrum1);
}

}  // namespace

void ResetProgram() {
  static const bool Built = (BuildProgram(), true);
  EXPECT_TRUE(Built);
  Shown() = {};
  FillServices();
  ResetMainForm();
  Settings = {};
  Workspace = {};
  LineWork = {};
  InitReferenceElements();
  Workspace.NumReferenceElements = NumReferenceEntries - 1;
  Workspace.ViewMode = MoleculeView;
  InitSpectrumView();
  StatusSink = [](TextView Value) {
    Shown().Statuses.emplace_back(Value);
    SetStatus(Main.StatusBar, Value);
  };
}

ProgramTest::ProgramTest() {
  std::filesystem::remove_all(TempPath(""));
  std::filesystem::create_directories(TempPath(""));
  ResetProgram();
}

void ProgramTest::TearDown() {
  EXPECT_EQ(FreeFile(), 1) << "a file was left open";
  for (int Number = 1; Number < 8; ++Number) CloseFileQuietly(Number);
}

Text TempPath(const Text& Name) {
  // The folder goes with the process.
  static const struct Folder {
    Text Path = testing::TempDir() + "zelvanor-tests-" + std::to_string(getpid());
    Folder() { std::filesystem::create_directories(Path); }
    ~Folder() { std::filesystem::remove_all(Path); }
  } Own;
  return Own.Path + "/" + Name;
}

Text WriteFile(const Text& Name, TextView Content) {
  const Text Path = TempPath(Name);
  std::ofstream(Path, std::ios::binary | std::ios::trunc) << Content;
  return Path;
}

Text MakeFolder(const Text& Name) {
  const Text Path = TempPath(Name);
  mkdir(Path.c_str(), 0700);
  return Path;
}

Text ReadBytes(const Text& Path) {
  std::ifstream Stream(Path, std::ios::binary);
  EXPECT_TRUE(Stream) << Path;
  return {std::istreambuf_iterator<char>(Stream), std::istreambuf_iterator<char>()};
}

bool Exists(const Text& Path) { return access(Path.c_str(), F_OK) == 0; }

FullDisk::FullDisk(unsigned Bytes) {
  getrlimit(RLIMIT_FSIZE, &Former);
  const rlimit Small{Bytes, Former.rlim_max};
  setrlimit(RLIMIT_FSIZE, &Small);
  std::signal(SIGXFSZ, SIG_IGN);
}

FullDisk::~FullDisk() { setrlimit(RLIMIT_FSIZE, &Former); }

Texts Pieces(TextView Packed) {
  Texts All;
  for (std::size_t End = 0; End != TextView::npos; Packed.remove_prefix(std::min(Packed.size(), End + 1))) {
    End = Packed.find('|');
    All.emplace_back(Packed.substr(0, End));
    if (End == TextView::npos) break;
  }
  return All;
}

Text JoinLines(const Texts& Lines) {
  Text Content;
  for (const Text& Line : Lines) Content += Line + "\r\n";
  return Content;
}

Texts SplitLines(TextView Content) {
  Texts Lines;
  while (!Content.empty()) {
    const std::size_t End = Content.find("\r\n");
    Lines.emplace_back(Content.substr(0, End));
    Content.remove_prefix(End == TextView::npos ? Content.size() : End + 2);
  }
  return Lines;
}

Text Change(Text Content, TextView From, TextView To) {
  const std::size_t Place = Content.find(From);
  if (Place == Text::npos) {
    ADD_FAILURE() << "not in the text: " << From;
    return Content;
  }
  return Content.replace(Place, From.size(), To);
}

Text FailureOf(const std::function<void()>& Call) {
  try {
    Call();
    return "no failure";
  } catch (const Failure& Problem) {
    return Problem.What;
  }
}

bool EndsProgram(const std::function<void()>& Call) {
  try {
    Call();
    return false;
  } catch (const ProgramEnded&) {
    return true;
  }
}

Text VariableText(const Text& Name) {
  const VariableAccess* Access = Variables().Find(Name);
  return Access == nullptr ? "no variable " + Name : Access->Read(0, 0);
}

void ExpectValues(const Text& Values, const Text& What) {
  std::istringstream Words(Values);
  for (Text Word; Words >> Word;) {
    const std::size_t Equals = Word.find('=');
    const Text Place = Word.substr(0, Equals);
    const std::size_t Open = Place.find('(');
    const VariableAccess* Access = Variables().Find(Place.substr(0, Open));
    ASSERT_NE(Access, nullptr) << Place;
    int First = 0;
    int Second = 0;
    if (Open != Text::npos) std::sscanf(Place.c_str() + Open, "(%d,%d)", &First, &Second);
    EXPECT_EQ(Access->Read(First, Second), Word.substr(Equals + 1)) << Place << " " << What;
  }
}

Integer OpenContent(TextView Content) {
  LineWork.FileNumber = FreeFile();
  OpenForInput(WriteFile("content", Content), LineWork.FileNumber);
  return LineWork.FileNumber;
}

std::vector<int> Numbers(const Array<Integer>& Values, int Count) {
  std::vector<int> Result;
  for (int Index = 0; Index < Count; ++Index) Result.push_back(Values[Index]);
  return Result;
}

void SetArray(Array<Integer>& Target, const std::vector<int>& Values) {
  Target.ReDim(static_cast<int>(Values.size()));
  for (std::size_t Index = 0; Index < Values.size(); ++Index) Target[static_cast<int>(Index)] = Values[Index];
}

void SetArray(Array<Single>& Target, const std::vector<double>& Values) {
  Target.ReDim(static_cast<int>(Values.size()));
  for (std::size_t Index = 0; Index < Values.size(); ++Index) {
    Target[static_cast<int>(Index)] = static_cast<Single>(Values[Index]);
  }
}

void SetMatrix(Array2<Single>& Target, const std::vector<std::vector<double>>& Rows) {
  const int Size = static_cast<int>(Rows.size());
  Target.ReDim(Size, Size);
  for (int Row = 0; Row < Size; ++Row) {
    for (int Column = 0; Column < Size; ++Column) {
      Target(Row, Column) = static_cast<Single>(Rows[static_cast<std::size_t>(Row)][static_cast<std::size_t>(Column)]);
    }
  }
}

void SetPeaks(const std::vector<std::pair<double, double>>& Peaks) {
  Workspace.PeakCount = static_cast<Long>(Peaks.size());
  AllocatePeaks(Workspace.PeakCount);
  for (Long Peak = 0; Peak < Workspace.PeakCount; ++Peak) {
    const auto& [Frequency, Intensity] = Peaks[static_cast<std::size_t>(Peak)];
    Workspace.PeakFrequency[Peak] = static_cast<Single>(Frequency);
    Workspace.PeakIntensity[Peak] = static_cast<Single>(Intensity);
    Workspace.PeakDegeneracy[Peak] = 1;
    Workspace.PeakLineWidth[Peak] = 0.5F;
  }
  Workspace.SpectraAvailable = True;
}

}  // namespace zelvanor::test
