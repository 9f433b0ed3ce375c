#pragma once

#include <array>
#include <map>
#include <string>

namespace nmrcalc {

// Levels of theory, from the file nmrlevel.txt of the parameter directory: functional and basis sets by the names that
// the engine knows them by, and what belongs to the numbers of each basis.

// A straight line of measured shifts over computed shieldings: shift = Intercept - Slope x shielding, all in ppm.
struct ScaleLine {
  double Intercept = 0.0;
  double Slope = 1.0;
};

// One combination of the options that choose the basis.
struct LevelVariant {
  std::map<int, double> References{};  // shielding of the reference substance, ppm, by atomic number
  std::map<int, ScaleLine> Scales{};   // by atomic number
  std::map<int, double> Errors{};      // mean absolute error of scaled shifts, ppm, by atomic number
};

struct Level {
  std::string Name{};
  std::string Title{};                                    // for people
  std::string Method{};                                   // of the document: KRDO1, KRDO2
  std::string Functional{};                               // the engine's text
  std::string Basis{};                                    // names of the engine's basis library
  std::string ShieldingBasis{};                           // the one made for shieldings
  std::string CouplingBasis{};                            // the one for couplings
  std::string PlainSecondRow{};                           // of Na to Cl, without d functions
  bool AlwaysD = false;                                   // the option does not take the d functions away
  std::array<std::array<LevelVariant, 2>, 2> Variants{};  // [basis for shieldings][d functions]
};

inline constexpr const char* LevelFile = "nmrlevel.txt";

// The level with this name or, where Name is empty, the first one of the method. Throws Failure with file and reason.
Level ReadLevel(const std::string& ParameterDirectory, const std::string& Name, const std::string& Method);

}  // namespace nmrcalc
