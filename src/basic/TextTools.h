#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// Upper and lower case of the 26 Latin letters; every other byte stands as it is, in every locale.
constexpr char UpperChar(char C) { return C >= 'a' && C <= 'z' ? static_cast<char>(C - 'a' + 'A') : C; }
Text UpperCase(TextView Value);
bool EqualsIgnoringCase(TextView Left, TextView Right);

// Without the blanks (not tabs) at both ends, or at the left alone.
TextView TrimBlanks(TextView Value);
TextView TrimLeftBlanks(TextView Value);
// What stands between the words of a line; of one that may still end with a carriage return; of a whole text.
inline constexpr TextView Separators = " \t";
inline constexpr TextView LineSeparators = " \t\r";
inline constexpr TextView TextSeparators = " \t\r\n";
// The words of a line between its blanks; nothing is quoted.
std::vector<Text> SplitAtBlanks(const Text& Line);
// The words of a line between any of these characters.
std::vector<TextView> SplitWords(TextView Line, TextView Between = Separators);
// Calls Take with each word between the blanks and tabs of a line, in order.
template <class Visit>
void ForEachWord(TextView Line, const Visit& Take) {
  const auto Separates = [](char C) { return C == Separators[0] || C == Separators[1]; };
  const char* Place = Line.data();
  const char* const End = Place + Line.size();
  for (;;) {
    while (Place != End && Separates(*Place)) ++Place;
    if (Place == End) return;
    const char* const First = Place;
    while (Place != End && !Separates(*Place)) ++Place;
    Take(TextView(First, static_cast<std::size_t>(Place - First)));
  }
}
// Without blanks, tabs and line ends at both ends.
TextView TrimWhite(TextView Value);

// Names in a molecule may be of any bytes; pictures and pages hold UTF-8. What is not UTF-8 counts as Latin-1, and
// control characters become blanks.
Text PlainUtf8(TextView Value);

}  // namespace zelvanor
