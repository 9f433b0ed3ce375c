#include "nmrcalc/input/SpectrumInput.h"

#include <algorithm>
#include <cmath>

namespace nmrcalc {

namespace {

constexpr int LargestSiteCount = 10000;
constexpr double LargestFrequency = 1e14;  // Hz
constexpr double OutOfRangeRatio = 5000.0;

void ReadSites(TextCursor& Place, SpectrumInput& Input) {
  const std::string_view CountToken = ReadRow(Place, 1, "the number of sites")[0];
  const auto NumSites = static_cast<std::size_t>(
      WholeNumberAt(Place.File, Place.Line - 1, CountToken, 0, LargestSiteCount, "the number of sites"));
  if (NumSites == 0) FailAtLine(Place.File, Place.Line - 1, "there is no spin site");
  const auto Tokens = ReadRow(Place, 2 * NumSites, "the atomic numbers and degeneracies");
  Input.Sites.resize(NumSites);
  for (std::size_t Site = 0; Site < NumSites; ++Site) {
    Input.Sites[Site].AtomicNumber =
        WholeNumberAt(Place.File, Place.Line - 1, Tokens[Site], 0, 200, "an atomic number");
    Input.Sites[Site].Degeneracy =
        WholeNumberAt(Place.File, Place.Line - 1, Tokens[NumSites + Site], 1, LargestDegeneracy, "a degeneracy");
  }
}

void ReadCouplings(TextCursor& Place, SpectrumInput& Input) {
  const std::size_t NumSites = Input.Sites.size();
  std::vector<double> Raw(NumSites * NumSites);
  for (std::size_t Row = 0; Row < NumSites; ++Row) {
    const auto Tokens = ReadRow(Place, NumSites, "the couplings of site " + std::to_string(Row + 1));
    for (std::size_t Column = 0; Column < NumSites; ++Column) {
      Raw[Row * NumSites + Column] = NumberAt(Place.File, Place.Line - 1, Tokens[Column], "a coupling constant");
    }
  }
  Input.Coupling.assign(NumSites * NumSites, 0.0);
  for (std::size_t Row = 0; Row < NumSites; ++Row) {
    for (std::size_t Column = 0; Column < NumSites; ++Column) {
      if (Row == Column) continue;
      Input.Coupling[Row * NumSites + Column] = 0.5 * (Raw[Row * NumSites + Column] + Raw[Column * NumSites + Row]);
    }
  }
}

}  // namespace

void FindObservedSites(SpectrumInput& Input) {
  std::vector<double> Magnitudes;
  Magnitudes.reserve(Input.Sites.size());
  for (const SpinSite& Site : Input.Sites) Magnitudes.push_back(std::fabs(Site.Shift));
  std::sort(Magnitudes.begin(), Magnitudes.end());
  double Limit = Magnitudes.back() + 1.0;
  double Largest = 1.0;
  for (const double Magnitude : Magnitudes) {
    if (Magnitude >= OutOfRangeRatio * Largest) {
      Limit = Magnitude;
      break;
    }
    Largest = std::max(Largest, Magnitude);
  }
  for (SpinSite& Site : Input.Sites) {
    Site.Frequency = Site.Shift * Input.Field;
    Site.Observed = std::fabs(Site.Shift) < Limit;
  }
}

SpectrumInput ReadSpectrumInput(const std::string& Path) {
  TextCursor Place{.File = ReadTextFile(Path)};
  return ReadSpectrumLines(Place);
}

SpectrumInput ReadSpectrumLines(TextCursor& Place) {
  SpectrumInput Input;
  NextLine(Place, "the description");
  ReadSites(Place, Input);
  ReadKeyword(Place, "FIELD");
  Input.Field = ReadSingleNumber(Place, "the spectrometer frequency");
  ReadKeyword(Place, "SHIELDING");
  const auto Shifts = ReadRow(Place, Input.Sites.size(), "the chemical shifts");
  for (std::size_t Site = 0; Site < Input.Sites.size(); ++Site) {
    Input.Sites[Site].Shift = NumberAt(Place.File, Place.Line - 1, Shifts[Site], "a chemical shift");
  }
  for (const SpinSite& Site : Input.Sites) {
    if (std::fabs(Site.Shift * Input.Field) > LargestFrequency) {
      FailAtLine(Place.File, Place.Line - 1, "a chemical shift times the spectrometer frequency is out of range");
    }
  }
  ReadKeyword(Place, "COUPLING");
  ReadCouplings(Place, Input);
  ReadKeyword(Place, "MINIMALINTENSITY");
  Input.MinimalIntensity = ReadSingleNumber(Place, "the minimal intensity");
  if (Input.MinimalIntensity < 0.0) FailAtLine(Place.File, Place.Line - 1, "the minimal intensity is negative");
  ReadKeyword(Place, "WEAKCOUPLINGAPPROXIMATION");
  const double Weak = ReadSingleNumber(Place, "the weak coupling flag");
  if (Weak != 0.0 && Weak != 1.0) FailAtLine(Place.File, Place.Line - 1, "the weak coupling flag should be 0 or 1");
  Input.WeakCoupling = Weak == 1.0;
  FindObservedSites(Input);
  return Input;
}

}  // namespace nmrcalc
