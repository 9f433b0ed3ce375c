#pragma once

#include <vector>

#include "predict/Options.h"

namespace zelvanor::predict {

struct ShiftRow {
  int Atom = 0;  // from 1
  Text Element;
  Double Shift = 0, Error = 0, Shielding = 0;  // ppm; error 0 for unknown
  int Class = 0;
};

struct CouplingRow {
  int First = 0, Second = 0;
  Double J = 0;   // Hz
  int Bonds = 0;  // 0 where no bonds lead from one to the other
};

struct LineRow {
  Double Ppm = 0, Hz = 0, Intensity = 0;
};

struct Outputs {
  std::vector<ShiftRow> Shifts;
  std::vector<CouplingRow> Couplings;
  std::vector<LineRow> Lines;
  Double Error = 0;  // estimated, of the area of the spectrum; 0 where it is exact
};

// Whether a format shows the lines of the spectrum, which nuclei of spin above one half do not get.
bool ShowsLines(const Text& Format);

// Whether the format can be written by this program; empty, or why not.
Text WhyNoFormat(const Text& Format);

// The numbers of the molecule that has been computed.
Outputs CollectOutputs(const Options& Given);

// The files of all formats and the two tables, under Head and their endings. Throws a Failure.
void WriteOutputs(const Options& Given, const Outputs& Numbers, const Text& Head);

Text JsonText(TextView Value);
Text JsonOf(const Options& Given, const Text& Name, const Outputs& Numbers, Double Seconds);
// A cell of a table with commas.
Text CsvCell(const Text& Value);

}  // namespace zelvanor::predict
