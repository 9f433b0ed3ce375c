#include "hostsim/HostSystem.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "basic/Elements.h"
#include "basic/Numbers.h"
#include "basic/TextTools.h"

namespace zelvanor::hostsim {

namespace {

constexpr std::size_t ElementWord = 3;
constexpr std::size_t CoordinationWord = 10;

std::vector<TextView> SplitLines(TextView Content) {
  std::vector<TextView> Lines;
  while (!Content.empty()) {
    const std::size_t End = std::min(Content.find('\n'), Content.size());
    Lines.push_back(Content.substr(0, End));
    Content.remove_prefix(std::min(End + 1, Content.size()));
  }
  return Lines;
}

int WholeNumber(TextView Value) { return ToLong(StrictNumber(Value)); }

// New atom numbers of one molecule by the old ones.
using Numbering = std::map<int, int>;

// An atom line without the bonds to atoms that are left out.
Text RenumberAtom(const std::vector<TextView>& Words, int Number, const Numbering& Kept) {
  Text Bonds;
  int NumBonds = 0;
  for (std::size_t Word = CoordinationWord + 1; Word + 1 < Words.size(); Word += 2) {
    const auto Neighbour = Kept.find(PrefixIndex(Words[Word]));
    if (Neighbour == Kept.end()) continue;
    Bonds += " " + std::to_string(Neighbour->second) + " " + Text(Words[Word + 1]);
    ++NumBonds;
  }
  Text Line = "atom " + std::to_string(Number);
  for (std::size_t Word = 2; Word < std::min(CoordinationWord, Words.size()); ++Word) Line += " " + Text(Words[Word]);
  if (Words.size() > CoordinationWord) Line += " " + std::to_string(NumBonds);
  return Line + Bonds;
}

// For each molecule with a listed atom the new numbers, in the order of the text.
std::map<int, Numbering> NumberKept(const HostSystem& System, const std::set<AtomRef>& Listed) {
  std::map<int, Numbering> Kept;
  for (const HostSystem::AtomLine& Line : System.Atoms) {
    if (!Listed.contains(Line.Place)) continue;
    Numbering& Molecule = Kept[Line.Place.Molecule];
    Molecule.emplace(Line.Place.Atom, static_cast<int>(Molecule.size()) + 1);
  }
  return Kept;
}

// Copies a text line by line; At is the atom read last.
struct PartialCopy {
  const std::map<int, Numbering>& Kept;
  AtomRef At;
  int NewMolecule = 0;
  Text Result;
};

void CopyLine(PartialCopy& Copy, TextView Line) {
  const std::vector<TextView> Words = SplitWords(Line, LineSeparators);
  const TextView First = Words.empty() ? TextView() : Words[0];
  const bool Record = First == "mol" || First == "endmol" || First == "atom";
  if (!Record) {
    Copy.Result.append(Line).append("\n");
    return;
  }
  if (First == "mol") Copy.At = {Copy.At.Molecule + 1, 0};
  if (First == "atom") ++Copy.At.Atom;
  const auto Molecule = Copy.Kept.find(std::max(Copy.At.Molecule, 1));
  if (Molecule == Copy.Kept.end()) return;
  if (First == "atom") {
    const auto Number = Molecule->second.find(Copy.At.Atom);
    if (Number == Molecule->second.end()) return;
    Copy.Result += RenumberAtom(Words, Number->second, Molecule->second) + "\n";
    return;
  }
  if (First == "mol") ++Copy.NewMolecule;
  Copy.Result += Text(First) + " " + std::to_string(Copy.NewMolecule) + "\n";
}

}  // namespace

AtomList ReadAtomList(TextView Value) {
  AtomList Atoms;
  while (!Value.empty()) {
    const std::size_t End = std::min(Value.find(','), Value.size());
    const TextView Pair = Value.substr(0, End);
    const std::size_t Colon = Pair.find(':');
    if (Colon == TextView::npos) throw Failure("No atom, as 1:2 for atom 2 of molecule 1: " + Text(Pair));
    Atoms.push_back({WholeNumber(Pair.substr(0, Colon)), WholeNumber(Pair.substr(Colon + 1))});
    Value.remove_prefix(std::min(End + 1, Value.size()));
  }
  return Atoms;
}

HostSystem ReadHostSystem(Text Content) {
  HostSystem System;
  System.Content = std::move(Content);
  AtomRef Place;
  for (const TextView Line : SplitLines(System.Content)) {
    const std::vector<TextView> Words = SplitWords(Line, LineSeparators);
    if (Words.empty()) continue;
    if (Words[0] == "mol") {
      Place = {Place.Molecule + 1, 0};
    } else if (Words[0] == "atom") {
      Place = {std::max(Place.Molecule, 1), Place.Atom + 1};
      const TextView Element = Words.size() > ElementWord ? Words[ElementWord] : TextView();
      System.Atoms.push_back({Place, ElementNumber(Element)});
    } else if (Words[0] == "forcefield" && Words.size() > 1) {
      System.ForceField = Words[1];
    }
  }
  System.NumMolecules = Place.Molecule > 0 || System.Atoms.empty() ? Place.Molecule : 1;
  return System;
}

HostSystem ReadHostSystemFile(const Text& Path) {
  std::ifstream Stream(Path, std::ios::binary);
  std::ostringstream Content;
  // A folder opens as a stream too, and fails at its first read.
  if (!Stream || (Stream.peek(), Stream.bad())) throw Failure("Can't read " + Path);
  Stream.clear();
  Content << Stream.rdbuf();
  return ReadHostSystem(Content.str());
}

const HostSystem::AtomLine* FindAtom(const HostSystem& System, const AtomRef& Place) {
  const auto Entry = std::find_if(System.Atoms.begin(), System.Atoms.end(),
                                  [&](const HostSystem::AtomLine& Line) { return Line.Place == Place; });
  return Entry == System.Atoms.end() ? nullptr : &*Entry;
}

AtomList AllAtoms(const HostSystem& System) {
  AtomList Atoms;
  for (const HostSystem::AtomLine& Line : System.Atoms) Atoms.push_back(Line.Place);
  return Atoms;
}

Text CopyAtoms(const HostSystem& System, const AtomList& Atoms) {
  const std::set<AtomRef> Listed(Atoms.begin(), Atoms.end());
  const bool Whole = std::all_of(System.Atoms.begin(), System.Atoms.end(),
                                 [&](const HostSystem::AtomLine& Line) { return Listed.contains(Line.Place); });
  if (Whole) return System.Content;
  const std::map<int, Numbering> Kept = NumberKept(System, Listed);
  PartialCopy Copy{Kept, {}, 0, {}};
  for (const TextView Line : SplitLines(System.Content)) CopyLine(Copy, Line);
  return Copy.Result;
}

}  // namespace zelvanor::hostsim
