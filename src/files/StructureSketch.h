#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// A molecule as one draws it on paper: its atoms, without the hydrogens that they carry, its bonds, and the lines that
// these are drawn by. Places are in lengths of a bond, y down.

struct SketchAtom {
  Double X = 0;
  Double Y = 0;
  Text Symbol;  // empty for a carbon, which its bonds show
  int Hydrogens = 0;
  bool HydrogensFirst = false;  // "HO", where the bond leads to the right
  int Charge = 0;
  int Isotope = 0;  // mass number, 0 for the element as it comes
};

struct SketchBond {
  std::size_t First = 0;  // places in the list of atoms
  std::size_t Second = 0;
  int Order = 1;
  bool Aromatic = false;
};

struct Sketch {
  std::vector<SketchAtom> Atoms;
  std::vector<SketchBond> Bonds;
};

enum class StrokeKind { Plain, Wedge, Hashes };

// A line; a wedge and one of hashes are narrow at their first end.
struct DrawnStroke {
  Double X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
  StrokeKind Kind = StrokeKind::Plain;
};

// The usual length of a bond becomes 1.
void ScaleToBonds(Sketch& Of);

// Takes the symbols off the carbons that need none, and finds on which side of the others their hydrogens stand.
void ShortenSymbols(Sketch& Of);

// Directions of an atom's bonds, in radians, rising.
std::vector<Double> DirectionsAt(const Sketch& Of, std::size_t Place);

// The lines of a bond, which leave room for symbols; that of a double bond lies where more neighbours are.
void AddBondStrokes(const Sketch& Of, const SketchBond& Each, std::vector<DrawnStroke>& To);
// One stroke from a centre to a neighbour.
DrawnStroke StrokeFrom(const SketchAtom& Centre, const SketchAtom& Other, StrokeKind Kind);

}  // namespace zelvanor
