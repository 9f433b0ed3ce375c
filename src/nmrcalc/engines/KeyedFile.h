#pragma once

#include <string>
#include <vector>

#include "nmrcalc/input/InputText.h"

namespace nmrcalc {

// Files of sections "[name]" and lines "Key = value"; ";" and "#" begin a line of comment. Upper and lower case of
// names and keys are the same; of keys that stand twice in a section the first one counts, as in the program's
// profiles.

struct KeyedLine {
  std::string Key{};
  std::string Value{};   // without blanks at its ends and without a pair of quotes around it
  std::size_t Line = 0;  // from 0
};

struct KeyedSection {
  std::string Name{};
  std::size_t Line = 0;
  std::vector<KeyedLine> Lines{};
};

struct KeyedFile {
  TextFile File{};
  std::vector<KeyedSection> Sections{};
};

// Throws Failure when the file cannot be read or holds a line that is neither.
KeyedFile ReadKeyedFile(const std::string& Path);

// Null when there is none.
const KeyedSection* FindSection(const KeyedFile& File, const std::string& Name);
const KeyedLine* FindKey(const KeyedSection& Section, const std::string& Key);

}  // namespace nmrcalc
