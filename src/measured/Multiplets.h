#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// One splitting of a multiplet: equal couplings to this many nuclei.
struct Splitting {
  Double Hz = 0;  // magnitude
  int Nuclei = 0;
};

// The signal of one site as a first-order analysis describes it.
struct Multiplet {
  int Site = 0;            // from 1, in the order of the backend's input
  std::vector<int> Atoms;  // indices of NMR atoms
  Double Ppm = 0;
  Text Kind;                          // "s", "dd", "dt", "m"
  std::vector<Splitting> Splittings;  // the largest first; all of them, for "m" too
};

// The multiplets of the observed nucleus, from the shifts and couplings of the document, the largest shift first.
// Couplings below 0.3 Hz are left out, those within 0.35 Hz of one another are one. A signal is an "m" where it splits
// into more than four kinds, or into three with one to four or more nuclei, or where a partner of the same kind of
// nucleus stands nearer than five times the coupling: then the first order is no description.
std::vector<Multiplet> FindMultiplets();

// "1-5(H), 1-6(H)" and "3.64 q, J = 7.0 Hz".
Text MultipletAtoms(const Multiplet& Of);
Text MultipletWords(const Multiplet& Of);

// The lines of a first-order pattern: offsets from its middle in Hz, after the first Levels splittings.
std::vector<Double> SplitFirstOrder(const Multiplet& Of, std::size_t Levels);

}  // namespace zelvanor
