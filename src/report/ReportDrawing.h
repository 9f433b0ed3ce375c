#pragma once

#include <vector>

#include "report/Content.h"

namespace zelvanor {

// The drawings of a report as plain lines, points and words, for a page and for paper alike.

struct DrawnPoint {
  Double X = 0;
  Double Y = 0;
};

// Words of one line, their middle at X, their base line at Y.
struct DrawnWords {
  Double X = 0;
  Double Y = 0;
  Text Words;
};

// The corners of a wedge, and the lines that another stroke consists of; lengths of a bond.
std::vector<DrawnPoint> WedgeCorners(const DrawnStroke& Of);
std::vector<DrawnStroke> StrokeLines(const DrawnStroke& Of);

// A piece of an atom's symbol: the middle of the words, lengths of a bond.
struct SymbolPart {
  Double X = 0;
  Double Y = 0;
  Text Words;
  bool Small = false;  // an index or a charge
};
std::vector<SymbolPart> SymbolParts(const DrawnAtom& Of);

struct DrawnCurve {
  std::vector<DrawnPoint> Points;
  bool Measured = false;
};

// The window in which a report shows the spectrum at first, in pixels.
struct SpectrumDrawing {
  std::vector<DrawnCurve> Curves;
  std::vector<DrawnStroke> Axis;
  std::vector<DrawnWords> Ticks;
  std::vector<DrawnWords> Names;  // of the signals, as many as there is room for
};
SpectrumDrawing DrawSpectrumOf(const ReportContent& Of, Double Width, Double Height);

}  // namespace zelvanor
