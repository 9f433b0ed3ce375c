#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace nmrcalc {

// A molecular system as a graph, with what the estimates need to know of every atom: hybrid state, rings, aromaticity.
// Atoms are indexed from 0 over the whole system.

using Vector3 = std::array<double, 3>;

enum class BondOrder { Single = 1, Double = 2, Triple = 3, Aromatic = 4 };

struct Neighbour {
  std::size_t Atom = 0;
  BondOrder Order = BondOrder::Single;
};

enum class Hybrid { Sp3, Sp2, Sp };

struct Atom {
  int AtomicNumber = 0;
  int Molecule = 0;     // from 1
  int InMolecule = 0;   // from 1
  double Charge = 0.0;  // partial charge, elementary charges
  Vector3 Place{};      // Angstrom
  std::vector<Neighbour> Neighbours{};
  Hybrid State = Hybrid::Sp3;
  bool Aromatic = false;
  int SmallestRing = 0;                // 0: in no ring of up to eight atoms
  std::vector<std::size_t> InRings{};  // indices into Molecule::Rings
};

struct Molecule {
  std::vector<Atom> Atoms{};
  std::vector<std::vector<std::size_t>> Rings{};  // smallest rings of up to eight atoms, in ring order
};

// 0 "Lp" to 103 "Lr", 104 for "??"; -1 for anything else. Upper and lower case are the same.
int AtomicNumberOf(std::string_view Symbol);
std::string SymbolOf(int AtomicNumber);

// Adds the bond to both atoms; a bond told twice takes the higher order. An atom is not bonded to itself.
void AddBond(Molecule& System, std::size_t First, std::size_t Second, BondOrder Order);

// Fills hybrid states, rings and aromaticity from elements and bonds. Nothing depends on the order of the atoms.
void PerceiveStructure(Molecule& System);

// The bond between two atoms, null when there is none.
const Neighbour* FindBond(const Molecule& System, std::size_t First, std::size_t Second);

// The number of neighbours of an element.
int CountNeighbours(const Molecule& System, std::size_t Center, int AtomicNumber);

// Whether the two atoms stand beside one another in a ring of up to eight atoms; the smallest such ring's size, or 0.
int SmallestRingOfBond(const Molecule& System, std::size_t First, std::size_t Second);

// The torsion angle of four atoms in radians, -pi to pi; 0 where it is not defined.
double TorsionAngle(const Molecule& System, const std::array<std::size_t, 4>& Path);

Vector3 Difference(const Vector3& Left, const Vector3& Right);
Vector3 Cross(const Vector3& Left, const Vector3& Right);
double Dot(const Vector3& Left, const Vector3& Right);
// The vector at length 1; all zero when it is too short to have a direction.
Vector3 Direction(const Vector3& Value);

}  // namespace nmrcalc
