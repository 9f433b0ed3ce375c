#pragma once

#include <optional>

#include "basic/Array.h"
#include "platform/Profile.h"
#include "settings/SettingsState.h"

namespace zelvanor {

// Sets the three directories from win.ini: from the section "Morvantis", else from "Zelvanor". True when a section gave
// them; else the program's own directory stands in for all three, with a warning.
Flag LoadProfilePaths();
// The working file names, from the directories.
void NameWorkingFiles();

// A text of the section "nmr" or another one of nmr.ini.
Text ReadIniText(TextView Section, TextView Key, TextView Default);

// The settings file's own scale of spectrum types, 0..4. An unknown text or index is warned of; it gives 0 or "??".
Integer SpectrumTypeFromText(TextView Value);
Text TextFromSpectrumType(Integer Index);

// An index outside 0..31 is ignored.
void SetSettingsText(int Index, TextView Value);

// Which ends of a range belong to it.
enum RangeMode { BothEndsIncluded = 1, HighEndIncluded = 2, NoEndIncluded = 3, LowEndIncluded = 4 };
// Any other mode is NoEndIncluded. With Report a box says what is wrong; ItemName, if any, heads it.
Flag CheckRange(Double Value, Integer Mode, Double Low, Double High, const Text& ItemName, Flag Report);
// The number of the text, or none when it isn't a number (no message) or outside the range.
std::optional<Double> ValidateNumberText(TextView Value, Integer Mode, Double Low, Double High, const Text& ItemName,
                                         Flag Report);

// The six reference shieldings of nmr.ini, by element symbol. A text that isn't a number is reported and ends the
// reading; what was read until then stays.
void ReadReferenceShieldings(Array<Single>& Values, const Text& Section);
// The six entries as they are written back.
std::vector<ProfileEntry> ReferenceShieldingEntries();
void WriteReferenceShieldings();

inline constexpr const char* ReferenceSection = "ReferenceShieldings";

}  // namespace zelvanor
