#include <algorithm>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "measured/Integrals.h"
#include "measured/MeasuredTrace.h"
#include "platform/Form.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

struct IntegralForm {
  Form frmIntegrals{"frmIntegrals"};
  ListBox List1{&frmIntegrals, "List1"};
  Label Label1{&frmIntegrals, "Label1"};
  TextField Text1{&frmIntegrals, "Text1"};  // high end, ppm
  Label Label2{&frmIntegrals, "Label2"};
  TextField Text2{&frmIntegrals, "Text2"};  // low end, ppm
  CommandButton Command3{&frmIntegrals, "Command3"};
  CommandButton Command4{&frmIntegrals, "Command4"};
  CommandButton Command5{&frmIntegrals, "Command5"};
  Label Label3{&frmIntegrals, "Label3"};
  TextField Text3{&frmIntegrals, "Text3"};  // nuclei of all together
  CommandButton Command6{&frmIntegrals, "Command6"};
  CommandButton Command1{&frmIntegrals, "Command1"};
};

IntegralForm Dialog;

Text Ppm(Double Value) { return FormatNumber(Value, "0.000"); }

void FillList(int Chosen) {
  std::vector<Text> Rows;
  const std::vector<Double> Values = IntegralValues();
  Rows.reserve(Values.size());
  for (Long Range = 0; Range < W.IntegralCount; ++Range) {
    Rows.push_back(Join(Ppm(W.IntegralHigh[Range]), " to ", Ppm(W.IntegralLow[Range]),
                        " ppm:  ", FormatNumber(Values[static_cast<std::size_t>(Range)], "0.00")));
  }
  SetItems(Dialog.List1, Rows);
  SetListIndex(Dialog.List1, Chosen < W.IntegralCount ? Chosen : -1);
}

void List1_Click() {
  const Long Range = Dialog.List1.ListIndex;
  if (Range < 0 || Range >= W.IntegralCount) return;
  SetText(Dialog.Text1, Ppm(W.IntegralHigh[Range]));
  SetText(Dialog.Text2, Ppm(W.IntegralLow[Range]));
}

// What the fields hold; a text that is no number is told, and nothing is done.
template <class Routine>
void WithRange(Routine Use) {
  try {
    const Double One = StrictNumber(Dialog.Text1.Value);
    const Double Other = StrictNumber(Dialog.Text2.Value);
    if (One == Other) return ShowWarning("The range has no width.");
    Use(std::min(One, Other), std::max(One, Other));
  } catch (const Failure& Problem) {
    ShowWarning(Join(Quoted(Dialog.Text1.Value), " to ", Quoted(Dialog.Text2.Value), ": ", Problem.What, "."));
  }
}

void Add_Click() {
  WithRange([](Double Low, Double High) { AddIntegral(Low, High); });
  FillList(W.IntegralCount - 1);
}

void Change_Click() {
  const Long Range = Dialog.List1.ListIndex;
  if (Range < 0 || Range >= W.IntegralCount) return;
  WithRange([Range](Double Low, Double High) {
    W.IntegralHigh[Range] = High;
    W.IntegralLow[Range] = Low;
    W.DocumentDirty = True;
  });
  FillList(Range);
}

void Remove_Click() {
  RemoveIntegral(Dialog.List1.ListIndex);
  FillList(Dialog.List1.ListIndex);
}

void Total_Click() {
  try {
    const Double Total = StrictNumber(Dialog.Text3.Value);
    if (!(Total >= 0)) throw Failure(failures::Overflow);
    W.IntegralTotal = Total;
    W.DocumentDirty = True;
  } catch (const Failure& Problem) {
    ShowWarning(Join(Quoted(Dialog.Text3.Value), ": ", Problem.What, "."));
  }
  FillList(Dialog.List1.ListIndex);
}

void Form_Activate() {
  FillList(0);
  SetText(Dialog.Text3, GeneralForm(W.IntegralTotal));
}

}  // namespace

void mnuMeasuredIntegrals_Click() {
  if (!HasMeasured()) return;
  ShowModal(Dialog.frmIntegrals);
  RefreshView();
}

void BuildIntegralForm() {
  IntegralForm& D = Dialog;
  D.frmIntegrals.Caption = "Integrals";
  D.frmIntegrals.Activate = Form_Activate;
  D.List1.AccessibleName = "Integrated ranges";
  D.List1.EmptyHint = "Drag over the spectrum with Shift held, or add a range here.";
  D.List1.Click = List1_Click;
  D.Label1.Caption = "&From (ppm):";
  D.Label2.Caption = "&to:";
  D.Label3.Caption = "&Nuclei of all together (0: as simulated):";
  SetUpButton(D.Command3, "&Add", Add_Click);
  SetUpButton(D.Command4, "C&hange", Change_Click);
  SetUpButton(D.Command5, "&Remove", Remove_Click);
  SetUpButton(D.Command6, "&Scale", Total_Click);
  SetUpButton(D.Command1, "&Close", [] { HideForm(Dialog.frmIntegrals); });
  D.Command1.IsDefault = true;
  D.Command1.IsCancel = true;
  D.frmIntegrals.Layout = ColumnOf(
      {ItemOf(D.List1), RowOf({ItemOf(D.Label1), ItemOf(D.Text1), ItemOf(D.Label2), ItemOf(D.Text2)}),
       RowOf({ItemOf(D.Command3), ItemOf(D.Command4), ItemOf(D.Command5)}),
       RowOf({ItemOf(D.Label3), ItemOf(D.Text3), ItemOf(D.Command6)}), RowOf({StretchOf(), ItemOf(D.Command1)})});
}

}  // namespace zelvanor
