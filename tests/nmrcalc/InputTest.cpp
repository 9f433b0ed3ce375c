#include "Helpers.h"
#include "nmrcalc/Estimate.h"
#include "nmrcalc/input/ParamInput.h"
#include "nmrcalc/input/SpinSettings.h"
#include "nmrcalc/input/Tables.h"
#include "nmrcalc/spins/Spectrum.h"

namespace nmrcalc::testing {
namespace {

using Lines = std::vector<std::string>;

const Lines GoodSpectrum = {"Description of NMR shielding and coupling constants",
                            " 3 ",
                            "1 1 6  3 2 1  ",
                            "FIELD",
                            " 400 ",
                            "SHIELDING",
                            "1.200 3.600 36000.000",
                            "COUPLING",
                            "0.000 7.000 126.000",
                            "7.000 0.000 -4.500",
                            "126.000 -4.500 0.000",
                            "MINIMALINTENSITY",
                            "0.10000",
                            "WEAKCOUPLINGAPPROXIMATION",
                            "0"};

const Lines GoodParam = {"SemiEmpiricalMethod = KRDO/1",
                         "LogPrintLevel = 0",
                         "NMRFrequency = 400",
                         "CalculateShielding=Yes",
                         "  CalculateShieldTensor  =  Yes ",
                         "CalculateCoupling = Yes",
                         "NMRSelectionBegin",
                         "2",
                         "mol 1 atom 1",
                         "mol 1 atom 2",
                         "NMRSelectionEnd",
                         "QuantumSelectionBegin",
                         "1",
                         "mol 1 atom 2",
                         "QuantumSelectionEnd",
                         "AtomsBegin",
                         "2",
                         "; a comment",
                         "mol 1",
                         "atom 1 - F ** - 0 0 0 0 1 2 s",
                         "atom 2 - H ** - 0 0 0 0.92 1 1 s",
                         "endmol 1",
                         "AtomsEnd"};

std::string Join(const Lines& Text, const char* End = "\r\n") {
  std::string Result;
  for (const std::string& Item : Text) Result += Item + End;
  return Result;
}

Lines With(Lines Text, std::size_t Line, const std::string& Replacement) {
  Text[Line - 1] = Replacement;
  return Text;
}

// One line of a good file replaced, and what the complaint says. Lines from 1.
struct BadLine {
  std::size_t Line;
  const char* Replacement;
  const char* Says;
};

template <class Reader>
void ExpectComplaints(const Lines& Good, const std::vector<BadLine>& Rows, Reader Read) {
  const TemporaryDirectory Directory;
  for (const BadLine& Row : Rows) {
    const std::string Path = Directory.Write("input", Join(With(Good, Row.Line, Row.Replacement)));
    const std::string Text = FailureOf([&] { Read(Path); });
    EXPECT_NE(Text.find("input, line "), std::string::npos) << Row.Replacement << ": " << Text;
    EXPECT_NE(Text.find(Row.Says), std::string::npos) << Row.Line << " " << Row.Replacement << ": " << Text;
  }
}

TEST(SpectrumInputFile, IsReadInEveryShape) {
  const TemporaryDirectory Directory;
  for (const char* End : {"\r\n", "\n"}) {
    const auto Input = ReadSpectrumInput(Directory.Write("input", Join(With(GoodSpectrum, 4, "field "), End)));
    ASSERT_EQ(Input.Sites.size(), 3u);
    EXPECT_EQ(Input.Sites[1].Degeneracy, 2);
    EXPECT_EQ(Input.Sites[1].Frequency, 1440.0);
    EXPECT_FALSE(Input.Sites[2].Observed);
    EXPECT_EQ(Input.J(2, 1), -4.5);
    EXPECT_EQ(Input.MinimalIntensity, 0.1);
  }
  const auto Unequal = ReadSpectrumInput(Directory.Write("input", Join(With(GoodSpectrum, 9, "5 9.000 126.000"))));
  EXPECT_EQ(Unequal.J(0, 1), 8.0);
  EXPECT_EQ(Unequal.J(0, 0), 0.0);
}

TEST(SpectrumInputFile, ComplaintsNameTheLine) {
  ExpectComplaints(GoodSpectrum,
                   {{2, " 0 ", "no spin site"},
                    {2, "three", "should be a number, but is \"three\""},
                    {2, " 2000000000 ", "0 to 10000"},
                    {2, " 2.5 ", "whole number"},
                    {2, "", "1 values are needed"},
                    {3, "1 1 6  3 2", "6 values are needed"},
                    {3, "1 1 6 3 0 1", "1 to 100"},
                    {4, "FELD", "should read FIELD"},
                    {5, "1e400", "spectrometer frequency"},
                    {7, "1.2 nan 3", "a chemical shift"},
                    {7, "1.2 3.6", "3 values are needed"},
                    {9, "0 7 1e13", "out of range"},
                    {10, "7 0 -4.5 1", "couplings of site 2"},
                    {13, "-0.1", "negative"},
                    {15, "2", "0 or 1"}},
                   [](const std::string& Path) { ReadSpectrumInput(Path); });
}

TEST(ParamInputFile, IsRead) {
  const TemporaryDirectory Directory;
  const auto Input = ReadParamInput(Directory.Write("input", Join(GoodParam)));
  EXPECT_TRUE(Input.WantsShielding);
  EXPECT_TRUE(Input.WantsTensor);
  EXPECT_TRUE(Input.WantsCoupling);
  EXPECT_EQ(Input.Frequency, 400);
  EXPECT_EQ(Input.NMRAtoms, (std::vector<std::size_t>{0, 1}));
  EXPECT_EQ(Input.System.Atoms[0].AtomicNumber, 9);
  EXPECT_EQ(Input.System.Atoms[0].Neighbours.size(), 1u);
}

TEST(ParamInputFile, ComplaintsNameTheLine) {
  ExpectComplaints(GoodParam,
                   {{3, "NMRFrequency = fast", "NMRFrequency should be a number"},
                    {4, "CalculateShielding = perhaps", "Yes or No"},
                    {5, "no option", "neither an option"},
                    {8, "0", "should read NMRSelectionEnd"},
                    {8, "2000000000", "0 to 1000000"},
                    {9, "molecule 1 atom 1", "mol M atom A"},
                    {10, "mol 1 atom 7", "no such atom"},
                    {11, "mol 1 atom 1", "should read NMRSelectionEnd"},
                    {16, "Atoms", "should read AtomsBegin"},
                    {17, "3", "3 atoms are announced, but there are 2"},
                    {20, "atom 1 - Xx ** - 0 0 0 0 1 2 s", "unknown element \"Xx\""},
                    {20, "atom 1 - F ** - 0 0 0 0", "at least 11 tokens"},
                    {20, "atom 1 - F ** - 0 0 0 0 2 2 s", "neighbours is too short"},
                    {20, "atom 1 - F ** - 0 0 0 0 1 3 s", "no neighbour 3"},
                    {20, "atom 1 - F ** - 0 0 0 0 13 2 s", "0 to 12"},
                    {21, "atom 2 - H ** - 0 0 zero 0 1 1 s", "a coordinate"}},
                   [](const std::string& Path) { ReadParamInput(Path); });
}

TEST(SpinSettingsFile, ComplaintsNameTheLine) {
  const TemporaryDirectory Directory;
  EXPECT_EQ(ReadSpinSettings(Directory.Path + "/none").TimeBudget, 20.0);
  EXPECT_EQ(ReadSpinSettings(Directory.Write("good", "; all\nTolerance 0.01 ; percent\n")).Tolerance, 0.01);
  ExpectComplaints({"ExactTime 1", "TimeBudget 5"},
                   {{1, "Tolerance", "should have one number"},
                    {1, "Tolerance -1", "should lie in 0 to 100"},
                    {1, "Patience 3", "no setting of the name Patience"},
                    {2, "ExactTime 2", "is there twice"},
                    {1, "TimeBudget soon", "should be a number"}},
                   [](const std::string& Path) { ReadSpinSettings(Path); });
}

TEST(TableFiles, ComplaintsNameTheLine) {
  const Lines Good = {"; a table", "[first one two]", "key 1 2.5 ; remark", "other -1 0", "[second one]", "key 3"};
  const auto Read = [](const std::string& Path) { return ReadTables(Path, {{"first", 2}, {"second", 1}}); };
  const TemporaryDirectory Directory;
  EXPECT_EQ(TableValue(Read(Directory.Write("input", Join(Good))), "first", "key", 1), 2.5);
  ExpectComplaints(Good,
                   {{1, "key 1", "before the first table"},
                    {2, "[first one]", "should have 1 numbers, but has 2"},
                    {2, "[first one two", "end in ]"},
                    {2, "[first]", "at least one column"},
                    {3, "key 1 two", "two of key should be a number"},
                    {4, "key 1 2", "there twice"},
                    {5, "[first one]", "there twice"}},
                   Read);
  EXPECT_NE(
      FailureOf([&] { Read(Directory.Write("input", Join(With(Good, 5, "[third one]")))); }).find("second is missing"),
      std::string::npos);
  EXPECT_NE(FailureOf([&] { Read(Directory.Path + "/none"); }).find("Could not read"), std::string::npos);
}

}  // namespace
}  // namespace nmrcalc::testing
