#include "molecule/frmRender.h"

#include "molecule/MoleculeView.h"
#include "platform/Variables.h"
#include "settings/SettingsState.h"
#include "shell/Frame.h"

namespace zelvanor {

namespace {

constexpr int NumAtomOptions = 3;
constexpr int NumBondOptions = 3;
constexpr int NumLabelOptions = 6;

struct RenderForm {
  Form frmRender{"frmRender"};
  OptionButton optRenderAtom[NumAtomOptions] = {
      {&frmRender, "optRenderAtom", 0}, {&frmRender, "optRenderAtom", 1}, {&frmRender, "optRenderAtom", 2}};
  OptionButton optRenderBond[NumBondOptions] = {
      {&frmRender, "optRenderBond", 0}, {&frmRender, "optRenderBond", 1}, {&frmRender, "optRenderBond", 2}};
  OptionButton optRenderLabel[NumLabelOptions] = {{&frmRender, "optRenderLabel", 0}, {&frmRender, "optRenderLabel", 1},
                                                  {&frmRender, "optRenderLabel", 2}, {&frmRender, "optRenderLabel", 3},
                                                  {&frmRender, "optRenderLabel", 4}, {&frmRender, "optRenderLabel", 5}};
  CommandButton Command1{&frmRender, "Command1"};
  CommandButton Command2{&frmRender, "Command2"};

  // The choices, 1..3 for atoms and bonds, 0 before the first one. They stay from one opening to the next.
  Integer AtomStyle;
  Integer BondStyle;
  Integer LabelStyle;
};

RenderForm R;

void SetOption(OptionButton* Options, int Count, int Chosen) {
  if (Chosen >= 0 && Chosen < Count) SetValue(Options[Chosen], True);
}

void optRenderAtom_Click(int Index) {
  R.AtomStyle = Index + 1;
  for (int Option = 0; Option <= Index; ++Option) SetEnabled(R.optRenderBond[Option], True);
  // A bond is never drawn richer than the atoms at its ends.
  for (int Option = Index + 1; Option < NumBondOptions; ++Option) {
    if (IsSet(R.optRenderBond[Option].Value)) SetValue(R.optRenderBond[Index], True);
    SetEnabled(R.optRenderBond[Option], False);
  }
  for (OptionButton& Option : R.optRenderLabel) SetEnabled(Option, ToFlag(R.AtomStyle == AtomLabels));
}

void ShowStyles() {
  // What has come up without a choice is shown as if it were one.
  if (Settings.FirstSight && R.AtomStyle == 0) R.AtomStyle = Main.MolRender1.AtomRenderType;
  if (Settings.FirstSight && R.BondStyle == 0) R.BondStyle = Main.MolRender1.BondRenderType;
  R.LabelStyle = Main.AtomLabelMode;
  SetOption(R.optRenderAtom, NumAtomOptions, R.AtomStyle - 1);
  SetOption(R.optRenderBond, NumBondOptions, R.BondStyle - 1);
  SetOption(R.optRenderLabel, NumLabelOptions, R.LabelStyle);
}

void Command1_Click() {
  RenderControl& Control = Main.MolRender1;
  // A style that has never been chosen is 0, which the control refuses: it then keeps its own.
  IgnoreFailure([&] { SetAtomRenderType(Control, R.AtomStyle); });
  IgnoreFailure([&] { SetBondRenderType(Control, R.BondStyle); });
  Main.AtomLabelMode = R.LabelStyle;
  HideForm(R.frmRender);
  IgnoreFailure([&] { UpdateAtomLabels(Control); });
  RepaintRender(Control);
}

void Command2_Click() { HideForm(R.frmRender); }

Arrangement GroupOfOptions(Text Title, OptionButton* Options, int Count) {
  std::vector<Arrangement> Parts;
  Parts.reserve(static_cast<std::size_t>(Count) + 1);
  for (int Option = 0; Option < Count; ++Option) Parts.push_back(ItemOf(Options[Option]));
  Parts.push_back(StretchOf());
  return GroupOf(std::move(Title), std::move(Parts));
}

void NameOptions() {
  constexpr const char* AtomCaptions[] = {"&Labels", "&Disks", "&Spheres"};
  constexpr const char* BondCaptions[] = {"S&ticks", "&Bonds", "C&ylinders"};
  constexpr const char* LabelCaptions[] = {"&None", "Sy&mbol", "N&ame", "N&umber", "Ty&pe", "Cha&rge"};
  const auto Name = [](OptionButton& Option, const char* Group, const char* Caption) {
    Option.Group = Group;
    Option.Caption = Caption;
  };
  for (int Index = 0; Index < NumAtomOptions; ++Index) {
    Name(R.optRenderAtom[Index], "Atoms", AtomCaptions[Index]);
    R.optRenderAtom[Index].Click = [Index] { optRenderAtom_Click(Index); };
  }
  for (int Index = 0; Index < NumBondOptions; ++Index) {
    Name(R.optRenderBond[Index], "Bonds", BondCaptions[Index]);
    R.optRenderBond[Index].Click = [Index] { R.BondStyle = Index + 1; };
  }
  for (int Index = 0; Index < NumLabelOptions; ++Index) {
    Name(R.optRenderLabel[Index], "Atom Labels", LabelCaptions[Index]);
    R.optRenderLabel[Index].Click = [Index] { R.LabelStyle = Index; };
  }
}

}  // namespace

void BuildRenderForm() {
  R.frmRender.Caption = "Rendering";
  NameOptions();
  SetUpOkAndCancel(R.Command1, "OK", Command1_Click, R.Command2, Command2_Click);
  R.frmRender.Load = ShowStyles;
  R.frmRender.Activate = ShowStyles;
  R.frmRender.Layout = ColumnOf({RowOf({GroupOfOptions("Atoms", R.optRenderAtom, NumAtomOptions),
                                        GroupOfOptions("Bonds", R.optRenderBond, NumBondOptions),
                                        GroupOfOptions("Atom Labels", R.optRenderLabel, NumLabelOptions)}),
                                 RowOf({StretchOf(), ItemOf(R.Command1), ItemOf(R.Command2)})});
}

void AddRenderFormVariables() {
  AddVariable("frmRender.AtomStyle", R.AtomStyle);
  AddVariable("frmRender.BondStyle", R.BondStyle);
  AddVariable("frmRender.LabelStyle", R.LabelStyle);
}

void mnuViewRender_Click() { ShowModal(R.frmRender); }

}  // namespace zelvanor
