#include "setup/frmSCf.h"

#include <cmath>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "platform/Form.h"
#include "setup/NumberFields.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr int LargestCharge = 10;
constexpr int LargestMultiplicity = 6;
constexpr int LargestIterationLimit = 10000;
constexpr Double ConvergenceEnd = 1000;  // the limit stays below

struct SCFForm {
  Form frmSCf{"frmSCf"};
  CheckBox Check3D1{&frmSCf, "Check3D1"};
  Label Label1{&frmSCf, "Label1"};
  TextField Text1{&frmSCf, "Text1"};
  Label Label2{&frmSCf, "Label2"};
  TextField Text4{&frmSCf, "Text4"};
  Label Label3{&frmSCf, "Label3"};
  TextField Text2{&frmSCf, "Text2"};
  SpinButton Spin2{&frmSCf, "Spin2"};
  Label Label4{&frmSCf, "Label4"};
  TextField Text3{&frmSCf, "Text3"};
  SpinButton Spin3{&frmSCf, "Spin3"};
  CommandButton Command1{&frmSCf, "Command1"};
  CommandButton Command2{&frmSCf, "Command2"};

  // What the dialog edits; OK takes it over.
  Flag Accelerate = False;
  Single ConvergenceLimit = 0;
  Integer IterationLimit;
  Integer Charge;
  Integer Multiplicity;
  Flag KeyAccepted = True;  // the last key in the charge field
};

SCFForm Dialog;

void Form_Activate() {
  Dialog.Accelerate = W.SCFAccelerateConvergence;
  Dialog.ConvergenceLimit = W.SCFConvergenceLimit;
  Dialog.IterationLimit = W.SCFIterationLimit;
  Dialog.Charge = W.TotalCharge;
  Dialog.Multiplicity = W.SpinMultiplicity;
  Dialog.KeyAccepted = True;
  SetText(Dialog.Text1, GeneralForm(Dialog.ConvergenceLimit));
  SetText(Dialog.Text4, GeneralForm(Dialog.IterationLimit));
  SetText(Dialog.Text2, GeneralForm(Dialog.Charge));
  SetText(Dialog.Text3, GeneralForm(Dialog.Multiplicity));
  SetValue(Dialog.Check3D1, IsSet(Dialog.Accelerate) ? 1 : 0);
}

void WarnOfConvergenceLimit() {
  ShowWarning(Join(Dialog.Text1.Value,
                   " is not valid for the SCF convergence limit.  Please enter a value greater than zero and less "
                   "than 1000."));
}

void WarnOfIterationLimit() {
  ShowWarning(Join(Dialog.Text4.Value,
                   " is not valid for the SCF iteration limit.  Please enter an integer greater than 0 and less than "
                   "10000."));
}

// Zero passes, so that 0.01 can be typed; OK refuses it.
void Text1_Change() {
  const Double Value = PrefixNumber(Dialog.Text1.Value);
  if (Value >= 0 && Value < ConvergenceEnd) {
    Dialog.ConvergenceLimit = ToSingle(Value);
    return;
  }
  WarnOfConvergenceLimit();
  SetText(Dialog.Text1, GeneralForm(Dialog.ConvergenceLimit));
  SetFocus(Dialog.Text1);
}

void Text4_Change() {
  const Double Value = RoundEven(PrefixNumber(Dialog.Text4.Value));
  if (Value >= 1 && Value <= LargestIterationLimit) {
    Dialog.IterationLimit = ToInteger(Value);
    return;
  }
  WarnOfIterationLimit();
  SetText(Dialog.Text4, GeneralForm(Dialog.IterationLimit));
  SetFocus(Dialog.Text4);
}

void Text2_KeyPress(int& KeyAscii) { Dialog.KeyAccepted = JudgeKey(KeyAscii, SignedKeys, Dialog.KeyAccepted); }

void RefuseCharge() {
  ShowWarning(Join(Dialog.Text2.Value,
                   " is not valid.  Please enter an integer greater than or equal to -10 and less than or equal to "
                   "10."));
  SetText(Dialog.Text2, GeneralForm(W.TotalCharge));
  SetFocus(Dialog.Text2);
}

void Text2_Change() {
  try {
    if (!IsSet(Dialog.KeyAccepted)) {
      Dialog.KeyAccepted = True;
      return RefuseCharge();
    }
    const Double Value = PrefixNumber(Dialog.Text2.Value);
    if (Value == Dialog.Charge) return;
    if (std::fabs(Value) > LargestCharge) return RefuseCharge();
    Dialog.Charge = ToInteger(Value);
  } catch (const Failure& Problem) {
    ShowWarning(
        Join(Problem.What, ". Please enter an integer greater than or equal to -10 and less than or equal to 10."));
  }
}

void Text3_Change() {
  const Double Value = PrefixNumber(Dialog.Text3.Value);
  if (Value == Dialog.Multiplicity) return;
  if (Value >= 1 && Value <= LargestMultiplicity) {
    Dialog.Multiplicity = ToInteger(Value);
    return;
  }
  ShowWarning(Join(Dialog.Text3.Value,
                   " is not valid.  Please enter an integer greater than or equal to 1 and less than or equal to 6."));
  SetText(Dialog.Text3, GeneralForm(W.SpinMultiplicity));
  SetFocus(Dialog.Text3);
}

// One step of a spin button, unless the value stands at the end already.
void SpinField(Integer& Value, int By, int End, TextField& Field) {
  if (By > 0 ? Value >= End : Value <= End) return;
  Value += By;
  SetText(Field, GeneralForm(Value));
}

// OK. What a refused value leaves behind has been taken over already.
void Command1_Click() {
  const auto Take = [](Integer& Target, Integer Value) {
    if (Target == Value) return;
    W.ParamResultsStale = True;
    Target = Value;
  };
  Take(W.TotalCharge, Dialog.Charge);
  Take(W.SpinMultiplicity, Dialog.Multiplicity);
  if (!(Dialog.ConvergenceLimit > 0 && Dialog.ConvergenceLimit < ConvergenceEnd)) {
    WarnOfConvergenceLimit();
    return SetFocus(Dialog.Text1);
  }
  W.SCFConvergenceLimit = Dialog.ConvergenceLimit;
  if (Dialog.IterationLimit < 1 || Dialog.IterationLimit > LargestIterationLimit) {
    WarnOfIterationLimit();
    return SetFocus(Dialog.Text4);
  }
  W.SCFIterationLimit = Dialog.IterationLimit;
  W.SCFAccelerateConvergence = Dialog.Accelerate;
  HideForm(Dialog.frmSCf);
}

void Command2_Click() { HideForm(Dialog.frmSCf); }

void SetUpFields() {
  auto& D = Dialog;
  D.Check3D1.Caption = " &Accelerate convergence";
  D.Check3D1.Click = [] { Dialog.Accelerate = ToFlag(Dialog.Check3D1.Value != 0); };
  D.Label1.Caption = "Convergence &limit:";
  D.Text1.Change = Text1_Change;
  D.Label2.Caption = "Ma&ximum iterations:";
  D.Text4.Change = Text4_Change;
  D.Label3.Caption = "Charge on &molecule:";
  D.Text2.KeyPress = Text2_KeyPress;
  D.Text2.Change = Text2_Change;
  D.Spin2.AccessibleName = "Charge on molecule";
  D.Spin2.SpinDown = [] { SpinField(Dialog.Charge, -1, -LargestCharge, Dialog.Text2); };
  D.Spin2.SpinUp = [] { SpinField(Dialog.Charge, 1, LargestCharge, Dialog.Text2); };
  D.Label4.Caption = "Spin m&ultiplicity:";
  D.Text3.Change = Text3_Change;
  D.Spin3.AccessibleName = "Spin multiplicity";
  D.Spin3.SpinDown = [] { SpinField(Dialog.Multiplicity, -1, 1, Dialog.Text3); };
  D.Spin3.SpinUp = [] { SpinField(Dialog.Multiplicity, 1, LargestMultiplicity, Dialog.Text3); };
}

}  // namespace

void BuildSCFForm() {
  auto& D = Dialog;
  D.frmSCf.Caption = "SCF Wavefunction Options";
  SetUpFields();
  SetUpOkAndCancel(D.Command1, "OK", Command1_Click, D.Command2, Command2_Click);
  D.frmSCf.Activate = Form_Activate;
  D.frmSCf.Layout =
      ColumnOf({GroupOf("Convergence", {ItemOf(D.Check3D1), RowOf({ItemOf(D.Label1), ItemOf(D.Text1)}),
                                        RowOf({ItemOf(D.Label2), ItemOf(D.Text4)})}),
                GroupOf("Electronic State", {RowOf({ItemOf(D.Label3), ItemOf(D.Text2), ItemOf(D.Spin2)}),
                                             RowOf({ItemOf(D.Label4), ItemOf(D.Text3), ItemOf(D.Spin3)})}),
                StretchOf(), RowOf({StretchOf(), ItemOf(D.Command1), ItemOf(D.Command2)})});
}

void ShowSCFOptions() {
  SetText(Dialog.Text3, "1");
  W.SpinMultiplicity = 1;
  SetEnabled(Dialog.Spin3, False);
  SetEnabled(Dialog.Text3, False);
  ShowModal(Dialog.frmSCf);
}

}  // namespace zelvanor
