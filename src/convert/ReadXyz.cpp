// XYZ: the number of atoms, a title, then an atom a line: symbol or atomic number, and its place in angstrom. What
// stands behind the place is passed over.

#include "basic/Elements.h"
#include "convert/Lines.h"
#include "convert/Records.h"

namespace zelvanor::convert {

namespace {

// A title such as "charge=-1 ..." tells the charge of the whole.
void TakeCharge(Structure& Whole, TextView Title) {
  const std::size_t Place = Title.find("charge=");
  if (Place != TextView::npos) Whole.Charge = static_cast<int>(PrefixIndex(Title.substr(Place + 7)));
}

}  // namespace

bool TakeSymbol(StructureAtom& Atom, TextView Symbol) {
  constexpr int LastElement = 103;
  if (EqualsIgnoringCase(Symbol, "D") || EqualsIgnoringCase(Symbol, "T")) {
    Atom.Element = 1;
    Atom.Isotope = UpperChar(Symbol[0]) == 'D' ? 2 : 3;
    return true;
  }
  Atom.Element = ElementNumber(Symbol);
  return Atom.Element >= 1 && Atom.Element <= LastElement;
}

Structure ReadXyz(TextView Content) {
  LineWalk Walk{Content};
  Structure Whole;
  if (!Walk.Next()) throw Failure("there is nothing in it");
  const Double Stated = NumberAt(Walk, Walk.Line);
  if (!(Stated >= 1 && Stated <= MostAtoms)) Walk.Refuse("the number of atoms has to be from 1 to 32000");
  if (Walk.Next()) Whole.Title = PlainTitle(Walk.Line);
  TakeCharge(Whole, Walk.Line);
  while (Whole.Count() < static_cast<int>(Stated)) {
    if (!Walk.Next()) Walk.Refuse("the file ends before its last atom");
    const std::vector<TextView> Words = SplitWords(Walk.Line);
    if (Words.size() < 4) Walk.Refuse("an atom has to have a symbol and three coordinates");
    StructureAtom Atom;
    const Long Number = PrefixIndex(Words[0]);
    if (!TakeSymbol(Atom, Number > 0 && Number <= 103 ? ElementSymbol(Number) : Words[0])) {
      Walk.Refuse("the symbol is that of no element");
    }
    for (std::size_t Axis = 0; Axis < 3; ++Axis) Atom.Place[Axis] = NumberAt(Walk, Words[Axis + 1]);
    AddAtom(Walk, Whole, Atom);
  }
  return Whole;
}

}  // namespace zelvanor::convert
