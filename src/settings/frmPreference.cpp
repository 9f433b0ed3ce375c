#include "settings/frmPreference.h"

#include "platform/Form.h"
#include "platform/Picture.h"
#include "platform/Variables.h"
#include "workspace/Helpers.h"

namespace zelvanor {

PreferenceHooks Preferences;

namespace {

SettingsState& S = Settings;

constexpr Colour MonochromeMark = Rgb(128, 128, 128);

struct PreferenceForm {
  Form frmPreference{"frmPreference"};
  CommandButton Command3D5{&frmPreference, "Command3D5"};
  PictureSurface PicGraphColor{&frmPreference, "PicGraphColor"};
  CommandButton Command3D4{&frmPreference, "Command3D4"};
  PictureSurface PicSelectionColor{&frmPreference, "PicSelectionColor"};
  CommandButton Command3D6{&frmPreference, "Command3D6"};
  PictureSurface PicEnvelopColor{&frmPreference, "PicEnvelopColor"};
  CheckBox CheckMonoChrome{&frmPreference, "CheckMonoChrome"};
  CommandButton Command3D7{&frmPreference, "Command3D7"};
  PictureSurface PicBackColor{&frmPreference, "PicBackColor"};
  CommandButton Command3D8{&frmPreference, "Command3D8"};
  PictureSurface PicMolSelectColor{&frmPreference, "PicMolSelectColor"};
  CommandButton Command3D9{&frmPreference, "Command3D9"};
  PictureSurface PicLabelColor{&frmPreference, "PicLabelColor"};
  CheckBox CheckMolMonoChrome{&frmPreference, "CheckMolMonoChrome"};
  CommandButton Command1{&frmPreference, "Command1"};
  CommandButton Command2{&frmPreference, "Command2"};

  // Colours at work; they reach the program with OK.
  Colour WorkBackColor = 0;
  Colour WorkLabelColor = 0;
  Colour WorkMolSelectColor = 0;
  Colour WorkGraphColor = 0;
  Colour WorkEnvelopColor = 0;
  Colour WorkSelectionColor = 0;
};

PreferenceForm P;

// A colour button with its picture and its working colour.
struct ColourRow {
  CommandButton* Button;
  PictureSurface* Picture;
  Colour* Working;
  const char* Caption;
  const char* PictureName;  // for who can't see it
  Colour InMonochrome;
};

const ColourRow SpectrumRows[] = {
    {&P.Command3D5, &P.PicGraphColor, &P.WorkGraphColor, "L&ine Color...", "Color of the spectrum lines", Black},
    {&P.Command3D4, &P.PicSelectionColor, &P.WorkSelectionColor, "S&election Color...", "Color of the selected peak",
     Black},
    {&P.Command3D6, &P.PicEnvelopColor, &P.WorkEnvelopColor, "E&nvelope Color...", "Color of the envelope", Black},
};

const ColourRow MoleculeRows[] = {
    {&P.Command3D7, &P.PicBackColor, &P.WorkBackColor, "&Background Color...", "Background of the molecule", Black},
    {&P.Command3D8, &P.PicMolSelectColor, &P.WorkMolSelectColor, "&Selection Color...", "Color of selected atoms",
     White},
    {&P.Command3D9, &P.PicLabelColor, &P.WorkLabelColor, "&Label Color...", "Color of the labels", Black},
};

void PickRowColor(const ColourRow& Row) {
  *Row.Working = PickColor(*Row.Working);
  SetBackColor(*Row.Picture, *Row.Working);
}

template <std::size_t N>
void ShowRows(const ColourRow (&Rows)[N], bool Monochrome) {
  for (const ColourRow& Row : Rows) {
    SetBackColor(*Row.Picture, Monochrome ? Row.InMonochrome : *Row.Working);
    SetEnabled(*Row.Button, ToFlag(!Monochrome));
  }
}

void CheckMonoChrome_Click() { ShowRows(SpectrumRows, P.CheckMonoChrome.Value != 0); }
void CheckMolMonoChrome_Click() { ShowRows(MoleculeRows, P.CheckMolMonoChrome.Value != 0); }

// Before the first OK the molecule's colours are those in force, which nmr.ini has given.
void TakeMoleculeColors() {
  const bool Confirmed = IsSet(S.PrefMoleculeSet);
  P.WorkBackColor = Confirmed ? S.PrefBackColor : Preferences.GetMoleculeBackground();
  P.WorkMolSelectColor = Confirmed ? S.PrefMolSelectColor : S.SelectionColor;
  P.WorkLabelColor = Confirmed ? S.PrefLabelColor : Preferences.GetLabelColor();
}

void Form_Load() {
  TakeMoleculeColors();
  P.WorkGraphColor = Preferences.GetGraphClr();
  P.WorkSelectionColor = Preferences.GetSelectionClr();
  P.WorkEnvelopColor = Preferences.GetEnvelop();
  SetValue(P.CheckMolMonoChrome, S.MolMonochrome);
  for (const ColourRow& Row : SpectrumRows) SetBackColor(*Row.Picture, *Row.Working);
  for (const ColourRow& Row : MoleculeRows) SetBackColor(*Row.Picture, *Row.Working);
}

void Form_Activate() {
  P.WorkGraphColor = S.PrefGraphColor;
  P.WorkSelectionColor = S.PrefSelectionColor;
  P.WorkEnvelopColor = S.PrefEnvelopColor;
  TakeMoleculeColors();
  SetValue(P.CheckMolMonoChrome, S.MolMonochrome);
  if (S.MolMonochrome == 0) SetBackColor(P.PicLabelColor, P.WorkLabelColor);
  SetBackColor(P.PicBackColor, Preferences.GetMoleculeBackground());
  SetBackColor(P.PicMolSelectColor, S.SelectionColor);
  SetBackColor(P.PicGraphColor, Preferences.GetGraphClr());
  SetBackColor(P.PicSelectionColor, Preferences.GetSelectionClr());
  SetBackColor(P.PicEnvelopColor, Preferences.GetEnvelop());
}

void TakeColors() {
  S.PrefBackColor = P.WorkBackColor;
  S.PrefMolSelectColor = P.WorkMolSelectColor;
  S.PrefLabelColor = P.WorkLabelColor;
  S.PrefMoleculeSet = True;
  S.PrefGraphColor = P.WorkGraphColor;
  Preferences.SetGraphClr(P.WorkGraphColor);
  S.PrefSelectionColor = P.WorkSelectionColor;
  Preferences.SetSelectionClr(P.WorkSelectionColor);
  S.PrefEnvelopColor = P.WorkEnvelopColor;
  Preferences.SetEnvelop(P.WorkEnvelopColor);
  S.MolMonochrome = P.CheckMolMonoChrome.Value;
  S.MolSelectColor = S.MolMonochrome != 0 ? MonochromeMark : P.WorkMolSelectColor;
}

// In monochrome the frame draws in black on white, while the settings above keep the real colours.
void TakeMonochrome() {
  const bool Monochrome = P.CheckMonoChrome.Value != 0;
  Preferences.SetMonochrome(Monochrome ? 1 : 0);
  Preferences.SetGraphClr(Monochrome ? Black : P.WorkGraphColor);
  Preferences.SetEnvelop(Monochrome ? Black : P.WorkEnvelopColor);
  Preferences.SetSelectionClr(Monochrome ? Black : P.WorkSelectionColor);
  Preferences.SetSpectrumBackground(Monochrome ? White : Black);
}

void Command1_Click() {
  TakeColors();
  TakeMonochrome();
  Preferences.TakeMoleculePreferences();
  HideForm(P.frmPreference);
  Preferences.RefreshView();
}

void Command2_Click() { HideForm(P.frmPreference); }

template <std::size_t N>
Arrangement BuildRows(Text Title, const ColourRow (&Rows)[N], CheckBox& Monochrome) {
  constexpr int PictureWidth = TwipsFromPixels(64);
  constexpr int PictureHeight = TwipsFromPixels(24);
  std::vector<Arrangement> Buttons;
  std::vector<Arrangement> Pictures;
  for (const ColourRow& Row : Rows) {
    Row.Button->Caption = Row.Caption;
    Row.Button->Click = [&Row] { PickRowColor(Row); };
    Row.Picture->AccessibleName = Row.PictureName;
    Row.Picture->Width = PictureWidth;
    Row.Picture->Height = PictureHeight;
    Buttons.push_back(ItemOf(*Row.Button));
    Pictures.push_back(ItemOf(*Row.Picture));
  }
  return GroupOf(std::move(Title),
                 {RowOf({ColumnOf(std::move(Buttons)), ColumnOf(std::move(Pictures))}), ItemOf(Monochrome)});
}

}  // namespace

Colour PickColor(Colour Current) {
  try {
    return Platform.ShowColourDialog(Current).value_or(Current);
  } catch (const Failure& Problem) {
    ShowError(Problem.What);
    return Current;
  }
}

void BuildPreferenceForm() {
  P.frmPreference.Caption = "Preferences";
  P.CheckMonoChrome.Caption = "MonoChrome &display";
  P.CheckMonoChrome.Click = CheckMonoChrome_Click;
  P.CheckMolMonoChrome.Caption = "&MonoChrome display";
  P.CheckMolMonoChrome.Click = CheckMolMonoChrome_Click;
  SetUpOkAndCancel(P.Command1, "OK", Command1_Click, P.Command2, Command2_Click);
  P.frmPreference.Load = Form_Load;
  P.frmPreference.Activate = Form_Activate;
  P.frmPreference.Layout = ColumnOf({RowOf({BuildRows("Spectrum", SpectrumRows, P.CheckMonoChrome),
                                            BuildRows("Molecule", MoleculeRows, P.CheckMolMonoChrome)}),
                                     RowOf({StretchOf(), ItemOf(P.Command1), ItemOf(P.Command2)})});
}

void AddPreferenceVariables() {
  AddVariable("frmPreference.WorkBackColor", P.WorkBackColor);
  AddVariable("frmPreference.WorkLabelColor", P.WorkLabelColor);
  AddVariable("frmPreference.WorkMolSelectColor", P.WorkMolSelectColor);
  AddVariable("frmPreference.WorkGraphColor", P.WorkGraphColor);
  AddVariable("frmPreference.WorkEnvelopColor", P.WorkEnvelopColor);
  AddVariable("frmPreference.WorkSelectionColor", P.WorkSelectionColor);
}

void mnuPreferences_Click() {
  ShowStatus("Set up preferences...");
  ShowModal(P.frmPreference);
}

}  // namespace zelvanor
