#include "nmrcalc/engines/QuantumRegion.h"

#include <algorithm>
#include <cmath>

#include "basic/Failure.h"

namespace nmrcalc {

namespace {

// Length of a bond to hydrogen, Angstrom: the sum of the single-bond radii of Pyykko and Atsumi (Chem. Eur. J. 15,
// 2009, 186) of hydrogen, 0.32, and the elements that bonds are cut at; other elements are refused.
struct CapRow {
  int AtomicNumber;
  double Length;
};
constexpr CapRow CapLengths[] = {{6, 1.07}, {7, 1.03}, {8, 0.95}, {14, 1.48}, {15, 1.43}, {16, 1.35}};

std::string NameOf(const Atom& Item) {
  return SymbolOf(Item.AtomicNumber) + " " + std::to_string(Item.InMolecule) + " of molecule " +
         std::to_string(Item.Molecule);
}

void CapBond(const Molecule& System, std::size_t Inside, const Neighbour& Bond, QuantumRegion& Region) {
  const Atom& Inner = System.Atoms[Inside];
  const Atom& Outer = System.Atoms[Bond.Atom];
  const auto* const Row = std::find_if(std::begin(CapLengths), std::end(CapLengths),
                                       [&](const CapRow& Item) { return Item.AtomicNumber == Inner.AtomicNumber; });
  if (Bond.Order != BondOrder::Single || Row == std::end(CapLengths)) {
    throw zelvanor::Failure("The quantum atoms end at the bond between " + NameOf(Inner) + " and " + NameOf(Outer) +
                            ", which cannot be capped by a hydrogen; let them end at single bonds between carbon, "
                            "nitrogen, oxygen, silicon, phosphorus or sulfur");
  }
  const Vector3 Along = Direction(Difference(Outer.Place, Inner.Place));
  Vector3 Cap = Inner.Place;
  for (std::size_t Axis = 0; Axis < 3; ++Axis) Cap[Axis] += Row->Length * Along[Axis];
  Region.Caps.push_back(Cap);
}

void AddCharges(const Molecule& System, const std::vector<bool>& Inside, QuantumRegion& Region) {
  std::vector<double> Charges(System.Atoms.size(), 0.0);
  for (std::size_t Index = 0; Index < System.Atoms.size(); ++Index) {
    if (Inside[Index]) continue;
    const auto& Neighbours = System.Atoms[Index].Neighbours;
    std::vector<std::size_t> Takers;
    bool AtBoundary = false;
    for (const Neighbour& Bond : Neighbours) {
      if (Inside[Bond.Atom]) {
        AtBoundary = true;
      } else {
        Takers.push_back(Bond.Atom);
      }
    }
    if (!AtBoundary) Takers = {Index};
    for (const std::size_t Taker : Takers) {
      Charges[Taker] += System.Atoms[Index].Charge / static_cast<double>(Takers.size());
    }
  }
  for (std::size_t Index = 0; Index < System.Atoms.size(); ++Index) {
    if (Charges[Index] != 0.0) Region.Charges.push_back({System.Atoms[Index].Place, Charges[Index]});
  }
}

void CountElectrons(const ParamInput& Input, QuantumRegion& Region) {
  int Count = static_cast<int>(Region.Caps.size()) - Input.Quantum.Charge;
  for (const std::size_t Index : Region.Atoms) {
    const Atom& Item = Input.System.Atoms[Index];
    if (Item.AtomicNumber < 1 || Item.AtomicNumber > 103) {
      throw zelvanor::Failure(NameOf(Item) + " is of no element and can have no orbitals");
    }
    Count += Item.AtomicNumber;
  }
  Region.NumElectrons = Count;
  if (Input.Quantum.Multiplicity != 1) {
    throw zelvanor::Failure(
        "A spin multiplicity of " + std::to_string(Input.Quantum.Multiplicity) +
        " means an open shell, for which the engine computes no shieldings; set it to 1 in Setup, or use the built-in "
        "model");
  }
  if (Count < 2 || Count % 2 != 0) {
    throw zelvanor::Failure("With the charge " + std::to_string(Input.Quantum.Charge) + " there are " +
                            std::to_string(Count) +
                            " electrons, which make no closed shell; check the charge on the molecule (Setup, "
                            "Shielding & Coupling, SCF) and the hydrogens");
  }
}

}  // namespace

QuantumRegion CutQuantumRegion(const ParamInput& Input) {
  const std::size_t NumAtoms = Input.System.Atoms.size();
  QuantumRegion Region;
  std::vector<bool> Inside(NumAtoms, Input.QuantumAtoms.empty());
  for (const std::size_t Index : Input.QuantumAtoms) Inside[Index] = true;
  for (std::size_t Index = 0; Index < NumAtoms; ++Index) {
    if (!Inside[Index]) continue;
    Region.Atoms.push_back(Index);
    for (const Neighbour& Bond : Input.System.Atoms[Index].Neighbours) {
      if (!Inside[Bond.Atom]) CapBond(Input.System, Index, Bond, Region);
    }
  }
  for (const std::size_t Index : Input.NMRAtoms) {
    if (!Inside[Index]) {
      throw zelvanor::Failure("The NMR atom " + NameOf(Input.System.Atoms[Index]) + " is not among the quantum atoms");
    }
  }
  AddCharges(Input.System, Inside, Region);
  CountElectrons(Input, Region);
  return Region;
}

std::size_t PlaceInRegion(const QuantumRegion& Region, std::size_t Atom) {
  const auto Found = std::lower_bound(Region.Atoms.begin(), Region.Atoms.end(), Atom);
  const bool There = Found != Region.Atoms.end() && *Found == Atom;
  return There ? static_cast<std::size_t>(Found - Region.Atoms.begin()) : Region.Atoms.size();
}

}  // namespace nmrcalc
