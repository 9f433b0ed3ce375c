#pragma once

#include <vector>

#include "files/StructureSketch.h"

namespace zelvanor {

// The molecules as one draws them on paper, from the top left corner, with the numbers of their NMR atoms.

struct DrawnAtom : SketchAtom {
  int Atom = 0;              // index in the atom table; its hydrogens are not drawn, unless it is one itself
  std::vector<int> Entries;  // NMR atoms that stand here: its own and those of its hydrogens
  Double NumbersX = 0;       // of the text with their numbers, and its middle line
  Double NumbersY = 0;
  int NumbersSide = 0;  // the text begins there (1), is centred (0) or ends there (-1)
};

struct Depiction {
  std::vector<DrawnAtom> Atoms;
  std::vector<DrawnStroke> Strokes;
  Double Width = 0;  // 0: there is nothing to draw
  Double Height = 0;
};

// Half the width of a wedge's broad end, in lengths of a bond.
inline constexpr Double WedgeHalf = 0.1;

// The flat places come from the converter; where it is not installed or can't find any, the molecules are drawn as they
// stand, seen along the axis in which they are thinnest.
Depiction DepictMolecules();

}  // namespace zelvanor
