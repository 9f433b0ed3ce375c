#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// Initialisation files: sections in square brackets, lines "key = value", comments behind ";" or "#" at a line's start.
// Sections and keys are told apart without case; of keys that stand twice the first one counts. Values are taken
// without blanks and tabs at their ends and without a pair of quotes around them.

// A look-up gives at most this many characters.
inline constexpr std::size_t ProfileTextLimit = 128;

// The value of a key, or Default where file, section or key is missing.
Text GetPrivateProfileString(TextView Section, TextView Key, TextView Default, const Text& File);

// The same from win.ini.
Text GetProfileString(TextView Section, TextView Key, TextView Default);

struct ProfileEntry {
  Text Section;
  Text Key;
  Text Value;
};

// Writes values, making sections and keys that are missing; everything else in the file, comments, order and unknown
// keys, stays as it is. The file is replaced in one step. False when that failed: the file is then as it was.
bool WritePrivateProfileStrings(const std::vector<ProfileEntry>& Entries, const Text& File);

}  // namespace zelvanor
