#pragma once

#include <vector>

#include "platform/Picture.h"

namespace zelvanor {

// A molecule as chemists draw it, from the host text of the converter's flat form.

struct DrawnAtom {
  Text Symbol;
  int Charge = 0;
  int Hydrogens = 0;    // that it implies
  int Isotope = 0;      // mass number, 0 for the element as it comes
  Double X = 0, Y = 0;  // angstrom
};

struct DrawnBond {
  std::size_t First = 0;  // from 0
  std::size_t Second = 0;
  int Lines = 1;
};

struct Drawing {
  std::vector<DrawnAtom> Atoms;
  std::vector<DrawnBond> Bonds;
  Text Formula;
};

// Lines that it does not know are passed over.
Drawing ReadDrawing(TextView HostText);

// In the middle of the surface, as large as it reads well and fits; an empty drawing leaves the surface empty.
void DrawStructure(PictureSurface& Surface, const Drawing& Shown);

}  // namespace zelvanor
