#pragma once

#include <compare>
#include <vector>

#include "basic/Types.h"

namespace zelvanor::hostsim {

// An atom as host and program name it to each other; both numbers count from 1.
struct AtomRef {
  int Molecule = 0;
  int Atom = 0;

  friend auto operator<=>(const AtomRef&, const AtomRef&) = default;
};

using AtomList = std::vector<AtomRef>;

// The atoms of "M:A", several separated by commas. Throws a Failure for anything else.
AtomList ReadAtomList(TextView Value);

// A system in the host text format, as far as a host has to know it: its text as it is, and which line is which atom.
struct HostSystem {
  struct AtomLine {
    AtomRef Place;
    int AtomicNumber = 0;  // -1 for no element
  };

  Text Content;
  int NumMolecules = 0;
  std::vector<AtomLine> Atoms;  // in the order of the text
  Text ForceField;              // of the text's own record, empty for none
};

HostSystem ReadHostSystem(Text Content);
// Throws a Failure when the file can't be read.
HostSystem ReadHostSystemFile(const Text& Path);

// Null when the system has no such atom.
const HostSystem::AtomLine* FindAtom(const HostSystem& System, const AtomRef& Place);
AtomList AllAtoms(const HostSystem& System);

// The atoms of a list as host text: the system's own text where all of them are listed, else with the other atoms,
// their bonds and emptied molecules left out and the rest numbered anew.
Text CopyAtoms(const HostSystem& System, const AtomList& Atoms);

}  // namespace zelvanor::hostsim
