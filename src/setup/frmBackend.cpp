#include "setup/frmBackend.h"

#include <array>
#include <chrono>
#include <filesystem>

#include "backend/Compute.h"
#include "backend/ParamInput.h"
#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "basic/TextTools.h"
#include "platform/Form.h"
#include "platform/Paths.h"
#include "platform/Profile.h"
#include "platform/Services.h"
#include "platform/TextFiles.h"
#include "settings/SettingsState.h"
#include "setup/NewGeometry.h"
#include "shell/Frame.h"
#include "shell/Progress.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

constexpr const char* Section = "backend";

struct EngineRow {
  const char* Name;  // in the file
  const char* Title;
};
constexpr std::array<EngineRow, 2> Engines = {{{"builtin", "Built-in model"}, {"nwchem", "NWChem"}}};

struct FieldRow {
  const char* Key;
  const char* Caption;
  const char* Name;  // for a screen reader
  const char* Default;
  bool IsNumber;
};
constexpr std::array<FieldRow, 7> Fields = {{
    {"Processes", "&Processes (0: one a core):", "Processes", "0", true},
    {"Launcher", "&Launcher line (%n: processes):", "Launcher line", "", false},
    {"Program", "P&rogram of the engine:", "Program of the engine", "", false},
    {"Scratch", "Scratch &directory:", "Scratch directory", "", false},
    {"Memory", "&Memory in MB (0: half of what is free):", "Memory in MB", "0", true},
    {"TimeLimit", "&Time limit in minutes (0: none):", "Time limit in minutes", "0", true},
    {"CacheSize", "&Kept results in MB (0: none):", "Kept results in MB", "200", true},
}};
constexpr Double LargestNumber = 100000;

// A label's access key leads to the control made after it.
struct SettingRow {
  SettingRow(Form& Owner, int Index) : Label5(&Owner, "Label5", Index), Text1(&Owner, "Text1", Index) {}
  Label Label5;
  TextField Text1;
};

struct BackendForm {
  Form frmBackend{"frmBackend"};
  Label Label1{&frmBackend, "Label1"};
  ComboBox Combo1{&frmBackend, "Combo1"};  // engine of the shieldings
  Label Label2{&frmBackend, "Label2"};
  ComboBox Combo2{&frmBackend, "Combo2"};  // engine of the couplings
  Label Label3{&frmBackend, "Label3"};
  ComboBox Combo3{&frmBackend, "Combo3"};  // level; the first row: by the method of the document
  CheckBox Check1{&frmBackend, "Check1"};
  SettingRow Rows[7] = {{frmBackend, 0}, {frmBackend, 1}, {frmBackend, 2}, {frmBackend, 3},
                        {frmBackend, 4}, {frmBackend, 5}, {frmBackend, 6}};
  CommandButton Command3{&frmBackend, "Command3"};  // test
  CommandButton Command4{&frmBackend, "Command4"};  // geometry
  Label Label4{&frmBackend, "Label4"};              // what they gave
  CommandButton Command1{&frmBackend, "Command1"};
  CommandButton Command2{&frmBackend, "Command2"};

  bool Running = false;  // the buttons wait for the backend
};

BackendForm Dialog;

Text LevelFilePath() { return Join(Settings.NMRParmPath, PathSeparator, "nmrlevel.txt"); }

std::vector<Text> ListLevels() {
  std::vector<Text> Names{"By the method of the document"};
  try {
    const Text Levels = ReadWholeFile(LevelFilePath());
    for (std::size_t Start = 0; Start < Levels.size();) {
      const std::size_t End = std::min(Levels.find('\n', Start), Levels.size());
      const TextView Trimmed = TrimWhite(TextView(Levels).substr(Start, End - Start));
      Start = End + 1;
      if (Trimmed.size() > 2 && Trimmed.front() == '[' && Trimmed.back() == ']') {
        Names.emplace_back(Trimmed.substr(1, Trimmed.size() - 2));
      }
    }
  } catch (const Failure&) {
  }
  return Names;
}

Text ReadValue(const char* Key, const char* Default) {
  return GetPrivateProfileString(Section, Key, Default, Settings.BackendFile);
}

void ChooseEngine(ComboBox& Box, const char* Key) {
  const Text Name = ReadValue(Key, Engines[0].Name);
  int Index = 0;
  for (std::size_t Row = 0; Row < Engines.size(); ++Row) {
    if (EqualsIgnoringCase(Name, Engines[Row].Name)) Index = static_cast<int>(Row);
  }
  SetListIndex(Box, Index);
}

void Form_Activate() {
  ChooseEngine(Dialog.Combo1, "ShieldingEngine");
  ChooseEngine(Dialog.Combo2, "CouplingEngine");
  SetItems(Dialog.Combo3, ListLevels());
  const Text Level = ReadValue("Level", "");
  int Index = 0;
  for (std::size_t Row = 1; Row < Dialog.Combo3.Items.size(); ++Row) {
    if (EqualsIgnoringCase(Level, Dialog.Combo3.Items[Row])) Index = static_cast<int>(Row);
  }
  SetListIndex(Dialog.Combo3, Index);
  SetValue(Dialog.Check1, EqualsIgnoringCase(ReadValue("Scaling", "No"), "Yes") ? 1 : 0);
  for (std::size_t Row = 0; Row < Fields.size(); ++Row) {
    SetText(Dialog.Rows[Row].Text1, ReadValue(Fields[Row].Key, Fields[Row].Default));
  }
  SetCaption(Dialog.Label4, "");
}

Text EngineName(const ComboBox& Box) {
  return Box.ListIndex < 0 ? Engines[0].Name : Engines[static_cast<std::size_t>(Box.ListIndex)].Name;
}

// What the dialog shows, as lines of the file; with the change of a key for a test.
std::vector<ProfileEntry> ShownEntries() {
  std::vector<ProfileEntry> Entries = {{Section, "ShieldingEngine", EngineName(Dialog.Combo1)},
                                       {Section, "CouplingEngine", EngineName(Dialog.Combo2)}};
  const int Level = Dialog.Combo3.ListIndex;
  Entries.push_back({Section, "Level", Level > 0 ? Dialog.Combo3.Items[static_cast<std::size_t>(Level)] : Text()});
  Entries.push_back({Section, "Scaling", Dialog.Check1.Value != 0 ? "Yes" : "No"});
  for (std::size_t Row = 0; Row < Fields.size(); ++Row) {
    const Text Value(TrimBlanks(Dialog.Rows[Row].Text1.Value));
    Entries.push_back({Section, Fields[Row].Key, Value.empty() ? Text(Fields[Row].Default) : Value});
  }
  return Entries;
}

// False, with a box, for a number that is none.
bool CheckNumbers() {
  for (std::size_t Row = 0; Row < Fields.size(); ++Row) {
    if (!Fields[Row].IsNumber || TrimBlanks(Dialog.Rows[Row].Text1.Value).empty()) continue;
    Double Value = -1;
    try {
      Value = StrictNumber(TrimBlanks(Dialog.Rows[Row].Text1.Value));
    } catch (const Failure&) {
    }
    if (Value >= 0 && Value <= LargestNumber && Value == RoundEven(Value)) continue;
    ShowWarning(Join(Dialog.Rows[Row].Text1.Value, " is not valid.  Please enter a whole number from 0 to 100000."));
    SetFocus(Dialog.Rows[Row].Text1);
    return false;
  }
  return true;
}

// OK
void Command1_Click() {
  if (Dialog.Running || !CheckNumbers()) return;
  bool Changed = false;
  for (const ProfileEntry& Entry : ShownEntries()) {
    if (GetPrivateProfileString(Section, Entry.Key, "", Settings.BackendFile) != Entry.Value) Changed = true;
  }
  if (Changed && !WritePrivateProfileStrings(ShownEntries(), Settings.BackendFile)) {
    return ShowWarning(Join("Error writing the ", Settings.BackendFile, " file."));
  }
  HideForm(Dialog.frmBackend);
}

// Cancel: first what runs, then the dialog
void Command2_Click() {
  if (Dialog.Running) return AskCancel();
  HideForm(Dialog.frmBackend);
}

// Runs the backend in a folder of its own; the first line of its output, or what went wrong.
Text RunBackendIn(const Text& Folder, TextView Stage, const char* Output) {
  const Text OutputPath = Join(Folder, PathSeparator, Output);
  Dialog.Running = true;
  Text Answer;
  try {
    std::filesystem::remove(OutputPath);
    const bool Ended = WaitForBackend(Platform.Shell(BackendWords(Stage, Folder)));
    Answer = Ended ? ReadWholeFile(OutputPath) : Text("ERRMSG: Cancelled.");
  } catch (const Failure& Problem) {
    Answer = Join("ERRMSG: ", Problem.What, ".");
  } catch (const std::filesystem::filesystem_error&) {
    Answer = Join("ERRMSG: ", OutputPath, " is in the way.");
  }
  Dialog.Running = false;
  return Answer.empty() ? Text("ERRMSG: The backend gave no answer.") : Answer;
}

Text FirstLineOf(const Text& Answer) { return Answer.substr(0, Answer.find_first_of("\r\n")); }

// Water, with a wave function that takes a second.
constexpr const char* Water =
    "CalculateShielding = Yes\nNMRSelectionBegin\n3\nmol 1 atom 1\nmol 1 atom 2\nmol 1 atom 3\nNMRSelectionEnd\n"
    "AtomsBegin\n3\nmol 1\natom 1 - O ** - 0 0 0 0.1173 2 2 s 3 s\natom 2 - H ** - 0 0 0.7572 -0.4692 1 1 s\n"
    "atom 3 - H ** - 0 0 -0.7572 -0.4692 1 1 s\nendmol 1\nAtomsEnd\n";

Text TestEngine() {
  const Text Folder = Join(Settings.NMRIniPath, PathSeparator, "backend-test");
  Text Answer;
  const auto Start = std::chrono::steady_clock::now();
  try {
    std::filesystem::create_directories(Folder);
    WriteWholeFile(Join(Folder, PathSeparator, "nmrparam.in"), Water);
    std::vector<ProfileEntry> Entries = ShownEntries();
    // An engine that is chosen for couplings alone is the one to test; kept results would test nothing.
    for (ProfileEntry& Entry : Entries) {
      if (Entry.Key == "ShieldingEngine" && Dialog.Combo1.ListIndex == 0) Entry.Value = EngineName(Dialog.Combo2);
      if (Entry.Key == "CacheSize") Entry.Value = "0";
    }
    WritePrivateProfileStrings(Entries, Join(Folder, PathSeparator, "nmrback.ini"));
    Answer = RunBackendIn(Folder, "1", "nmrparam.out");
  } catch (const std::exception&) {
    Answer = Join("ERRMSG: ", Folder, " cannot be used.");
  } catch (const Failure& Problem) {
    Answer = Join("ERRMSG: ", Problem.What, ".");
  }
  std::error_code Ignored;
  std::filesystem::remove_all(Folder, Ignored);
  const std::chrono::duration<double> Elapsed = std::chrono::steady_clock::now() - Start;
  const Text First = FirstLineOf(Answer);
  if (First.starts_with("ERRMSG:")) return First.substr(std::min<std::size_t>(First.size(), 8));
  return Join(First, ": ", FormatNumber(Elapsed.count(), "0.0"), " s for water.");
}

// Test
void Command3_Click() {
  if (Dialog.Running || !CheckNumbers()) return;
  SetCaption(Dialog.Label4, "Computing water...");
  SetCaption(Dialog.Label4, TestEngine());
}

// Optimise geometry
void Command4_Click() {
  if (Dialog.Running) return;
  if (Workspace.NumAtoms == 0) return SetCaption(Dialog.Label4, "There is no molecule.");
  const Text Input = Join(Settings.NMRIniPath, PathSeparator, "nmrgeom.in");
  if (!IsSet(WriteParamInput(Input))) return;
  SetCaption(Dialog.Label4, "Optimising the geometry...");
  const Text Answer = RunBackendIn(Settings.NMRIniPath, "4", "nmrgeom.out");
  const Text First = FirstLineOf(Answer);
  if (First.starts_with("ERRMSG:")) {
    return SetCaption(Dialog.Label4, First.substr(std::min<std::size_t>(First.size(), 8)));
  }
  Double Moved = 0;
  if (!TakeGeometry(Answer, Moved)) return SetCaption(Dialog.Label4, "The new geometry does not fit the molecule.");
  SetCaption(Dialog.Label4, Join(First, ": the largest move is ", FormatNumber(Moved, "0.00"), " angstrom."));
  RefreshView();
}

void SetUpControls() {
  auto& D = Dialog;
  std::vector<Text> Titles;
  Titles.reserve(Engines.size());
  for (const EngineRow& Row : Engines) Titles.emplace_back(Row.Title);
  const auto SetUp = [&](Label& Caption, const char* Words, ComboBox& Box, const char* Name) {
    Caption.Caption = Words;
    Box.AccessibleName = Name;
  };
  SetUp(D.Label1, "&Shieldings by:", D.Combo1, "Engine of the shieldings");
  SetUp(D.Label2, "Co&uplings by:", D.Combo2, "Engine of the couplings");
  SetUp(D.Label3, "Level of t&heory:", D.Combo3, "Level of theory");
  D.Combo1.Items = D.Combo2.Items = Titles;
  D.Check1.Caption = "Shifts on the line of measured o&nes";
  for (std::size_t Row = 0; Row < Fields.size(); ++Row) {
    D.Rows[Row].Label5.Caption = Fields[Row].Caption;
    D.Rows[Row].Text1.AccessibleName = Fields[Row].Name;
    D.Rows[Row].Text1.Wide = !Fields[Row].IsNumber;
  }
  D.Label4.AccessibleName = "Result";
  D.Label4.Wraps = true;
  SetUpButton(D.Command3, "T&est", Command3_Click);
  SetUpButton(D.Command4, "Optimise &Geometry", Command4_Click);
  SetUpOkAndCancel(D.Command1, "OK", Command1_Click, D.Command2, Command2_Click);
}

}  // namespace

void BuildBackendForm() {
  auto& D = Dialog;
  D.frmBackend.Caption = "Backend";
  SetUpControls();
  D.frmBackend.Activate = Form_Activate;
  std::vector<Arrangement> Rows;
  for (SettingRow& Row : D.Rows) Rows.push_back(RowOf({ItemOf(Row.Label5), ItemOf(Row.Text1)}));
  D.frmBackend.Layout = ColumnOf(
      {GroupOf("Engines", {RowOf({ItemOf(D.Label1), ItemOf(D.Combo1)}), RowOf({ItemOf(D.Label2), ItemOf(D.Combo2)}),
                           RowOf({ItemOf(D.Label3), ItemOf(D.Combo3)}), ItemOf(D.Check1)}),
       GroupOf("How NWChem is started", Rows),
       RowOf({ItemOf(D.Command3), ItemOf(D.Command4), StretchOf(), ItemOf(D.Command1), ItemOf(D.Command2)}),
       ItemOf(D.Label4)});
}

void mnuSetupBackend_Click() { ShowModal(Dialog.frmBackend); }

}  // namespace zelvanor
