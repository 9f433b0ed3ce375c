#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "basic/Failure.h"
#include "nmrcalc/input/SpectrumInput.h"
#include "nmrcalc/spins/Lines.h"

namespace nmrcalc::testing {

// The vocabulary of the tests: spin systems in one line, spectra, brute force, files.

// Shifts in ppm, degeneracies, couplings as pairs; MinimalIntensity 0.
struct Pair {
  std::size_t First = 0;
  std::size_t Second = 0;
  double J = 0.0;
};
inline SpectrumInput MakeInput(double Field, const std::vector<double>& Shifts, const std::vector<int>& Degeneracies,
                               const std::vector<Pair>& Pairs) {
  SpectrumInput Input;
  Input.Field = Field;
  const std::size_t NumSites = Shifts.size();
  Input.Coupling.assign(NumSites * NumSites, 0.0);
  for (std::size_t Site = 0; Site < NumSites; ++Site) {
    Input.Sites.push_back({.Degeneracy = Degeneracies.empty() ? 1 : Degeneracies[Site], .Shift = Shifts[Site]});
  }
  for (const Pair& Item : Pairs) {
    Input.Coupling[Item.First * NumSites + Item.Second] = Item.J;
    Input.Coupling[Item.Second * NumSites + Item.First] = Item.J;
  }
  FindObservedSites(Input);
  return Input;
}

// The spectrum by our program, and by a Hamiltonian of all 2^N states with every group expanded and nothing conserved
// made use of. The second scales intensities the same way and holds the observed nuclei's lines below half of the
// nearest far frequency.
std::vector<Line> Simulate(const SpectrumInput& Input);
std::vector<Line> SimulateByBruteForce(const SpectrumInput& Input);

// Same lines: frequencies to 1e-6 Hz and intensities to 1e-7 unless told otherwise. Lines of the expected list below
// Faintest do not count.
void ExpectSameLines(const std::vector<Line>& Found, const std::vector<Line>& Expected,
                     double FrequencyTolerance = 1e-6, double IntensityTolerance = 1e-7, double Faintest = 1e-8);

double TotalIntensity(const std::vector<Line>& Lines);

// A random system of this many sites, strongly coupled, made from the seed alone.
SpectrumInput RandomInput(unsigned Seed, std::size_t NumSites, const std::vector<int>& Degeneracies);

// What the action's Failure says; empty when there is none.
std::string FailureOf(const std::function<void()>& Action);

// A directory that is gone at the end of the test.
struct TemporaryDirectory {
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  std::string Write(const std::string& Name, const std::string& Text) const;  // returns the path
  std::string Read(const std::string& Name) const;                            // empty when there is none
  std::string Path;
};

}  // namespace nmrcalc::testing
