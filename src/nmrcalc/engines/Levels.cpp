#include "nmrcalc/engines/Levels.h"

#include "basic/TextTools.h"
#include "nmrcalc/engines/KeyedFile.h"
#include "nmrcalc/input/Molecule.h"

namespace nmrcalc {

namespace {

std::string ValueOf(const KeyedFile& File, const KeyedSection& Section, const char* Key, bool Needed) {
  const KeyedLine* Line = FindKey(Section, Key);
  if (Line != nullptr && !Line->Value.empty()) return Line->Value;
  if (Needed) FailAtLine(File.File, Section.Line, "the level [" + Section.Name + "] has no " + Key);
  return "";
}

// The lists are symbols, each with its numbers: "H 31.6 C 184.2".
template <class Take>
void ReadBySymbol(const KeyedFile& File, const KeyedSection& Section, const std::string& Key, std::size_t NumNumbers,
                  const Take& TakeNumbers) {
  const KeyedLine* Line = FindKey(Section, Key);
  if (Line == nullptr) return;
  const auto Tokens = SplitTokens(Line->Value);
  if (Tokens.size() % (NumNumbers + 1) != 0) FailAtLine(File.File, Line->Line, "a list that is cut off");
  for (std::size_t K = 0; K < Tokens.size(); K += NumNumbers + 1) {
    const int AtomicNumber = AtomicNumberOf(Tokens[K]);
    if (AtomicNumber <= 0) FailAtLine(File.File, Line->Line, "unknown element \"" + std::string(Tokens[K]) + "\"");
    const double First = NumberAt(File.File, Line->Line, Tokens[K + 1], Key);
    TakeNumbers(AtomicNumber, First, NumNumbers > 1 ? NumberAt(File.File, Line->Line, Tokens[K + 2], Key) : 0.0);
  }
}

LevelVariant ReadVariant(const KeyedFile& File, const KeyedSection& Section, const std::string& Ending) {
  LevelVariant Variant;
  ReadBySymbol(File, Section, "Reference" + Ending, 1,
               [&](int Element, double Value, double) { Variant.References[Element] = Value; });
  ReadBySymbol(File, Section, "Error" + Ending, 1,
               [&](int Element, double Value, double) { Variant.Errors[Element] = Value; });
  ReadBySymbol(File, Section, "Scale" + Ending, 2, [&](int Element, double Intercept, double Slope) {
    Variant.Scales[Element] = {.Intercept = Intercept, .Slope = Slope};
  });
  return Variant;
}

Level TakeLevel(const KeyedFile& File, const KeyedSection& Section) {
  Level Result{.Name = Section.Name,
               .Title = ValueOf(File, Section, "Title", true),
               .Method = ValueOf(File, Section, "Method", false),
               .Functional = ValueOf(File, Section, "Functional", true),
               .Basis = ValueOf(File, Section, "Basis", true),
               .ShieldingBasis = ValueOf(File, Section, "ShieldingBasis", true),
               .CouplingBasis = ValueOf(File, Section, "CouplingBasis", true),
               .PlainSecondRow = ValueOf(File, Section, "PlainSecondRow", true),
               .AlwaysD = zelvanor::EqualsIgnoringCase(ValueOf(File, Section, "DOrbitals", false), "always")};
  const char* const Endings[2][2] = {{"Plain", "PlainD"}, {"Special", "SpecialD"}};
  for (std::size_t Special = 0; Special < 2; ++Special) {
    for (std::size_t WithD = 0; WithD < 2; ++WithD) {
      Result.Variants[Special][WithD] = ReadVariant(File, Section, Endings[Special][WithD]);
    }
  }
  return Result;
}

}  // namespace

Level ReadLevel(const std::string& ParameterDirectory, const std::string& Name, const std::string& Method) {
  const std::string Path = ParameterDirectory + (ParameterDirectory.ends_with('/') ? "" : "/") + LevelFile;
  const KeyedFile File = ReadKeyedFile(Path);
  for (const KeyedSection& Section : File.Sections) {
    const KeyedLine* Own = FindKey(Section, "Method");
    const bool Wanted = Name.empty() ? Own != nullptr && zelvanor::EqualsIgnoringCase(Own->Value, Method)
                                     : zelvanor::EqualsIgnoringCase(Section.Name, Name);
    if (Wanted) return TakeLevel(File, Section);
  }
  throw zelvanor::Failure(Path + " has no level " + (Name.empty() ? "for the method " + Method : "[" + Name + "]"));
}

}  // namespace nmrcalc
