#include "setup/frmParamOptions.h"

#include "atomsets/AtomSets.h"
#include "atomsets/frmEquiv.h"
#include "atomsets/frmSelect.h"
#include "basic/Numbers.h"
#include "platform/Form.h"
#include "setup/frmSCf.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr const char* FirstMethod = "KRDO1";
constexpr const char* SecondMethod = "KRDO2";

struct ParamOptionsForm {
  Form frmParamOptions{"frmParamOptions"};
  OptionButton Option3D1[2] = {{&frmParamOptions, "Option3D1", 0}, {&frmParamOptions, "Option3D1", 1}};
  CheckBox Check3D1{&frmParamOptions, "Check3D1"};  // d-orbitals, of the first method alone
  CheckBox Check3D2{&frmParamOptions, "Check3D2"};
  CheckBox Check3D3{&frmParamOptions, "Check3D3"};
  CheckBox Check3D5{&frmParamOptions, "Check3D5"};
  CheckBox Check3D6{&frmParamOptions, "Check3D6"};
  CommandButton Command3{&frmParamOptions, "Command3"};
  CommandButton Command4{&frmParamOptions, "Command4"};
  CommandButton Command5{&frmParamOptions, "Command5"};
  CommandButton Command6{&frmParamOptions, "Command6"};
  CommandButton Command7{&frmParamOptions, "Command7"};
  CommandButton Command1{&frmParamOptions, "Command1"};
  CommandButton Command2{&frmParamOptions, "Command2"};
};

// The six options as they were when the dialog was opened.
struct OptionCopies {
  Text SemiEmpiricalMethod;
  Flag IncludeDOrbitalsForSecondRow = False;
  Flag ModifySlaterExponents = False;
  Flag ComputeThreeCenterTerms = False;
  Flag CalculateShielding = False;
  Integer CalculateCoupling;
  bool HadResults = false;
};

ParamOptionsForm Dialog;
OptionCopies Copies;
bool Showing = false;  // the controls follow the options: nothing is written back

void SetBox(CheckBox& Box, bool Checked) { SetValue(Box, Checked ? 1 : 0); }

bool HasResults() { return IsSet(W.ShieldingAvailable) || IsSet(W.CouplingAvailable) || IsSet(W.SpectraAvailable); }

// When the dialog is shown, not when one that it has opened gives way to it again.
void Form_Open() {
  Copies = {W.SemiEmpiricalMethod,
            W.IncludeDOrbitalsForSecondRow,
            W.ModifySlaterExponents,
            W.ComputeThreeCenterTerms,
            W.CalculateShielding,
            ToInteger(W.CalculateCoupling),
            HasResults()};
}

void ShowOptions() {
  const bool First = W.SemiEmpiricalMethod == FirstMethod;
  SetValue(Dialog.Option3D1[First ? 0 : 1], True);
  SetEnabled(Dialog.Check3D1, ToFlag(First));
  SetBox(Dialog.Check3D1, IsSet(W.IncludeDOrbitalsForSecondRow));
  SetBox(Dialog.Check3D2, IsSet(W.ModifySlaterExponents));
  SetBox(Dialog.Check3D3, IsSet(W.ComputeThreeCenterTerms));
  SetBox(Dialog.Check3D5, IsSet(W.CalculateShielding));
  SetBox(Dialog.Check3D6, W.CalculateCoupling == -1.0F);
}

void Form_Activate() {
  AtomSets.AtomSetDialogReload = True;
  Showing = true;
  ShowOptions();
  Showing = false;
}

void Option3D1_Click(int Index) {
  if (Showing) return;
  const bool First = Index == 0;
  W.SemiEmpiricalMethod = First ? FirstMethod : SecondMethod;
  if (!First) W.IncludeDOrbitalsForSecondRow = False;
  SetBox(Dialog.Check3D1, IsSet(W.IncludeDOrbitalsForSecondRow));
  SetEnabled(Dialog.Check3D1, ToFlag(First));
}

// A click on the box writes its option.
template <class Option>
void Tie(CheckBox& Box, const char* Caption, Option& Value) {
  Box.Caption = Caption;
  Box.Click = [&Box, &Value] {
    if (!Showing) Value = Box.Value != 0 ? Option(-1) : Option(0);
  };
}

// OK
void Command1_Click() {
  if (W.CalculateCoupling == 0.0F && !IsSet(W.CalculateShielding)) {
    ShowWarning("Calculation type not specified.");
    return SetFocus(Dialog.Check3D5);
  }
  if (W.NumNMRAtoms < 1) {
    ShowWarning(
        "There is no NMR atom selection yet.  Please make an NMR atom selection before computing the NMR shielding "
        "and/or coupling constants.");
  }
  if (W.SemiEmpiricalMethod != Copies.SemiEmpiricalMethod || W.ModifySlaterExponents != Copies.ModifySlaterExponents ||
      W.ComputeThreeCenterTerms != Copies.ComputeThreeCenterTerms) {
    W.ParamResultsStale = True;
  }
  if (W.NumNMRAtoms != 0) W.NMRAtomsValid = True;
  if (IsSet(W.ParamResultsStale)) {
    W.ViewMode = MoleculeView;
    W.ShieldingAvailable = W.CouplingAvailable = W.SpectraAvailable = False;
  }
  if (IsSet(W.SpectResultsStale)) {
    if (W.ViewMode == SpectrumViewMode) W.ViewMode = MoleculeView;
    W.SpectraAvailable = False;
  }
  RefreshView();
  HideForm(Dialog.frmParamOptions);
}

template <class Option, class Copy>
void Restore(Option& Value, const Copy& Former) {
  if (Value == static_cast<Option>(Former)) return;
  Value = static_cast<Option>(Former);
  W.ParamResultsStale = True;
}

// Cancel
void Command2_Click() {
  Restore(W.SemiEmpiricalMethod, Copies.SemiEmpiricalMethod);
  Restore(W.IncludeDOrbitalsForSecondRow, Copies.IncludeDOrbitalsForSecondRow);
  Restore(W.ModifySlaterExponents, Copies.ModifySlaterExponents);
  Restore(W.ComputeThreeCenterTerms, Copies.ComputeThreeCenterTerms);
  Restore(W.CalculateShielding, Copies.CalculateShielding);
  Restore(W.CalculateCoupling, int(Copies.CalculateCoupling));
  // Other NMR atoms stand, and have cost the results of the former ones.
  if (Copies.HadResults && !HasResults()) {
    W.ViewMode = MoleculeView;
    RefreshView();
  }
  HideForm(Dialog.frmParamOptions);
}

void SetUpOptions() {
  auto& D = Dialog;
  const char* const Methods[] = {"KRDO/&1", "KRDO/&2"};
  for (int Index = 0; Index < 2; ++Index) {
    D.Option3D1[Index].Caption = Methods[Index];
    D.Option3D1[Index].Group = "Semiempirical Method";
    D.Option3D1[Index].Click = [Index] { Option3D1_Click(Index); };
  }
  Tie(D.Check3D1, "d-orbitals on 2nd ro&w", W.IncludeDOrbitalsForSecondRow);
  Tie(D.Check3D2, "Special Slater e&xponents for shielding", W.ModifySlaterExponents);
  Tie(D.Check3D3, "Include slow &three-center integrals", W.ComputeThreeCenterTerms);
  Tie(D.Check3D5, "S&hielding constants (Chemical shifts)", W.CalculateShielding);
  Tie(D.Check3D6, "Fer&mi spin-spin coupling constants", W.CalculateCoupling);
}

}  // namespace

void BuildParamOptionsForm() {
  auto& D = Dialog;
  D.frmParamOptions.Caption = "Shielding & Coupling Options";
  SetUpOptions();
  SetUpButton(D.Command3, "&SCF...", ShowSCFOptions);
  SetUpButton(D.Command4, "NMR &Atoms...", [] { ShowAtomSets(NMRMode); });
  SetUpButton(D.Command5, "&Quantum Atoms...", [] { ShowAtomSets(QuantumMode); });
  SetUpButton(D.Command6, "&Labelled Atoms...", [] { ShowAtomSets(LabelledMode); });
  SetUpButton(D.Command7, "&Equivalent Atoms...", ShowEquivalentSets);
  SetUpOkAndCancel(D.Command1, "OK", Command1_Click, D.Command2, Command2_Click);
  D.frmParamOptions.Open = Form_Open;
  D.frmParamOptions.Activate = Form_Activate;
  D.frmParamOptions.Layout =
      ColumnOf({RowOf({ColumnOf({GroupOf("Semiempirical Method",
                                         {RowOf({ItemOf(D.Option3D1[0]), ItemOf(D.Option3D1[1])}), ItemOf(D.Check3D1)}),
                                 GroupOf("Expert Options", {ItemOf(D.Check3D2), ItemOf(D.Check3D3)}),
                                 GroupOf("Type of Calculation", {ItemOf(D.Check3D5), ItemOf(D.Check3D6)})}),
                       ColumnOf({ItemOf(D.Command3), ItemOf(D.Command4), ItemOf(D.Command5), ItemOf(D.Command6),
                                 ItemOf(D.Command7), StretchOf()})}),
                StretchOf(), RowOf({StretchOf(), ItemOf(D.Command1), ItemOf(D.Command2)})});
  AtomSets.EnableNMRSubsets = [](Flag Enabled) {
    SetEnabled(Dialog.Command6, Enabled);
    SetEnabled(Dialog.Command7, Enabled);
  };
}

void mnuSetupNMRParam_Click() {
  AtomSets.EnableNMRSubsets(ToFlag(W.NumNMRAtoms != 0));
  ShowModal(Dialog.frmParamOptions);
}

}  // namespace zelvanor
