#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "nmrcalc/input/Molecule.h"

namespace nmrcalc {

// What the shift model is told of a molecule. Its nodes are the heavy atoms; every other atom within four bonds, across
// a ring or near in space is an edge, described by the bonds between and by the distance. Hydrogens have edges of their
// own to heavy atoms and to other hydrogens. Distances across one or two bonds are left out: they say more about the
// force field that made them than about the shift. Nothing depends on handedness, order or orientation.

inline constexpr std::size_t NumNodeSlots = 14;
inline constexpr float UnknownDistance = -1.0F;
inline constexpr float NoDistance = -2.0F;  // of an edge whose distance says nothing

struct ShiftEdge {
  std::uint32_t To = 0;    // node or hydrogen that receives
  std::uint32_t From = 0;  // node (of edges between hydrogens: the other hydrogen)
  std::uint16_t Class = 0;
  float Distance = NoDistance;  // Angstrom, UnknownDistance without geometry
  float Weight = 1.0F;          // falls to 0 where edges in space end
  bool InSpace = false;         // found by distance alone
};

struct ShiftGraph {
  std::vector<std::size_t> HeavyAtoms{};                            // node -> atom
  std::vector<std::size_t> Hydrogens{};                             // hydrogen -> atom
  std::vector<std::vector<std::uint32_t>> Parents{};                // of each hydrogen: nodes it is bonded to
  std::vector<std::array<std::uint16_t, NumNodeSlots>> Features{};  // rows of the embedding table
  std::vector<ShiftEdge> Bonds{};                                   // between nodes, by To
  std::vector<ShiftEdge> Pairs{};                                   // between nodes beyond one bond, by To
  std::vector<ShiftEdge> HydrogenEdges{};                           // node -> hydrogen, by To
  std::vector<ShiftEdge> Contacts{};                                // hydrogen -> hydrogen, by To
  bool HasGeometry = false;
};

// Sizes of the tables that features and classes index.
std::size_t NumFeatureRows();
inline constexpr std::size_t NumBondClasses = 60;
inline constexpr std::size_t NumPairClasses = 300;
inline constexpr std::size_t NumHydrogenClasses = 314;
inline constexpr std::size_t NumContactClasses = 2;

// Distances enter by a table with a row each DistanceStep Angstrom, and one (the last) for an unknown distance; groups
// of classes have tables of their own.
inline constexpr std::size_t NumDistanceRows = 19;
inline constexpr double FirstDistance = 2.0;
inline constexpr double DistanceStep = 0.2;
inline constexpr std::size_t NumPairGroups = 7;
inline constexpr std::size_t NumHydrogenGroups = 3;
inline constexpr std::size_t NumContactGroups = 2;
std::size_t PairGroup(std::size_t Class);
std::size_t HydrogenGroup(std::size_t Class);
std::size_t ContactGroup(std::size_t Class);

// The graph of all molecules of the system. Geometry that cannot be one (flat, atoms on one another, torn bonds) is not
// used.
ShiftGraph MakeShiftGraph(const Molecule& System);

}  // namespace nmrcalc
