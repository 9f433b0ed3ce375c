#include <cstdlib>
#include <numbers>
#include <random>

#include "Helpers.h"
#include "nmrcalc/fit/Fit.h"
#include "nmrcalc/fit/FitInput.h"

namespace nmrcalc::testing {
namespace {

constexpr double Width = 0.9;  // Hz

// The text of nmrfit.in: the sites of the system at 400 MHz, the parameters, and the spectrum of the system by brute
// force with noise of 1 percent of a line.
std::string FitText(const SpectrumInput& System, const std::vector<std::string>& Parameters, double Low, double High) {
  const std::size_t NumSites = System.Sites.size();
  std::ostringstream Text;
  Text << "made\n" << NumSites << "\n";
  for (std::size_t K = 0; K < 2 * NumSites; ++K) Text << "1 ";
  Text << "\nFIELD\n400\nSHIELDING\n";
  for (const SpinSite& Site : System.Sites) Text << Site.Shift << " ";
  Text << "\nCOUPLING\n";
  for (std::size_t K = 0; K < NumSites * NumSites; ++K) Text << System.Coupling[K] << ((K + 1) % NumSites ? " " : "\n");
  Text << "MINIMALINTENSITY\n0\nWEAKCOUPLINGAPPROXIMATION\n0\nPARAMETERS\n" << Parameters.size() << "\n";
  for (const std::string& Each : Parameters) Text << Each << "\n";
  constexpr double Step = 0.25;
  const auto NumPoints = static_cast<int>((High - Low) / Step) + 1;
  Text << "BROADENING\n40\nWINDOWS\n1\n"
       << Low << " " << High << "\nMEASURED\n"
       << NumPoints << " " << Low << " " << Low + Step * (NumPoints - 1) << "\n";
  std::mt19937 Random(7);
  const std::vector<Line> Lines = SimulateByBruteForce(System);
  for (int Point = 0; Point < NumPoints; ++Point) {
    double Value = 5.0;  // a baseline
    for (int K = 0; K < 12; ++K) Value += (double(Random()) / 4294967296.0 - 0.5) * 1.0;
    for (const Line& Item : Lines) {
      const double X = 2.0 * (Low + Step * Point - Item.Frequency) / Width;
      Value += 100.0 * Item.Intensity * 2.0 / (std::numbers::pi * Width) / (1.0 + X * X);
    }
    Text << Value << "\n";
  }
  return Text.str();
}

const std::vector<std::string> Shape = {"width 1.5 0.1 10 free", "scale 0 0 1e9 free", "offset 0 -1e9 1e9 free"};

std::vector<std::string> WithShape(std::vector<std::string> Parameters) {
  Parameters.insert(Parameters.end(), Shape.begin(), Shape.end());
  return Parameters;
}

const SpectrumInput AB = MakeInput(400, {3.00, 3.06}, {}, {{0, 1, 12.0}});

TEST(Fit, FindsWhatMadeTheSpectrum) {
  struct Row {
    const char* Name;
    SpectrumInput System;
    std::vector<std::string> Parameters;
    std::vector<double> Expected;
    double Low, High;  // Hz
  };
  // Starts lie 0.05 ppm and 2 Hz away.
  const std::vector<Row> Rows = {
      {"AB",
       AB,
       {"shift 2.95 2 4 free 1", "shift 3.11 2 4 free 2", "coupling 10 0 20 free 1-2"},
       {3.00, 3.06, 12.0},
       1150,
       1280},
      {"AA'BB', sites tied",
       MakeInput(400, {7.1, 7.1, 7.25, 7.25}, {},
                 {{0, 2, 8.1}, {1, 3, 8.1}, {0, 3, 0.5}, {1, 2, 0.5}, {2, 3, 7.4}, {0, 1, 2.0}}),
       {"shift 7.15 6 8 free 1 2", "shift 7.2 6 8 free 3 4", "coupling 6.1 -20 20 free 1-3 2-4",
        "coupling 2.5 -20 20 free 1-4 2-3", "coupling 5.4 0 20 free 3-4", "coupling 0.5 0 4 free 1-2"},
       {7.1, 7.25, 8.1, 0.5, 7.4, 2.0},
       2780,
       2960},
      {"a fixed coupling",
       AB,
       {"shift 2.98 2 4 free 1", "shift 3.07 2 4 free 2", "coupling 12 0 20 fixed 1-2"},
       {3.00, 3.06, 12.0},
       1150,
       1280},
  };
  for (const Row& Each : Rows) {
    const TemporaryDirectory Directory;
    const auto Path =
        Directory.Write("nmrfit.in", FitText(Each.System, WithShape(Each.Parameters), Each.Low, Each.High));
    Log Silent;
    const FitResult Result = FitSpectrum(ReadFitInput(Path), Silent);
    EXPECT_GT(Result.R, 0.99) << Each.Name;
    EXPECT_NEAR(Result.Noise, 1.0, 0.1) << Each.Name;
    for (std::size_t K = 0; K < Each.Expected.size(); ++K) {
      const FittedValue& Own = Result.Values[K];
      const bool IsFree = Each.Parameters[K].find("fixed") == std::string::npos;
      EXPECT_NEAR(Own.Value, Each.Expected[K], 5.0 * Own.Error) << Each.Name << K;
      EXPECT_EQ(Own.Error > 0.0, IsFree) << Each.Name << K;
      EXPECT_LT(Own.Error, Each.Expected[K] > 2.5 ? 0.02 : 0.1) << Each.Name << K;
    }
    EXPECT_NEAR(Result.Values[Each.Expected.size()].Value, Width, 0.1) << Each.Name;
  }
}

TEST(Fit, StaysWithinBounds) {
  const TemporaryDirectory Directory;
  Directory.Write(
      "nmrfit.in",
      FitText(AB, WithShape({"shift 3 2 4 free 1", "shift 3.06 2 4 free 2", "coupling 9 8 10 free 1-2"}), 1150, 1280));
  const std::string Command = "'" NMRCALC_PROGRAM "' '" NMRCALC_DATA "' '" + Directory.Path + "' 3";
  EXPECT_EQ(std::system(Command.c_str()), 0);
  const std::string Output = Directory.Read("nmrfit.out");
  EXPECT_NE(Output.find("\ncoupling 10.0000000 "), std::string::npos) << Output.substr(0, 500);
  EXPECT_NE(Output.find("\nSIMULATED 521\n"), std::string::npos);
  Directory.Write("nmrfit.in", "no input");
  EXPECT_NE(std::system(Command.c_str()), 0);
  EXPECT_EQ(Directory.Read("nmrfit.out").rfind("ERRMSG: ", 0), 0u);
}

TEST(Fit, TellsWhatItCannotDo) {
  struct Row {
    std::vector<std::string> Parameters;
    const char* Says;
  };
  const std::string Shift = "shift 3 2 4 free 1";
  const std::vector<Row> Rows = {
      {WithShape({"shift 3 2 4 fixed 1"}), ""},  // the width is free
      {{"width 1 0.1 10 fixed", Shape[1], Shape[2]}, "No shift, coupling or width is free"},
      {WithShape({"shift 3 2 4 free 3"}), "line 17: a site should lie in 1 to 2"},
      {WithShape({"shift 5 2 4 free 1"}), "line 17: the start of a parameter should lie within its bounds"},
      {WithShape({"shift 3 2 4 loose 1"}), "line 17: a parameter should be free or fixed"},
      {WithShape({"drift 3 2 4 free 1"}), "there is no parameter of the kind drift"},
      {WithShape({"coupling 3 2 4 free 1-1"}), "a coupling should be of two sites"},
      {WithShape({"coupling 3 2 4 free 1"}), "a coupling should name its sites as 1-2"},
      {WithShape({Shift, Shift}), "site 1 has two shifts"},
      {{Shift, Shape[1], Shape[2]}, "there is no parameter width"},
      {WithShape({Shift, "width 1 0.1 10 free"}), "two parameters of the kind width"},
      {WithShape({"shift 3 2 4 free"}), "the parameter names no site"},
  };
  for (const Row& Each : Rows) {
    const TemporaryDirectory Directory;
    const auto Path = Directory.Write("nmrfit.in", FitText(AB, Each.Parameters, 1150, 1280));
    const std::string Said = FailureOf([&] {
      Log Silent;
      FitSpectrum(ReadFitInput(Path), Silent);
    });
    EXPECT_NE(Said.find(Each.Says), std::string::npos) << Said;
    EXPECT_EQ(Said.empty(), std::string(Each.Says).empty()) << Said;
  }
}

}  // namespace
}  // namespace nmrcalc::testing
