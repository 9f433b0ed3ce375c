#include "settings/Settings.h"

#include <algorithm>
#include <iterator>
#include <type_traits>

#include "basic/Numbers.h"
#include "settings/ColorSets.h"
#include "settings/ProfileAccess.h"
#include "workspace/Helpers.h"
#include "workspace/References.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

SettingsState& S = Settings;
WorkspaceState& W = Workspace;

constexpr const char* NmrSection = "nmr";

enum class ItemForm {
  WholeRange,  // whole number with limits
  Whole,       // whole number that fits an Integer
  Range,       // Single with limits, both included
  WidthRange,  // the same, with limits only while AbsLineWidth is set
  YesNo,
  ColorText,
  QuietColor,  // a text that is no colour gives the default without a word
  ColorSet,
  RadiusSet,
  Word,  // one of Words
};

// One item of the section. Low, High and AfterWarning belong to the forms with a check. Take gets the item's value
// (a whole number, a Flag, a colour) and TakeText the text of a Word. Give tells what is written at exit; without one
// the text as it was read.
struct SettingRow {
  int Slot;
  const char* Key;
  const char* Default;
  const char* AtFirstSight = nullptr;  // the default there, where it is another one
  ItemForm Is;
  bool Written = true;
  Double Low = 0;
  Double High = 0;
  const char* AfterWarning = "";
  const char* Words = "";
  void (*Take)(Double Value) = nullptr;
  void (*TakeText)(const Text& Value) = nullptr;
  Text (*Give)() = nullptr;
};

// A value taken into an option of the document, and the option's text.
template <auto Option>
void TakeOption(Double Value) {
  using T = std::remove_reference_t<decltype(W.*Option)>;
  if constexpr (std::is_same_v<T, Flag>) {
    W.*Option = static_cast<Flag>(Value);
  } else if constexpr (std::is_same_v<T, Integer>) {
    W.*Option = ToInteger(Value);
  } else if constexpr (std::is_same_v<T, Long>) {
    W.*Option = ToLong(Value);
  } else if constexpr (std::is_same_v<T, Single>) {
    W.*Option = ToSingle(Value);
  } else {
    W.*Option = Value;
  }
}
template <auto Option>
Text GiveOption() {
  if constexpr (std::is_same_v<std::remove_reference_t<decltype(W.*Option)>, Flag>) {
    return TextFromBool(W.*Option);
  } else {
    return GeneralForm(W.*Option);
  }
}
template <auto Value>
void TakeColour(Double Read) {
  S.*Value = static_cast<Colour>(Read);
}
template <auto Preference>
Text GiveColour() {
  return TextFromColor(S.*Preference);
}
// A colour of the molecule view belongs to the preferences once they have been confirmed.
template <auto Preference, auto Read>
Text GiveMoleculeColour() {
  return IsSet(S.PrefMoleculeSet) ? TextFromColor(S.*Preference) : S.SettingsText[Read];
}

constexpr const char* MethodWords = "|KRDO1|KRDO2|";
constexpr const char* TypeWords = "|PROTON|CARBON-13|NITROGEN-15|FLUORINE-19|PHOSPHORUS-31|";

// In the order in which they are read and written: AbsLineWidth stands before the two widths that it decides on. The
// preferences keep the real colours, also while the spectrum is shown in monochrome.
constexpr SettingRow Rows[] = {
    {.Slot = 0,
     .Key = "AtomRenderType",
     .Default = "1",
     .AtFirstSight = "3",
     .Is = ItemForm::WholeRange,
     .Low = 1,
     .High = 3,
     .AfterWarning = "1",
     .Take = [](Double V) { S.AtomRenderType = ToLong(V); }},
    {.Slot = 1,
     .Key = "BondRenderType",
     .Default = "1",
     .AtFirstSight = "3",
     .Is = ItemForm::WholeRange,
     .Low = 1,
     .High = 3,
     .AfterWarning = "1",
     .Take = [](Double V) { S.BondRenderType = ToLong(V); }},
    {.Slot = 2,
     .Key = "BackColor",
     .Default = "RGB(255, 255, 255)",
     .Is = ItemForm::QuietColor,
     .Take = TakeColour<&SettingsState::BackColor>,
     .Give = GiveMoleculeColour<&SettingsState::PrefBackColor, 2>},
    {.Slot = 3,
     .Key = "LabelColor",
     .Default = "RGB(255, 255, 0)",
     .Is = ItemForm::QuietColor,
     .Take = TakeColour<&SettingsState::LabelColor>,
     .Give = GiveMoleculeColour<&SettingsState::PrefLabelColor, 3>},
    {.Slot = 4,
     .Key = "BondColor",
     .Default = "RGB(192, 192, 192)",
     .Is = ItemForm::QuietColor,
     .Take = TakeColour<&SettingsState::BondColor>},
    {.Slot = 5,
     .Key = "SelectionColor",
     .Default = "RGB(0, 255, 128)",
     .Is = ItemForm::ColorText,
     .Take = TakeColour<&SettingsState::SelectionColor>,
     .Give = GiveMoleculeColour<&SettingsState::PrefMolSelectColor, 5>},
    {.Slot = 6,
     .Key = "SpectrumLineColor",
     .Default = "RGB(0, 255, 0)",
     .Is = ItemForm::ColorText,
     .Take = TakeColour<&SettingsState::SpectrumLineColor>,
     .Give = GiveColour<&SettingsState::PrefGraphColor>},
    {.Slot = 7,
     .Key = "SpectrumEnvelopColor",
     .Default = "RGB(255, 255, 255)",
     .Is = ItemForm::ColorText,
     .Take = TakeColour<&SettingsState::SpectrumEnvelopColor>,
     .Give = GiveColour<&SettingsState::PrefEnvelopColor>},
    {.Slot = 8,
     .Key = "SpectrumSelectionColor",
     .Default = "RGB(255, 0, 255)",
     .Is = ItemForm::ColorText,
     .Take = TakeColour<&SettingsState::SpectrumSelectionColor>,
     .Give = GiveColour<&SettingsState::PrefSelectionColor>},
    {.Slot = 9, .Key = "DefaultColorSet", .Default = "MorvantisColors", .Is = ItemForm::ColorSet, .Written = false},
    {.Slot = 10, .Key = "DefaultRadiusSet", .Default = "BallsSticksRadii", .Is = ItemForm::RadiusSet, .Written = false},
    {.Slot = 11,
     .Key = "SemiEmpiricalMethod",
     .Default = "KRDO2",
     .Is = ItemForm::Word,
     .AfterWarning = "KRDO2",
     .Words = MethodWords,
     .TakeText = [](const Text& V) { W.SemiEmpiricalMethod = V; },
     .Give = [] { return W.SemiEmpiricalMethod; }},
    {.Slot = 12,
     .Key = "TotalCharge",
     .Default = "0",
     .Is = ItemForm::WholeRange,
     .Low = -10,
     .High = 10,
     .AfterWarning = "0",
     .Take = TakeOption<&WorkspaceState::TotalCharge>,
     .Give = GiveOption<&WorkspaceState::TotalCharge>},
    {.Slot = 13,
     .Key = "SpinMultiplicity",
     .Default = "1",
     .Is = ItemForm::WholeRange,
     .Low = 1,
     .High = 1,
     .AfterWarning = "1",
     .Take = TakeOption<&WorkspaceState::SpinMultiplicity>,
     .Give = GiveOption<&WorkspaceState::SpinMultiplicity>},
    {.Slot = 14,
     .Key = "SCFConvergenceLimit",
     .Default = "0.01",
     .Is = ItemForm::Range,
     .Low = 0,
     .High = 1000,
     .AfterWarning = "0.01",
     .Take = TakeOption<&WorkspaceState::SCFConvergenceLimit>,
     .Give = GiveOption<&WorkspaceState::SCFConvergenceLimit>},
    {.Slot = 15,
     .Key = "SCFIterationLimit",
     .Default = "50",
     .Is = ItemForm::WholeRange,
     .Low = 0,
     .High = 10000,
     .AfterWarning = "50",
     .Take = TakeOption<&WorkspaceState::SCFIterationLimit>,
     .Give = GiveOption<&WorkspaceState::SCFIterationLimit>},
    {.Slot = 16,
     .Key = "SCFAccelerateConvergence",
     .Default = "No",
     .Is = ItemForm::YesNo,
     .Take = TakeOption<&WorkspaceState::SCFAccelerateConvergence>,
     .Give = GiveOption<&WorkspaceState::SCFAccelerateConvergence>},
    {.Slot = 17,
     .Key = "LogPrintLevel",
     .Default = "0",
     .Is = ItemForm::Whole,
     .Take = TakeOption<&WorkspaceState::LogPrintLevel>,
     .Give = GiveOption<&WorkspaceState::LogPrintLevel>},
    {.Slot = 26,
     .Key = "MinimalIntensity",
     .Default = "0.1",
     .Is = ItemForm::Range,
     .Low = 0,
     .High = 1000,
     .AfterWarning = "0.1",
     .Take = TakeOption<&WorkspaceState::MinimalIntensity>,
     .Give = GiveOption<&WorkspaceState::MinimalIntensity>},
    {.Slot = 27,
     .Key = "AbsLineWidth",
     .Default = "No",
     .Is = ItemForm::YesNo,
     .Take = TakeOption<&WorkspaceState::AbsLineWidth>,
     .Give = GiveOption<&WorkspaceState::AbsLineWidth>},
    {.Slot = 28,
     .Key = "MinAbsLineWidth",
     .Default = "0.0",
     .Is = ItemForm::WidthRange,
     .Low = 0,
     .High = 1000,
     .AfterWarning = "0",
     .Take = TakeOption<&WorkspaceState::MinAbsLineWidth>,
     .Give = GiveOption<&WorkspaceState::MinAbsLineWidth>},
    {.Slot = 29,
     .Key = "MaxAbsLineWidth",
     .Default = "10.0",
     .Is = ItemForm::WidthRange,
     .Low = 0,
     .High = 1000,
     .AfterWarning = "10",
     .Take = TakeOption<&WorkspaceState::MaxAbsLineWidth>,
     .Give = GiveOption<&WorkspaceState::MaxAbsLineWidth>},
    {.Slot = 18,
     .Key = "ModifySlaterExponents",
     .Default = "Yes",
     .Is = ItemForm::YesNo,
     .Take = TakeOption<&WorkspaceState::ModifySlaterExponents>,
     .Give = GiveOption<&WorkspaceState::ModifySlaterExponents>},
    {.Slot = 19,
     .Key = "ComputeThreeCenterTerms",
     .Default = "No",
     .Is = ItemForm::YesNo,
     .Take = TakeOption<&WorkspaceState::ComputeThreeCenterTerms>,
     .Give = GiveOption<&WorkspaceState::ComputeThreeCenterTerms>},
    {.Slot = 20,
     .Key = "IncludeDOrbitalsForSecondRow",
     .Default = "No",
     .Is = ItemForm::YesNo,
     .Take = TakeOption<&WorkspaceState::IncludeDOrbitalsForSecondRow>,
     .Give = GiveOption<&WorkspaceState::IncludeDOrbitalsForSecondRow>},
    {.Slot = 21,
     .Key = "CalculateShielding",
     .Default = "Yes",
     .Is = ItemForm::YesNo,
     .Take = TakeOption<&WorkspaceState::CalculateShielding>,
     .Give = GiveOption<&WorkspaceState::CalculateShielding>},
    {.Slot = 31,
     .Key = "CalculateShieldingTensor",
     .Default = "Yes",
     .Is = ItemForm::YesNo,
     .Take = TakeOption<&WorkspaceState::CalculateShieldTensor>,
     .Give = GiveOption<&WorkspaceState::CalculateShieldTensor>},
    {.Slot = 22,
     .Key = "CalculateCoupling",
     .Default = "Yes",
     .Is = ItemForm::YesNo,
     .Take = TakeOption<&WorkspaceState::CalculateCoupling>,
     .Give = [] { return TextFromBool(ToInteger(W.CalculateCoupling)); }},
    {.Slot = 23,
     .Key = "NMRFrequency",
     .Default = "100",
     .Is = ItemForm::WholeRange,
     .Low = 1,
     .High = 1000000,
     .AfterWarning = "100",
     .Take = TakeOption<&WorkspaceState::NMRFrequency>,
     .Give = GiveOption<&WorkspaceState::NMRFrequency>},
    {.Slot = 24,
     .Key = "SpectraType",
     .Default = "Proton",
     .Is = ItemForm::Word,
     .AfterWarning = "Proton",
     .Words = TypeWords,
     .TakeText = [](const Text& V) { W.SpectraType = SpectrumTypeFromText(V); },
     .Give = [] { return TextFromSpectrumType(W.SpectraType); }},
    {.Slot = 30,
     .Key = "WeakCouplingApproximation",
     .Default = "No",
     .Is = ItemForm::YesNo,
     .Take = TakeOption<&WorkspaceState::WeakCouplingApproximation>,
     .Give = GiveOption<&WorkspaceState::WeakCouplingApproximation>},
};

void WarnOfValue(const SettingRow& Row, TextView Value) {
  ShowWarning(Join("The initial value ", "'", Value, "'", " for the item <", Row.Key, "> in the ", S.IniFile,
                   " file is not valid."));
}

bool IsListed(TextView Words, TextView Value) {
  return Value.find('|') == TextView::npos && Words.find("|" + UpperCase(Value) + "|") != TextView::npos;
}

// A number with limits: what is taken is the value after a warning where the file's own lies outside.
void ReadNumber(const SettingRow& Row, TextView Value) {
  const Text Trimmed(TrimBlanks(Value));
  const bool Whole = Row.Is == ItemForm::WholeRange;
  const Double Number = Whole ? Double(StrictLong(Trimmed)) : Double{StrictSingle(Trimmed)};
  const bool Checked = Row.Is != ItemForm::WidthRange || IsSet(W.AbsLineWidth);
  const bool Refused = Checked && !(Number >= Row.Low && Number <= Row.High);
  if (Refused) WarnOfValue(Row, Trimmed);
  SetSettingsText(Row.Slot, Refused ? TextView(Row.AfterWarning) : TextView(Trimmed));
  const Double Taken = Refused ? Double{StrictSingle(Row.AfterWarning)} : Number;
  Row.Take(Taken);
}

void ReadWord(const SettingRow& Row, const Text& Value) {
  const bool Listed = IsListed(Row.Words, TrimBlanks(Value));
  if (!Listed) WarnOfValue(Row, TrimBlanks(Value));
  const Text Taken = Listed ? Value : Text(Row.AfterWarning);
  SetSettingsText(Row.Slot, Taken);
  Row.TakeText(Text(TrimBlanks(Taken)));
}

void ReadColorItem(const SettingRow& Row, const Text& Value) {
  SetSettingsText(Row.Slot, Value);
  const bool Quiet = Row.Is == ItemForm::QuietColor;
  std::optional<Colour> Read = Quiet ? ReadColour(Value) : ColorFromText(Value);
  if (!Read && Quiet) Read = ReadColour(Row.Default);
  if (!Read) throw Failure(failures::TypeMismatch);
  Row.Take(*Read);
}

void ReadItem(const SettingRow& Row) {
  const bool OwnDefault = S.FirstSight && Row.AtFirstSight != nullptr;
  const Text Value = ReadIniText(NmrSection, Row.Key, OwnDefault ? Row.AtFirstSight : Row.Default);
  switch (Row.Is) {
    case ItemForm::WholeRange:
    case ItemForm::Range:
    case ItemForm::WidthRange:
      return ReadNumber(Row, Value);
    case ItemForm::Word:
      return ReadWord(Row, Value);
    case ItemForm::ColorText:
    case ItemForm::QuietColor:
      return ReadColorItem(Row, Value);
    default:
      SetSettingsText(Row.Slot, Value);
  }
  if (Row.Is == ItemForm::Whole) Row.Take(StrictInteger(Value));
  if (Row.Is == ItemForm::YesNo) Row.Take(BoolFromText(Value));
  if (Row.Is == ItemForm::ColorSet) SelectColorSet(FindColorSet(Value));
  if (Row.Is == ItemForm::RadiusSet) SelectRadiusSet(FindRadiusSet(Value));
}

}  // namespace

void ReadSettings() {
  LoadProfilePaths();
  NameWorkingFiles();
  try {
    for (const SettingRow& Row : Rows) ReadItem(Row);
  } catch (const Failure& Problem) {
    ShowError("Error in ini file: " + Problem.What);
    EndProgram();
  }
  W.ReferenceShielding.ReDim(NumReferenceEntries - 1);
  W.ReferenceLevel.clear();
  ReadReferenceShieldings(W.ReferenceShielding, ReferenceSection);
  KeepReferencesAsOwn();
}

void WriteSettings() {
  std::vector<ProfileEntry> Entries;
  for (const SettingRow& Row : Rows) {
    if (!Row.Written) continue;
    if (Row.Give != nullptr) SetSettingsText(Row.Slot, Row.Give());
    Entries.push_back({NmrSection, Row.Key, S.SettingsText[static_cast<std::size_t>(Row.Slot)]});
  }
  const std::vector<ProfileEntry> References = ReferenceShieldingEntries();
  Entries.insert(Entries.end(), References.begin(), References.end());
  WritePrivateProfileStrings(Entries, S.IniFile);
}

namespace {
// Slots of the table's rows.
constexpr int BackgroundSlot = 2;
constexpr int LineSlot = 6;
constexpr int EnvelopeSlot = 7;
constexpr int SelectionSlot = 8;

bool IsOwn(int Slot, Colour Present) {
  const auto Row =
      std::find_if(std::begin(Rows), std::end(Rows), [Slot](const SettingRow& R) { return R.Slot == Slot; });
  return ReadColour(Row->Default) != Present;
}
}  // namespace

bool AreSpectrumColoursOwn() {
  return IsOwn(LineSlot, S.PrefGraphColor) || IsOwn(EnvelopeSlot, S.PrefEnvelopColor) ||
         IsOwn(SelectionSlot, S.PrefSelectionColor);
}

Colour MoleculeBackground() { return IsSet(S.PrefMoleculeSet) ? S.PrefBackColor : S.BackColor; }
bool IsMoleculeBackgroundOwn() { return IsOwn(BackgroundSlot, MoleculeBackground()); }

std::vector<Text> SettingKeys() {
  std::vector<Text> Keys;
  Keys.reserve(std::size(Rows));
  for (const SettingRow& Row : Rows) Keys.emplace_back(Row.Key);
  return Keys;
}

}  // namespace zelvanor
