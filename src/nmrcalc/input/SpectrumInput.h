#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "nmrcalc/input/InputText.h"

namespace nmrcalc {

// The spin system of one spectrum and the file nmrspect.in that brings it.

inline constexpr int LargestDegeneracy = 100;

struct SpinSite {
  int AtomicNumber = 1;
  int Degeneracy = 1;      // equivalent spins 1/2 in the site
  double Shift = 0.0;      // ppm; for a nucleus that is not observed, far out of range
  double Frequency = 0.0;  // Hz, shift x field
  bool Observed = true;    // false: its own lines are not part of the spectrum
};

struct SpectrumInput {
  double Field = 0.0;  // MHz
  std::vector<SpinSite> Sites;
  std::vector<double> Coupling;  // Hz, sites x sites, symmetric, diagonal 0
  double MinimalIntensity = 0.0;
  bool WeakCoupling = false;

  double J(std::size_t Row, std::size_t Column) const { return Coupling[Row * Sites.size() + Column]; }
};

// Reads the file. Throws Failure with file, line and reason for anything that does not fit.
// The two couplings of a pair are averaged; the diagonal is not looked at.
SpectrumInput ReadSpectrumInput(const std::string& Path);
// The same from where a file's lines of it begin; Place is behind them then.
SpectrumInput ReadSpectrumLines(TextCursor& Place);

// Sets Frequency and Observed of every site. The nuclei that are not observed stand at ten thousand times the
// largest shift and more: a site is not observed when its |shift| is 5000 ppm or more and at least 5000 times the
// largest |shift| (not below 1 ppm) among the sites nearer to zero.
void FindObservedSites(SpectrumInput& Input);

}  // namespace nmrcalc
