#pragma once

#include <array>
#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// One row of a Z-matrix file: an atom, or a dummy that gives a position only.
struct ZMatrixRow {
  int Line = 0;            // in the file, from 1
  int AtomicNumber = 0;    // DummyAtom for a position without an atom
  bool Cartesian = false;  // Values are x, y, z
  // Bond length (angstrom), bond angle and dihedral angle (degrees); or x, y, z.
  std::array<Double, 3> Values{};
  int NumValues = 0;  // that the row gives
  // Rows that length, angle and dihedral are measured from, counted from 1; 0 for none.
  std::array<int, 3> References{};
};
using ZMatrixRows = std::vector<ZMatrixRow>;

inline constexpr int DummyAtom = -1;

// Reads a MOPAC file: lines of keywords and titles, then a row a line, up to a blank line, a row of element 0 or the
// end of the file. What stands behind is not looked at. A row that makes no sense throws a Failure whose number is its
// line.
ZMatrixRows ReadZMatrixRows(const Text& Path);

// Positions of all rows, dummies too, in the usual frame: the first row in the origin, the second on the x axis, the
// third in the xy plane. Throws a Failure whose number is the line of a row that can't be placed.
using Position = std::array<Double, 3>;
std::vector<Position> PlaceZMatrixRows(const ZMatrixRows& Rows);

// The failure of a row; its number is the line.
[[noreturn]] void ThrowAtLine(int Line, const Text& What);

}  // namespace zelvanor
