#pragma once

#include <array>

#include "basic/Types.h"

namespace zelvanor {

// A nucleus that is observed.
struct Nucleus {
  const char* Name;
  int Element;
  int SpectraType;
  bool Labelled;   // whether it is an isotope that atoms have only when they are labelled
  bool SpinHalf;   // others have shifts and couplings, but no lines
  Double Percent;  // frequency, in percent of that of protons
};

// Frequencies: R. K. Harris, E. D. Becker, S. M. Cabral de Menezes, R. Goodfellow, P. Granger, Pure Appl. Chem. 2001,
// 73, 1795.
inline constexpr std::array<Nucleus, 6> Nuclei = {{
    {"1H", 1, 0, false, true, 100.0},
    {"13C", 6, 1, true, true, 25.145020},
    {"15N", 7, 2, true, true, 10.136767},
    {"17O", 8, 3, true, false, 13.556457},
    {"19F", 9, 4, false, true, 94.094011},
    {"31P", 15, 5, false, true, 40.480742},
}};

// Null for a name that is none of them.
inline const Nucleus* FindNucleus(TextView Name) {
  for (const Nucleus& Row : Nuclei) {
    if (Name == Row.Name) return &Row;
  }
  return nullptr;
}

}  // namespace zelvanor
