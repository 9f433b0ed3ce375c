#include <cmath>
#include <numbers>

#include "Support.h"
#include "files/DocumentReader.h"
#include "files/DocumentWriter.h"
#include "measured/CurveFiles.h"
#include "measured/FourierTransform.h"
#include "measured/JcampTable.h"
#include "measured/MeasuredCommands.h"
#include "measured/MeasuredTrace.h"

namespace zelvanor::test {
namespace {

WorkspaceState& W = Workspace;

class MeasuredTest : public ProgramTest {};

// The tables of one JCAMP-DX file, in every form that the standard has, and what can be wrong with them.
TEST_F(MeasuredTest, JcampTables) {
  struct Row {
    const char* Lines;
    const char* Values;    // or the failure
    const char* Warnings;  // the first word group of each
  };
  const Row Rows[] = {
      {"0 1 2 -3\n3 4.5 6E+01\n", "1 2 -3 4.5 60", ""},   // AFFN
      {"0+1+2-3\n3+4-5\n", "1 2 -3 4 -5", ""},            // PAC
      {"0ABc\n3DeA0@\n", "1 2 -3 4 -5 10 0", ""},         // SQZ
      {"0AJj5\n2a3Kj\n4a2A\n", "1 2 -13 -11 -12 1", ""},  // DIF with its checks
      {"0ATJU%S\n", "1 1 2 3 4 4", ""},                   // DUP of values and differences
      {"0A?C\n", "1 1 3", ""},                            // a missing value
      {"0A $$ a comment\n\n1B\n", "1 2", ""},             //
      {"0AJ\n1C1\n", "1 31", "1 check values of the table differ (the first in line 3)"},
      {"0ABC\n9D\n", "1 2 3 4", "1 lines of the table are not where they say (the first is line 3)"},
      {"0J\n", "a difference without a value before it in line 2", ""},
      {"0T\n", "nothing to repeat in line 2", ""},
      {"0A!\n", "line 2 is no line of a table", ""},
      {"none\n", "line 2 is no line of a table", ""},
      {"0AVs99999999\n", "the table has too many points", ""},
  };
  for (const Row& Each : Rows) {
    Text Values;
    Text Warnings;
    const Text Problem = FailureOf([&] {
      const JcampTable Table = ReadJcampTable(Text("=\n") + Each.Lines, {0, 1, 1, true, 1});
      for (const Double Value : Table.Values) Values += (Values.empty() ? "" : " ") + GeneralForm(Value);
      for (const Text& Warning : Table.Warnings) Warnings += Warning;
    });
    EXPECT_EQ(Values.empty() ? Problem : Values, Each.Values) << Each.Lines;
    EXPECT_EQ(Warnings, Each.Warnings) << Each.Lines;
  }
}

// Whatever is written is read again, and at every cut of it there is a shorter table or a failure.
TEST_F(MeasuredTest, JcampTablesAreReadBack) {
  std::vector<Long> Points = {0, 0, 0, 5, -5, (1 << 30) - 1, 1 - (1 << 30), 7};
  for (Long Point = 0; Point < 500; ++Point) Points.push_back(Point % 7 == 0 ? 3 * Point : -Point);
  const Text Table = "\n" + WriteJcampTable(Points, 12.5, -0.25);
  const JcampTable Back = ReadJcampTable(Table, {12.5, -0.25, 1, true, 0});
  EXPECT_TRUE(std::equal(Points.begin(), Points.end(), Back.Values.begin(), Back.Values.end()));
  EXPECT_TRUE(Back.Warnings.empty());
  for (std::size_t From = 1; From < Table.size();) {
    const std::size_t Feed = Table.find("\n", From);
    EXPECT_LE(Feed - From, 80U);
    From = Feed + 1;
  }
  for (std::size_t Cut = 1; Cut < 400; ++Cut) {
    FailureOf([&] { EXPECT_LE(ReadJcampTable(Table.substr(0, Cut), {}).Values.size(), Points.size()) << Cut; });
  }
}

constexpr const char* Head = "##TITLE=x\n##JCAMP-DX=5\n##DATA TYPE=NMR SPECTRUM\n##.OBSERVE FREQUENCY=100\n";
constexpr const char* Axis = "##XUNITS=HZ\n##FIRSTX=300\n##LASTX=100\n##NPOINTS=3\n";
constexpr const char* Data = "##XYDATA=(X++(Y..Y))\n300A200J\n200A201C03\n##END=\n";

// The files that the readers take or refuse: places of the first and last point in ppm, and the points.
TEST_F(MeasuredTest, Files) {
  const Text Whole = Text(Head) + Axis + Data;
  const Text Tuples =
      "##NTUPLES=NMR SPECTRUM\n##VAR_NAME=FREQUENCY,REAL,IMAGINARY\n##SYMBOL=X,R,I\n##VAR_DIM=3,3,3\n##UNITS=HZ,,\n"
      "##FACTOR=100,2,2\n##FIRST=300,,\n##LAST=100,,\n##PAGE=N=1\n##DATA TABLE=(X++(R..R)), XYDATA\n3ABC\n##PAGE=N=2\n"
      "##DATA TABLE=(X++(I..I)), XYDATA\n3DEF\n##END NTUPLES=NMR SPECTRUM\n##END=\n";
  struct Row {
    const char* What;
    Text Content;
    const char* Taken;  // or what the box says
  };
  const Row Rows[] = {
      {"Hz", Whole, "3 1: 1200 1201 303"},
      {"Hz of another 0 ppm", Change(Whole, "##XUNITS", "##.SHIFT REFERENCE=INTERNAL,TMS,3,0\n##XUNITS"),
       "2 0: 1200 1201 303"},
      {"rising", Change(Change(Whole, "FIRSTX=300", "FIRSTX=100"), "LASTX=100", "LASTX=300"), "3 1: 303 1201 1200"},
      {"ppm, labels without blanks",
       "##TITLE=x\n##DATATYPE=NMRSPECTRUM\n##.OBSERVEFREQUENCY=100\n##XUNITS=PPM\n##FIRSTX=2\n##LASTX=1\n##XYPOINTS=("
       "XY..XY)\n2,5;1.5,6;1,7\n",
       "2 1: 5 6 7"},
      {"tuples", Text(Head) + Tuples, "3 1: 2 4 6"},
      {"blocks", "##TITLE=all\n##DATA TYPE=LINK\n##BLOCKS=1\n" + Whole + "##END=\n", "3 1: 1200 1201 303"},
      {"columns", "ppm;a\n3;10\n2,20\n1 30\n", "3 1: 10 20 30"},
      {"no NMR", Change(Whole, "NMR SPECTRUM", "INFRARED SPECTRUM"), "the file holds no NMR spectrum"},
      {"two dimensions", Change(Whole, "##XUNITS", "##NUMDIM=2\n##XUNITS"),
       "the file holds a two-dimensional spectrum"},
      {"peaks", Text(Head) + "##PEAK TABLE=(XY..XY)\n1,2\n##END=\n", "the file holds a list of peaks, no spectrum"},
      {"no frequency", Change(Whole, "##.OBSERVE", "##.NO"), "the file does not say the spectrometer's frequency"},
      {"other units", Change(Whole, "=HZ", "=1/CM"), "the axis is in 1/CM, not in Hz or ppm"},
      {"no points", Text(Head) + Axis + "##XYDATA=(X++(Y..Y))\n##END=\n", "the file holds no points"},
      {"a poem", "Roses are red\n", "the file is of no kind of spectrum that can be read"},
      {"broken columns", "1 2\n2 3\nx\n", "line 3 does not hold two numbers"},
      {"uneven columns", "1 2\n2 3\n9 4\n", "the points do not lie at equal distances"},
      {"empty", "", "the file is of no kind of spectrum that can be read"},
  };
  for (const Row& Each : Rows) {
    ResetProgram();
    W.NMRFrequency = 100;
    const Text Path = WriteFile("spectrum", Each.Content);
    Text Taken;
    if (OpenMeasured(Path)) {
      Taken = Join(MeasuredPpmAt(0), " ", MeasuredPpmAt(W.MeasuredCount - 1.0), ":");
      for (Long Point = 0; Point < W.MeasuredCount; ++Point) Taken += Join(" ", MeasuredIntensityAt(Point));
      EXPECT_EQ(Boxes(), "") << Each.What;
    } else {
      Taken = Each.Taken;
      EXPECT_EQ(Boxes(), Join("warning Could not take the measured spectrum from ", Path, ": ", Each.Taken, "."));
      EXPECT_EQ(W.MeasuredCount, 0) << Each.What;
    }
    EXPECT_EQ(Taken, Each.Taken) << Each.What;
  }
}

TEST_F(MeasuredTest, DamageAndMismatchAreTold) {
  W.SpectraAvailable = True;
  W.NMRFrequency = 400;
  const Text Cut = Change(Text(Head) + "##.OBSERVE NUCLEUS=^13C\n" + Axis + Data, "\n200A201C03", "");
  ASSERT_TRUE(OpenMeasured(WriteFile("cut.jdx", Cut)));
  EXPECT_EQ(Boxes(), Join("warning The file ", TempPath("cut.jdx"),
                          " is damaged: the table has 2 points of the 3 that the file tells. | warning The measured "
                          "spectrum is of 13C, the simulation of 1H.  The measured spectrum is of 100.0 MHz, the "
                          "simulation of 400 MHz: shifts agree in ppm, but splittings do not.  See Setup > Spectrum."));
}

// Lines at 2 and -1 kHz from the carrier, delayed by a digital filter, out of phase, in an offset.
TEST_F(MeasuredTest, AnFidBecomesASpectrum) {
  MeasuredSpectrum Fid;
  Fid.IsFid = true;
  Fid.MHz = 400;
  Fid.SweepHz = 8000;
  Fid.CentrePpm = 5;
  Fid.GroupDelay = 20;
  for (int Sample = 0; Sample < 4096; ++Sample) {
    const Double Time = (Sample - Fid.GroupDelay) / Fid.SweepHz;
    std::complex<Double> Value = 0;
    // The first sample stands for half an interval.
    const Double Weight = Time > 0 ? 1.0 : Time == 0 ? 0.5 : 0.0;
    if (Weight > 0) {
      for (const Double Hz : {2000.0, -1000.0}) {
        Value += std::polar(Weight * std::exp(-10.0 * Time), 2.0 * std::numbers::pi * Hz * Time + 0.7);
      }
    }
    Fid.Real.push_back(Value.real());
    Fid.Imaginary.push_back(Value.imag());
  }
  Processing By;
  FindPhases(TransformToSpectrum(Fid, By), By);
  EXPECT_NEAR(By.Phase0, -0.7 * 180.0 / std::numbers::pi, 3.0);
  By.BaselineOrder = 3;
  MeasuredSpectrum Made = TransformToSpectrum(Fid, By);
  ApplyProcessing(Made, By);
  TakeOverMeasured(Made);
  const Double Largest = MeasuredIntensityAt(ToLong(MeasuredPointAt(10.0)));
  EXPECT_NEAR(MeasuredIntensityAt(ToLong(MeasuredPointAt(2.5))) / Largest, 1.0, 0.1);
  for (const Double Ppm : {12.0, 8.0, 5.0, 1.0}) {
    EXPECT_NEAR(MeasuredIntensityAt(ToLong(MeasuredPointAt(Ppm))) / Largest, 0.0, 0.003) << Ppm;
  }
}

TEST_F(MeasuredTest, TheTransformIsTheSum) {
  std::vector<std::complex<Double>> Values;
  for (int Place = 0; Place < 16; ++Place) Values.emplace_back(std::sin(Place * Place), Place % 5);
  std::vector<std::complex<Double>> Fast = Values;
  Transform(Fast, false);
  for (int Bin = 0; Bin < 16; ++Bin) {
    std::complex<Double> Sum = 0;
    for (int Place = 0; Place < 16; ++Place) {
      Sum += Values[static_cast<std::size_t>(Place)] * std::polar(1.0, -2.0 * std::numbers::pi * Bin * Place / 16);
    }
    EXPECT_NEAR(std::abs(Fast[static_cast<std::size_t>(Bin)] - Sum), 0, 1e-12);
  }
  Transform(Fast, true);
  for (int Place = 0; Place < 16; ++Place) {
    EXPECT_NEAR(std::abs(Fast[static_cast<std::size_t>(Place)] - Values[static_cast<std::size_t>(Place)]), 0, 1e-12);
  }
}

TEST_F(MeasuredTest, GroupDelays) {
  struct Row {
    Double Stated;
    int Firmware;
    Double Decimation;
    Double Delay;
  };
  for (const Row& Each : {Row{67.98, 20, 2218.7, 67.98},
                          {-1, 10, 24, 61.0208},
                          {0, 12, 16, 71.625},
                          {0, 13, 96, 2.9948},
                          {0, 9, 24, 0},
                          {0, 10, 25, 0}}) {
    EXPECT_NEAR(FindGroupDelay(Each.Stated, Each.Firmware, Each.Decimation), Each.Delay, 1e-4) << Each.Decimation;
  }
}

// A spectrometer's folder, reached by the folder, its file and the folder above.
TEST_F(MeasuredTest, SpectrometerFolders) {
  const Text Folder = MakeFolder("sample");
  MakeFolder("sample/10");
  MakeFolder("sample/10/pdata");
  MakeFolder("sample/10/pdata/1");
  const auto Number = [](int Value) {
    Text Bytes;
    for (int Byte = 0; Byte < 4; ++Byte) Bytes += static_cast<char>(Value >> (8 * Byte));
    return Bytes;
  };
  WriteFile("sample/10/acqus",
            "##TITLE=x\n##$NUC1= <13C>\n##$BF1= 100\n##$SFO1= 100.01\n##$SW_h= 1000\n##$TD= 8\n##$AQ_mod= 3\n##END=\n");
  WriteFile("sample/10/fid",
            Number(1) + Number(0) + Number(1) + Number(0) + Number(1) + Number(0) + Number(1) + Number(0));
  ASSERT_TRUE(OpenMeasured(TempPath("sample/10/fid"))) << Boxes();
  EXPECT_NEAR(MeasuredPpmAt((W.MeasuredCount - 1) / 2.0), 100, 2);  // 10 kHz from the carrier, at 100 MHz
  WriteFile("sample/10/pdata/1/procs",
            "##TITLE=x\n##$SF= 100\n##$SW_p= 300\n##$OFFSET= 3\n##$NC_proc= -1\n##$SI= 3\n##END=\n");
  WriteFile("sample/10/pdata/1/1r", Number(4) + Number(-6) + Number(9));
  for (const char* Path :
       {"sample", "sample/10", "sample/10/pdata/1", "sample/10/pdata/1/1r", "sample/10/pdata/1/procs"}) {
    ResetProgram();
    ASSERT_TRUE(OpenMeasured(TempPath(Path))) << Path << Boxes();
    ExpectValues("MeasuredCount=3 MeasuredFirst=300 MeasuredLast=100 MeasuredFactor=0.5 MeasuredPoint(1)=-6", Path);
    EXPECT_EQ(W.MeasuredNucleus, "13C");
  }
}

// A spectrum of the document is written and read again without a change, in the document and as JCAMP-DX.
TEST_F(MeasuredTest, RoundTrips) {
  ASSERT_TRUE(OpenMeasured(WriteFile("a.jdx", Text(Head) + "##YFACTOR=0.1\n##.SOLVENT NAME=CDCl3\n" + Axis + Data)));
  const Text Exported = BuildMeasuredJcamp();
  ASSERT_TRUE(IsSet(WriteDocument(TempPath("a.NMR")))) << Boxes();
  const Text Written = ReadBytes(TempPath("a.NMR"));
  ResetProgram();
  ASSERT_TRUE(IsSet(ReadDocument(TempPath("a.NMR")))) << Boxes();
  ASSERT_TRUE(IsSet(WriteDocument(TempPath("b.NMR"))));
  EXPECT_EQ(ReadBytes(TempPath("b.NMR")), Written);
  EXPECT_EQ(BuildMeasuredJcamp(), Exported);
  ASSERT_TRUE(OpenMeasured(WriteFile("c.jdx", Exported))) << Boxes();
  EXPECT_EQ(BuildMeasuredJcamp(), Exported);
  EXPECT_EQ(BuildMeasuredCsv(), "ppm,Hz,intensity\n3.00000,300.000,120\n2.00000,200.000,120.1\n1.00000,100.000,30.3\n");
  // What is damaged is refused as a whole, and told.
  for (const auto& [From, To] : {std::pair{"points 3", "points 4"},
                                 {"points 3", "points"},
                                 {"first 300", "first 30"},
                                 {"A200", "?"},
                                 {"factor 0.1", "factor -1"}}) {
    ResetProgram();
    EXPECT_FALSE(IsSet(ReadDocument(WriteFile("d.NMR", Change(Written, From, To))))) << To;
    EXPECT_EQ(W.MeasuredCount, 0) << To;
    EXPECT_NE(Boxes(), "") << To;
  }
}

}  // namespace
}  // namespace zelvanor::test
