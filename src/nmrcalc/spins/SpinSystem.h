#pragma once

#include <cstddef>
#include <vector>

#include "nmrcalc/input/SpectrumInput.h"

namespace nmrcalc {

// From sites to the irreducible systems of composite spins whose Hamiltonians are diagonalised.
//
// n equivalent spins 1/2 are the direct sum of total spins S = n/2, n/2 - 1, ..., each as often as
// C(n, n/2 - S) - C(n, n/2 - S - 1) (Corio, Structure of High-Resolution NMR Spectra, 1966, ch. 5). The coupling inside
// the group changes no line and is left out. A choice of S for every site gives an independent system; a site with
// S = 0 drops out of it and may cut it in two.

// Spins that are coupled into one piece. Spins stand by their total spin doubled, so that all are whole numbers.
struct SpinSystem {
  std::vector<std::size_t> Sites{};  // of the input, rising
  std::vector<int> TwiceSpin{};      // 1 or more
  std::vector<double> Offset{};      // Hz, resonance without coupling
  std::vector<bool> Observed{};
  std::vector<double> Coupling{};  // Hz, spins x spins, symmetric
  double Weight = 1.0;             // how often the system's lines occur in the part

  std::size_t Size() const { return TwiceSpin.size(); }
  double J(std::size_t Row, std::size_t Column) const { return Coupling[Row * Size() + Column]; }
};

// A part: sites joined by couplings, directly or through others. Indices into SpectrumInput::Sites, rising.
struct SpinPart {
  std::vector<std::size_t> Sites{};
  int NumSpins = 0;  // spins 1/2, the sum of the degeneracies
  bool HasObserved = false;
};

// Independent parts of the coupling graph in the order of their first sites.
std::vector<SpinPart> FindParts(const SpectrumInput& Input);

// How often the total spin TwiceSpin/2 occurs among Degeneracy spins 1/2.
double Multiplicity(int Degeneracy, int TwiceSpin);

// The system of a part with the largest total spin in every site; none of the others has a larger block.
SpinSystem LargestSystem(const SpectrumInput& Input, const SpinPart& Part);

// All irreducible systems of a part that hold an observed spin, each once, with its weight. The weights hold the
// states of the spins that a system leaves out, so every first-order line of the part counts 1.
std::vector<SpinSystem> ReducePart(const SpectrumInput& Input, const SpinPart& Part);

}  // namespace nmrcalc
