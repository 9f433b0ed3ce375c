#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <ranges>
#include <vector>

#include "basic/Array.h"
#include "basic/FixedText.h"
#include "basic/NumberText.h"
#include "basic/Numbers.h"

namespace zelvanor {

// The variables of the program by name, for scripts. Each room adds its own in one routine, which program.cpp calls.

// A variable's value, or one element of it, in the form that scripts print and assign: numbers in general form,
// texts bare (IsText tells that they are quoted when printed).
struct VariableAccess {
  bool IsText = false;
  // Number of indices that an element takes: 0 for a plain variable.
  int Dimensions = 0;
  std::function<Text(int First, int Second)> Read;
  std::function<void(int First, int Second, const Text& Value)> Write;
  // Elements in use: of an array, or the rows of a two-dimensional one. RowCount gives the used elements of one row.
  std::function<int()> Count;
  std::function<int(int Row)> RowCount;
};

class VariableTable {
 public:
  void Add(const Text& Name, VariableAccess Access) { Entries[Name] = std::move(Access); }
  const VariableAccess* Find(const Text& Name) const {
    const auto Entry = Entries.find(Name);
    return Entry == Entries.end() ? nullptr : &Entry->second;
  }

 private:
  std::map<Text, VariableAccess> Entries;
};

VariableTable& Variables();

// How one element is read and written, by its type.
inline Text ElementText(Integer Value) { return GeneralForm(Value); }
inline Text ElementText(Long Value) { return GeneralForm(Value); }
inline Text ElementText(Flag Value) { return GeneralForm(Value); }
inline Text ElementText(Single Value) { return GeneralForm(Value); }
inline Text ElementText(Double Value) { return GeneralForm(Value); }
inline Text ElementText(const Text& Value) { return Value; }
template <std::size_t N>
Text ElementText(const FixedText<N>& Value) {
  return Text(Value.Trimmed());
}
inline void AssignElement(Integer& Target, const Text& Value) { Target = StrictInteger(Value); }
inline void AssignElement(Long& Target, const Text& Value) { Target = StrictLong(Value); }
inline void AssignElement(Flag& Target, const Text& Value) { Target = static_cast<Flag>(int(StrictInteger(Value))); }
inline void AssignElement(Single& Target, const Text& Value) { Target = StrictSingle(Value); }
inline void AssignElement(Double& Target, const Text& Value) { Target = StrictNumber(Value); }
inline void AssignElement(Text& Target, const Text& Value) { Target = Value; }
template <std::size_t N>
void AssignElement(FixedText<N>& Target, const Text& Value) {
  Target = Value;
}

template <class T>
inline constexpr bool IsTextElement = !std::is_arithmetic_v<T> && !std::is_same_v<T, Integer>;

template <class T>
void AddVariable(const Text& Name, T& Variable) {
  VariableAccess Access;
  Access.IsText = IsTextElement<T>;
  Access.Read = [&Variable](int, int) { return ElementText(Variable); };
  Access.Write = [&Variable](int, int, const Text& Value) { AssignElement(Variable, Value); };
  Variables().Add(Name, std::move(Access));
}

// Far beyond every list of the program, but for peaks; an assignment behind it is a slip and not worth the memory.
inline constexpr int LargestAssignedIndex = 1000000;

// One dimension; Elements is an Array, a std::array or a plain array. An Array that is too short for an assigned
// element grows.
template <class Elements>
void AddArray(const Text& Name, Elements& Variable, std::function<int()> Count) {
  using T = std::remove_reference_t<decltype(Variable[0])>;
  constexpr bool Fixed = std::ranges::sized_range<Elements>;
  VariableAccess Access;
  Access.IsText = IsTextElement<T>;
  Access.Dimensions = 1;
  if constexpr (Fixed) {
    const auto Check = [&Variable](int Index) -> T& {
      if (Index < 0 || static_cast<std::size_t>(Index) >= std::size(Variable)) throw Failure(failures::Subscript);
      return Variable[static_cast<std::size_t>(Index)];
    };
    Access.Read = [Check](int Index, int) { return ElementText(Check(Index)); };
    Access.Write = [Check](int Index, int, const Text& Value) { AssignElement(Check(Index), Value); };
  } else {
    Access.Read = [&Variable](int Index, int) { return ElementText(Variable[Index]); };
    Access.Write = [&Variable](int Index, int, const Text& Value) {
      if (Index > std::max(Variable.UpperBound(), LargestAssignedIndex)) throw Failure(failures::Subscript);
      if (Index > Variable.UpperBound()) Variable.ReDimPreserve(Index);
      AssignElement(Variable[Index], Value);
    };
  }
  Access.Count = std::move(Count);
  Variables().Add(Name, std::move(Access));
}

template <class T>
void AddArray2(const Text& Name, Array2<T>& Variable, std::function<int()> Rows, std::function<int(int)> RowCount) {
  VariableAccess Access;
  Access.IsText = IsTextElement<T>;
  Access.Dimensions = 2;
  Access.Read = [&Variable](int Row, int Column) { return ElementText(Variable(Row, Column)); };
  Access.Write = [&Variable](int Row, int Column, const Text& Value) { AssignElement(Variable(Row, Column), Value); };
  Access.Count = std::move(Rows);
  Access.RowCount = std::move(RowCount);
  Variables().Add(Name, std::move(Access));
}

}  // namespace zelvanor
