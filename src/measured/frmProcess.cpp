#include "measured/frmProcess.h"

#include <algorithm>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "measured/MeasuredCommands.h"
#include "measured/MeasuredTrace.h"
#include "platform/Form.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

struct ProcessForm {
  Form frmProcess{"frmProcess"};
  Label Label1{&frmProcess, "Label1"};
  TextField Text1{&frmProcess, "Text1"};  // line broadening, Hz
  Label Label2{&frmProcess, "Label2"};
  ComboBox Combo1{&frmProcess, "Combo1"};  // zero filling
  Label Label3{&frmProcess, "Label3"};
  TextField Text2{&frmProcess, "Text2"};  // phase of all, degrees
  Label Label4{&frmProcess, "Label4"};
  TextField Text3{&frmProcess, "Text3"};  // phase over the width, degrees
  CommandButton Command3{&frmProcess, "Command3"};
  Label Label5{&frmProcess, "Label5"};
  ComboBox Combo2{&frmProcess, "Combo2"};  // order of the baseline
  Label Label6{&frmProcess, "Label6"};
  TextField Text4{&frmProcess, "Text4"};  // moved by, ppm
  CommandButton Command4{&frmProcess, "Command4"};
  CommandButton Command1{&frmProcess, "Command1"};
  CommandButton Command2{&frmProcess, "Command2"};
};

ProcessForm Dialog;
Processing Before;  // Cancel goes back to it

struct NumberField {
  TextField ProcessForm::*Field;
  Double Processing::*Value;
  Double Largest;
};
constexpr NumberField Fields[] = {{&ProcessForm::Text1, &Processing::Broadening, 1000.0},
                                  {&ProcessForm::Text2, &Processing::Phase0, 360.0},
                                  {&ProcessForm::Text3, &Processing::Phase1, 36000.0},
                                  {&ProcessForm::Text4, &Processing::MovePpm, 1000.0}};

void Show(const Processing& By) {
  for (const NumberField& Each : Fields) SetText(Dialog.*Each.Field, FormatNumber(By.*Each.Value, "0.0###"));
  SetListIndex(Dialog.Combo1, By.ZeroFilling >= 4 ? 2 : By.ZeroFilling >= 2 ? 1 : 0);
  SetListIndex(Dialog.Combo2, By.BaselineOrder + 1);
}

Processing Read() {
  Processing By;
  for (const NumberField& Each : Fields) {
    const Double Value = StrictNumber((Dialog.*Each.Field).Value);
    if (!(Value >= -Each.Largest && Value <= Each.Largest)) throw Failure(failures::Overflow);
    By.*Each.Value = Value;
  }
  By.ZeroFilling = 1 << std::max(Dialog.Combo1.ListIndex, 0);
  By.BaselineOrder = Dialog.Combo2.ListIndex - 1;
  return By;
}

// True when the fields could be carried out.
bool Apply() {
  try {
    ReprocessMeasured(Read());
    RefreshView();
    return true;
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
    return false;
  }
}

void Automatic_Click() {
  try {
    Processing By = Read();
    FindPhases(TransformToSpectrum(MeasuredSource(), By), By);
    Show(By);
  } catch (const Failure& Problem) {
    return WarnOfFailure(Problem);
  }
  Apply();
}

void Ok_Click() {
  if (Apply()) HideForm(Dialog.frmProcess);
}

void Cancel_Click() {
  IgnoreFailure([] { ReprocessMeasured(Before); });
  HideForm(Dialog.frmProcess);
}

// What only an FID has is greyed for a spectrum.
void Form_Load() {
  Before = PresentProcessing();
  const Flag Fid = ToFlag(MeasuredSource().IsFid);
  SetEnabled(Dialog.Text1, Fid);
  SetEnabled(Dialog.Combo1, Fid);
  Show(Before);
}

}  // namespace

void mnuMeasuredProcess_Click() {
  if (!HasMeasured()) return;
  Form_Load();
  ShowModal(Dialog.frmProcess);
  RefreshView();
}

void BuildProcessForm() {
  ProcessForm& D = Dialog;
  D.frmProcess.Caption = "Process Measured Spectrum";
  D.Label1.Caption = "&Line broadening (Hz):";
  D.Label2.Caption = "&Zero filling:";
  SetItems(D.Combo1, {"none", "twice", "four times"});
  D.Label3.Caption = "&Phase (degrees):";
  D.Label4.Caption = "over the &width:";
  SetUpButton(D.Command3, "A&utomatic Phase", Automatic_Click);
  D.Label5.Caption = "&Baseline:";
  std::vector<Text> Orders = {"as it is", "constant", "straight line"};
  for (int Order = 2; Order <= HighestBaselineOrder; ++Order) Orders.push_back(Join("order ", Long{Order}));
  SetItems(D.Combo2, Orders);
  D.Label6.Caption = "&Move by (ppm):";
  SetUpButton(D.Command4, "&Apply", [] { Apply(); });
  SetUpOkAndCancel(D.Command1, "OK", Ok_Click, D.Command2, Cancel_Click);
  D.frmProcess.Layout =
      ColumnOf({RowOf({ItemOf(D.Label1), ItemOf(D.Text1), ItemOf(D.Label2), ItemOf(D.Combo1)}),
                RowOf({ItemOf(D.Label3), ItemOf(D.Text2), ItemOf(D.Label4), ItemOf(D.Text3), ItemOf(D.Command3)}),
                RowOf({ItemOf(D.Label5), ItemOf(D.Combo2), ItemOf(D.Label6), ItemOf(D.Text4), StretchOf()}),
                RowOf({StretchOf(), ItemOf(D.Command4), ItemOf(D.Command1), ItemOf(D.Command2)})});
}

}  // namespace zelvanor
