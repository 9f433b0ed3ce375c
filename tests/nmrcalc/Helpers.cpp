#include "Helpers.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "nmrcalc/spins/LinearAlgebra.h"
#include "nmrcalc/spins/Spectrum.h"
#include "nmrcalc/spins/SpinSystem.h"

namespace nmrcalc::testing {

std::vector<Line> Simulate(const SpectrumInput& Input) {
  Log Silent;
  return SimulateSpectrum(Input, {}, 4e9, Silent).Lines;
}

std::vector<Line> SimulateByBruteForce(const SpectrumInput& Input) {
  std::vector<std::size_t> SiteOf;
  for (std::size_t Site = 0; Site < Input.Sites.size(); ++Site) {
    SiteOf.insert(SiteOf.end(), static_cast<std::size_t>(Input.Sites[Site].Degeneracy), Site);
  }
  const std::size_t NumSpins = SiteOf.size();
  const std::size_t NumStates = std::size_t{1} << NumSpins;
  std::vector<double> Hamiltonian(NumStates * NumStates);
  for (std::size_t State = 0; State < NumStates; ++State) {
    for (std::size_t I = 0; I < NumSpins; ++I) {
      const double Mz = (State >> I & 1) != 0 ? 0.5 : -0.5;
      Hamiltonian[State * NumStates + State] += Mz * Input.Sites[SiteOf[I]].Frequency;
      for (std::size_t K = 0; K < I; ++K) {
        const double J = SiteOf[I] == SiteOf[K] ? 0.0 : Input.J(SiteOf[I], SiteOf[K]);
        const bool Parallel = (State >> I & 1) == (State >> K & 1);
        Hamiltonian[State * NumStates + State] += J * (Parallel ? 0.25 : -0.25);
        const std::size_t Flipped = State ^ (std::size_t{1} << I) ^ (std::size_t{1} << K);
        if (!Parallel) Hamiltonian[State * NumStates + Flipped] += 0.5 * J;
      }
    }
  }
  std::vector<double> Energies;
  DiagonalizeSymmetric(Hamiltonian, NumStates, Energies);
  double Far = 0.0;
  for (const SpinSite& Site : Input.Sites) {
    if (!Site.Observed) Far = Far > 0.0 ? std::min(Far, std::fabs(Site.Frequency)) : std::fabs(Site.Frequency);
  }
  int LargestPart = 0;
  for (const SpinPart& Part : FindParts(Input)) {
    if (Part.HasObserved) LargestPart = std::max(LargestPart, Part.NumSpins);
  }
  const double Scale = std::ldexp(1.0, LargestPart - static_cast<int>(NumSpins));
  std::vector<Line> Lines;
  std::vector<double> Raised(NumStates);
  for (std::size_t From = 0; From < NumStates; ++From) {
    std::fill(Raised.begin(), Raised.end(), 0.0);
    for (std::size_t State = 0; State < NumStates; ++State) {
      for (std::size_t I = 0; I < NumSpins; ++I) {
        if ((State >> I & 1) != 0 || !Input.Sites[SiteOf[I]].Observed) continue;
        Raised[State | std::size_t{1} << I] += Hamiltonian[From * NumStates + State];
      }
    }
    for (std::size_t To = 0; To < NumStates; ++To) {
      double Moment = 0.0;
      for (std::size_t State = 0; State < NumStates; ++State)
        Moment += Hamiltonian[To * NumStates + State] * Raised[State];
      const double Frequency = Energies[To] - Energies[From];
      if (Moment * Moment < 1e-14 || (Far > 0.0 && std::fabs(Frequency) > 0.5 * Far)) continue;
      Lines.push_back({Frequency, Moment * Moment * Scale, 1.0});
    }
  }
  SortAndMerge(Lines, MergeWidth);
  return Lines;
}

void ExpectSameLines(const std::vector<Line>& Found, const std::vector<Line>& Expected, double FrequencyTolerance,
                     double IntensityTolerance, double Faintest) {
  std::vector<Line> Left = Found;
  std::vector<Line> Right = Expected;
  DropFaintLines(Left, Faintest);
  DropFaintLines(Right, Faintest);
  ASSERT_EQ(Left.size(), Right.size());
  for (std::size_t K = 0; K < Left.size(); ++K) {
    EXPECT_NEAR(Left[K].Frequency, Right[K].Frequency, FrequencyTolerance) << "line " << K;
    EXPECT_NEAR(Left[K].Intensity, Right[K].Intensity, IntensityTolerance) << "line " << K;
  }
}

double TotalIntensity(const std::vector<Line>& Lines) {
  double Sum = 0.0;
  for (const Line& Item : Lines) Sum += Item.Intensity;
  return Sum;
}

SpectrumInput RandomInput(unsigned Seed, std::size_t NumSites, const std::vector<int>& Degeneracies) {
  std::minstd_rand Generator(Seed);  // the same numbers with every library
  const auto Uniform = [&Generator] { return double(Generator()) / double(std::minstd_rand::max()); };
  std::vector<double> Shifts;
  std::vector<Pair> Pairs;
  for (std::size_t Site = 0; Site < NumSites; ++Site) {
    Shifts.push_back(1.0 + Uniform());
    for (std::size_t Other = 0; Other < Site; ++Other) Pairs.push_back({Site, Other, 16.0 * Uniform() - 4.0});
  }
  return MakeInput(100.0, Shifts, Degeneracies, Pairs);
}

std::string FailureOf(const std::function<void()>& Action) {
  try {
    Action();
  } catch (const zelvanor::Failure& Problem) {
    return Problem.What;
  }
  return "";
}

TemporaryDirectory::TemporaryDirectory() {
  static int Number = 0;
  const auto* Running = ::testing::UnitTest::GetInstance()->current_test_info();
  std::string Name = std::string("nmrcalc ") + Running->test_suite_name() + "." + Running->name() + "." +
                     std::to_string(++Number) + "." +
                     std::to_string(std::hash<std::string>{}(std::filesystem::current_path()));
  std::replace(Name.begin(), Name.end(), '/', '_');
  Path = (std::filesystem::temp_directory_path() / Name).string();
  std::filesystem::create_directories(Path);
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code Ignored;
  std::filesystem::remove_all(Path, Ignored);
}

std::string TemporaryDirectory::Write(const std::string& Name, const std::string& Text) const {
  const std::string Target = Path + "/" + Name;
  std::ofstream(Target, std::ios::binary) << Text;
  return Target;
}

std::string TemporaryDirectory::Read(const std::string& Name) const {
  std::ifstream File(Path + "/" + Name, std::ios::binary);
  std::ostringstream Text;
  Text << File.rdbuf();
  return Text.str();
}

}  // namespace nmrcalc::testing
