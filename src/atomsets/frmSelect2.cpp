#include "atomsets/frmSelect2.h"

#include <array>

#include "atomsets/AtomSets.h"
#include "platform/Form.h"

namespace zelvanor {

namespace {

constexpr std::array<const char*, NumElementChoices> Captions = {
    "&Protons", "C&arbons", "N&itrogens", "O&xygens", "&Fluorines", "&Phosphoruses", "A&ll",
};

struct ElementForm {
  Form frmSelect2{"frmSelect2"};
  std::array<CheckBox, NumElementChoices> Check1{{{&frmSelect2, "Check1", 0},
                                                  {&frmSelect2, "Check1", 1},
                                                  {&frmSelect2, "Check1", 2},
                                                  {&frmSelect2, "Check1", 3},
                                                  {&frmSelect2, "Check1", 4},
                                                  {&frmSelect2, "Check1", 5},
                                                  {&frmSelect2, "Check1", 6}}};
  CommandButton Command1{&frmSelect2, "Command1"};
  CommandButton Command2{&frmSelect2, "Command2"};
};

ElementForm Dialog;

CheckBox& BoxAt(int Place) { return Dialog.Check1[static_cast<std::size_t>(Place)]; }

void Form_Load() {
  AtomSets.ElementChoice.ReDim(NumElementChoices);
  for (CheckBox& Box : Dialog.Check1) {
    SetValue(Box, 0);
    SetEnabled(Box, True);
  }
}

void Form_Activate() {
  for (int Place = 0; Place < NumElementChoices; ++Place) SetValue(BoxAt(Place), AtomSets.ElementChoice[Place]);
}

void Leave(Flag Accepted) {
  AtomSets.AtomSetDialogReload = False;
  AtomSets.ElementChoiceAccepted = Accepted;
  HideForm(Dialog.frmSelect2);
}

void Command1_Click() {
  AtomSets.ElementChoice.ReDim(NumElementChoices);
  for (int Place = 0; Place < NumElementChoices; ++Place) AtomSets.ElementChoice[Place] = BoxAt(Place).Value;
  Leave(True);
}

void Command2_Click() { Leave(False); }

}  // namespace

void BuildElementChoiceForm() {
  Form& Window = Dialog.frmSelect2;
  Window.Caption = "Select NMR Atoms";
  std::vector<Arrangement> Boxes;
  for (int Place = 0; Place < NumElementChoices; ++Place) {
    BoxAt(Place).Caption = Captions[static_cast<std::size_t>(Place)];
    Boxes.push_back(ItemOf(BoxAt(Place)));
  }
  Dialog.Command1.Caption = "&OK";
  Dialog.Command1.IsDefault = true;
  Dialog.Command1.Click = Command1_Click;
  Dialog.Command2.Caption = "&Cancel";
  Dialog.Command2.IsCancel = true;
  Dialog.Command2.Click = Command2_Click;
  Window.Load = Form_Load;
  Window.Activate = Form_Activate;
  Window.Layout = ColumnOf({GroupOf("Atoms", std::move(Boxes)), StretchOf(),
                            RowOf({StretchOf(), ItemOf(Dialog.Command1), ItemOf(Dialog.Command2)})});
}

void ShowElementChoice() { ShowModal(Dialog.frmSelect2); }

}  // namespace zelvanor
