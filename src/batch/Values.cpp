#include <algorithm>
#include <cmath>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "batch/Batch.h"
#include "platform/Variables.h"

namespace zelvanor::batch {

namespace {

// A name with its indices: "Coupling[0,1]" is Coupling, 0, 1.
struct IndexedName {
  Text Name;
  std::vector<int> Indices;
};

IndexedName SplitIndices(const Text& Whole) {
  IndexedName Result;
  const std::size_t Open = Whole.find('[');
  Result.Name = Whole.substr(0, Open);
  if (Open == Text::npos) return Result;
  if (Whole.back() != ']') throw ScriptStop{CannotCarryOut, "an index has no end: " + Whole};
  for (std::size_t Place = Open + 1; Place < Whole.size();) {
    const std::size_t End = Whole.find_first_of(",]", Place);
    Result.Indices.push_back(ToLong(StrictNumber(TextView(Whole).substr(Place, End - Place))));
    Place = End + 1;
  }
  return Result;
}

const VariableAccess& NeedVariable(const IndexedName& Name) {
  const VariableAccess* Access = Variables().Find(Name.Name);
  if (Access == nullptr) throw ScriptStop{CannotCarryOut, "there is no variable " + Name.Name};
  if (!Name.Indices.empty() && static_cast<int>(Name.Indices.size()) != Access->Dimensions) {
    throw ScriptStop{CannotCarryOut, "wrong number of indices for " + Name.Name};
  }
  return *Access;
}

int IndexAt(const IndexedName& Name, std::size_t Place) {
  return Place < Name.Indices.size() ? Name.Indices[Place] : 0;
}

ScriptValue ReadWhole(const VariableAccess& Access) {
  ScriptValue Value{{}, Access.IsText, true};
  const int Count = Access.Count();
  for (int First = 0; First < Count; ++First) {
    const int Columns = Access.Dimensions == 2 ? Access.RowCount(First) : 1;
    for (int Second = 0; Second < Columns; ++Second) Value.Elements.push_back(Access.Read(First, Second));
  }
  return Value;
}

bool NumbersMatch(const Text& Actual, const Text& Expected) {
  if (Actual == Expected) return true;
  try {
    const Double A = StrictNumber(Actual);
    const Double B = StrictNumber(Expected);
    constexpr Double Rounding = 1e-9;  // where two nearly equal numbers round to different seventh digits
    return GeneralForm(static_cast<Single>(A)) == GeneralForm(static_cast<Single>(B)) ||
           std::fabs(A - B) <= Rounding * std::max(std::fabs(A), std::fabs(B));
  } catch (const Failure&) {
    return false;
  }
}

}  // namespace

bool IsVariable(const Text& Name) { return Variables().Find(Name.substr(0, Name.find('['))) != nullptr; }

ScriptValue ReadVariable(const Text& Name) {
  const IndexedName Split = SplitIndices(Name);
  const VariableAccess& Access = NeedVariable(Split);
  if (Access.Dimensions > 0 && Split.Indices.empty()) return ReadWhole(Access);
  return {{Access.Read(IndexAt(Split, 0), IndexAt(Split, 1))}, Access.IsText, false};
}

void AssignVariable(const Text& Name, const Text& Value) {
  const IndexedName Split = SplitIndices(Name);
  const VariableAccess& Access = NeedVariable(Split);
  if (Access.Dimensions > 0 && Split.Indices.empty()) {
    throw ScriptStop{CannotCarryOut, "an array is assigned by its elements: " + Name};
  }
  Access.Write(IndexAt(Split, 0), IndexAt(Split, 1), Value);
}

Text PrintedValue(const ScriptValue& Value) {
  Text Result;
  for (const Text& Element : Value.Elements) {
    if (!Result.empty()) Result += ' ';
    Result += Value.IsText ? Escaped(Element) : Element;
  }
  return Result;
}

bool Matches(const ScriptValue& Actual, const std::vector<Argument>& Expected) {
  if (Actual.IsText && !Actual.IsArray) {
    // A text with blanks may stand unquoted.
    Text Whole;
    for (const Argument& Word : Expected) Whole += (&Word == &Expected.front() ? "" : " ") + Word.Value;
    const Text& Element = Actual.Elements.front();
    return Element == Whole || (Actual.ComparesAsNumber && NumbersMatch(Element, Whole));
  }
  return std::equal(Actual.Elements.begin(), Actual.Elements.end(), Expected.begin(), Expected.end(),
                    [&](const Text& Element, const Argument& Word) {
                      if (Actual.IsText) return Element == Word.Value;
                      // A list of numbers may hold a quoted text among them.
                      return NumbersMatch(Element, Word.Value) || (Word.WasQuoted && Element == Escaped(Word.Value));
                    });
}

}  // namespace zelvanor::batch
