#include <sys/stat.h>

#include "Support.h"
#include "backend/Compute.h"
#include "backend/ParamInput.h"
#include "backend/Results.h"
#include "backend/SpectInput.h"
#include "files/HostText.h"
#include "fuzz/Promises.h"
#include "settings/ProfileAccess.h"

namespace zelvanor::test {
namespace {

WorkspaceState& W = Workspace;

class BackendTest : public ProgramTest {
 protected:
  BackendTest() { UseFolders(); }

  static void UseFolders() {
    Settings.NMRExePath = Settings.NMRIniPath = MakeFolder("work");
    Settings.NMRParmPath = TempPath("parm");
    NameWorkingFiles();
  }
};

// Hydrogens 1..Count in one molecule as NMR atoms, shieldings 30, 30.5, ..., couplings 7.
void UseHydrogens(int Count) {
  Texts Lines = {"mol 1"};
  std::vector<int> Atoms;
  std::vector<double> Shieldings;
  for (int Atom = 1; Atom <= Count; ++Atom) {
    Lines.push_back("atom " + std::to_string(Atom) + " H H H - 0 0 0 0 0");
    Atoms.push_back(Atom);
    Shieldings.push_back(29.5 + 0.5 * Atom);
  }
  Lines.emplace_back("endmol 1");
  ASSERT_EQ(ReadHostFile(WriteFile("hydrogens.mvs", JoinLines(Lines))), -1);
  ASSERT_EQ(ParseHostText("hydrogens"), -1);
  Shown() = {};
  W.MoleculeLoaded = W.NMRAtomsValid = True;
  W.NumNMRAtoms = Count;
  SetArray(W.NMRAtom, Atoms);
  SetArray(W.NMRAtomicNumber, std::vector<int>(Atoms.size(), 1));
  SetArray(W.Shielding, Shieldings);
  SetArray(W.ChemicalShift, std::vector<double>(Atoms.size()));
  SetMatrix(W.Coupling, std::vector<std::vector<double>>(Atoms.size(), std::vector<double>(Atoms.size(), 7.0)));
  W.ReferenceShielding[0] = 32;
  W.NMRFrequency = 100;
  W.CalculateShielding = True;
  W.CalculateCoupling = -1;
}

TEST_F(BackendTest, ParamInput) {
  ASSERT_EQ(ReadHostFile(WriteFile("two.mvs",
                                   "forcefield krdo\r\nmol 1\r\natom 1 H H H - 0 0 0 0 0\r\nendmol 1\r\nmol 2\r\n"
                                   "atom 1 C C C - 0 0 0 0 0\r\natom 2 H H H - 0 0 0 0 0\r\nendmol 2\r\n")),
            -1);
  ASSERT_EQ(ParseHostText("two"), -1);
  W.NumNMRAtoms = 3;
  SetArray(W.NMRAtom, {3, 1, 2});
  W.SemiEmpiricalMethod = "krdo2";
  W.TotalCharge = -1;
  W.SpinMultiplicity = 1;
  W.SCFConvergenceLimit = 0.0001F;
  W.SCFIterationLimit = 50;
  W.SCFAccelerateConvergence = 1;  // only -1 is true
  W.ModifySlaterExponents = True;
  W.NMRFrequency = 500;
  W.CalculateCoupling = -1.0F;
  Texts Expected = Pieces(
      "SemiEmpiricalMethod = krdo2|TotalCharge = -1|SpinMultiplicity = 1|SCFConvergenceLimit = "
      "0.0001|SCFIterationLimit = 50|SCFAccelerateConvergence = No|LogPrintLevel = 0|ModifySlaterExponents = "
      "Yes|ComputeThreeCenterTerms = No|IncludeDOrbitalsForSecondRow = No|NMRFrequency = 500|CalculateShielding = "
      "No|CalculateShieldTensor = No|CalculateCoupling = Yes|NMRSelectionBegin|3|mol 2 atom 2|mol 1 atom 1|mol 2 atom "
      "1|NMRSelectionEnd|AtomsBegin|3|forcefield krdo|mol 1|atom 1 H H H - 0 0 0 0 0|endmol 1|mol 2|atom 1 C C C - 0 0 "
      "0 0 0|atom 2 H H H - 0 0 0 0 0|endmol 2|AtomsEnd");
  for (int Time = 0; Time < 2; ++Time) {
    ASSERT_EQ(WriteParamInput(Settings.ParamInputFile), -1);
    EXPECT_EQ(SplitLines(ReadBytes(Settings.ParamInputFile)), Expected) << Time;
  }
  W.NumQuantumAtoms = 1;
  SetArray(W.QuantumAtom, {2});
  const Texts Quantum = {"QuantumSelectionBegin", "1", "mol 2 atom 1", "QuantumSelectionEnd"};
  Expected.insert(Expected.begin() + 20, Quantum.begin(), Quantum.end());
  ASSERT_EQ(WriteParamInput(Settings.ParamInputFile), -1);
  EXPECT_EQ(SplitLines(ReadBytes(Settings.ParamInputFile)), Expected);
  W.ZMatrixPath = "/x/c.zmt";
  ASSERT_EQ(WriteParamInput(Settings.ParamInputFile), -1);
  EXPECT_NE(ReadBytes(Settings.ParamInputFile).find("AtomsBegin\r\n3\r\n; Converted from a Z-Matrix file"), Text::npos);
  W.ZMatrixPath.clear();

  EXPECT_EQ(WriteParamInput("/dev/full"), 0);
  W.NMRAtom[0] = 9;
  EXPECT_EQ(WriteParamInput(Settings.ParamInputFile), 0);
  const Text Warning = "warning Error writing the " + Settings.ParamInputFile + " file.";
  EXPECT_EQ(Shown().Boxes, (Texts{Warning, Warning}));
}

// A methyl group (one set), a labelled hydrogen, a labelled and a plain carbon, a silicon.
void UseMixedAtoms() {
  W.NumNMRAtoms = 7;
  SetArray(W.NMRAtom, {11, 12, 13, 14, 15, 16, 17});
  SetArray(W.NMRAtomicNumber, {1, 1, 1, 1, 6, 6, 14});
  W.NumLabelledAtoms = 2;
  SetArray(W.LabelledAtom, {14, 15});
  SetArray(W.Shielding, {30, 30, 30, 31, 100, 120, 300});
  SetArray(W.ChemicalShift, std::vector<double>(7));
  std::vector<std::vector<double>> Rows(7, std::vector<double>(7));
  for (std::size_t Row = 0; Row < 7; ++Row) {
    for (std::size_t Column = 0; Column < 7; ++Column) Rows[Row][Column] = 10.0 * double(Row) + double(Column) + 0.5;
  }
  SetMatrix(W.Coupling, Rows);
  W.EquivalentSetSize[2] = 3;
  for (int Member = 0; Member < 3; ++Member) W.EquivalentAtom(2, Member) = 11 + Member;
  SetArray(W.ReferenceShielding, {32, 190, 0, 0, 0, 0, 0});
  W.ParamDescription = "Description";
  W.MinimalIntensity = 0.1F;
  W.NMRFrequency = 100;
}

struct SpectRow {
  const char* What;
  std::function<void()> Change;
  Flag Result;
  Texts Lines;
  int NumSpinHalfNMRAtoms;
  int NumSpinHalfAtoms;
  Long Span;
};

TEST_F(BackendTest, SpectInput) {
  const auto File = [](const Texts& Sites, const Text& Shifts, const Texts& Couplings, const Text& Field = " 100 ") {
    Texts Lines = {"Description", Sites[0], Sites[1], "FIELD", Field, "SHIELDING"};
    if (!Shifts.empty()) Lines.push_back(Shifts);
    Lines.emplace_back("COUPLING");
    Lines.insert(Lines.end(), Couplings.begin(), Couplings.end());
    for (const char* Line : {"MINIMALINTENSITY", "0.10000", "WEAKCOUPLINGAPPROXIMATION", "0"}) Lines.emplace_back(Line);
    return Lines;
  };
  const Texts Couplings = {"0.500 4.500 6.500", "40.500 44.500 46.500", "60.500 64.500 66.500"};
  Texts Weak = File({" 3 ", "1 6 14  3 1 1  "}, "2.000 3000100.000 3000300.000", Couplings);
  Weak.back() = "1";
  const SpectRow Rows[] = {
      {"protons", [] {}, -1, File({" 3 ", "1 6 14  3 1 1  "}, "2.000 3000100.000 3000300.000", Couplings), 5, 3,
       3000000},
      {"carbons", [] { W.SpectraType = 1; }, -1,
       File({" 3 ", "1 6 14  3 1 1  "}, "3000000.000 90.000 3000300.000", Couplings), 5, 1, 3000000},
      {"weak coupling", [] { W.WeakCouplingApproximation = True; }, -1, Weak, 5, 3, 3000000},
      {"weak coupling other than -1", [] { W.WeakCouplingApproximation = 1; }, -1,
       File({" 3 ", "1 6 14  3 1 1  "}, "2.000 3000100.000 3000300.000", Couplings), 5, 3, 3000000},
      {"negative frequency", [] { W.NMRFrequency = -100; }, -1,
       File({" 3 ", "1 6 14  3 1 1  "}, "2.000 -2999900.000 -2999700.000", Couplings, "-100 "), 5, 3, -3000000},
      {"small shifts",
       [] {
         SetArray(W.Shielding, {31.5, 31.5, 31.5, 32, 190, 190, 0});
       },
       -1, File({" 3 ", "1 6 14  3 1 1  "}, "0.500 10100.000 10300.000", Couplings), 5, 3, 10000},
      {"no sets",
       [] {
         W.EquivalentSetSize[2] = 0;
         W.NumNMRAtoms = 2;
       },
       -1, File({" 2 ", "1 1  1 1  "}, "2.000 2.000", {"0.500 1.500", "10.500 11.500"}), 2, 2, 20000},
      {"ties go away from zero",
       [] {
         W.EquivalentSetSize[2] = 0;
         W.NumNMRAtoms = 1;
         W.Coupling(0, 0) = -0.0625F;
         W.Shielding[0] = 31.9375F;
       },
       -1, File({" 1 ", "1  1  "}, "0.063", {"-0.063"}), 1, 1, 10000},
      {"nothing observed", [] { W.SpectraType = 4; }, 0,
       File({" 3 ", "1 6 14  3 1 1  "}, "3000000.000 3000200.000 3000400.000", Couplings), 5, 0, 3000000},
      {"no counted spin",
       [] {
         SetArray(W.NMRAtom, {16});
         SetArray(W.NMRAtomicNumber, {6});
         W.NumNMRAtoms = 1;
       },
       0, File({" 0 ", "  "}, "", {}), 0, 0, 1600000}};
  for (const SpectRow& R : Rows) {
    ResetProgram();
    UseFolders();
    UseMixedAtoms();
    R.Change();
    EXPECT_EQ(WriteSpectInput(Settings.SpectInputFile), R.Result) << R.What;
    EXPECT_EQ(SplitLines(ReadBytes(Settings.SpectInputFile)), R.Lines) << R.What;
    EXPECT_EQ(W.NumSpinHalfNMRAtoms, R.NumSpinHalfNMRAtoms) << R.What;
    EXPECT_EQ(W.NumSpinHalfAtoms, R.NumSpinHalfAtoms) << R.What;
    EXPECT_EQ(W.SpectrumSpan, R.Span) << R.What;
    const Text Name = W.SpectraType == 4 ? "Fluorine 19" : "Proton";
    EXPECT_EQ(Shown().Boxes, IsSet(R.Result) ? Texts{}
                                             : Texts{"warning " + Name +
                                                     " is not present in the current NMR atom selection.  Please make "
                                                     "sure that the current NMR atoms include " +
                                                     Name + "."})
        << R.What;
  }
  ResetProgram();
  UseFolders();
  UseMixedAtoms();
  EXPECT_EQ(WriteSpectInput("/dev/full"), 0);
  W.Shielding.ReDim(2);
  EXPECT_EQ(WriteSpectInput(Settings.SpectInputFile), 0);
  const Text Warning = "warning Error writing the file " + Settings.SpectInputFile + ".";
  EXPECT_EQ(Shown().Boxes, (Texts{Warning, Warning}));
}

TEST_F(BackendTest, ObservedAndCountedSpins) {
  // H, labelled H, C, labelled C, labelled N, labelled O, F, labelled F, labelled P, Si
  const std::vector<int> Elements = {1, 1, 6, 6, 7, 8, 9, 9, 15, 14};
  const std::vector<std::vector<int>> Observed = {{0}, {3}, {4}, {5}, {6, 7}, {8}};
  const std::vector<int> Counted = {0, 3, 4, 5, 6, 7, 8, 9};
  for (int Type = 0; Type < 6; ++Type) {
    W.NumNMRAtoms = 10;
    SetArray(W.NMRAtom, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    SetArray(W.NMRAtomicNumber, Elements);
    W.NumLabelledAtoms = 6;
    SetArray(W.LabelledAtom, {2, 4, 5, 6, 8, 9});
    W.SpectraType = Type;
    ASSERT_EQ(FindSpinHalfNuclei(), -1);
    std::vector<int> Found;
    std::vector<int> Spins;
    for (int Atom = 0; Atom < 10; ++Atom) {
      if (IsSet(W.NMRAtomSpinHalf[Atom])) Found.push_back(Atom);
      if (IsSet(W.NMRPairSpinHalf(Atom, Atom))) Spins.push_back(Atom);
    }
    EXPECT_EQ(Found, Observed[static_cast<std::size_t>(Type)]) << Type;
    EXPECT_EQ(Spins, Counted) << Type;
    ExpectValues("NMRPairSpinHalf(0,1)=0 NMRPairSpinHalf(0,9)=-1");
  }
}

const Texts ParamResults = Pieces(
    "stage 1|2|1 6|FIELD|200|SHIELDING|30.5 130|tensor follows|1 2 3 4 5 6 7 8 9|10 11 12 13 14|-1 0 0 0 -1 0 0 0 -1|0 "
    "0 0 -1 0|COUPLING|0 1.5|-1.5 0");

TEST_F(BackendTest, ParamResultsAndTheirCuts) {
  const Text Of = " from file " + Settings.ParamOutputFile + ".";
  const Texts Shieldings = {"warning Error reading the shielding constants" + Of};
  const Texts Tensor = {"warning Error reading the shielding tensor" + Of};
  const Texts Couplings = {"warning Error reading the coupling constants" + Of};
  const std::vector<Texts> BoxesByLines = {{},     {},     {},     Shieldings, Shieldings, Shieldings, Shieldings, {},
                                           Tensor, Tensor, Tensor, Tensor,     {},         Couplings,  Couplings,  {}};
  for (std::size_t Count = 0; Count <= ParamResults.size(); ++Count) {
    Shown() = {};
    W.NumNMRAtoms = 2;
    const Text Path = WriteFile(
        "cut.out", JoinLines(Texts(ParamResults.begin(), ParamResults.begin() + static_cast<std::ptrdiff_t>(Count))));
    EXPECT_EQ(ReadParamResults(Path), ToFlag(Count == ParamResults.size())) << Count;
    EXPECT_EQ(Shown().Boxes, BoxesByLines[Count]) << Count << " lines";
    EXPECT_EQ(FreeFile(), 1) << Count;
  }
  ExpectValues("NumNMRAtoms=2 NMRFrequency=200");
  EXPECT_EQ(Numbers(W.NMRAtomicNumber, 2), (std::vector<int>{1, 6}));
  ExpectValues("Shielding(1)=130 ShieldTensor(8)=9 ShieldTensor(13)=14 ShieldTensor(22)=-1 Coupling(1,0)=-1.5");
}

TEST_F(BackendTest, ParamResultsWithFaults) {
  struct Row {
    const char* What;
    const char* From;
    const char* To;
    Flag Result;
    Texts Boxes;
  };
  const Row Rows[] = {
      {"report", "stage 1", "ERRMSG: No parameters for atom 3.", 0, {"error No parameters for atom 3."}},
      {"report without a text", "stage 1", "ERRMSG:", 0, {}},
      {"report of one blank", "stage 1", "ERRMSG: ", 0, {"error "}},
      {"lower case is no report", "stage 1", "errmsg: x", -1, {}},
      {"no atoms",
       "2\r\n1 6",
       "0\r\n1 6",
       0,
       {"warning There is no NMR atom selection.  The number of NMR atoms is 0."}},
      {"fewer than none",
       "2\r\n1 6",
       "-3\r\n1 6",
       0,
       {"warning There is no NMR atom selection.  The number of NMR atoms is -3."}},
      {"more atoms than were asked for",
       "2\r\n1 6",
       "4\r\n1 6",
       0,
       {"warning There are more NMR atoms in the results than were asked for.  The number of NMR atoms is 4 instead of "
        "3."}},
      {"count beyond an Integer", "2\r\n1 6", "40000\r\n1 6", 0, {}},
      {"rounded count", "2\r\n1 6", "2.5 atoms\r\n1 6", -1, {}},
      {"element beyond an Integer", "1 6", "1 66666", 0, {}},
      {"value beyond a Single", "30.5 130", "30.5 1E39", 0, {}}};
  for (const Row& R : Rows) {
    Shown() = {};
    W.NumNMRAtoms = 3;
    W.NMRAtom.ReDim(3);
    W.NMRAtomicNumber.ReDim(3);
    AllocateResults(3);
    EXPECT_EQ(ReadParamResults(WriteFile("bad.out", Change(JoinLines(ParamResults), R.From, R.To))), R.Result)
        << R.What;
    EXPECT_EQ(Shown().Boxes, R.Boxes) << R.What;
    EXPECT_EQ(fuzz::BrokenPromise(), "") << R.What;
  }
  SetArray(W.NMRAtom, {5, 6, 7});
  SetArray(W.ShieldTensor, {1, 1});
  W.NumNMRAtoms = 3;
  Texts Plain = ParamResults;
  Plain.erase(Plain.begin() + 7, Plain.begin() + 12);
  ASSERT_EQ(ReadParamResults(WriteFile("plain.out", JoinLines(Plain))), -1);
  EXPECT_EQ(Numbers(W.NMRAtom, 2), (std::vector<int>{5, 6}));
  EXPECT_EQ(W.NMRAtom.UpperBound(), 2);
  EXPECT_EQ(FirstOf(W.ShieldTensor, 28), std::vector<Single>(28, 0.0F));
  EXPECT_EQ(W.Coupling(0, 1), 1.5F);
  Shown() = {};
  EXPECT_EQ(ReadParamResults(TempPath("missing.out")), 0);
  EXPECT_EQ(Shown().Boxes, Texts{});
}

TEST_F(BackendTest, SpectResultsAndTheirFaults) {
  const Text Header = "FREQUENCY INTENSITY DEGENERACY LINEWIDTH";
  const Text Peaks =
      "warning Error reading the NMR frequencies and intensities from file " + Settings.SpectOutputFile + ".";
  const Text Heading =
      "warning Error reading the spectrum header, which should say 'FREQUENCY INTENSITY DEGENERACY LINEWIDTH'.";
  struct Row {
    Texts Lines;
    Flag Result;
    Texts Boxes;
    const char* Description;
  };
  const Row Rows[] = {
      {{}, 0, {}, ""},
      {{"title"}, 0, {}, "title"},
      {{"title", "1"}, 0, {}, "title"},
      {{"title", "1", Header}, 0, {Peaks}, "title"},
      {{"title", "1", Header, "1 1 1 1"}, -1, {}, "title"},
      {{"title", "2", Header, "1 1 1 1"}, 0, {Peaks}, "title"},
      {{"title", "0", Header}, 0, {}, "title"},
      {{"title", "-1", Header}, 0, {}, "title"},
      {{"title", "2147483647", Header}, 0, {}, "title"},
      {{"title", "1", "frequency intensity", "1 1 1 1"}, 0, {Heading}, "title"},
      {{"title", "1", "DEGENERACY", "1 1 1 1"}, 0, {Heading}, "title"},
      {{"title", "1", "xLINEWIDTHx", "1 1 1 1"}, -1, {}, "title"},
      {{"ERRMSG: 30 spins are too many.", "1", Header}, 0, {"error 30 spins are too many."}, "30 spins are too many."},
      {{"ERRMSG:", "1", Header}, 0, {}, "ERRMSG:"}};
  for (const Row& R : Rows) {
    Shown() = {};
    W.SpectDescription.clear();
    EXPECT_EQ(ReadSpectResults(WriteFile("spect.out", JoinLines(R.Lines))), R.Result)
        << testing::PrintToString(R.Lines);
    EXPECT_EQ(Shown().Boxes, R.Boxes) << testing::PrintToString(R.Lines);
    EXPECT_EQ(W.SpectDescription, R.Description) << testing::PrintToString(R.Lines);
  }
}

TEST_F(BackendTest, ValuesOfALine) {
  struct Row {
    const char* Line;
    std::vector<double> Values;
  };
  const Row Rows[] = {{"1 2 3 4", {1, 2, 3, 4}},     {"   1  2   3 4   5", {1, 2, 3, 4}},
                      {"1 2 ", {1, 2, 0, 0}},        {"", {0, 0, 0, 0}},
                      {"1\t9 2", {1, 2, 0, 0}},      {"1D2 -.5x 2.5 1e1", {100, -0.5, 2, 10}},
                      {"x 7 3.5 0,5", {0, 7, 4, 0}}, {"1,2 3", {1, 3, 0, 0}}};
  for (const Row& R : Rows) {
    ASSERT_EQ(ReadSpectResults(WriteFile("line.out", JoinLines({"t", "1", "FREQUENCY", R.Line}))), -1) << R.Line;
    EXPECT_EQ(
        (std::vector<double>{W.PeakFrequency[0], W.PeakIntensity[0], double(W.PeakDegeneracy[0]), W.PeakLineWidth[0]}),
        R.Values)
        << R.Line;
  }
}

TEST_F(BackendTest, AveragesOverEquivalentSets) {
  const auto Use = [] {
    W.NumNMRAtoms = 4;
    SetArray(W.NMRAtom, {10, 20, 30, 40});
    SetArray(W.Shielding, {30, 100, 32, 7});
    SetMatrix(W.Coupling, {{9, 4, 3, 1}, {6, 0, 6, 0}, {5, 4, 9, 2}, {3, 0, 6, 8}});
  };
  Use();
  W.EquivalentSetSize[1] = 2;
  W.EquivalentAtom(1, 0) = 30;
  W.EquivalentAtom(1, 1) = 10;
  AverageEquivalentResults();
  EXPECT_EQ(FirstOf(W.Shielding, 4), (std::vector<Single>{31, 100, 31, 7}));
  // Outside: (4 + 6 + 6 + 4) / 4 and (1 + 3 + 2 + 6) / 4; inside: (9 + 3 + 5 + 9) / 2, the diagonal included.
  const Single Expected[4][4] = {{9, 5, 13, 3}, {5, 0, 5, 0}, {13, 5, 9, 3}, {3, 0, 3, 8}};
  for (int Row = 0; Row < 4; ++Row) {
    for (int Column = 0; Column < 4; ++Column)
      EXPECT_EQ(W.Coupling(Row, Column), Expected[Row][Column]) << Row << Column;
  }
  Use();
  W.EquivalentSetSize[1] = 0;
  W.EquivalentSetSize[9] = 1;
  W.EquivalentAtom(9, 0) = 20;
  AverageEquivalentResults();
  ExpectValues("Shielding(1)=100 Coupling(1,0)=5 Coupling(0,1)=5 Coupling(0,2)=3 Coupling(1,1)=0");
}

// ---------------------------------------------------------------------------------------------- the compute commands

// What a fake backend does in a stage. $O is the stage's output file.
constexpr const char* Good = "cat \"$G\" > \"$O\"";
constexpr const char* Reports = "printf 'ERRMSG: Too hot.\\r\\n' > \"$O\"; exit 3";
constexpr const char* Dies = "kill -9 $$";
constexpr const char* Half = "head -c 60 \"$G\" > \"$O\"";
constexpr const char* Nothing = "exit 0";

const Texts GoodParam = {"stage 1", "2", "1 1", "FIELD", "100", "SHIELDING", "30 31", "COUPLING", "0 7", "7 0"};
const Texts GoodSpect = {"Two lines", "2", "FREQUENCY INTENSITY DEGENERACY LINEWIDTH", "100 1 1 0.5", "200 2 1 0.5"};

void UseBackend(const Text& Stage1, const Text& Stage2) {
  WriteFile("good1", JoinLines(GoodParam));
  WriteFile("good2", JoinLines(GoodSpect));
  const Text Script = "#!/bin/sh\nprintf '%s\\n' \"$0 $1 $2 $3 $4\" >> " + TempPath("calls") +
                      "\ncase $3 in\n1) O=$2/nmrparam.out G=" + TempPath("good1") + "; " + Stage1 +
                      ";;\n2) O=$2/nmrspect.out G=" + TempPath("good2") + "; " + Stage2 + ";;\nesac\n";
  chmod(WriteFile("work/nmrcalc.exe", Script).c_str(), 0700);
}

enum class Command { Stage1, Stage2, Both };

void RunCommand(Command Which) {
  if (Which == Command::Stage1) mnuComputeNMR_Click();
  if (Which == Command::Stage2) mnuComputeSpectra_Click();
  if (Which == Command::Both) mnuComputeAll_Click();
}

struct FlagRow {
  const char* What;
  Command Which;
  const char* Stage1;
  const char* Stage2;
  int ViewBefore;
  Texts Boxes;
  Flag Stage1Available;  // 1: as before, set on even rows and clear on odd ones
  Flag Spectra;
  Flag ParamStale;
  Flag SpectStale;
  Flag Dirty;
  int View;
  const char* LastStatus;
};

constexpr Flag Kept = 1;

TEST_F(BackendTest, FlagsAfterEachCommand) {
  const Text Coupling = "warning Error reading the coupling constants from file " + Settings.ParamOutputFile + ".";
  const Text Shielding = "warning Error reading the shielding constants from file " + Settings.ParamOutputFile + ".";
  const Text PeakRows =
      "warning Error reading the NMR frequencies and intensities from file " + Settings.SpectOutputFile + ".";
  const char* const Done = " Calculation has completed.";
  const char* const InStage1 = " Computing the NMR shielding and coupling constants...";
  const char* const InStage2 = " Computing the NMR spectrum...";
  const Texts Hot = {"error Too hot."};
  const FlagRow Rows[] = {
      {"both", Command::Both, Good, Good, 4, {}, -1, -1, 0, 0, -1, 4, Done},
      {"both, stage 2 reports", Command::Both, Good, Reports, 4, Hot, -1, 0, 0, -1, -1, 1, InStage2},
      {"both, stage 2 writes nothing", Command::Both, Good, Nothing, 3, {}, -1, 0, 0, -1, -1, 3, InStage2},
      {"both, stage 1 dies", Command::Both, Dies, Good, 4, {}, 0, 0, -1, -1, Kept, 1, InStage1},
      {"both, stage 1 reports", Command::Both, Reports, Good, 2, Hot, 0, 0, -1, -1, Kept, 1, InStage1},
      {"stage 1", Command::Stage1, Good, Good, 2, {}, -1, 0, 0, -1, -1, 2, Done},
      {"stage 1 in the spectrum view", Command::Stage1, Good, Good, 4, {}, -1, 0, 0, -1, -1, 1, Done},
      {"stage 1 dies", Command::Stage1, Dies, Good, 2, {}, 0, 0, -1, -1, Kept, 1, InStage1},
      {"stage 1 writes half", Command::Stage1, Half, Good, 3, {Coupling}, 0, 0, -1, -1, Kept, 1, InStage1},
      {"stage 2", Command::Stage2, Good, Good, 2, {}, Kept, -1, Kept, 0, -1, 2, Done},
      {"stage 2 reports", Command::Stage2, Good, Reports, 4, Hot, Kept, 0, Kept, -1, Kept, 1, InStage2},
      {"stage 2 dies", Command::Stage2, Good, Dies, 2, {}, Kept, 0, Kept, -1, Kept, 2, InStage2},
      {"stage 2 writes half", Command::Stage2, Good, Half, 4, {PeakRows}, Kept, 0, Kept, -1, Kept, 1, InStage2}};
  for (const FlagRow& R : Rows) {
    for (const Flag Before : {True, False}) {
      ResetProgram();
      UseFolders();
      UseHydrogens(2);
      Rooms.ShowMoleculeView();  // as opening a document does: it tells that it takes the system in
      UseBackend(R.Stage1, R.Stage2);
      SetPeaks({{-50, 1}});
      W.ShieldingAvailable = W.CouplingAvailable = W.SpectraAvailable = W.ParamResultsStale = Before;
      W.SpectResultsStale = W.DocumentDirty = Before;
      W.ViewMode = R.ViewBefore;
      RunCommand(R.Which);
      const auto Wanted = [&](Flag Value) { return Value == Kept ? Before : Value; };
      const Text What = Text(R.What) + (IsSet(Before) ? ", set before" : ", clear before");
      EXPECT_EQ(Shown().Boxes, R.Boxes) << What;
      EXPECT_EQ(W.ShieldingAvailable, Wanted(R.Stage1Available)) << What;
      EXPECT_EQ(W.CouplingAvailable, Wanted(R.Stage1Available)) << What;
      EXPECT_EQ(W.SpectraAvailable, R.Spectra) << What;
      EXPECT_EQ(W.ParamResultsStale, Wanted(R.ParamStale)) << What;
      EXPECT_EQ(W.SpectResultsStale, R.SpectStale) << What;
      EXPECT_EQ(W.DocumentDirty, Wanted(R.Dirty)) << What;
      EXPECT_EQ(W.ViewMode, R.View) << What;
      EXPECT_EQ(Shown().Statuses.back(), R.LastStatus) << What;
      EXPECT_EQ(Main.IsBusy, 0) << What;
      EXPECT_EQ(Main.mnuCompute.Enabled, -1) << What;
    }
  }
  ResetProgram();
  UseFolders();
  UseHydrogens(2);
  W.MoleculeLoaded = False;
  UseBackend(Good, Nothing);
  W.ViewMode = 4;
  mnuComputeSpectra_Click();
  EXPECT_EQ(W.ViewMode, 2) << "there is no molecule to show";
}

TEST_F(BackendTest, BothStagesMeetInTheWorkspace) {
  UseHydrogens(2);
  UseBackend(Good, Good);
  W.LogFilePath = "/tmp/my run.log";
  mnuComputeAll_Click();
  const Text Line = Settings.CalcExeFile + " " + Settings.NMRParmPath + " " + Settings.NMRIniPath;
  EXPECT_EQ(ReadBytes(TempPath("calls")), Line + " 1 /tmp/my run.log\n" + Line + " 2 /tmp/my run.log\n");
  EXPECT_EQ(W.SpectDescription, "Two lines");
  EXPECT_EQ(FirstOf(W.PeakFrequency, 2), (std::vector<Single>{-100, -200})) << "in the view's sign";
  ExpectValues("FullLow=-300 ListPeakCount=2");
  // No result of an earlier run is taken for a new one.
  UseBackend(Nothing, Good);
  mnuComputeAll_Click();
  EXPECT_EQ(W.ShieldingAvailable, 0);
  EXPECT_EQ(ReadBytes(Settings.ParamOutputFile), "");
}

TEST_F(BackendTest, BackendsThatDoNotStart) {
  UseHydrogens(2);
  const Text Exe = Settings.CalcExeFile;
  for (const Command Which : {Command::Both, Command::Stage1, Command::Stage2}) RunCommand(Which);
  WriteFile("work/nmrcalc.exe", "#!/bin/sh\n");
  chmod(Exe.c_str(), 0600);
  mnuComputeNMR_Click();
  const Text Unable = "error Unable to run the backend: <" + Exe;
  EXPECT_EQ(Shown().Boxes,
            (Texts{Unable + "> for computing the NMR shielding and/or coupling constants. File not found.",
                   Unable + "> File not found.", Unable + "> File not found.", Unable + "> Permission denied."}));
  EXPECT_TRUE(Exists(Settings.ParamInputFile));
  Shown() = {};
  UseBackend(Text(Good) + "; rm \"$0\"", Good);
  mnuComputeAll_Click();
  EXPECT_EQ(Shown().Boxes, Texts{Unable + "> for computing the NMR spectrum. File not found."});
  EXPECT_EQ(W.ShieldingAvailable, -1);

  Shown() = {};
  Settings.ParamOutputFile = TempPath("no-folder/nmrparam.out");
  mnuComputeNMR_Click();
  Settings.SpectOutputFile = "/dev/null/x";
  mnuComputeSpectra_Click();
  EXPECT_EQ(Shown().Boxes, (Texts{"warning Error opening file: " + Settings.ParamOutputFile + ".",
                                  "warning Error opening file: /dev/null/x."}));
}

TEST_F(BackendTest, QuestionsBeforeTheRun) {
  const Text None =
      "error No Nuclear Spins!\r\rYou must have selected a subset of the atoms (the NMR atoms) to have nuclear spins.  "
      "Either use Setup to select these atoms or \"Get\" a molecule from Morvantis where these atoms have explicitly "
      "been "
      "made a named selection called \"nmr-atoms\".";
  mnuComputeNMR_Click();
  mnuComputeAll_Click();
  EXPECT_EQ(Shown().Boxes, (Texts{None, None}));
  EXPECT_FALSE(Exists(Settings.ParamInputFile));

  struct Row {
    Flag Shielding;
    Single Coupling;
    const char* Named;
    const char* Status;
  };
  const Row Rows[] = {{True, 0, "<spin-coupling constants>", " Computing the NMR shielding constants..."},
                      {False, -1, "<shielding constants>", " Computing the NMR coupling constants..."},
                      {False, 0, "<shielding constants>", " Computing the NMR coupling constants..."}};
  for (const Row& R : Rows) {
    ResetProgram();
    UseFolders();
    UseHydrogens(2);
    W.CalculateShielding = R.Shielding;
    W.CalculateCoupling = R.Coupling;
    Shown().Answers = {BoxAnswer::No, BoxAnswer::Yes};
    mnuComputeAll_Click();
    EXPECT_EQ(Shown().Statuses, Texts{}) << R.Named;
    mnuComputeAll_Click();
    EXPECT_EQ(Shown().Statuses[0], R.Status);
    const Text Question =
        Text("question The calculation flag of computing ") + R.Named +
        " in the Setup/Shielding & Coupling dialog box has not been checked.\rWould you like to continue?";
    EXPECT_EQ(Shown().Boxes[0], Question);
    Shown() = {};
    mnuComputeNMR_Click();
    EXPECT_EQ(Shown().Boxes.size(), 1U) << "stage 1 alone asks nothing; the backend is missing";
  }
}

TEST_F(BackendTest, SizeQuestions) {
  struct Row {
    int Count;
    Flag Weak;
    const char* Question;
  };
  const Row Rows[] = {{11, 0, ""},  {12, 0, "so many"},   {30, 0, "so many"},   {31, 0, "too many"}, {11, -1, ""},
                      {29, -1, ""}, {30, -1, "too many"}, {31, -1, "too many"}, {12, -1, ""}};
  for (const Row& R : Rows) {
    ResetProgram();
    UseFolders();
    UseHydrogens(R.Count);
    W.WeakCouplingApproximation = R.Weak;
    SetPeaks({{-1, 1}});
    Shown().Answers = {BoxAnswer::No};
    mnuComputeSpectra_Click();
    const Text Count = std::to_string(R.Count);
    const Text Size =
        Text(R.Question) == "so many"
            ? "question There are so many NMR atoms (" + Count +
                  ").  You may need to use the weak coupling "
                  "approximation that is available in the Spectral Options dialog box. Would you like to continue?"
        : Text(R.Question) == "too many"
            ? "question There are too many NMR atoms (" + Count +
                  ").  You may not be able to complete the "
                  "spectral calculation. Would you like to continue?"
            : "error Unable to run the backend: <" + Settings.CalcExeFile + "> File not found.";
    EXPECT_EQ(Shown().Boxes, Texts{Size}) << Count;
    EXPECT_EQ(W.SpectraAvailable, 0) << Count << ": No counts as a failed run";
  }
}

// A failure on the way never leaves the window busy.
TEST_F(BackendTest, NoFailureLeavesTheCommand) {
  UseHydrogens(2);
  UseBackend(Good, "printf 'x\\r\\n2\\r\\nFREQUENCY\\r\\n0 1 1 1\\r\\n5 1 1 1\\r\\n' > \"$O\"");
  W.NMRFrequency = 0;
  EXPECT_EQ(FailureOf(mnuComputeSpectra_Click), "no failure");
  EXPECT_EQ(Main.IsBusy, 0);
  EXPECT_EQ(Main.mnuFile.Enabled, -1);
  EXPECT_EQ(W.SpectraAvailable, -1);
}

}  // namespace
}  // namespace zelvanor::test
