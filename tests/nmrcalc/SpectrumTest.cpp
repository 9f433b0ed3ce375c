#include <algorithm>
#include <cmath>
#include <numbers>

#include "Helpers.h"
#include "nmrcalc/spins/BinnedLines.h"
#include "nmrcalc/spins/Blocks.h"
#include "nmrcalc/spins/ClusterLines.h"
#include "nmrcalc/spins/Cut.h"
#include "nmrcalc/spins/Groups.h"
#include "nmrcalc/spins/Spectrum.h"
#include "nmrcalc/spins/SpectrumDifference.h"
#include "nmrcalc/spins/SpinSystem.h"

namespace nmrcalc::testing {
namespace {

std::vector<Line> Sorted(std::vector<Line> Lines) {
  SortAndMerge(Lines, MergeWidth);
  return Lines;
}

// AB: D = sqrt(d^2 + J^2); lines at the centre +- D/2 +- J/2, the inner ones 1 + J/D, the outer ones 1 - J/D.
TEST(ClosedForms, AB) {
  for (const double J : {7.0, -7.0, 0.5, 30.0}) {
    const double Difference = 12.0;  // Hz, at 100 MHz
    const double D = std::hypot(Difference, J);
    const double Center = 206.0;
    const std::vector<Line> Expected = Sorted({{Center - D / 2 - J / 2, 1 - J / D, 1},
                                               {Center - D / 2 + J / 2, 1 + J / D, 1},
                                               {Center + D / 2 - J / 2, 1 + J / D, 1},
                                               {Center + D / 2 + J / 2, 1 - J / D, 1}});
    ExpectSameLines(Simulate(MakeInput(100.0, {2.0, 2.12}, {}, {{0, 1, J}})), Expected, 1e-9, 1e-12);
  }
}

// Equivalent nuclei: one line whatever J is, whether they are two sites of one shift or one site of two spins.
TEST(ClosedForms, EquivalentNucleiGiveOneLine) {
  const auto TwoSites = Simulate(MakeInput(100.0, {2.0, 2.0}, {}, {{0, 1, 11.0}}));
  const auto OneSite = Simulate(MakeInput(100.0, {2.0}, {2}, {}));
  for (const auto& Lines : {TwoSites, OneSite}) {
    ASSERT_EQ(Lines.size(), 1u);
    EXPECT_NEAR(Lines[0].Frequency, 200.0, 1e-9);
    EXPECT_NEAR(Lines[0].Intensity, 4.0, 1e-12);
    EXPECT_EQ(Lines[0].Count, 2.0);
  }
}

// A2X3 far apart: triplet 1:2:1 of twelve, quartet 1:3:3:1 of eight first-order lines; second-order splitting aside.
TEST(ClosedForms, A2X3IsATripletAndAQuartet) {
  const auto Lines = Simulate(MakeInput(400.0, {1.2, 300.0}, {3, 2}, {{0, 1, 7.0}}));
  const std::vector<std::pair<double, double>> Expected = {{473, 12},      {480, 24},      {487, 12},    {119989.5, 4},
                                                           {119996.5, 12}, {120003.5, 12}, {120010.5, 4}};
  for (const auto& [Frequency, Intensity] : Expected) {
    double Sum = 0.0;
    for (const Line& Item : Lines) Sum += std::fabs(Item.Frequency - Frequency) < 0.01 ? Item.Intensity : 0.0;
    EXPECT_NEAR(Sum, Intensity, 0.02) << Frequency;
  }
}

// ABX with X far away (J. A. Pople, W. G. Schneider, H. J. Bernstein, High-resolution NMR, 1959, ch. 6): the A and B
// lines are two AB quartets whose shifts are moved by +-J_AX/2 and +-J_BX/2.
TEST(ClosedForms, ABPartOfABX) {
  const double Jab = 12.0;
  const double Jax = 7.0;
  const double Jbx = 3.0;
  std::vector<Line> Expected;
  for (const double Mx : {-0.5, 0.5}) {
    const double A = 200.0 + Mx * Jax;
    const double B = 209.0 + Mx * Jbx;
    const double D = std::hypot(A - B, Jab);
    for (const double Side : {-1.0, 1.0}) {
      for (const double Split : {-1.0, 1.0}) {
        Expected.push_back({(A + B) / 2 + Side * D / 2 + Split * Jab / 2, 1 - Side * Split * Jab / D, 1});
      }
    }
  }
  // X is a nucleus that is not observed, 40 MHz away: its lines are left out and the closed form holds to 1e-6 Hz.
  const auto Input = MakeInput(100.0, {2.0, 2.09, 400000.0}, {}, {{0, 1, Jab}, {0, 2, Jax}, {1, 2, Jbx}});
  ExpectSameLines(Simulate(Input), Sorted(Expected), 2e-6, 1e-6);
}

// AA'XX' far apart: twelve lines in the A half, two of them of intensity 4 (a quarter of the half each) at +-|N|/2,
// N = J + J', and four lines each with K = JA + JX and M = JA - JX around them (Pople et al., ch. 6).
TEST(ClosedForms, AAXX) {
  const double Ja = 8.0;
  const double Jx = 5.0;
  const double J = 9.0;
  const double JPrime = 2.0;
  const double L = J - JPrime;
  const auto Input = MakeInput(100.0, {2.0, 2.0, 2000000.0, 2000000.0}, {},
                               {{0, 1, Ja}, {2, 3, Jx}, {0, 2, J}, {1, 3, J}, {0, 3, JPrime}, {1, 2, JPrime}});
  std::vector<Line> Expected = {{200 - (J + JPrime) / 2, 4, 1}, {200 + (J + JPrime) / 2, 4, 1}};
  for (const double C : {Ja + Jx, Ja - Jx}) {
    const double D = std::hypot(C, L);
    for (const double Side : {-1.0, 1.0}) {
      Expected.push_back({200 + Side * (D + C) / 2, 1 - C / D, 1});
      Expected.push_back({200 + Side * (D - C) / 2, 1 + C / D, 1});
    }
  }
  ExpectSameLines(Simulate(Input), Sorted(Expected), 2e-6, 2e-6);
}

struct Example {
  const char* Name;
  std::vector<int> Degeneracies;
};

class AgainstBruteForce : public ::testing::TestWithParam<Example> {};

// Random strongly coupled systems, groups expanded in the brute force and not in the program.
TEST_P(AgainstBruteForce, SameLines) {
  for (unsigned Seed = 1; Seed <= 3; ++Seed) {
    const auto Input = RandomInput(Seed, GetParam().Degeneracies.size(), GetParam().Degeneracies);
    ExpectSameLines(Simulate(Input), SimulateByBruteForce(Input));
  }
}

INSTANTIATE_TEST_SUITE_P(Systems, AgainstBruteForce,
                         ::testing::Values(Example{"ABCD", {1, 1, 1, 1}}, Example{"ABCDEFG", {1, 1, 1, 1, 1, 1, 1}},
                                           Example{"A3B2", {3, 2}}, Example{"A6B", {6, 1}},
                                           Example{"A2B2C2", {2, 2, 2}}, Example{"A3B2C", {3, 2, 1}}),
                         [](const auto& Info) { return std::string(Info.param.Name); });

// Nuclei that are not observed: taken apart (13C with large couplings at high field), and not (low field), both
// against the full Hamiltonian with the far sites in it.
TEST(FarNuclei, AgreeWithTheFullHamiltonian) {
  for (const double Field : {1.0, 60.0, 400.0}) {
    auto Input =
        MakeInput(Field, {1.0, 1.1, 3.0, 30000.0, 30100.0}, {3, 1, 1, 1, 1},
                  {{0, 1, 7.0}, {1, 2, 9.0}, {0, 3, 126.0}, {1, 3, -5.0}, {1, 4, 141.0}, {2, 4, 4.0}, {3, 4, 35.0}});
    ExpectSameLines(Simulate(Input), SimulateByBruteForce(Input), 1e-5, 1e-6, 1e-4);
  }
}

TEST(FarNuclei, AreFoundByTheirShiftAlone) {
  struct Row {
    std::vector<double> Shifts;
    std::vector<bool> Observed;
  };
  const std::vector<Row> Rows = {{{1.2, 3.6}, {true, true}},
                                 {{0.3, 10000.0, 10100.0}, {true, false, false}},
                                 {{7.0, 70000.0}, {true, false}},
                                 {{-120.0, 220.0, -2200000.0}, {true, true, false}},
                                 {{0.5, 4000.0}, {true, true}}};
  for (const Row& Item : Rows) {
    const auto Input = MakeInput(100.0, Item.Shifts, {}, {});
    for (std::size_t Site = 0; Site < Item.Shifts.size(); ++Site) {
      EXPECT_EQ(Input.Sites[Site].Observed, Item.Observed[Site]) << Item.Shifts[Site];
    }
  }
}

// Total intensity n 2^(N-1) for each site, whatever part it sits in, and the mean frequency is that of the sites.
TEST(SumRules, TotalIntensityAndMeanFrequency) {
  auto Input = RandomInput(5, 6, {1, 2, 1, 2, 1, 1});
  const std::vector<int> PartOf = {0, 1, 1, 2, 1, 2};
  for (std::size_t Row = 0; Row < 6; ++Row) {
    for (std::size_t Column = 0; Column < 6; ++Column) {
      if (PartOf[Row] != PartOf[Column]) Input.Coupling[Row * 6 + Column] = 0.0;
    }
  }
  ASSERT_EQ(FindParts(Input).size(), 3u);
  const auto Lines = Simulate(Input);
  double Moment = 0.0;
  double Mean = 0.0;
  for (const Line& Item : Lines) Moment += Item.Intensity * Item.Frequency;
  for (const SpinSite& Site : Input.Sites) Mean += Site.Degeneracy * Site.Frequency / 8.0;
  EXPECT_NEAR(TotalIntensity(Lines), 8.0 * 8.0, 1e-6);  // the largest part has 4 spins
  EXPECT_NEAR(Moment / TotalIntensity(Lines), Mean, 1e-5);
  ExpectSameLines(Lines, SimulateByBruteForce(Input), 1e-6, 1e-6, 1e-6);
}

TEST(Sites, TheirOrderDoesNotMatter) {
  const std::vector<int> Degeneracies = {1, 3, 1, 2, 1};
  const auto Input = RandomInput(9, 5, Degeneracies);
  const std::vector<std::size_t> Order = {3, 0, 4, 2, 1};
  SpectrumInput Turned = Input;
  for (std::size_t Row = 0; Row < 5; ++Row) {
    Turned.Sites[Row] = Input.Sites[Order[Row]];
    for (std::size_t Column = 0; Column < 5; ++Column) {
      Turned.Coupling[Row * 5 + Column] = Input.J(Order[Row], Order[Column]);
    }
  }
  ExpectSameLines(Simulate(Turned), Simulate(Input), 1e-8, 1e-8);
}

// First order is right up to the second-order term J^2 / (2 distance).
TEST(WeakCoupling, AgreesWithExactToSecondOrder) {
  const std::vector<Pair> Pairs = {{0, 1, 8.0}, {1, 2, 5.0}, {0, 2, -3.0}};
  auto Input = MakeInput(500.0, {1.0, 9.0, 17.0}, {3, 1, 2}, Pairs);
  const auto Exact = Simulate(Input);
  Input.WeakCoupling = true;
  const auto Weak = Simulate(Input);
  EXPECT_NEAR(TotalIntensity(Weak), 6.0 * 32.0, 1e-9);
  const double SecondOrder = 6 * 8.0 * 8.0 / (2 * 4000.0);
  for (const Line& Item : Weak) {
    double Sum = 0.0;
    for (const Line& Other : Exact) {
      if (std::fabs(Other.Frequency - Item.Frequency) < SecondOrder) Sum += Other.Intensity;
    }
    EXPECT_NEAR(Sum, Item.Intensity, 0.02 * Item.Intensity) << Item.Frequency;
  }
}

TEST(WeakCoupling, ThirtySitesInAChain) {
  std::vector<double> Shifts;
  std::vector<Pair> Pairs;
  for (std::size_t Site = 0; Site < 30; ++Site) {
    Shifts.push_back(1.0 + double(Site));
    if (Site > 0) Pairs.push_back({Site - 1, Site, 7.0});
    if (Site > 1) Pairs.push_back({Site - 2, Site, 1.0});
  }
  auto Input = MakeInput(600.0, Shifts, {}, Pairs);
  Input.WeakCoupling = true;
  const auto Lines = Simulate(Input);
  EXPECT_NEAR(TotalIntensity(Lines) / (30.0 * std::ldexp(1.0, 29)), 1.0, 1e-12);
  // The first site is split by 7 and by 1 Hz: four lines of equal intensity.
  for (const double Frequency : {596.0, 597.0, 603.0, 604.0}) {
    const auto Found = std::find_if(Lines.begin(), Lines.end(),
                                    [=](const Line& Item) { return std::fabs(Item.Frequency - Frequency) < 1e-9; });
    ASSERT_NE(Found, Lines.end()) << Frequency;
    EXPECT_NEAR(Found->Intensity / std::ldexp(1.0, 27), 1.0, 1e-12);
  }
}

// The threshold is compared part by part, on the scale of the part's own first-order line, before the common scale.
TEST(MinimalIntensity, IsOnThePartsOwnScale) {
  auto Input = MakeInput(100.0, {1.0, 1.12, 5.0}, {1, 1, 4}, {{0, 1, 30.0}});
  const double Outer = 1.0 - 30.0 / std::hypot(12.0, 30.0);  // 0.0715, on the common scale four times that
  Input.MinimalIntensity = Outer * 0.99;
  EXPECT_EQ(Simulate(Input).size(), 5u);
  Input.MinimalIntensity = Outer * 1.01;
  const auto Fewer = Simulate(Input);
  ASSERT_EQ(Fewer.size(), 3u);
  EXPECT_NEAR(Fewer[0].Intensity, 4.0 * (2.0 - Outer), 1e-9);
  Input.MinimalIntensity = 1000.0;
  EXPECT_NE(FailureOf([&] { Simulate(Input); }).find("lower it"), std::string::npos);
}

// Lines that only together reach the threshold stay: merging comes before dropping.
TEST(MinimalIntensity, CountsMergedLines) {
  auto Input = MakeInput(100.0, {1.0}, {2}, {});  // two transitions of intensity 2 in one line
  Input.MinimalIntensity = 3.0;
  EXPECT_EQ(Simulate(Input).size(), 1u);
  Input.MinimalIntensity = 4.5;
  EXPECT_NE(FailureOf([&] { Simulate(Input); }), "");
}

// The short cut that spares the sorting of faint lines: the spectrum is the same as without it, but for lines in a
// crowd that are parted a little differently.
TEST(MinimalIntensity, ShortCutLeavesTheSpectrum) {
  auto Input = RandomInput(3, 9, {});
  auto Expected = Simulate(Input);
  DropFaintLines(Expected, 0.1);
  Input.MinimalIntensity = 0.1;
  const auto Found = Simulate(Input);
  EXPECT_NEAR(double(Found.size()), double(Expected.size()), 0.002 * double(Expected.size()));
  std::size_t Missing = 0;
  for (const Line& Item : Expected) {
    Missing += std::any_of(Found.begin(), Found.end(),
                           [&](const Line& Other) {
                             return std::fabs(Other.Frequency - Item.Frequency) < 1e-5 &&
                                    std::fabs(Other.Intensity - Item.Intensity) < 1e-4;
                           })
                   ? 0
                   : 1;
  }
  EXPECT_LT(Missing, Expected.size() / 200);
}

TEST(Multiplicities, AddUpToAllStates) {
  for (const int Degeneracy : {1, 2, 3, 6, 9, 20}) {
    double States = 0.0;
    for (int TwiceSpin = Degeneracy; TwiceSpin >= 0; TwiceSpin -= 2) {
      States += Multiplicity(Degeneracy, TwiceSpin) * (TwiceSpin + 1);
    }
    EXPECT_EQ(States, std::ldexp(1.0, Degeneracy)) << Degeneracy;
  }
}

// Equal sites are found: the lines are those of the sites as they stand, and the map parts a group among its members.
TEST(Groups, HiddenEqualSitesGiveTheSameLines) {
  const std::vector<Pair> Pairs = {{0, 1, 6.5}, {0, 2, 2.0}, {1, 2, 4.0},  {2, 3, 4.0},  {2, 4, 4.0},
                                   {0, 3, 6.5}, {0, 4, 6.5}, {1, 3, -9.0}, {1, 4, -9.0}, {3, 4, -9.0}};
  const auto Input = MakeInput(100.0, {1.10, 1.0, 1.25, 1.0, 1.0}, {}, Pairs);
  EXPECT_EQ(GroupEquivalentSites(Input).Members, (std::vector<std::vector<std::size_t>>{{0}, {1, 3, 4}, {2}}));
  ExpectSameLines(Simulate(Input), SimulateByBruteForce(Input));
  auto Other = Input;
  Other.Coupling[3 * 5 + 2] = Other.Coupling[2 * 5 + 3] = 4.001;
  EXPECT_EQ(GroupEquivalentSites(Other).Members.size(), 4u);
  ExpectSameLines(Simulate(Other), SimulateByBruteForce(Other));
}

TEST(Map, TellsTheSitesOfEachLine) {
  auto Input = MakeInput(400.0, {1.2, 3.6, 1.2}, {2, 2, 1}, {{0, 1, 7.0}, {1, 2, 7.0}, {0, 2, 3.0}});
  Input.MinimalIntensity = 1.0;
  Log Silent;
  const Spectrum Result = SimulateSpectrum(Input, {}, 4e9, Silent);
  const std::string Map = FormatSpectrumMap(Input, Result);
  EXPECT_EQ(Map.rfind("map 1 " + std::to_string(Result.Lines.size()) + "\n1:67 3:33\n", 0), 0u) << Map;
  EXPECT_EQ(Map.substr(Map.size() - 6), "2:100\n") << Map;
  // AB(X) by hand: A and B are 8 Hz apart, to this side or that by the state of X, so the sine of twice the mixing
  // angle is 6/10. The inner lines have 0.9 + 0.3 of their own spin and 0.1 + 0.3 of the other, the outer ones none of
  // it.
  const auto Mixed = MakeInput(400.0, {1.0, 1.0, 11.0}, {}, {{0, 1, 6.0}, {0, 2, 16.0}});
  const std::string Shares = FormatSpectrumMap(Mixed, SimulateSpectrum(Mixed, {}, 4e9, Silent));
  const auto Hand = "1:100\n1:75 2:25\n2:100\n2:75 1:25\n2:75 1:25\n2:100\n1:75 2:25\n1:100\n3:";
  EXPECT_NE(Shares.find(Hand), std::string::npos) << Shares;
}

struct CutCase {
  const char* Name;
  std::size_t NumSpins;
  double Width;  // ppm over which the shifts lie
  bool IsRing;
  double LargestError;     // percent
  double Tolerance = 0.0;  // clusters that have settled within it rest
};

// Networks cut although the exact answer is at hand: what is told is never below what is, and that is small.
TEST(Cut, TellsNoLessThanItsError) {
  for (const CutCase& Row :
       {CutCase{"crowded chain", 10, 1.5, false, 0.5}, CutCase{"dense chain", 10, 0.25, false, 6.0},
        CutCase{"ring", 10, 0.25, true, 6.0}, CutCase{"three groups", 9, 0.5, false, 3.0},
        CutCase{"settled ring", 10, 1.0, true, 1.0, 0.01}, CutCase{"strict ring", 10, 0.6, true, 3.0, 0.0001}}) {
    auto Input = RandomInput(4, Row.NumSpins, {});
    for (std::size_t A = 0; A < Row.NumSpins; ++A) {
      Input.Sites[A].Shift = 1.0 + Row.Width * (Input.Sites[A].Shift - 1.0);
      for (std::size_t B = 0; B < Row.NumSpins; ++B) {
        const std::size_t Distance = A > B ? A - B : B - A;
        const bool IsNear = Distance < 3 || (Row.IsRing && Distance > Row.NumSpins - 3);
        if (!IsNear) Input.Coupling[A * Row.NumSpins + B] = 0.0;
      }
    }
    Input.Field = 400.0;
    FindObservedSites(Input);
    const SpinPart Part = FindParts(Input)[0];
    std::vector<Line> Exact = Simulate(Input);
    const double Scale = CutNucleusIntensity * double(Row.NumSpins) / TotalIntensity(Exact);
    for (Line& Item : Exact) Item.Intensity *= Scale;
    const CutResult Cut = SimulateCut(Input, Part,
                                      {.Tolerance = Row.Tolerance,
                                       .Deadline = RunClock::now() + std::chrono::seconds(60),
                                       .Bytes = 4e9,
                                       .LastLevel = 8});
    std::vector<Line> Lines;
    for (const auto& Own : Cut.SiteLines) {
      EXPECT_NEAR(TotalIntensity(Own), CutNucleusIntensity, 1e-6) << Row.Name;
      Lines.insert(Lines.end(), Own.begin(), Own.end());
    }
    SortLines(Lines);
    const double Error = CompareLines(Lines, Exact) / TotalIntensity(Exact);
    EXPECT_LT(100.0 * Error, Row.LargestError) << Row.Name;
    EXPECT_GE(Cut.Error, Error) << Row.Name;
  }
}

// Two pairs of spins whose flip-flops with each other enter to second order, against all of them at once: what is lost
// falls with the fourth power of the mixing angle, and the area of each spin stays.
TEST(Cut, TakesGroupsApart) {
  struct Row {
    double Distance;      // ppm
    double LargestError;  // percent
    std::vector<int> Degeneracies{};
  };
  for (const Row& Item : {Row{0.5, 0.3}, Row{2.0, 0.03}, Row{2.0, 0.2, {1, 1, 3, 2}}, Row{8.0, 0.02, {1, 1, 3, 2}}}) {
    const auto Input = MakeInput(400.0, {1.0, 1.03, 1.0 + Item.Distance, 1.3 + Item.Distance}, Item.Degeneracies,
                                 {{0, 1, 10.0}, {2, 3, 2.0}, {0, 2, 8.0}, {0, 3, 2.0}, {1, 2, 1.0}, {1, 3, 7.0}});
    for (const std::size_t Core : {0, 1, 2, 3}) {
      std::vector<std::vector<Line>> Found;
      for (const std::size_t Other : {0, 1}) {
        const bool IsFirst = Core < 2;
        const ClusterPlan Plan{
            .Sites = {0, 1, 2, 3},
            .Groups = {IsFirst ? 0 : Other, IsFirst ? 0 : Other, IsFirst ? Other : 0, IsFirst ? Other : 0},
            .Cores = {Core},
            .Fields = {{.Field = std::vector<double>(4)}}};
        ClusterTask Task{.EndField = 1};
        StopSign NoStop;
        SimulateCluster(Input, Plan, Task, NoStop);
        Found.push_back(TakeLines(Task.Lines[0], 1.0, 1e-8));
      }
      EXPECT_LT(100.0 * CompareLines(Found[0], Found[1]), Item.LargestError) << Item.Distance << ", " << Core;
      EXPECT_GT(Found[1].size(), 4u);
    }
  }
}

// What would not fit, or would take too long, is cut, and line 1 says so.
TEST(Cut, AnswersWhatIsTooLarge) {
  struct Row {
    std::size_t NumSites;
    int Degeneracy;
    double FreeBytes;
    double TimeBudget;
  };
  for (const Row& Item : {Row{10, 1, 1e5, 20.0}, Row{30, 1, 4e9, 0.1}, Row{13, 10, 4e9, 0.1}}) {
    const auto Input = RandomInput(1, Item.NumSites, std::vector<int>(Item.NumSites, Item.Degeneracy));
    Log Silent;
    const Spectrum Result = SimulateSpectrum(Input, {.TimeBudget = Item.TimeBudget}, Item.FreeBytes, Silent);
    EXPECT_NE(Result.Method.find("simulation in clusters of "), std::string::npos) << Result.Method;
    EXPECT_NE(Result.Method.find("; estimated error "), std::string::npos) << Result.Method;
    EXPECT_GT(Result.Error, 0.0);
    EXPECT_NEAR(TotalIntensity(Result.Lines) / (2048.0 * double(Item.NumSites) * Item.Degeneracy), 1.0, 1e-3);
  }
}

}  // namespace
}  // namespace nmrcalc::testing
