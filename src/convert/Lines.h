#pragma once

#include <utility>

#include "basic/Numbers.h"
#include "basic/TextTools.h"
#include "convert/Structure.h"

namespace zelvanor::convert {

// The lines of a record, one after another, with their numbers for messages.
struct LineWalk {
  TextView Rest;
  TextView Line{};
  int Number = 0;

  bool Next() {
    if (Rest.empty()) return false;
    const std::size_t End = std::min(Rest.find('\n'), Rest.size());
    Line = Rest.substr(0, End);
    Rest.remove_prefix(std::min(End + 1, Rest.size()));
    ++Number;
    return true;
  }
  [[noreturn]] void Refuse(const char* Reason) const {
    throw Failure("line " + std::to_string(Number) + ": " + Reason);
  }
};

inline Double NumberAt(const LineWalk& Walk, TextView Value) {
  try {
    return StrictNumber(Value);
  } catch (const Failure&) {
    Walk.Refuse("a number is missing");
  }
}

// Sets element and isotope by a symbol, D and T being hydrogen's. False for no element.
bool TakeSymbol(StructureAtom& Atom, TextView Symbol);

inline void AddAtom(const LineWalk& Walk, Structure& Whole, StructureAtom Atom) {
  if (Whole.Count() == MostAtoms) Walk.Refuse("there are more than 32000 atoms");
  Whole.Atoms.push_back(std::move(Atom));
}

}  // namespace zelvanor::convert
