#include "nmrcalc/engines/KeyedFile.h"

#include "basic/TextTools.h"

namespace nmrcalc {

KeyedFile ReadKeyedFile(const std::string& Path) {
  KeyedFile Result{.File = ReadTextFile(Path)};
  for (std::size_t Line = 0; Line < Result.File.Lines.size(); ++Line) {
    const std::string_view Text = zelvanor::TrimWhite(Result.File.Lines[Line]);
    if (Text.empty() || Text.front() == ';' || Text.front() == '#') continue;
    if (Text.front() == '[' && Text.back() == ']') {
      Result.Sections.push_back(
          {.Name = std::string(zelvanor::TrimWhite(Text.substr(1, Text.size() - 2))), .Line = Line});
      continue;
    }
    const std::size_t Equals = Text.find('=');
    if (Equals == std::string_view::npos) FailAtLine(Result.File, Line, "neither a section nor a key with its value");
    if (Result.Sections.empty()) FailAtLine(Result.File, Line, "a key before the first section");
    std::string_view Value = zelvanor::TrimWhite(Text.substr(Equals + 1));
    if (Value.size() > 1 && Value.front() == '"' && Value.back() == '"') Value = Value.substr(1, Value.size() - 2);
    Result.Sections.back().Lines.push_back(
        {.Key = std::string(zelvanor::TrimWhite(Text.substr(0, Equals))), .Value = std::string(Value), .Line = Line});
  }
  return Result;
}

const KeyedSection* FindSection(const KeyedFile& File, const std::string& Name) {
  for (const KeyedSection& Section : File.Sections) {
    if (zelvanor::EqualsIgnoringCase(Section.Name, Name)) return &Section;
  }
  return nullptr;
}

const KeyedLine* FindKey(const KeyedSection& Section, const std::string& Key) {
  for (const KeyedLine& Line : Section.Lines) {
    if (zelvanor::EqualsIgnoringCase(Line.Key, Key)) return &Line;
  }
  return nullptr;
}

}  // namespace nmrcalc
