#include "settings/Settings.h"

#include <algorithm>

#include "basic/Numbers.h"
#include "settings/ColorSets.h"
#include "settings/ProfileAccess.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

SettingsState& S = Settings;
WorkspaceState& W = Workspace;

constexpr const char* NmrSection = "nmr";

enum class ItemForm {
  PlainText,   // not checked
  WholeRange,  // whole number with limits
  Whole,       // whole number that fits an Integer
  Range,       // Single with limits, both included
  WidthRange,  // the same, with limits only while AbsLineWidth is set
  YesNo,
  ColorText,
  ColorSet,
  RadiusSet,
  Word,  // one of Words
};

// One item of the section. Low, High and AfterWarning belong to the forms with a check. Take gets the item's value
// (a whole number, a Flag, a colour) and may be null; TakeText gets the text of a Word.
struct SettingRow {
  int Slot;
  const char* Key;
  const char* Default;
  ItemForm Is;
  Double Low = 0;
  Double High = 0;
  const char* AfterWarning = "";
  void (*Take)(Double Value) = nullptr;
  void (*TakeText)(const Text& Value) = nullptr;
  const char* Words = "";
};

template <class T>
Flag AsFlag(T Value) {
  return static_cast<Flag>(Value);
}

constexpr const char* MethodWords = "|KRDO1|KRDO2|";
constexpr const char* TypeWords = "|PROTON|CARBON-13|NITROGEN-15|FLUORINE-19|PHOSPHORUS-31|";

// In the order in which they are read: AbsLineWidth stands before the two widths that it decides on.
constexpr std::array<SettingRow, 31> Rows = {{
    {.Slot = 0,
     .Key = "AtomRenderType",
     .Default = "1",
     .Is = ItemForm::WholeRange,
     .Low = 1,
     .High = 3,
     .AfterWarning = "1"},
    {.Slot = 1,
     .Key = "BondRenderType",
     .Default = "1",
     .Is = ItemForm::WholeRange,
     .Low = 1,
     .High = 3,
     .AfterWarning = "1"},
    {.Slot = 2, .Key = "BackColor", .Default = "RGB(255, 255, 255)", .Is = ItemForm::PlainText},
    {.Slot = 3, .Key = "LabelColor", .Default = "RGB(255, 255, 0)", .Is = ItemForm::PlainText},
    {.Slot = 4, .Key = "BondColor", .Default = "RGB(192, 192, 192)", .Is = ItemForm::PlainText},
    {.Slot = 5,
     .Key = "SelectionColor",
     .Default = "RGB(0, 255, 128)",
     .Is = ItemForm::ColorText,
     .Take = [](Double V) { S.SelectionColor = static_cast<Colour>(V); }},
    {.Slot = 6,
     .Key = "SpectrumLineColor",
     .Default = "RGB(0, 255, 0)",
     .Is = ItemForm::ColorText,
     .Take = [](Double V) { S.SpectrumLineColor = static_cast<Colour>(V); }},
    {.Slot = 7,
     .Key = "SpectrumEnvelopColor",
     .Default = "RGB(255, 255, 255)",
     .Is = ItemForm::ColorText,
     .Take = [](Double V) { S.SpectrumEnvelopColor = static_cast<Colour>(V); }},
    {.Slot = 8,
     .Key = "SpectrumSelectionColor",
     .Default = "RGB(255, 0, 255)",
     .Is = ItemForm::ColorText,
     .Take = [](Double V) { S.SpectrumSelectionColor = static_cast<Colour>(V); }},
    {.Slot = 9, .Key = "DefaultColorSet", .Default = "MorvantisColors", .Is = ItemForm::ColorSet},
    {.Slot = 10, .Key = "DefaultRadiusSet", .Default = "BallsSticksRadii", .Is = ItemForm::RadiusSet},
    {.Slot = 11,
     .Key = "SemiEmpiricalMethod",
     .Default = "KRDO2",
     .Is = ItemForm::Word,
     .AfterWarning = "KRDO2",
     .TakeText = [](const Text& V) { W.SemiEmpiricalMethod = V; },
     .Words = MethodWords},
    {.Slot = 12,
     .Key = "TotalCharge",
     .Default = "0",
     .Is = ItemForm::WholeRange,
     .Low = -10,
     .High = 10,
     .AfterWarning = "0",
     .Take = [](Double V) { W.TotalCharge = ToInteger(V); }},
    {.Slot = 13,
     .Key = "SpinMultiplicity",
     .Default = "1",
     .Is = ItemForm::WholeRange,
     .Low = 1,
     .High = 1,
     .AfterWarning = "1",
     .Take = [](Double V) { W.SpinMultiplicity = ToInteger(V); }},
    {.Slot = 14,
     .Key = "SCFConvergenceLimit",
     .Default = "0.01",
     .Is = ItemForm::Range,
     .Low = 0,
     .High = 1000,
     .AfterWarning = "0.01",
     .Take = [](Double V) { W.SCFConvergenceLimit = ToSingle(V); }},
    {.Slot = 15,
     .Key = "SCFIterationLimit",
     .Default = "50",
     .Is = ItemForm::WholeRange,
     .Low = 0,
     .High = 10000,
     .AfterWarning = "50",
     .Take = [](Double V) { W.SCFIterationLimit = ToInteger(V); }},
    {.Slot = 16,
     .Key = "SCFAccelerateConvergence",
     .Default = "No",
     .Is = ItemForm::YesNo,
     .Take = [](Double V) { W.SCFAccelerateConvergence = AsFlag(V); }},
    {.Slot = 17,
     .Key = "LogPrintLevel",
     .Default = "0",
     .Is = ItemForm::Whole,
     .Take = [](Double V) { W.LogPrintLevel = ToInteger(V); }},
    {.Slot = 26,
     .Key = "MinimalIntensity",
     .Default = "0.1",
     .Is = ItemForm::Range,
     .Low = 0,
     .High = 1000,
     .AfterWarning = "0.1",
     .Take = [](Double V) { W.MinimalIntensity = V; }},
    {.Slot = 27,
     .Key = "AbsLineWidth",
     .Default = "No",
     .Is = ItemForm::YesNo,
     .Take = [](Double V) { W.AbsLineWidth = AsFlag(V); }},
    {.Slot = 28,
     .Key = "MinAbsLineWidth",
     .Default = "0.0",
     .Is = ItemForm::WidthRange,
     .Low = 0,
     .High = 1000,
     .AfterWarning = "0",
     .Take = [](Double V) { W.MinAbsLineWidth = ToSingle(V); }},
    {.Slot = 29,
     .Key = "MaxAbsLineWidth",
     .Default = "10.0",
     .Is = ItemForm::WidthRange,
     .Low = 0,
     .High = 1000,
     .AfterWarning = "10",
     .Take = [](Double V) { W.MaxAbsLineWidth = ToSingle(V); }},
    {.Slot = 18,
     .Key = "ModifySlaterExponents",
     .Default = "Yes",
     .Is = ItemForm::YesNo,
     .Take = [](Double V) { W.ModifySlaterExponents = AsFlag(V); }},
    {.Slot = 19,
     .Key = "ComputeThreeCenterTerms",
     .Default = "No",
     .Is = ItemForm::YesNo,
     .Take = [](Double V) { W.ComputeThreeCenterTerms = AsFlag(V); }},
    {.Slot = 20,
     .Key = "IncludeDOrbitalsForSecondRow",
     .Default = "No",
     .Is = ItemForm::YesNo,
     .Take = [](Double V) { W.IncludeDOrbitalsForSecondRow = AsFlag(V); }},
    {.Slot = 21,
     .Key = "CalculateShielding",
     .Default = "Yes",
     .Is = ItemForm::YesNo,
     .Take = [](Double V) { W.CalculateShielding = AsFlag(V); }},
    {.Slot = 22,
     .Key = "CalculateCoupling",
     .Default = "Yes",
     .Is = ItemForm::YesNo,
     .Take = [](Double V) { W.CalculateCoupling = ToSingle(V); }},
    {.Slot = 23,
     .Key = "NMRFrequency",
     .Default = "100",
     .Is = ItemForm::WholeRange,
     .Low = 1,
     .High = 1000000,
     .AfterWarning = "100",
     .Take = [](Double V) { W.NMRFrequency = ToLong(V); }},
    {.Slot = 24,
     .Key = "SpectraType",
     .Default = "Proton",
     .Is = ItemForm::Word,
     .AfterWarning = "Proton",
     .TakeText = [](const Text& V) { W.SpectraType = SpectrumTypeFromText(V); },
     .Words = TypeWords},
    {.Slot = 30,
     .Key = "WeakCouplingApproximation",
     .Default = "No",
     .Is = ItemForm::YesNo,
     .Take = [](Double V) { W.WeakCouplingApproximation = AsFlag(V); }},
    {.Slot = 31,
     .Key = "CalculateShieldingTensor",
     .Default = "Yes",
     .Is = ItemForm::YesNo,
     .Take = [](Double V) { W.CalculateShieldTensor = AsFlag(V); }},
}};

// The slots in the order in which they are written. The names of the default sets are never written.
constexpr std::array<int, 29> WriteOrder = {0,  1,  2,  3,  4,  5,  6,  7,  8,  11, 12, 13, 14, 15, 16,
                                            17, 26, 27, 28, 29, 18, 19, 20, 21, 31, 22, 23, 24, 30};

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
  if (Row.Take != nullptr) Row.Take(Taken);
}

void ReadWord(const SettingRow& Row, const Text& Value) {
  const bool Listed = IsListed(Row.Words, TrimBlanks(Value));
  if (!Listed) WarnOfValue(Row, TrimBlanks(Value));
  const Text Taken = Listed ? Value : Text(Row.AfterWarning);
  SetSettingsText(Row.Slot, Taken);
  Row.TakeText(Text(TrimBlanks(Taken)));
}

void ReadColor(const SettingRow& Row, const Text& Value) {
  SetSettingsText(Row.Slot, Value);
  const std::optional<Colour> Read = ColorFromText(Value);
  if (!Read) throw Failure(failures::TypeMismatch);
  Row.Take(*Read);
}

void ReadItem(const SettingRow& Row) {
  const Text Value = ReadIniText(NmrSection, Row.Key, Row.Default);
  switch (Row.Is) {
    case ItemForm::WholeRange:
    case ItemForm::Range:
    case ItemForm::WidthRange:
      return ReadNumber(Row, Value);
    case ItemForm::Word:
      return ReadWord(Row, Value);
    case ItemForm::ColorText:
      return ReadColor(Row, Value);
    default:
      SetSettingsText(Row.Slot, Value);
  }
  if (Row.Is == ItemForm::Whole) Row.Take(StrictInteger(Value));
  if (Row.Is == ItemForm::YesNo) Row.Take(BoolFromText(Value));
  if (Row.Is == ItemForm::ColorSet) SelectColorSet(FindColorSet(Value));
  if (Row.Is == ItemForm::RadiusSet) SelectRadiusSet(FindRadiusSet(Value));
}

void UpdateOptionTexts() {
  SetSettingsText(11, W.SemiEmpiricalMethod);
  SetSettingsText(12, GeneralForm(W.TotalCharge));
  SetSettingsText(13, GeneralForm(W.SpinMultiplicity));
  SetSettingsText(14, GeneralForm(W.SCFConvergenceLimit));
  SetSettingsText(15, GeneralForm(W.SCFIterationLimit));
  SetSettingsText(16, TextFromBool(W.SCFAccelerateConvergence));
  SetSettingsText(17, GeneralForm(W.LogPrintLevel));
  SetSettingsText(18, TextFromBool(W.ModifySlaterExponents));
  SetSettingsText(19, TextFromBool(W.ComputeThreeCenterTerms));
  SetSettingsText(20, TextFromBool(W.IncludeDOrbitalsForSecondRow));
  SetSettingsText(21, TextFromBool(W.CalculateShielding));
  SetSettingsText(22, TextFromBool(ToInteger(W.CalculateCoupling)));
  SetSettingsText(23, GeneralForm(W.NMRFrequency));
  SetSettingsText(24, TextFromSpectrumType(W.SpectraType));
  SetSettingsText(26, GeneralForm(W.MinimalIntensity));
  SetSettingsText(27, TextFromBool(W.AbsLineWidth));
  SetSettingsText(28, GeneralForm(W.MinAbsLineWidth));
  SetSettingsText(29, GeneralForm(W.MaxAbsLineWidth));
  SetSettingsText(30, TextFromBool(W.WeakCouplingApproximation));
  SetSettingsText(31, TextFromBool(W.CalculateShieldTensor));
}

// The preferences keep the real colours, also while the spectrum is shown in monochrome.
void UpdateColorTexts() {
  SetSettingsText(6, TextFromColor(S.PrefGraphColor));
  SetSettingsText(7, TextFromColor(S.PrefEnvelopColor));
  SetSettingsText(8, TextFromColor(S.PrefSelectionColor));
  if (!IsSet(S.PrefMoleculeSet)) return;
  SetSettingsText(2, TextFromColor(S.PrefBackColor));
  SetSettingsText(3, TextFromColor(S.PrefLabelColor));
  SetSettingsText(5, TextFromColor(S.PrefMolSelectColor));
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
  ReadReferenceShieldings(W.ReferenceShielding, ReferenceSection);
}

void WriteSettings() {
  UpdateOptionTexts();
  UpdateColorTexts();
  std::vector<ProfileEntry> Entries;
  for (const int Slot : WriteOrder) {
    const auto Row = std::find_if(Rows.begin(), Rows.end(), [&](const SettingRow& R) { return R.Slot == Slot; });
    Entries.push_back({NmrSection, Row->Key, S.SettingsText[static_cast<std::size_t>(Slot)]});
  }
  const std::vector<ProfileEntry> References = ReferenceShieldingEntries();
  Entries.insert(Entries.end(), References.begin(), References.end());
  WritePrivateProfileStrings(Entries, S.IniFile);
}

std::vector<Text> SettingKeys() {
  std::vector<Text> Keys;
  Keys.reserve(Rows.size());
  for (const SettingRow& Row : Rows) Keys.emplace_back(Row.Key);
  return Keys;
}

}  // namespace zelvanor
