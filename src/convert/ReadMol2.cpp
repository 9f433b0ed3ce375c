// mol2: sections behind @<TRIPOS> lines. Bonds that are aromatic there, those of carboxylates and guanidinium among
// them, get their orders from the valences.

#include <algorithm>
#include <map>

#include "convert/Lines.h"
#include "convert/Records.h"
#include "files/MoleculeTree.h"

namespace zelvanor::convert {

namespace {

struct Mol2State {
  Structure Whole;
  std::map<Long, int> AtomOfId;
  bool HasCharges = true;
  int Attributed = -1;  // the atom that the lines of attributes are of
};

int AtomOf(const LineWalk& Walk, const Mol2State& State, TextView Id) {
  const auto Found = State.AtomOfId.find(PrefixIndex(Id));
  if (Found == State.AtomOfId.end()) Walk.Refuse("a bond to an atom that is not there");
  return Found->second;
}

void TakeMoleculeLine(const LineWalk& Walk, int Line, Mol2State& State) {
  if (Line == 1) State.Whole.Title = PlainTitle(Walk.Line);
  if (Line == 4) State.HasCharges = Walk.Line.find("NO_CHARGES") == TextView::npos;
}

// Lone pairs and dummies are no atoms.
bool IsNoAtom(TextView Type) { return EqualsIgnoringCase(Type, "LP") || EqualsIgnoringCase(Type.substr(0, 2), "DU"); }

void TakeAtomLine(const LineWalk& Walk, Mol2State& State) {
  const std::vector<TextView> Words = SplitWords(Walk.Line);
  if (Words.size() < 6) Walk.Refuse("an atom has to have an id, a name, three coordinates and a type");
  if (IsNoAtom(Words[5])) {
    State.AtomOfId[PrefixIndex(Words[0])] = -1;
    return;
  }
  StructureAtom Atom;
  Atom.Name = Words[1];
  for (std::size_t Axis = 0; Axis < 3; ++Axis) Atom.Place[Axis] = NumberAt(Walk, Words[Axis + 2]);
  if (!TakeSymbol(Atom, TextView(Words[5]).substr(0, Words[5].find('.')))) {
    Walk.Refuse("the type of an atom is that of no element");
  }
  if (Words.size() > 8 && State.HasCharges) Atom.Partial = NumberAt(Walk, Words[8]);
  State.AtomOfId[PrefixIndex(Words[0])] = State.Whole.Count();
  AddAtom(Walk, State.Whole, Atom);
}

void TakeBondLine(const LineWalk& Walk, Mol2State& State) {
  const std::vector<TextView> Words = SplitWords(Walk.Line);
  if (Words.size() < 4) Walk.Refuse("a bond has to have an id, two atoms and a type");
  const int First = AtomOf(Walk, State, Words[1]);
  const int Second = AtomOf(Walk, State, Words[2]);
  const TextView Type = Words[3];
  if (First < 0 || Second < 0 || Type == "nc") return;
  if (First == Second) Walk.Refuse("a bond of an atom to itself");
  const int Order = Type == "ar" ? AromaticOrder : static_cast<int>(std::clamp(PrefixNumber(Type), 1.0, 3.0));
  State.Whole.Bonds.push_back({First, Second, Order});
}

void DropRepeated(std::vector<StructureBond>& Bonds) {
  const auto PairOf = [](const StructureBond& Bond) { return std::minmax({Bond.First, Bond.Second}); };
  std::stable_sort(Bonds.begin(), Bonds.end(), [&](const auto& A, const auto& B) { return PairOf(A) < PairOf(B); });
  const auto IsSame = [&](const auto& A, const auto& B) { return PairOf(A) == PairOf(B); };
  Bonds.erase(std::unique(Bonds.begin(), Bonds.end(), IsSame), Bonds.end());
}

// "ID COUNT", then COUNT lines "NAME VALUE".
void TakeAttribute(const LineWalk& Walk, Mol2State& State) {
  const std::vector<TextView> Words = SplitWords(Walk.Line);
  if (Words.size() < 2) return;
  if (Words[0] == "charge") {
    if (State.Attributed >= 0) {
      State.Whole.Atoms[static_cast<std::size_t>(State.Attributed)].Charge =
          static_cast<int>(std::clamp(PrefixNumber(Words[1]), -9.0, 9.0));
    }
  } else if (const auto Found = State.AtomOfId.find(PrefixIndex(Words[0])); Found != State.AtomOfId.end()) {
    State.Attributed = Found->second;
  }
}

}  // namespace

Structure ReadMol2(TextView Content) {
  LineWalk Walk{Content};
  Mol2State State;
  Text Section;
  int Line = 0;
  while (Walk.Next()) {
    if (Walk.Line.starts_with("@")) {
      Section = Walk.Line.substr(0, Walk.Line.find_last_not_of(Separators) + 1);
      Line = 0;
      continue;
    }
    ++Line;
    if (Section == "@<TRIPOS>MOLECULE") {
      TakeMoleculeLine(Walk, Line, State);
    } else if (Walk.Line.find_first_not_of(Separators) == TextView::npos || Walk.Line.starts_with("#")) {
      continue;
    } else if (Section == "@<TRIPOS>ATOM") {
      TakeAtomLine(Walk, State);
    } else if (Section == "@<TRIPOS>BOND") {
      TakeBondLine(Walk, State);
    } else if (Section == "@<TRIPOS>UNITY_ATOM_ATTR") {
      TakeAttribute(Walk, State);
    }
  }
  if (State.Whole.Atoms.empty()) throw Failure("there are no atoms in it");
  DropRepeated(State.Whole.Bonds);
  return std::move(State.Whole);
}

}  // namespace zelvanor::convert
