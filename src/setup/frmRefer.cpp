#include "setup/frmRefer.h"

#include <cmath>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "platform/Form.h"
#include "platform/Variables.h"
#include "setup/ReferenceShieldings.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr Double LargestShielding = 100000;  // ppm

// The values that the dialog works on; OK takes them over.
Array<Single> ReferenceShieldingEdit{NumReferenceEntries - 1};

struct ReferForm {
  Form frmRefer{"frmRefer"};
  ListBox List1{&frmRefer, "List1"};
  TextField Text1{&frmRefer, "Text1"};
  CommandButton Command1{&frmRefer, "Command1"};
  CommandButton Command2{&frmRefer, "Command2"};
};

ReferForm Dialog;

// Values of the selected entry.
Single& Edited() { return ReferenceShieldingEdit[Dialog.List1.ListIndex]; }
Single InForce() { return W.ReferenceShielding[Dialog.List1.ListIndex]; }

void Form_Load() { SetItems(Dialog.List1, ListReferenceNames()); }

void Form_Activate() {
  for (int Entry = 0; Entry < W.NumReferenceElements; ++Entry) {
    ReferenceShieldingEdit[Entry] = W.ReferenceShielding[Entry];
  }
  SetListIndex(Dialog.List1, 0);
  SetText(Dialog.Text1, GeneralForm(InForce()));
}

void List1_Click() {
  if (Dialog.List1.ListIndex >= 0) SetText(Dialog.Text1, GeneralForm(Edited()));
}

void Text1_Change() {
  // A value that is only shown keeps the digits beyond the seven of its text.
  if (Dialog.List1.ListIndex < 0 || Dialog.Text1.Value == GeneralForm(Edited())) return;
  const Double Value = PrefixNumber(Dialog.Text1.Value);
  if (std::fabs(Value) <= LargestShielding) {
    Edited() = ToSingle(Value);
    return;
  }
  ShowWarning(
      Join(Dialog.Text1.Value, " is not valid.  Please enter a value greater than -100000 and less than 100000."));
  Edited() = InForce();
  SetText(Dialog.Text1, GeneralForm(InForce()));
  SetFocus(Dialog.Text1);
}

// OK
void Command1_Click() {
  // Only the spectrum that is being simulated hangs on its reference.
  if (W.ReferenceShielding[W.SpectraType] != ReferenceShieldingEdit[W.SpectraType]) W.SpectResultsStale = True;
  for (int Entry = 0; Entry < W.NumReferenceElements; ++Entry) {
    W.ReferenceShielding[Entry] = ReferenceShieldingEdit[Entry];
  }
  if (IsSet(W.SpectResultsStale)) {
    W.SpectraAvailable = False;
    if (W.ViewMode == SpectrumViewMode) W.ViewMode = IsSet(W.MoleculeLoaded) ? MoleculeView : ShieldingView;
    RefreshView();
  }
  HideForm(Dialog.frmRefer);
}

void Command2_Click() { HideForm(Dialog.frmRefer); }

}  // namespace

void BuildReferenceForm() {
  auto& D = Dialog;
  AddArray("ReferenceShieldingEdit", ReferenceShieldingEdit, [] { return NumReferenceEntries; });
  D.frmRefer.Caption = "Reference Shielding";
  D.List1.AccessibleName = "Nucleus";
  D.List1.Click = List1_Click;
  D.Text1.AccessibleName = "Shielding constant in ppm";
  D.Text1.Change = Text1_Change;
  SetUpOkAndCancel(D.Command1, "OK", Command1_Click, D.Command2, Command2_Click);
  D.frmRefer.Load = Form_Load;
  D.frmRefer.Activate = Form_Activate;
  D.frmRefer.Layout = ColumnOf(
      {RowOf({ItemOf(D.List1), ColumnOf({GroupOf("Shielding Constant (ppm)", {ItemOf(D.Text1)}), StretchOf()})}),
       RowOf({StretchOf(), ItemOf(D.Command1), ItemOf(D.Command2)})});
}

void mnuSetupReferenceShielding_Click() { ShowModal(Dialog.frmRefer); }

}  // namespace zelvanor
