#include "files/frmSmiles.h"

#include "basic/TextTools.h"
#include "files/Converter.h"
#include "files/FileCommands.h"
#include "platform/Form.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

struct SmilesForm {
  Form frmSmiles{"frmSmiles"};
  Label Label1{&frmSmiles, "Label1"};
  TextField Text1{&frmSmiles, "Text1"};
  CommandButton Command1{&frmSmiles, "Command1"};
  CommandButton Command2{&frmSmiles, "Command2"};
};

SmilesForm Dialog;

// A SMILES that cannot be read leaves the dialog open, so that it can be mended.
void Command1_Click() {
  const Text Smiles(TrimWhite(Dialog.Text1.Value));
  if (Smiles.empty()) return ShowWarning("Type a SMILES first, such as CCO for ethanol.");
  bool Converted = false;
  {
    const BusyState Busy;
    Converted = ConvertMolecule({.Path = {}, .Smiles = Smiles}, ConvertedPath());
  }
  if (!Converted) return;
  HideForm(Dialog.frmSmiles);
  TakeConverted(Smiles, {});
}

}  // namespace

void mnuFileNewSmiles_Click() {
  if (QuerySave() != False) return;
  SetText(Dialog.Text1, "");
  ShowModal(Dialog.frmSmiles);
}

void BuildSmilesForm() {
  SmilesForm& D = Dialog;
  D.frmSmiles.Caption = "New From SMILES";
  D.Label1.Caption = "&SMILES:";
  SetUpOkAndCancel(D.Command1, "&OK", Command1_Click, D.Command2, [] { HideForm(Dialog.frmSmiles); });
  D.frmSmiles.Layout = ColumnOf(
      {RowOf({ItemOf(D.Label1), ItemOf(D.Text1)}), RowOf({StretchOf(), ItemOf(D.Command1), ItemOf(D.Command2)})});
}

}  // namespace zelvanor
