#pragma once

#include <array>
#include <map>
#include <vector>

#include "nmrcalc/input/Molecule.h"

namespace nmrcalc {

// What places tell of a molecule beside distances: faces of rings, sides of double bonds, neighbours in space.

// False where the places cannot be those of a molecule in space: a drawing (a saturated atom with its neighbours in one
// plane), atoms on one another, bonds of no length or torn ones.
bool IsGeometryUsable(const Molecule& System);

// The volume that three neighbours of an atom span, as a triple product of unit vectors: its sign is the handedness.
double SpannedVolume(const Molecule& System, std::size_t Center, std::size_t First, std::size_t Second,
                     std::size_t Third);

// Atoms beside rings: on which face of the ring each one is.
struct StereoPicture {
  bool Known = false;
  std::map<std::pair<std::size_t, std::size_t>, std::vector<std::pair<std::size_t, int>>> Faces{};
  // ring atom, atom beside it -> ring and face (+1 or -1)
};

StereoPicture FindStereo(const Molecule& System);

// 1 when the two atoms, each bonded to its own member of one ring, are on the same face of it, 2 on opposite ones, 0
// where there is no such ring or no clear face.
int SideOfRing(const StereoPicture& Stereo, std::size_t FirstMember, std::size_t First, std::size_t SecondMember,
               std::size_t Second);

// 1 for cis, 2 for trans, 0 where the torsion is near neither.
int SideOfDoubleBond(const Molecule& System, std::size_t First, std::size_t Left, std::size_t Right,
                     std::size_t Second);

// Atoms sorted into cubes, so that neighbours in space are found without looking at all pairs.
struct SpaceCells {
  double Width = 0.0;  // Angstrom
  std::map<std::array<int, 3>, std::vector<std::size_t>> Atoms{};
};

SpaceCells SortIntoCells(const Molecule& System, double Width);

// Atoms nearer than Limit (at most the cells' width) to an atom, by number.
std::vector<std::size_t> AtomsNear(const SpaceCells& Cells, const Molecule& System, std::size_t Center, double Limit);

}  // namespace nmrcalc
