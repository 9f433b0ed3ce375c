#include <chrono>
#include <cstdlib>
#include <thread>

#include "Helpers.h"
#include "nmrcalc/Command.h"
#include "nmrcalc/Progress.h"
#include "nmrcalc/input/InputText.h"

namespace nmrcalc::testing {
namespace {

// Ethanol as the program writes it, CH3 first; coordinates of no importance but for the tensor.
std::string EthanolInput(const std::string& Shielding, const std::string& Tensor, const std::string& Coupling) {
  return "LogPrintLevel = 2\r\nNMRFrequency = 400\r\nCalculateShielding = " + Shielding +
         "\r\nCalculateShieldTensor = " + Tensor + "\r\nCalculateCoupling = " + Coupling +
         "\r\nNMRSelectionBegin\r\n6\r\nmol 1 atom 4\r\nmol 1 atom 5\r\nmol 1 atom 6\r\nmol 1 atom 7\r\n"
         "mol 1 atom 8\r\nmol 1 atom 9\r\nNMRSelectionEnd\r\nAtomsBegin\r\n9\r\nforcefield krdo\r\nmol 1\r\n"
         "atom 1 - C ** - 0 -1.168 -0.397 0 4 2 s 4 s 5 s 6 s \r\n"
         "atom 2 - C ** - 0 0 0.558 0 4 1 s 3 s 7 s 8 s\r\n"
         "atom 3 - O ** - 0 1.19 -0.21 0 2 2 s 9 s\r\n"
         "atom 4 - H ** - 0 -2.12 0.14 0 1 1 s\r\natom 5 - H ** - 0 -1.13 -1.04 0.89 1 1 s\r\n"
         "atom 6 - H ** - 0 -1.13 -1.04 -0.89 1 1 s\r\natom 7 - H ** - 0 -0.05 1.2 0.89 1 2 s\r\n"
         "atom 8 - H ** - 0 -0.05 1.2 -0.89 1 2 s\r\natom 9 - H ** - 0 1.95 0.38 0 1 3 s\r\n"
         "endmol 1\r\nAtomsEnd\r\n";
}

constexpr const char* EthanolSpectrum =
    "Description\r\n 3 \r\n1 1 1  3 2 1  \r\nFIELD\r\n 400 \r\nSHIELDING\r\n1.200 3.600 2.400\r\nCOUPLING\r\n"
    "0.000 7.000 0.000\r\n7.000 0.000 0.000\r\n0.000 0.000 0.000\r\nMINIMALINTENSITY\r\n0.10000\r\n"
    "WEAKCOUPLINGAPPROXIMATION\r\n1\r\n";

std::vector<std::string> LinesOf(const TemporaryDirectory& Directory, const std::string& Name) {
  return ReadTextFile(Directory.Path + "/" + Name).Lines;
}

int RunStageIn(const TemporaryDirectory& Directory, int Stage, const std::string& Parameters = NMRCALC_DATA) {
  return RunCommand({.ParameterDirectory = Parameters,
                     .WorkDirectory = Directory.Path,
                     .Stage = Stage,
                     .LogPath = Directory.Path + "/log"});
}

TEST(StageOne, WritesShieldingsTensorsAndCouplings) {
  const TemporaryDirectory Directory;
  Directory.Write("nmrparam.in", EthanolInput("Yes", "Yes", "Yes"));
  EXPECT_EQ(RunStageIn(Directory, 1), 0);
  const auto Lines = LinesOf(Directory, "nmrparam.out");
  ASSERT_EQ(Lines.size(), 7u + 1u + 12u + 1u + 6u);
  EXPECT_NE(Lines[0].find("not a result of KRDO/1 or KRDO/2"), std::string::npos);
  EXPECT_EQ(Lines[1], "6");
  EXPECT_EQ(Lines[2], "1 1 1 1 1 1");
  EXPECT_EQ(Lines[4], "400");
  const auto Shieldings = SplitTokens(Lines[6]);
  ASSERT_EQ(Shieldings.size(), 6u);
  EXPECT_EQ(Shieldings[0], Shieldings[2]);
  EXPECT_NEAR(30.48 - std::stod(std::string(Shieldings[0])), 1.2, 0.1);
  EXPECT_NEAR(30.48 - std::stod(std::string(Shieldings[3])), 3.65, 0.1);
  EXPECT_EQ(Lines[7], "TENSOR");
  EXPECT_EQ(SplitTokens(Lines[8]).size(), 9u);
  EXPECT_EQ(SplitTokens(Lines[9]).size(), 5u);
  EXPECT_EQ(Lines[20], "COUPLING");
  const auto Row = SplitTokens(Lines[21]);
  ASSERT_EQ(Row.size(), 6u);
  EXPECT_EQ(Row[0], "0.0000");
  EXPECT_NEAR(std::stod(std::string(Row[3])), 7.0, 0.1);
  EXPECT_EQ(Row[5], "0.0000");  // the hydroxyl proton exchanges
  const std::string Log = Directory.Read("log");
  EXPECT_NE(Log.find("H 4 of molecule 1: 1.2"), std::string::npos) << Log;
  const auto Errors = LinesOf(Directory, "nmrparam.err");
  ASSERT_EQ(Errors.size(), 6u);
  EXPECT_LT(std::stod(Errors[0]), 0.2);
  EXPECT_GT(std::stod(Errors[5]), 0.3);  // the hydroxyl proton depends on everything
}

TEST(StageOne, ComputesOnlyWhatIsAskedFor) {
  const TemporaryDirectory Directory;
  const TemporaryDirectory NoTables;
  const std::string Zeros = "0.0000 0.0000 0.0000 0.0000 0.0000 0.0000";
  Directory.Write("nmrparam.in", EthanolInput("No", "No", "No"));
  EXPECT_EQ(RunStageIn(Directory, 1, NoTables.Path), 0);  // not even the tables are looked at
  const auto Lines = LinesOf(Directory, "nmrparam.out");
  ASSERT_EQ(Lines.size(), 14u);
  EXPECT_EQ(Lines[6], Zeros);
  EXPECT_EQ(Lines[7], "COUPLING");
  EXPECT_EQ(Lines[13], Zeros);
  Directory.Write("nmrparam.in", EthanolInput("No", "No", "Yes"));
  EXPECT_EQ(RunStageIn(Directory, 1, NoTables.Path), 1);
  EXPECT_EQ(Directory.Read("nmrparam.out").rfind("ERRMSG: Could not read " + NoTables.Path + "/nmr_cupl.abp", 0), 0u);
}

TEST(StageTwo, WritesThePeakListByRisingFrequency) {
  const TemporaryDirectory Directory;
  Directory.Write("nmrspect.in", EthanolSpectrum);
  EXPECT_EQ(RunStageIn(Directory, 2), 0);
  EXPECT_EQ(Directory.Read("nmrspect.out"),
            "NMR spectrum by first-order (weak coupling) simulation of the isotropic spin Hamiltonian\n8\n"
            "FREQUENCY INTENSITY DEGENERACY LINEWIDTH\n"
            "473.00000000 12.000000000 5 0.500\n480.00000000 24.000000000 10 0.500\n"
            "487.00000000 12.000000000 5 0.500\n960.00000000 16.000000000 1 0.500\n"
            "1429.50000000 4.000000000 2 0.500\n1436.50000000 12.000000000 6 0.500\n"
            "1443.50000000 12.000000000 6 0.500\n1450.50000000 4.000000000 2 0.500\n");
  EXPECT_FALSE(std::filesystem::exists(Directory.Path + "/nmrspect.out.tmp"));
  EXPECT_EQ(Directory.Read("nmrspect.map"), "map 1 8\n1:100\n1:100\n1:100\n3:100\n2:100\n2:100\n2:100\n2:100\n");
  Directory.Write("nmrspect.in", "no input");
  EXPECT_EQ(RunStageIn(Directory, 2), 1);
  EXPECT_EQ(Directory.Read("nmrspect.map"), "");
}

TEST(Progress, IsToldAndTakenAway) {
  const TemporaryDirectory Directory;
  StartProgress(Directory.Path, 2);
  std::this_thread::sleep_for(std::chrono::milliseconds(150));
  ReportProgress(3, 7, "blocks of states");
  const std::string Text = Directory.Read("nmrprogress.out");
  EXPECT_EQ(Text.rfind("2 3 7 0.", 0), 0u) << Text;
  EXPECT_EQ(Text.substr(9), " blocks of states\n");
  EndProgress();
  EXPECT_EQ(Directory.Read("nmrprogress.out"), "");
}

TEST(CommandLines, AreTakenAsTheyStand) {
  const CommandLine Command = ParseCommandLine({"p q", "w", "2", "my log"});
  EXPECT_EQ(Command.ParameterDirectory + "|" + Command.WorkDirectory + "|" + Command.LogPath, "p q|w|my log");
  EXPECT_EQ(Command.Stage, 2);
  for (const auto& Bad : std::vector<std::vector<std::string>>{
           {}, {"p"}, {"p", "w"}, {"p", "w", "0"}, {"p", "q", "w", "1"}, {"p", "w", "2", "my", "log"}}) {
    EXPECT_NE(FailureOf([&] { ParseCommandLine(Bad); }).find("usage:"), std::string::npos);
  }
}

// The program itself, as it is started: exit codes, and a log that grows.
TEST(Program, RunsAsAProcess) {
  const TemporaryDirectory Directory;
  Directory.Write("nmrspect.in", EthanolSpectrum);
  const std::string Command =
      "'" NMRCALC_PROGRAM "' '" NMRCALC_DATA "' '" + Directory.Path + "' 2 '" + Directory.Path + "/log'";
  EXPECT_EQ(std::system(Command.c_str()), 0);
  const std::size_t Once = Directory.Read("log").size();
  EXPECT_GT(Once, 0u);
  EXPECT_EQ(std::system(Command.c_str()), 0);
  EXPECT_GT(Directory.Read("log").size(), Once);
  EXPECT_NE(Directory.Read("nmrspect.out").find("\n8\nFREQUENCY"), std::string::npos);
  EXPECT_NE(std::system("'" NMRCALC_PROGRAM "' 2>/dev/null"), 0);
}

TEST(FixedNumbers, HaveNoExponentAndNoNegativeZero) {
  struct Row {
    double Value;
    int Decimals;
    const char* Text;
  };
  const std::vector<Row> Rows = {{0.0, 3, "0.000"},
                                 {-0.0004, 3, "0.000"},
                                 {-0.5, 3, "-0.500"},
                                 {1e-9, 9, "0.000000001"},
                                 {1234.5, 0, "1235"},
                                 {9.99995, 4, "10.0000"},
                                 {1e20, 2, "100000000000000000000.00"},
                                 {-473.25, 8, "-473.25000000"}};
  for (const Row& Item : Rows) EXPECT_EQ(FixedNumber(Item.Value, Item.Decimals), Item.Text);
}

}  // namespace
}  // namespace nmrcalc::testing
