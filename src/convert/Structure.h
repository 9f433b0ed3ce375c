#pragma once

#include <array>
#include <vector>

#include "basic/Types.h"

namespace zelvanor::convert {

// A molecule as its file says it, before and after what is missing is added.

struct StructureAtom {
  int Element = 0;                // atomic number
  int Isotope = 0;                // mass number, 0 for the element as it comes
  int Charge = 0;                 // formal
  int Hydrogens = 0;              // that it implies, without an atom of their own
  Double Partial = 0;             // e, as the file says it
  Text Name;                      // empty for none
  std::array<Double, 3> Place{};  // angstrom
};

struct StructureBond {
  int First = 0;  // from 0
  int Second = 0;
  int Order = 1;  // BondOrder
};

struct Structure {
  Text Title;
  std::vector<StructureAtom> Atoms;
  std::vector<StructureBond> Bonds;
  std::vector<Text> Notes;  // what else the record says, a line each
  int Charge = 0;           // in all

  int Count() const { return static_cast<int>(Atoms.size()); }
};

// More atoms no document takes.
inline constexpr int MostAtoms = 32000;

// Readers of records of our own. Each throws a Failure that names the line, from 1 in the record.
Structure ReadXyz(TextView Content);
Structure ReadPdb(TextView Content);
Structure ReadMol2(TextView Content);

// Whether hydrogens stand on carbons, or no carbon asks for one: then none are added.
bool HasHydrogens(const Structure& Whole);

// Bonds from distances, for those that the file does not give.
void AddBonds(Structure& Whole);
// Orders of all bonds from the valences, all hydrogens being there; formal charges of what is left.
void FindOrders(Structure& Whole);
void FindCharges(Structure& Whole);
// Makes the bonds of aromatic rings so, from double and single ones.
void MarkAromatic(Structure& Whole);

// The sum of the atoms' formal charges into Charge.
void SumCharges(Structure& Whole);
// Throws a Failure where a place is no number or two atoms stand within half an angstrom.
void CheckPlaces(const Structure& Whole);

// Atoms in groups that bonds hold together, each by rising index; by their first atoms.
std::vector<std::vector<int>> FindParts(const Structure& Whole);

// In Hill's order: C, H, then by the alphabet; the charge behind it.
Text FormulaOf(const Structure& Whole);

// The host text: a mol for each part. Source names where it came from.
Text HostTextOf(const Structure& Whole, TextView Source);

// The fields of an SDF record behind its molecule, as notes.
std::vector<Text> ReadFields(TextView Content);

}  // namespace zelvanor::convert
