#include "settings/ProfileAccess.h"

#include "basic/Numbers.h"
#include "platform/Paths.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

SettingsState& S = Settings;

constexpr int NumStoredReferences = 6;

struct SpectrumTypeRow {
  const char* Form;
  const char* Word;  // both words are accepted in any case
  const char* LongWord;
};

// The scale has no oxygen: an index of 3 comes back as 3, whatever nucleus it stood for.
constexpr std::array<SpectrumTypeRow, 5> SpectrumTypes = {{
    {"Proton", "HYDROGEN", "PROTON"},
    {"Carbon-13", "CARBON", "CARBON-13"},
    {"Nitrogen-15", "NITROGEN", "NITROGEN-15"},
    {"Fluorine-19", "FLUORINE", "FLUORINE-19"},
    {"Phosphorus-31", "PHOSPHORUS", "PHOSPHORUS-31"},
}};

void WarnOfSpectrumType(TextView Value) {
  ShowWarning(Join("Spectrum type ", Quoted(Value), " is not supported by the current version of Zelvanor."));
}

bool LoadPathsFrom(const char* Section) {
  const Text Exe = GetProfileString(Section, "NMRExePath", "");
  if (Exe.empty()) return false;
  S.NMRExePath = Exe;
  S.NMRIniPath = GetProfileString(Section, "NMRIniPath", "");
  if (S.NMRIniPath.empty()) S.NMRIniPath = Exe;
  S.NMRParmPath = GetProfileString(Section, "NMRParmPath", "");
  if (S.NMRParmPath.empty()) S.NMRParmPath = Exe;
  return true;
}

Text ReferenceKey(int Entry) { return ElementSymbol(Workspace.ReferenceElement[Entry]); }

}  // namespace

Flag LoadProfilePaths() {
  if (LoadPathsFrom("Morvantis") || LoadPathsFrom("Zelvanor")) return True;
  const Text Own = Platform.ProgramDirectory();
  ShowWarning(Join("There is neither Morvantis section nor Zelvanor section in your win.ini file.",
                   "  So Zelvanor supposes that the following file are at the directory ", Own, ":",
                   "  nmr.ini, nmrcalc.exe, nmr_shft.abp, nmr_cupl.abp, etc"));
  S.NMRExePath = S.NMRIniPath = S.NMRParmPath = Own;
  return False;
}

void NameWorkingFiles() {
  const Text Folder = S.NMRIniPath + PathSeparator;
  S.ParamInputFile = Folder + "nmrparam.in";
  S.SpectInputFile = Folder + "nmrspect.in";
  S.ParamOutputFile = Folder + "nmrparam.out";
  S.ParamErrorFile = Folder + "nmrparam.err";
  S.SpectOutputFile = Folder + "nmrspect.out";
  S.IniFile = Folder + "nmr.ini";
  S.CalcExeFile = S.NMRExePath + PathSeparator + "nmrcalc.exe";
}

Text ReadIniText(TextView Section, TextView Key, TextView Default) {
  return GetPrivateProfileString(Section, Key, Default, S.IniFile);
}

Integer SpectrumTypeFromText(TextView Value) {
  for (std::size_t Index = 0; Index < SpectrumTypes.size(); ++Index) {
    const SpectrumTypeRow& Row = SpectrumTypes[Index];
    if (EqualsIgnoringCase(Value, Row.Word) || EqualsIgnoringCase(Value, Row.LongWord))
      return {static_cast<int>(Index)};
  }
  WarnOfSpectrumType(Value);
  return 0;
}

Text TextFromSpectrumType(Integer Index) {
  if (Index >= 0 && Index < static_cast<int>(SpectrumTypes.size())) {
    return SpectrumTypes[static_cast<std::size_t>(int(Index))].Form;
  }
  WarnOfSpectrumType(GeneralForm(Index));
  return "??";
}

void SetSettingsText(int Index, TextView Value) {
  if (Index >= 0 && Index < NumSettingsTexts) S.SettingsText[static_cast<std::size_t>(Index)] = Value;
}

Flag CheckRange(Double Value, Integer Mode, Double Low, Double High, const Text& ItemName, Flag Report) {
  const bool LowIncluded = Mode == BothEndsIncluded || Mode == LowEndIncluded;
  const bool HighIncluded = Mode == BothEndsIncluded || Mode == HighEndIncluded;
  const Text Prefix = IsSet(Report) && !ItemName.empty() ? Join("Error updating ", Quoted(ItemName), "\n") : Text();
  const auto Refuse = [&](const char* Relation, bool Included, Double Limit) {
    if (IsSet(Report)) {
      ShowError(Join(Prefix, "Provide a value ", Relation, " than ", Included ? "or equal to " : "", Limit, "."));
    }
    return False;
  };
  if (!(LowIncluded ? Value >= Low : Value > Low)) return Refuse("greater", LowIncluded, Low);
  if (!(HighIncluded ? Value <= High : Value < High)) return Refuse("less", HighIncluded, High);
  return True;
}

std::optional<Double> ValidateNumberText(TextView Value, Integer Mode, Double Low, Double High, const Text& ItemName,
                                         Flag Report) {
  Double Number = 0;
  try {
    Number = StrictNumber(TrimBlanks(Value));
  } catch (const Failure&) {
    return {};
  }
  if (!IsSet(CheckRange(Number, Mode, Low, High, ItemName, Report))) return {};
  return Number;
}

void ReadReferenceShieldings(Array<Single>& Values, const Text& Section) {
  for (int Entry = 0; Entry < NumStoredReferences; ++Entry) {
    const Text Key = ReferenceKey(Entry);
    try {
      Values[Entry] = StrictSingle(TrimBlanks(ReadIniText(Section, Key, "0.0")));
    } catch (const Failure&) {
      ShowError(Join("Error reading reference shieldings entry for ", Quoted(Key), " in section [", Section, "]"));
      return;
    }
  }
}

std::vector<ProfileEntry> ReferenceShieldingEntries() {
  std::vector<ProfileEntry> Entries;
  Entries.reserve(NumStoredReferences);
  for (int Entry = 0; Entry < NumStoredReferences; ++Entry) {
    Entries.push_back({ReferenceSection, ReferenceKey(Entry), GeneralForm(Workspace.ReferenceShielding[Entry])});
  }
  return Entries;
}

void WriteReferenceShieldings() { WritePrivateProfileStrings(ReferenceShieldingEntries(), S.IniFile); }

}  // namespace zelvanor
