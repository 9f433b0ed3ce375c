#include "setup/frmSpectOptions.h"

#include <cmath>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "platform/Form.h"
#include "setup/NucleiCount.h"
#include "setup/NumberFields.h"
#include "setup/ReferenceShieldings.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr Double LargestFrequency = 1000000;  // MHz
constexpr const char* DefaultFrequency = "100";
constexpr int ManyNuclei = 50;
constexpr int LargestCount = 32767;  // of an Integer

struct SpectOptionsForm {
  Form frmSpectOptions{"frmSpectOptions"};
  ComboBox combo1{&frmSpectOptions, "combo1"};
  TextField Text1{&frmSpectOptions, "Text1"};
  Label Label1{&frmSpectOptions, "Label1"};
  CheckBox Check1{&frmSpectOptions, "Check1"};
  Label Label3{&frmSpectOptions, "Label3"};
  TextField Text3{&frmSpectOptions, "Text3"};
  SpinButton Spin1{&frmSpectOptions, "Spin1"};
  CommandButton Command1{&frmSpectOptions, "Command1"};
  CommandButton Command2{&frmSpectOptions, "Command2"};

  // What the dialog edits; OK takes it over.
  Integer Type;
  Long Frequency = 0;  // MHz
  Integer Nuclei;
  Flag KeyAccepted = True;  // the last key in the field of the nuclei
};

SpectOptionsForm Dialog;
bool Showing = false;   // the fields follow the options: nothing is judged until the user types
bool HasTaken = false;  // a refused OK has taken something over already

void Form_Load() { SetItems(Dialog.combo1, ListReferenceNames()); }

void Form_Activate() {
  Dialog.Type = W.SpectraType;
  Dialog.Frequency = W.NMRFrequency;
  Dialog.Nuclei = W.NumNMRAtoms;
  HasTaken = false;
  Showing = true;
  SetText(Dialog.Text1, GeneralForm(Dialog.Frequency));
  SetText(Dialog.Text3, GeneralForm(Dialog.Nuclei));
  Showing = false;
  SetListIndex(Dialog.combo1, Dialog.Type);
  SetValue(Dialog.Check1, IsSet(W.WeakCouplingApproximation) ? 1 : 0);
}

void combo1_Click() { Dialog.Type = Dialog.combo1.ListIndex; }

void Text1_Change() {
  if (Showing) return;
  const Double Value = PrefixNumber(Dialog.Text1.Value);
  if (Value >= 0 && Value <= LargestFrequency) {
    Dialog.Frequency = ToLong(Value);
    return;
  }
  ShowWarning(
      Join(Dialog.Text1.Value, " is not valid.  Please enter an integer greater than 0 and less than 1000000."));
  SetText(Dialog.Text1, DefaultFrequency);
  SetFocus(Dialog.Text1);
}

void Text3_KeyPress(int& KeyAscii) { Dialog.KeyAccepted = JudgeKey(KeyAscii, UnsignedKeys, Dialog.KeyAccepted); }

void PutNucleiBack() {
  SetText(Dialog.Text3, GeneralForm(W.NumNMRAtoms));
  SetFocus(Dialog.Text3);
}

// More nuclei than the system has atoms: the user says whether that is meant.
template <class Number>
bool AcceptVirtualMolecule(Number Nuclei) {
  if (AskYesNo(Join("The number of nuclei (", Nuclei, ") is greater than the number of atoms (", W.NumAtoms,
                    ") in the current system.  Would you like to continue?")) != BoxAnswer::Yes) {
    return false;
  }
  ShowWarning(
      "A virtual molecule (without coordinates) has been added to the current system, but will not be shown on the "
      "workspace.");
  return true;
}

void TakeNuclei(Double Value) {
  if (Value < 0 || Value > ManyNuclei) {
    // A warning and no limit, as long as a count holds the number.
    const bool Holds = std::fabs(Value) <= LargestCount;
    ShowWarning(Join(Holds ? GeneralForm(Value) : Dialog.Text3.Value,
                     Value < 0 ? ": invalid number of nuclei (NMR atoms)."
                               : " nuclei (NMR atoms) may be too large for Zelvanor to compute the NMR spectrum."));
    if (Holds) {
      Dialog.Nuclei = ToInteger(Value);
    } else {
      SetText(Dialog.Text3, GeneralForm(Dialog.Nuclei));
    }
    return SetFocus(Dialog.Text3);
  }
  if (Value > W.NumAtoms && IsSet(W.MoleculeLoaded) && !AcceptVirtualMolecule(Value)) return PutNucleiBack();
  Dialog.Nuclei = ToInteger(Value);
}

void Text3_Change() {
  if (Showing) return;
  if (!IsSet(Dialog.KeyAccepted)) {
    Dialog.KeyAccepted = True;
    ShowWarning(Join(Dialog.Text3.Value, " is not valid.  Please enter a positive integer."));
    return PutNucleiBack();
  }
  const Double Value = PrefixNumber(Dialog.Text3.Value);
  if (Value == Dialog.Nuclei) return;
  TakeNuclei(Value);
}

void Spin1_SpinDown() {
  if (Dialog.Nuclei <= 0) return;
  --Dialog.Nuclei;
  SetText(Dialog.Text3, GeneralForm(Dialog.Nuclei));
}

void Spin1_SpinUp() {
  if (Dialog.Nuclei != W.NumAtoms || !IsSet(W.MoleculeLoaded)) {
    return SetText(Dialog.Text3, GeneralForm(Long{Dialog.Nuclei} + 1));
  }
  ++Dialog.Nuclei;
  if (!AcceptVirtualMolecule(Dialog.Nuclei)) --Dialog.Nuclei;
  SetText(Dialog.Text3, GeneralForm(Dialog.Nuclei));
}

void ChooseView() {
  if (W.NumNMRAtoms != 0 && !IsSet(W.MoleculeLoaded)) {
    W.ViewMode = ShieldingView;
    SetCaption(Main.mnuViewValues, ShieldingTensorCaption);
  } else {
    W.ViewMode = MoleculeView;
  }
}

template <class Number>
void Take(Number& Target, Number Value) {
  if (Target == Value) return;
  W.SpectResultsStale = True;
  Target = Value;
}

// Takes the values over; what a refused one leaves behind stands. False: the dialog stays.
bool TakeOptions() {
  if (Dialog.Nuclei < 0) {
    ShowWarning(Join(Dialog.Nuclei, ": invalid number of nuclei (NMR atoms)."));
    SetFocus(Dialog.Text3);
    return false;
  }
  HasTaken = true;
  W.WeakCouplingApproximation = ToFlag(Dialog.Check1.Value != 0);
  Take(W.NMRFrequency, Dialog.Frequency);
  Take(W.SpectraType, Dialog.Type);
  if (Dialog.Nuclei != W.NumNMRAtoms) ResizeNMRAtoms(Dialog.Nuclei);
  if (!IsSet(W.MoleculeLoaded) && W.NumNMRAtoms != 0) LabelHeavyNuclei();
  if (W.NMRFrequency == 0) {
    ShowWarning(Join("The Spectrometer frequency cannot be ", Quoted(Dialog.Text1.Value),
                     ", please reset it with a positive integer."));
    SetText(Dialog.Text1, DefaultFrequency);
    SetFocus(Dialog.Text1);
    return false;
  }
  return true;
}

// OK
void Command1_Click() {
  try {
    if (!TakeOptions()) return;
  } catch (const Failure& Problem) {
    return WarnOfFailure(Problem);
  }
  if (IsSet(W.SpectResultsStale)) {
    W.SpectraAvailable = False;
    ChooseView();
  }
  RefreshView();
  HideForm(Dialog.frmSpectOptions);
}

// Cancel. What a refused OK has taken over stands, and commands and views go by it.
void Command2_Click() {
  if (HasTaken) {
    if (IsSet(W.SpectResultsStale)) {
      W.SpectraAvailable = False;
      if (W.ViewMode == SpectrumViewMode) ChooseView();
    }
    RefreshView();
  }
  HideForm(Dialog.frmSpectOptions);
}

void SetUpFields() {
  auto& D = Dialog;
  D.combo1.AccessibleName = "Type of spectrum";
  D.combo1.Click = combo1_Click;
  D.Text1.AccessibleName = "Spectrometer frequency in MHz";
  D.Text1.Change = Text1_Change;
  D.Label1.Caption = "MHz";
  D.Check1.Caption = "&Weak coupling";
  D.Check1.AccessibleName = "Weak coupling approximation";
  D.Label3.Caption = "approximation";
  D.Text3.AccessibleName = "Number of nuclei";
  D.Text3.KeyPress = Text3_KeyPress;
  D.Text3.Change = Text3_Change;
  D.Spin1.AccessibleName = "Number of nuclei";
  D.Spin1.SpinDown = Spin1_SpinDown;
  D.Spin1.SpinUp = Spin1_SpinUp;
}

}  // namespace

void BuildSpectOptionsForm() {
  auto& D = Dialog;
  D.frmSpectOptions.Caption = "Spectral Options";
  SetUpFields();
  SetUpOkAndCancel(D.Command1, "OK", Command1_Click, D.Command2, Command2_Click);
  D.frmSpectOptions.Load = Form_Load;
  D.frmSpectOptions.Activate = Form_Activate;
  D.frmSpectOptions.Layout =
      ColumnOf({GroupOf("Type of Spectrum", {ItemOf(D.combo1)}),
                GroupOf("Spectrometer Frequency", {RowOf({ItemOf(D.Text1), ItemOf(D.Label1), StretchOf()}),
                                                   RowOf({ItemOf(D.Check1), ItemOf(D.Label3), StretchOf()})}),
                GroupOf("Number of Nuclei", {RowOf({ItemOf(D.Text3), ItemOf(D.Spin1), StretchOf()})}), StretchOf(),
                RowOf({StretchOf(), ItemOf(D.Command1), ItemOf(D.Command2)})});
}

void mnuSetupNMRSpect_Click() { ShowModal(Dialog.frmSpectOptions); }

}  // namespace zelvanor
