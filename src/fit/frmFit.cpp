#include "fit/frmFit.h"

#include <algorithm>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "fit/FitCommands.h"
#include "history/History.h"
#include "platform/Form.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

struct FitForm {
  Form frmFit{"frmFit"};
  Label Label1{&frmFit, "Label1"};
  TextField Text1{&frmFit, "Text1"};  // window, ppm
  Label Label2{&frmFit, "Label2"};
  TextField Text2{&frmFit, "Text2"};
  CheckBox Check1[3] = {
      {&frmFit, "Check1", 0}, {&frmFit, "Check1", 1}, {&frmFit, "Check1", 2}};  // shifts, couplings, width
  CommandButton Command3{&frmFit, "Command3"};
  ListBox List1{&frmFit, "List1"};
  CheckBox Check2{&frmFit, "Check2"};
  Label Label3{&frmFit, "Label3"};
  TextField Text3{&frmFit, "Text3"};  // start
  Label Label4{&frmFit, "Label4"};
  TextField Text4{&frmFit, "Text4"};  // bounds
  Label Label5{&frmFit, "Label5"};
  TextField Text5{&frmFit, "Text5"};
  CommandButton Command4{&frmFit, "Command4"};
  Label Label6{&frmFit, "Label6"};
  CommandButton Command5{&frmFit, "Command5"};
  CommandButton Command1{&frmFit, "Command1"};
  CommandButton Command2{&frmFit, "Command2"};
};

FitForm Dialog;

// How the dialog was left.
enum class Wish { Nothing, Run, Accept };
Wish Wished = Wish::Nothing;

int DecimalsOf(const FitRow& Row) { return Row.Kind == FitShift ? 4 : 2; }
Text Number(const FitRow& Row, Double Value) { return FormatNumber(Value, DecimalsOf(Row) == 4 ? "0.0000" : "0.00"); }

// The rows that the user sees: scale and baseline follow by themselves.
int NumShownRows() {
  return static_cast<int>(
      std::count_if(Fit.Rows.begin(), Fit.Rows.end(), [](const FitRow& Row) { return Row.Kind < FitScale; }));
}

Text DescribeResult(const FitRow& Row) {
  if (!Row.Free) return "";
  Text Words = Join("  = ", Number(Row, Row.Value));
  if (Row.Error > 0) Words += Join(" +- ", FormatNumber(Row.Error, DecimalsOf(Row) == 4 ? "0.00000" : "0.000"));
  if (Row.Error < 0) Words += ", not told by the spectrum: stays on Accept";
  if (Row.AtBound) Words += ", at its bound";
  if (Row.Correlation != 0) {
    Words += Join("; ", FormatNumber(Row.Correlation, "0.00"), " with ",
                  NameOfFitRow(Fit.Rows[static_cast<std::size_t>(Row.Partner)]));
  }
  return Words;
}

void FillList(int Chosen) {
  std::vector<Text> Items;
  for (int K = 0; K < NumShownRows(); ++K) {
    const FitRow& Row = Fit.Rows[static_cast<std::size_t>(K)];
    Items.push_back(Join(
        Row.Free ? (Row.Sites.size() + Row.Pairs.size() > 1 ? "tied: " : "free: ") : "fixed: ", NameOfFitRow(Row), "  ",
        Number(Row, Row.Start), Row.Kind == FitShift ? " ppm" : " Hz", Fit.Done ? DescribeResult(Row) : Text()));
  }
  SetItems(Dialog.List1, Items);
  SetListIndex(Dialog.List1, Chosen < NumShownRows() ? Chosen : -1);
  SetEnabled(Dialog.Command1, ToFlag(Fit.Done));
  // Enter does what comes next.
  SetDefault(Fit.Done ? Dialog.Command1 : Dialog.Command5);
  SetCaption(Dialog.Label6,
             Fit.Done ? Join("R ", FormatNumber(Fit.R, "0.00000"), ", noise ", GeneralForm(ToSingle(Fit.Noise)))
                      : Text("not fitted yet"));
}

FitRow* ChosenRow() {
  const int Chosen = Dialog.List1.ListIndex;
  return Chosen >= 0 && Chosen < NumShownRows() ? &Fit.Rows[static_cast<std::size_t>(Chosen)] : nullptr;
}

void List1_Click() {
  const FitRow* Row = ChosenRow();
  if (Row == nullptr) return;
  SetValue(Dialog.Check2, Row->Free ? 1 : 0);
  SetText(Dialog.Text3, Number(*Row, Row->Start));
  SetText(Dialog.Text4, Number(*Row, Row->Low));
  SetText(Dialog.Text5, Number(*Row, Row->High));
}

void Set_Click() {
  FitRow* Row = ChosenRow();
  if (Row == nullptr) return ShowWarning("Choose a value of the list first.");
  try {
    const Double Start = StrictNumber(Dialog.Text3.Value);
    const Double Low = StrictNumber(Dialog.Text4.Value);
    const Double High = StrictNumber(Dialog.Text5.Value);
    if (!(Low <= Start && Start <= High && Low < High)) {
      return ShowWarning("The start should lie between two bounds that differ.");
    }
    if (Row->Kind == FitWidth && Low < 0.01) return ShowWarning("A line width is 0.01 Hz at least.");
    Row->Start = Start;
    Row->Low = Low;
    Row->High = High;
    Row->Free = Dialog.Check2.Value != 0;
    Fit.Done = false;
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
  }
  FillList(Dialog.List1.ListIndex);
}

void TakeWindow() {
  const Double One = StrictNumber(Dialog.Text1.Value);
  const Double Other = StrictNumber(Dialog.Text2.Value);
  if (One == Other) throw Failure("the window has no width");
  Fit.Windows = {{std::max(One, Other), std::min(One, Other)}};
}

// The rows anew from the tables, for the window and kinds that are chosen.
void Plan_Click() {
  try {
    TakeWindow();
    FitChoice Choice{.Shifts = Dialog.Check1[0].Value != 0,
                     .Couplings = Dialog.Check1[1].Value != 0,
                     .Width = Dialog.Check1[2].Value != 0};
    Choice.Windows = Fit.Windows;
    PlanFit(Choice);
  } catch (const Failure& Problem) {
    ShowWarning(Join("The spectrum can't be fitted: ", Problem.What, "."));
  }
  FillList(0);
}

void ShowWindow() {
  Double High = Fit.Windows.front().first;
  Double Low = Fit.Windows.front().second;
  for (const auto& Each : Fit.Windows) {
    High = std::max(High, Each.first);
    Low = std::min(Low, Each.second);
  }
  SetText(Dialog.Text1, FormatNumber(High, "0.000"));
  SetText(Dialog.Text2, FormatNumber(Low, "0.000"));
}

void Leave(Wish How) {
  Wished = How;
  HideForm(Dialog.frmFit);
}

void Fit_Click() {
  try {
    TakeWindow();
  } catch (const Failure& Problem) {
    return ShowWarning(Join("The spectrum can't be fitted: ", Problem.What, "."));
  }
  Leave(Wish::Run);
}

}  // namespace

// The dialog gives way to the spectrum while the backend works, and comes back with the result.
void mnuComputeFit_Click() {
  if (const Text Why = WhyNoFit(); !Why.empty()) return ShowWarning(Why);
  const Trial Before = BeginTrial();  // the plan works the shifts out anew
  try {
    PlanFit({});
  } catch (const Failure& Problem) {
    TakeBack(Before);
    return ShowWarning(Join("The spectrum can't be fitted: ", Problem.What, "."));
  }
  ShowWindow();
  for (CheckBox& Each : Dialog.Check1) SetValue(Each, 1);
  do {
    Wished = Wish::Nothing;
    FillList(0);
    ShowModal(Dialog.frmFit);
    if (Wished == Wish::Run && RunFit()) EnterSpectrumView();
    if (Wished == Wish::Accept) AcceptFit();
    if (Wished == Wish::Nothing) {
      TakeBack(Before);
      Fit.Done = false;  // its difference goes with it
    }
    RefreshView();
  } while (Wished == Wish::Run);
}

void BuildFitForm() {
  FitForm& D = Dialog;
  D.frmFit.Caption = "Fit to Measured";
  D.Label1.Caption = "&From (ppm):";
  D.Label2.Caption = "t&o:";
  D.Check1[0].Caption = "&Shifts";
  D.Check1[1].Caption = "Coup&lings";
  D.Check1[2].Caption = "Line &width";
  SetUpButton(D.Command3, "&Begin Anew", Plan_Click, "Take the values anew from the tables");
  D.List1.AccessibleName = "Values that are fitted";
  D.List1.EmptyHint = "Nothing lies in the window.";
  D.List1.Click = List1_Click;
  D.Label6.Caption = "not fitted yet";
  D.Check2.Caption = "F&ree";
  D.Label3.Caption = "&Value:";
  D.Label4.Caption = "fro&m:";
  D.Label5.Caption = "&up to:";
  SetUpButton(D.Command4, "S&et", Set_Click, "Set the chosen value");
  SetUpButton(D.Command5, "Fi&t", Fit_Click);
  SetUpOkAndCancel(
      D.Command1, "&Accept", [] { Leave(Wish::Accept); }, D.Command2, [] { Leave(Wish::Nothing); });
  D.frmFit.Layout =
      ColumnOf({RowOf({ItemOf(D.Label1), ItemOf(D.Text1), ItemOf(D.Label2), ItemOf(D.Text2), ItemOf(D.Check1[0]),
                       ItemOf(D.Check1[1]), ItemOf(D.Check1[2]), ItemOf(D.Command3)}),
                ItemOf(D.List1),
                RowOf({RowOf({ItemOf(D.Check2)}), ItemOf(D.Label3), ItemOf(D.Text3), ItemOf(D.Label4), ItemOf(D.Text4),
                       ItemOf(D.Label5), ItemOf(D.Text5), ItemOf(D.Command4)}),
                RowOf({ItemOf(D.Label6), StretchOf(), ItemOf(D.Command5), ItemOf(D.Command1), ItemOf(D.Command2)})});
}

}  // namespace zelvanor
