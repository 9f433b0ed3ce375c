#include "nmrcalc/engines/NwchemInput.h"

#include <algorithm>
#include <set>

#include "basic/Failure.h"
#include "nmrcalc/input/InputText.h"

namespace nmrcalc {

namespace {

// What the engine takes by itself for properties, in hartree and atomic units; it stands for the document's usual
// limit.
constexpr double UsualLimit = 0.01;
constexpr double UsualEnergy = 1e-7;
constexpr double UsualDensity = 1e-5;
constexpr double UsualGradient = 5e-4;

// Decimals, since the engine's Fortran reads no exponent of one digit with every format.
constexpr int LimitDecimals = 9;

// No limit is 0: an energy that has to stay the same to the last bit may never do so.
std::string LimitText(double Limit) { return FixedNumber(std::max(Limit, 1e-9), LimitDecimals); }

std::string PlaceText(const Vector3& Place) {
  std::string Text;
  for (const double Coordinate : Place) Text += " " + FixedNumber(Coordinate, 6);
  return Text;
}

bool IsSecondRow(int AtomicNumber) { return AtomicNumber >= 11 && AtomicNumber <= 18; }

std::string GeometryText(const ParamInput& Input, const QuantumRegion& Region) {
  // The axes of the document are kept: no symmetry, no shift of the centre. Without "noautoz" internal coordinates
  // would be sought, which fails for atoms far apart.
  std::string Text =
      "charge " + std::to_string(Input.Quantum.Charge) + "\ngeometry units angstrom noautosym nocenter noautoz\n";
  for (const std::size_t Index : Region.Atoms) {
    const Atom& Item = Input.System.Atoms[Index];
    Text += " " + SymbolOf(Item.AtomicNumber) + PlaceText(Item.Place) + "\n";
  }
  for (const Vector3& Cap : Region.Caps) Text += " H" + PlaceText(Cap) + "\n";
  Text += "end\n";
  if (Region.Charges.empty()) return Text;
  Text += "bq units angstroms\n";
  for (const PointCharge& Item : Region.Charges) {
    Text += PlaceText(Item.Place) + " " + FixedNumber(Item.Charge, 6) + "\n";
  }
  return Text + "end\n";
}

std::string BasisText(const ParamInput& Input, const QuantumRegion& Region, const std::string& Basis,
                      const std::string& PlainSecondRow) {
  std::set<int> Elements;
  for (const std::size_t Index : Region.Atoms) Elements.insert(Input.System.Atoms[Index].AtomicNumber);
  if (!Region.Caps.empty()) Elements.insert(1);
  std::string Text = "basis spherical\n";
  for (const int Element : Elements) {
    const bool Plain = IsSecondRow(Element) && !PlainSecondRow.empty();
    Text += " " + SymbolOf(Element) + " library " + (Plain ? PlainSecondRow : Basis) + "\n";
  }
  return Text + "end\n";
}

std::string WaveFunctionText(const Level& Theory, const QuantumOptions& Options, bool Unrestricted) {
  const double Scale = Options.ConvergenceLimit / UsualLimit;
  std::string Text = "dft\n xc " + Theory.Functional + "\n direct\n iterations " +
                     std::to_string(Options.IterationLimit) + "\n convergence energy " +
                     LimitText(UsualEnergy * Scale) + " density " + LimitText(UsualDensity * Scale) + " gradient " +
                     LimitText(UsualGradient * Scale) + "\n";
  if (Options.Accelerate) Text += " convergence fast\n";
  if (Options.ThreeCenterTerms) Text += " tolerances tight\n";
  if (Unrestricted) Text += " odft\n";
  return Text + " noprint \"final vectors analysis\"\nend\n";
}

void CheckLimits(const QuantumOptions& Options) {
  if (!(Options.ConvergenceLimit > 0) || Options.IterationLimit < 1) {
    throw zelvanor::Failure(
        "The limits of convergence and iterations have to be above 0 (Setup, Shielding & Coupling, SCF)");
  }
}

bool IsExchanging(const Molecule& System, std::size_t Index) {
  const Atom& Item = System.Atoms[Index];
  if (Item.AtomicNumber != 1 || Item.Neighbours.size() != 1) return false;
  const Atom& Bearer = System.Atoms[Item.Neighbours[0].Atom];
  if (Bearer.AtomicNumber == 8 || Bearer.AtomicNumber == 16) return true;
  return Bearer.AtomicNumber == 7 && Bearer.State == Hybrid::Sp3 && Bearer.SmallestRing == 0;
}

// Bonds between an atom and those within three of it.
std::vector<std::size_t> WithinThreeBonds(const Molecule& System, std::size_t Start) {
  std::vector<std::size_t> Found{Start};
  std::size_t First = 0;
  for (int Bonds = 0; Bonds < 3; ++Bonds) {
    const std::size_t End = Found.size();
    for (; First < End; ++First) {
      for (const Neighbour& Bond : System.Atoms[Found[First]].Neighbours) {
        if (std::find(Found.begin(), Found.end(), Bond.Atom) == Found.end()) Found.push_back(Bond.Atom);
      }
    }
  }
  Found.erase(Found.begin());
  return Found;
}

}  // namespace

bool UsesShieldingBasis(const QuantumOptions& Options) { return Options.SpecialExponents; }

bool UsesD(const Level& Theory, const QuantumOptions& Options) { return Theory.AlwaysD || Options.DOrbitals; }

std::string ShieldingInput(const ParamInput& Input, const QuantumRegion& Region, const Level& Theory) {
  CheckLimits(Input.Quantum);
  return GeometryText(Input, Region) +
         BasisText(Input, Region, UsesShieldingBasis(Input.Quantum) ? Theory.ShieldingBasis : Theory.Basis,
                   UsesD(Theory, Input.Quantum) ? "" : Theory.PlainSecondRow) +
         WaveFunctionText(Theory, Input.Quantum, false) + "property\n shielding\nend\ntask dft property\n";
}

std::string CouplingInput(const ParamInput& Input, const QuantumRegion& Region, const Level& Theory,
                          const std::vector<CouplingGroup>& Groups) {
  CheckLimits(Input.Quantum);
  std::string Text =
      GeometryText(Input, Region) +
      BasisText(Input, Region, Theory.CouplingBasis, UsesD(Theory, Input.Quantum) ? "" : Theory.PlainSecondRow) +
      WaveFunctionText(Theory, Input.Quantum, true);
  for (const CouplingGroup& Group : Groups) {
    Text += "property\n spinspin " + std::to_string(Group.Partners.size());
    for (const std::size_t Partner : Group.Partners) {
      Text += " " + std::to_string(Group.Source + 1) + " " + std::to_string(Partner + 1);
    }
    Text += "\nend\ntask dft property\n";
  }
  return Text;
}

std::vector<CouplingGroup> ChooseCouplings(const ParamInput& Input, const QuantumRegion& Region) {
  std::set<std::size_t> Wanted;
  for (const std::size_t Index : Input.NMRAtoms) {
    if (!IsExchanging(Input.System, Index)) Wanted.insert(Index);
  }
  std::map<std::size_t, std::set<std::size_t>> Open;
  for (const std::size_t Index : Wanted) {
    for (const std::size_t Other : WithinThreeBonds(Input.System, Index)) {
      if (Wanted.contains(Other)) Open[Index].insert(Other);
    }
  }
  std::vector<CouplingGroup> Groups;
  for (;;) {
    const auto Most = std::max_element(Open.begin(), Open.end(), [](const auto& Left, const auto& Right) {
      return Left.second.size() < Right.second.size();
    });
    if (Most == Open.end() || Most->second.empty()) return Groups;
    CouplingGroup Group{.Source = PlaceInRegion(Region, Most->first)};
    for (const std::size_t Other : Most->second) {
      Group.Partners.push_back(PlaceInRegion(Region, Other));
      Open[Other].erase(Most->first);
    }
    Most->second.clear();
    Groups.push_back(Group);
  }
}

}  // namespace nmrcalc
