#include "files/frmSmiles.h"

#include "basic/TextTools.h"
#include "files/Converter.h"
#include "files/FileCommands.h"
#include "files/SmilesPreview.h"
#include "platform/Form.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

struct SmilesForm {
  Form frmSmiles{"frmSmiles"};
  Label Label1{&frmSmiles, "Label1"};
  TextField Text1{&frmSmiles, "Text1"};
  PictureSurface Picture1{&frmSmiles, "Picture1"};
  Label Label2{&frmSmiles, "Label2"};
  CommandButton Command1{&frmSmiles, "Command1"};
  CommandButton Command2{&frmSmiles, "Command2"};

  bool Accepted = false;
};

SmilesForm Dialog;

SmilesPreview PreviewPlace() { return {&Dialog.Picture1, &Dialog.Label2}; }

void Text1_Change() { PreviewSmiles(PreviewPlace(), Text(TrimWhite(Dialog.Text1.Value))); }

void Command1_Click() {
  if (TrimWhite(Dialog.Text1.Value).empty()) return ShowWarning("Type a SMILES first, such as CCO for ethanol.");
  Dialog.Accepted = true;
  HideForm(Dialog.frmSmiles);
}

bool AskSmiles(Text& Smiles) {
  Dialog.Accepted = false;
  SetText(Dialog.Text1, Smiles);
  ShowModal(Dialog.frmSmiles);
  EndPreview();
  Smiles = TrimWhite(Dialog.Text1.Value);
  return Dialog.Accepted;
}

bool Convert(const Text& Smiles) {
  const BusyState Busy;
  return ConvertMolecule({.Path = {}, .Smiles = Smiles}, ConvertedPath());
}

}  // namespace

// The conversion works in the main window, which shows how far it is and can give it up. A SMILES that cannot be read
// brings the dialog back, so that it can be mended.
void mnuFileNewSmiles_Click() {
  if (QuerySave() != False) return;
  Text Smiles;
  while (AskSmiles(Smiles)) {
    if (Convert(Smiles)) return TakeConverted(Smiles, {});
  }
}

void BuildSmilesForm() {
  SmilesForm& D = Dialog;
  D.frmSmiles.Caption = "New From SMILES";
  D.Label1.Caption = "&SMILES:";
  D.Text1.Change = Text1_Change;
  D.Picture1.AccessibleName = "Structure";
  D.Picture1.BackColor = White;
  D.Picture1.Width = TwipsFromPixels(460);
  D.Picture1.Height = TwipsFromPixels(280);
  D.Picture1.Resized = [] { RedrawPreview(PreviewPlace()); };
  D.Label2.AccessibleName = "Formula, or what is wrong";
  SetUpOkAndCancel(D.Command1, "&OK", Command1_Click, D.Command2, [] { HideForm(Dialog.frmSmiles); });
  D.frmSmiles.Layout = ColumnOf({RowOf({ItemOf(D.Label1), ItemOf(D.Text1)}), ItemOf(D.Picture1), ItemOf(D.Label2),
                                 RowOf({StretchOf(), ItemOf(D.Command1), ItemOf(D.Command2)})});
}

}  // namespace zelvanor
