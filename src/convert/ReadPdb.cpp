// PDB, format 3.3 of wwPDB: atoms by columns, bonds of CONECT. Of alternate places the first is taken.

#include <algorithm>
#include <map>
#include <set>

#include "basic/Elements.h"
#include "convert/Lines.h"
#include "convert/Records.h"
#include "files/MoleculeTree.h"

namespace zelvanor::convert {

namespace {

// Columns from 1, both ends included; without blanks at its ends.
TextView Columns(TextView Line, std::size_t First, std::size_t Last) {
  if (Line.size() < First) return {};
  return TrimBlanks(Line.substr(First - 1, Last - First + 1));
}

bool IsLetter(char C) { return UpperChar(C) >= 'A' && UpperChar(C) <= 'Z'; }

// By columns 77 and 78; where they are blank by the name, whose element ends in column 14.
bool TakeElement(StructureAtom& Atom, TextView Line) {
  if (const TextView Given = Columns(Line, 77, 78); !Given.empty() && TakeSymbol(Atom, Given)) return true;
  TextView Name = Columns(Line, 13, 14);
  while (!Name.empty() && !IsLetter(Name.front())) Name.remove_prefix(1);
  // Names of four letters begin in column 13, those of hydrogens mostly.
  if (Name.size() == 2 && UpperChar(Name[0]) == 'H' && Columns(Line, 13, 16).size() == 4) Name = Name.substr(0, 1);
  if (Name.size() == 2 && !IsLetter(Name[1])) Name = Name.substr(0, 1);
  return !Name.empty() && (TakeSymbol(Atom, Name) || TakeSymbol(Atom, Name.substr(0, 1)));
}

int ChargeOf(TextView Field) {
  if (Field.size() != 2) return 0;
  const bool SignFirst = Field[0] == '+' || Field[0] == '-';
  const char Digit = Field[SignFirst ? 1 : 0];
  const char Sign = Field[SignFirst ? 0 : 1];
  return Digit < '0' || Digit > '9' || (Sign != '+' && Sign != '-') ? 0 : (Sign == '-' ? '0' - Digit : Digit - '0');
}

struct PdbState {
  Structure Whole;
  std::map<Long, int> AtomOfSerial;
  std::set<std::pair<int, int>> Bonds;
  char Alternate = ' ';  // the one that is taken
};

void TakeAtom(const LineWalk& Walk, PdbState& State) {
  if (Walk.Line.size() < 54) Walk.Refuse("the line of an atom ends before its coordinates");
  const char Alternate = Walk.Line[16];
  if (Alternate != ' ') {
    if (State.Alternate == ' ') State.Alternate = Alternate;
    if (Alternate != State.Alternate) return;
  }
  StructureAtom Atom;
  Atom.Name = Columns(Walk.Line, 13, 16);
  if (!TakeElement(Atom, Walk.Line)) Walk.Refuse("the element of an atom can't be told");
  for (std::size_t Axis = 0; Axis < 3; ++Axis) {
    Atom.Place[Axis] = NumberAt(Walk, Columns(Walk.Line, 31 + 8 * Axis, 38 + 8 * Axis));
  }
  Atom.Charge = ChargeOf(Columns(Walk.Line, 79, 80));
  State.AtomOfSerial[PrefixIndex(Columns(Walk.Line, 7, 11))] = State.Whole.Count();
  AddAtom(Walk, State.Whole, Atom);
}

void TakeBonds(const LineWalk& Walk, PdbState& State) {
  const auto AtomAt = [&](std::size_t Column) {
    const TextView Field = Columns(Walk.Line, Column, Column + 4);
    const auto Found = State.AtomOfSerial.find(PrefixIndex(Field));
    return Field.empty() || Found == State.AtomOfSerial.end() ? -1 : Found->second;
  };
  const int From = AtomAt(7);
  for (std::size_t Column = 12; From >= 0 && Column <= 27; Column += 5) {
    const int To = AtomAt(Column);
    if (To >= 0 && To != From) State.Bonds.insert(std::minmax(From, To));
  }
}

}  // namespace

Structure ReadPdb(TextView Content) {
  LineWalk Walk{Content};
  PdbState State;
  while (Walk.Next()) {
    if (Walk.Line.starts_with("ATOM  ") || Walk.Line.starts_with("HETATM")) {
      TakeAtom(Walk, State);
    } else if (Walk.Line.starts_with("CONECT")) {
      TakeBonds(Walk, State);
    } else if (Walk.Line.starts_with("COMPND") && State.Whole.Title.empty()) {
      State.Whole.Title = PlainTitle(Walk.Line.substr(6));
    }
  }
  if (State.Whole.Atoms.empty()) throw Failure("there are no atoms in it");
  for (const auto& [First, Second] : State.Bonds) State.Whole.Bonds.push_back({First, Second, SingleOrder});
  return std::move(State.Whole);
}

}  // namespace zelvanor::convert
