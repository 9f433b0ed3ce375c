#include <time.h>

#include <algorithm>
#include <map>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "batch/Batch.h"
#include "batch/Expect.h"
#include "batch/HostCommands.h"
#include "batch/UserActions.h"
#include "files/FileCommands.h"
#include "fit/FitCommands.h"
#include "history/History.h"
#include "history/Recovery.h"
#include "measured/MeasuredCommands.h"
#include "pictures/ViewPictures.h"
#include "platform/Grid.h"
#include "program.h"
#include "report/Report.h"
#include "shell/Frame.h"
#include "shell/Progress.h"

namespace zelvanor::batch {

namespace {

using Words = std::vector<Argument>;

void Start(const Words& /*All*/) {
  if (State.Started) throw ScriptStop{CannotCarryOut, "the program has started already"};
  State.Started = true;
  Form_Load(State.CommandLine);
}

void QueueAnswers(const Words& All) {
  static const std::map<Text, BoxAnswer> Names = {{"yes", BoxAnswer::Yes},
                                                  {"no", BoxAnswer::No},
                                                  {"cancel", BoxAnswer::Cancel},
                                                  {"ok", BoxAnswer::Ok},
                                                  {"retry", BoxAnswer::Retry}};
  for (std::size_t Word = 1; Word < All.size(); ++Word) {
    const auto Entry = Names.find(All[Word].Value);
    if (Entry == Names.end()) throw ScriptStop{CannotCarryOut, "there is no answer " + All[Word].Value};
    State.Answers.push_back(Entry->second);
  }
}

bool IsCancel(const Argument& Word) { return Word.Value == "cancel" && !Word.WasQuoted; }

void QueueFile(const Words& All) {
  if (IsCancel(All[1])) {
    State.Files.emplace_back();
  } else {
    State.Files.emplace_back(All[1].Value);
  }
}

void QueueColour(const Words& All) {
  if (IsCancel(All[1])) {
    State.Colours.emplace_back();
  } else {
    const auto Part = [&All](std::size_t Place) { return NeedNumberIn(All, Place, 0, 255); };
    State.Colours.emplace_back(Rgb(Part(1), Part(2), Part(3)));
  }
}

void ClipboardCommand(const Words& All) {
  if (All.size() > 1) {
    Platform.SetClipboard(All[1].Value);
  } else {
    PrintOut(Escaped(Platform.GetClipboard()));
  }
}

void BeforeStart(const char* What) {
  if (State.Started) throw ScriptStop{CannotCarryOut, Text(What) + " comes before start"};
}

void LocaleCommand(const Words& All) {
  BeforeStart("locale");
  State.DecimalSeparator = All[1].Value;
}

void Instance(const Words& /*All*/) {
  BeforeStart("instance");
  State.OtherInstance = true;
}

void Get(const Words& All) { PrintOut(All[1].Value + " = " + PrintedValue(ReadProperty(All[1].Value))); }
void Print(const Words& All) { PrintOut(All[1].Value + " = " + PrintedValue(ReadVariable(All[1].Value))); }

void Let(const Words& All) {
  if (All[2].Value != "=") throw ScriptStop{CannotCarryOut, "let V = VALUE"};
  AssignVariable(All[1].Value, All[3].Value);
}

void KeepGoing(const Words& All) {
  if (All[1].Value != "going") throw ScriptStop{CannotCarryOut, "keep going"};
  State.KeepGoing = true;
}

void Trace(const Words& All) {
  if (All[1].Value != "on" && All[1].Value != "off") throw ScriptStop{CannotCarryOut, "trace on, or trace off"};
  State.Trace = All[1].Value == "on";
}

void ListForms(const Words& /*All*/) {
  const auto List = [](const Form& Window) {
    if (IsSet(Window.Visible)) PrintOut("form " + Window.Name + " " + Escaped(Window.Caption));
  };
  List(Main.frmNMR);
  for (const Form* Window : ModalForms()) List(*Window);
}

void Dump(const Words& All) {
  const Control& Target = NeedControl(All[1].Value);
  if (Target.Kind == ControlKind::ListBox) {
    const auto& List = static_cast<const ListBox&>(Target);
    for (std::size_t Row = 0; Row < List.Items.size(); ++Row) {
      const bool Marked = List.Multiple ? List.Selected[Row] : static_cast<int>(Row) == List.ListIndex;
      PrintOut((Marked ? "*" : "") + Escaped(List.Items[Row]));
    }
  } else if (Target.Kind == ControlKind::ComboBox) {
    const auto& List = static_cast<const ComboBox&>(Target);
    for (std::size_t Row = 0; Row < List.Items.size(); ++Row) {
      PrintOut((static_cast<int>(Row) == List.ListIndex ? "*" : "") + Escaped(List.Items[Row]));
    }
  } else if (Target.Kind == ControlKind::Grid) {
    const auto& Grid = static_cast<const GridControl&>(Target);
    for (int Row = 0; Row < RowsOf(Grid); ++Row) {
      Text Line;
      for (int Col = 0; Col < ColsOf(Grid); ++Col) Line += (Col > 0 ? " " : "") + Escaped(CellText(Grid, Row, Col));
      PrintOut(Line);
    }
  } else {
    throw ScriptStop{CannotCarryOut, "nothing to dump in " + All[1].Value};
  }
}

void Wait(const Words& All) {
  const auto Now = [] {
    timespec Time{};
    clock_gettime(CLOCK_MONOTONIC, &Time);
    return static_cast<Double>(Time.tv_sec) * 1000.0 + static_cast<Double>(Time.tv_nsec) / 1.0e6;
  };
  const Double End = Now() + NeedNumber(All, 1);
  do {
    Platform.DoEvents();
    constexpr timespec Millisecond{0, 1000000};
    nanosleep(&Millisecond, nullptr);
  } while (Now() < End);
}

void Measured(const Words& All) {
  if (!ModalForms().empty()) return PrintOut("refused measured");
  if (All[1].Value == "none" && !All[1].WasQuoted) {
    RemoveMeasured();
  } else {
    OpenMeasured(All[1].Value);
  }
}

Double NeedPpm(const Text& Word) {
  try {
    return StrictNumber(Word);
  } catch (const Failure&) {
    throw ScriptStop{CannotCarryOut, "not a number: " + Word};
  }
}

// Kinds, windows and atoms in any order; without a kind all of them.
FitChoice ChooseFit(const Words& All) {
  FitChoice Choice{.Shifts = false, .Couplings = false, .Width = false};
  const std::map<Text, std::vector<bool FitChoice::*>> Kinds = {
      {"all", {&FitChoice::Shifts, &FitChoice::Couplings, &FitChoice::Width}},
      {"shifts", {&FitChoice::Shifts}},
      {"couplings", {&FitChoice::Couplings}},
      {"width", {&FitChoice::Width}}};
  bool AnyKind = false;
  for (std::size_t Word = 1; Word < All.size(); ++Word) {
    const Text& Value = All[Word].Value;
    if (const auto Kind = Kinds.find(Value); Kind != Kinds.end()) {
      for (const auto Member : Kind->second) Choice.*Member = true;
      AnyKind = true;
    } else if (Value == "window") {
      if (Word + 2 >= All.size()) throw ScriptStop{CannotCarryOut, "a window needs two ends in ppm"};
      Choice.Windows.emplace_back(NeedPpm(All[Word + 1].Value), NeedPpm(All[Word + 2].Value));
      Word += 2;
    } else {
      Choice.Atoms.push_back(ToInteger(NeedNumber(All, Word)));
    }
  }
  if (!AnyKind) Choice.Shifts = Choice.Couplings = Choice.Width = true;
  return Choice;
}

void FitSpectrum(const Words& All) {
  if (!ModalForms().empty()) return PrintOut("refused fit");
  const FitChoice Choice = ChooseFit(All);
  bool Done = false;
  RunRecorded("fitting to the measured spectrum", [&] { Done = FitToMeasured(Choice); });
  if (Done) PrintOut("fit R = " + GeneralForm(ToSingle(Fit.R)));
}

void Echo(const Words& All) {
  Text Line;
  for (std::size_t Word = 1; Word < All.size(); ++Word) Line += (Word > 1 ? " " : "") + All[Word].Value;
  PrintOut(Line);
}

// One step of the history, which a form or a command that works keeps as it is.
void GoStep(Text (*Way)(), const char* Done, const char* Nothing) {
  const Text Name = ModalForms().empty() ? Way() : Text();
  PrintOut(Name.empty() ? Text(Nothing) : Done + Escaped(Name));
}

void Recover(const Words& /*All*/) {
  const std::optional<LeftWork> Left = FindLeftWork();
  bool Taken = false;
  if (Left) RunRecorded("taking over kept work", [&] { Taken = TakeLeftWork(*Left); });
  PrintOut(Taken ? "recovered " + Escaped(Left->DocumentTitle) : Text("nothing to recover"));
}

void RecordMeasured(const Words& All) {
  RunRecorded("changing the measured spectrum", [&] { Measured(All); });
}

// What is still being typed into a table counts before the command.
template <void (*Run)(const Words& All)>
void AfterTableEdit(const Words& All) {
  Fire(Rooms.EndTableEdit);
  Run(All);
}

std::map<Text, CommandRow>& Commands() {
  static std::map<Text, CommandRow> Rows = {
      {"start", {Start, 0, false}},
      {"quit", {CloseWindow, 0, true}},
      {"click", {ClickControl, 1, true}},
      {"press", {PressControl, 1, true}},
      {"release", {ReleaseControl, 1, true}},
      {"type", {TypeText, 2, true}},
      {"enter", {EnterText, 2, true}},
      {"choose", {ChooseEntry, 2, true}},
      {"cell", {PickGridCell, 3, true}},
      {"range", {PickGridRange, 5, true}},
      {"select", {SelectRows, 1, true}},
      {"scroll", {ScrollBarTo, 2, true}},
      {"spin", {Spin, 2, true}},
      {"mouse", {MoveMouse, 4, true}},
      {"atom", {ClickAtom, 2, true}},
      {"key", {PressKey, 1, true}},
      {"size", {ResizeWindow, 2, false}},
      {"menu", {[](const Words& All) { SubClass1_MenuSelect(0, All[1].Value); }, 1, true}},
      {"answer", {QueueAnswers, 1, false}},
      {"file", {QueueFile, 1, false}},
      {"colour", {QueueColour, 1, false}},
      {"clipboard", {ClipboardCommand, 0, false}},
      {"locale", {LocaleCommand, 1, false}},
      {"instance", {Instance, 0, false}},
      {"host", {HostCommand, 1, false}},
      {"get", {Get, 1, false}},
      {"print", {Print, 1, false}},
      {"let", {Let, 3, false}},
      {"expect", {Expect, 1, false}},
      {"keep", {KeepGoing, 1, false}},
      {"trace", {Trace, 1, false}},
      {"forms", {ListForms, 0, false}},
      {"dump", {Dump, 1, true}},
      {"view", {[](const Words& All) { WriteView(All[1].Value); }, 1, true}},
      {"chart", {[](const Words& All) { pictures::WriteChartPicture(All[1].Value); }, 1, true}},
      {"save", {AfterTableEdit<SaveSpectrum>, 1, true}},
      {"measured", {AfterTableEdit<RecordMeasured>, 1, true}},
      {"fit", {AfterTableEdit<FitSpectrum>, 0, true}},
      {"report", {[](const Words& All) { WriteReport(All[1].Value); }, 1, true}},
      {"undo", {[](const Words&) { GoStep(GoBack, "undone ", "nothing to undo"); }, 0, true}},
      {"redo", {[](const Words&) { GoStep(GoForward, "redone ", "nothing to redo"); }, 0, true}},
      {"cancel", {[](const Words&) { Progress.Runs ? AskCancel() : AskCancelLater(); }, 0, true}},
      {"recover", {Recover, 0, true}},
      {"wait", {Wait, 1, false}},
      {"echo", {Echo, 0, false}},
  };
  return Rows;
}

}  // namespace

int NeedNumber(const std::vector<Argument>& All, std::size_t Place) {
  if (Place >= All.size()) throw ScriptStop{CannotCarryOut, "a number is missing behind " + All[0].Value};
  return ToLong(StrictNumber(All[Place].Value));
}

std::vector<Text> CommandNames() {
  std::vector<Text> Names;
  Names.reserve(Commands().size());
  for (const auto& [Name, Row] : Commands()) Names.push_back(Name);
  return Names;
}

int NeedNumberIn(const std::vector<Argument>& All, std::size_t Place, int Low, int High) {
  const int Number = NeedNumber(All, Place);
  if (Number < Low || Number > High) throw ScriptStop{CannotCarryOut, "out of range: " + All[Place].Value};
  return Number;
}

void AddCommand(const Text& Name, const CommandRow& Row) { Commands()[Name] = Row; }

void RunCommand(const std::vector<Argument>& All) {
  const auto Entry = Commands().find(All[0].Value);
  if (Entry == Commands().end()) throw ScriptStop{CannotCarryOut, "unknown command " + All[0].Value};
  const CommandRow& Row = Entry->second;
  if (All.size() - 1 < Row.LeastArguments) {
    throw ScriptStop{CannotCarryOut, "arguments are missing behind " + All[0].Value};
  }
  if (Row.NeedsStart && !State.Started) {
    throw ScriptStop{CannotCarryOut, All[0].Value + " comes after start"};
  }
  Row.Run(All);
}

}  // namespace zelvanor::batch
