#pragma once

#include <optional>

#include "settings/SettingsState.h"

namespace zelvanor {

// Named sets of one colour, or one radius, for each element: sections of nmr.ini. Case is ignored in names.

void InitColorSets();
void InitRadiusSets();
// The index of a set; -1 when there is none of this name.
Integer FindColorSet(TextView Name);
Integer FindRadiusSet(TextView Name);
// Make a set current and read it; an index that is none selects set 0.
void SelectColorSet(int Index);
void SelectRadiusSet(int Index);
Text GetColorSetName(int Index);
Text GetRadiusSetName(int Index);

// "RGB(red,green,blue)", blanks round the numbers allowed; a text that is none is reported and gives no value. The
// numbers are not held to 255.
std::optional<Colour> ColorFromText(TextView Value);
// The same without a report.
std::optional<Colour> ReadColour(TextView Value);
Text TextFromColor(Colour Value);

inline constexpr Colour FallbackAtomColor = Rgb(192, 192, 192);
inline constexpr Single FallbackRadius = 0.3F;

}  // namespace zelvanor
