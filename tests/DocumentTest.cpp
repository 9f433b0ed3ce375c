#include "Support.h"
#include "files/DocumentReader.h"
#include "files/DocumentWriter.h"
#include "fuzz/Promises.h"

namespace zelvanor::test {
namespace {

class DocumentTest : public ProgramTest {};

// The sections of a small document as the file has them.
const Text Molecule =
    "BeginMVS\r\nforcefield amber\r\nmol 1\r\natom 1 H1 H HC - 0 0 0 0 1 2 s\r\natom 2 C1 C CT - 0 1 0 0 1 1 s\r\n"
    "endmol 1\r\nmol 2\r\natom 1 F1 F F - 0 5 0 0 0\r\nendmol 2\r\nEndMVS\r\n";
const Text Selections =
    "NMRSelectionBegin\r\n3\r\nmol 1 atom 1\r\nmol 1 atom 2\r\nmol 2 atom 1\r\nNMRSelectionEnd\r\n"
    "QuantumSelectionBegin\r\n1\r\nmol 2 atom 1\r\nQuantumSelectionEnd\r\n"
    "EquivalentAtomsBegin\r\nEquivalentSet 1\r\nmol 1 atom 1\r\nmol 2 atom 1\r\nEquivalentSet 2\r\nmol 1 atom 2\r\n"
    "EquivalentAtomsEnd\r\nLabelledAtomsBegin\r\n1\r\nmol 1 atom 2\r\nLabelledAtomsEnd\r\n";
const Text Options =
    "OptionsBegin\r\nSemiEmpiricalMethod = KRDO1\r\nTotalCharge = -1\r\nSpinMultiplicity = 1\r\n"
    "SCFConvergenceLimit = 0.0001\r\nSCFIterationLimit = 50\r\nSCFAccelerateConvergence = Yes\r\nLogPrintLevel = 2\r\n"
    "ModifySlaterExponents = No\r\nComputeThreeCenterTerms = Yes\r\nIncludeDOrbitalsForSecondRow = No\r\n"
    "NMRFrequency = 100\r\nCalculateShielding = Yes\r\nCalculateShieldTensor = No\r\nCalculateCoupling = Yes\r\n"
    "OptionsEnd\r\n";
const Text Elements = "NMRAtomicNumbersBegin\r\n1 6 9\r\nNMRAtomicNumbersEnd\r\n";
const Text Results =
    "ShieldingCouplingBegin\r\nSHIELDING\r\n30.5 130 1E-05\r\nTENSOR\r\n1 2 3 4 5 6 7 8 9\r\n10 11 12 13 14\r\n"
    "1.5 0 0 0 1.5 0 0 0 1.5\r\n1.5 1.5 1.5 1.5 0\r\n-1 -2 -3 -4 -5 -6 -7 -8 -9\r\n1E+07 1.5E-09 0 0.25 0\r\n"
    "COUPLING\r\n0 1.5 -2.5\r\n1.5 0 7\r\n-2.5 7 0\r\nShieldingCouplingEnd\r\n";
const Text Spectrum =
    "SpectraBegin\r\n 2 \r\nFREQUENCY  INTENSITY  DEGENERACY  LINEWIDTH\r\n-100.5  1  2  0.5 \r\n"
    "-250  0.25  1  0.125 \r\nSPECTRATYPE\r\n 1 \r\nREFERENCESHIELDING\r\n32 190 0 0 -0.5 0\r\n"
    "NMRATOMSWITHSPINHALF\r\n 2 \r\nSpectraEnd\r\n";
const Text Full = Molecule + Selections + Options + Elements + Results + Spectrum;

// Reads as Open does: into an empty Workspace, with both results stale.
Flag Read(const Text& Path) {
  Workspace.ParamResultsStale = Workspace.SpectResultsStale = True;
  return ReadDocument(Path);
}
Flag ReadContent(TextView Content) { return Read(WriteFile("doc.nmr", Content)); }

TEST_F(DocumentTest, ReadsEverySection) {
  ASSERT_EQ(ReadContent(Full), -1);
  EXPECT_EQ(Boxes(), "");
  ExpectValues(
      "NumAtoms=3 NumMolecules=2 HostTextLineCount=8 NumNMRAtoms=3 NMRAtom(1)=2 NMRAtom(2)=3 "
      "QuantumAtom(0)=3 LabelledAtom(0)=2 NumEquivalentSets=2 EquivalentSetSize(0)=2 EquivalentAtom(0,1)=3 "
      "EquivalentAtom(1,0)=2 SemiEmpiricalMethod=KRDO1 TotalCharge=-1 SpinMultiplicity=1 "
      "SCFConvergenceLimit=0.0001 SCFIterationLimit=50 SCFAccelerateConvergence=-1 LogPrintLevel=2 "
      "ModifySlaterExponents=0 ComputeThreeCenterTerms=-1 NMRFrequency=100 CalculateShielding=-1 "
      "CalculateCoupling=-1 NMRAtomicNumber(1)=6 Shielding(1)=130 Shielding(2)=1E-05 ShieldTensor(8)=9 "
      "ShieldTensor(13)=14 ShieldTensor(14)=1.5 ShieldTensor(37)=1E+07 Coupling(0,2)=-2.5 Coupling(2,1)=7");
  ExpectValues(
      "PeakCount=2 PeakFrequency(1)=-250 PeakIntensity(1)=0.25 PeakDegeneracy(0)=2 PeakLineWidth(1)=0.125 "
      "SpectraType=0 ReferenceShielding(1)=190 ReferenceShielding(4)=-0.5 ChemicalShift(0)=1.5 "
      "ChemicalShift(1)=60 SpectrumSpan=600000 NumSpinHalfNMRAtoms=2 NumSpinHalfAtoms=1 MoleculeLoaded=-1 "
      "NMRAtomsValid=-1 ShieldingAvailable=-1 CouplingAvailable=-1 SpectraAvailable=-1 ParamResultsStale=0 "
      "SpectResultsStale=0");
}

TEST_F(DocumentTest, RoundTripGivesTheSameBytes) {
  ASSERT_EQ(ReadContent(Full), -1);
  Workspace.DocumentDirty = True;
  const Text Path = TempPath("again.nmr");
  ASSERT_EQ(WriteDocument(Path), -1);
  EXPECT_EQ(ReadBytes(Path), Full);
  ExpectValues("DocumentDirty=0 IsBusy=0");
  EXPECT_EQ(Main.mnuFile.Enabled, -1);
  EXPECT_EQ(Shown().Pointers, (std::vector{MousePointer::Hourglass, MousePointer::Default}));
  EXPECT_EQ(Shown().Boxes, Texts{});
}

TEST_F(DocumentTest, BothResultsAreWrittenForEither) {
  WorkspaceState& W = Workspace;
  ASSERT_EQ(ReadContent(Full), -1);
  W.ShieldingAvailable = W.SpectraAvailable = False;
  W.CalculateShieldTensor = True;
  W.CalculateCoupling = -0.4F;  // rounds to 0
  W.EquivalentSetSize[0] = 0;
  W.EquivalentSetSize[9] = 1;
  W.EquivalentAtom(9, 0) = 3;
  const Text Path = TempPath("one.nmr");
  ASSERT_EQ(WriteDocument(Path), -1);
  Text Expected = Change(Full, "EquivalentSet 1\r\nmol 1 atom 1\r\nmol 2 atom 1\r\n", "");
  Expected = Change(Expected, "mol 1 atom 2\r\nEquivalentAtomsEnd",
                    "mol 1 atom 2\r\nEquivalentSet 10\r\nmol 2 atom 1\r\nEquivalentAtomsEnd");
  Expected = Change(Expected, "CalculateShieldTensor = No\r\nCalculateCoupling = Yes",
                    "CalculateShieldTensor = Yes\r\nCalculateCoupling = No");
  Expected = Expected.substr(0, Expected.find("SpectraBegin")) + "SpectraBegin\r\nSpectraEnd\r\n";
  EXPECT_EQ(ReadBytes(Path), Expected);

  ResetProgram();
  ASSERT_EQ(Read(Path), -1);
  ExpectValues("ShieldingAvailable=-1 CalculateShieldTensor=0");
  EXPECT_EQ(Numbers(W.EquivalentSetSize, 3), (std::vector<int>{1, 1, 0})) << "numbered afresh";
  EXPECT_EQ(W.EquivalentAtom(1, 0), 3);
}

struct ChangeRow {
  const char* From;
  Text To;
  Flag Result;
  const char* Boxes = "";  // PATH stands for the document's
  const char* Values = "";
};

// A piece of the whole document is replaced by another.
TEST_F(DocumentTest, ChangedDocuments) {
  const auto Repeat = [](int Count, const Text& Piece) {
    Text All;
    while (Count-- > 0) All += Piece;
    return All;
  };
  const Text Member = "mol 1 atom 1\r\n";
  const Text Set = "EquivalentSet\r\n" + Member;
  constexpr const char* Quantum = "QuantumSelectionBegin\r\n1\r\nmol 2 atom 1\r\n";
  constexpr const char* Peak = "-250  0.25  1  0.125";
  constexpr const char* Subscript = "warning Subscript out of range.";
  constexpr const char* Mismatch = "warning Type mismatch.";
  const ChangeRow Rows[] = {
      {"BeginMVS", "  BeginMVS ", -1, "", "NumAtoms=3"},
      {"EndMVS", " eNDmvs ", -1, "", "NumAtoms=3"},
      {"BeginMVS", "beginMVS", 0, "warning Error reading in beginMVS."},
      {"EndMVS", "End", 0, "error Input past end of file", "NumNMRAtoms=0"},
      {"C1 C ", "C1 Q ", 0, "error Invalid atom element Q for atom 2 in molecule 1.", "MoleculeLoaded=0"},
      {"QuantumSelectionBegin", "\r\n", 0, "warning Error reading in .", "NumNMRAtoms=3 NMRAtomsValid=0"},
      {"QuantumSelectionBegin", "LabelledAtomsBegin\r\n0\r\nend\r\nQuantumSelectionBegin", -1, "",
       "NumLabelledAtoms=0"},
      {"NMRSelectionBegin", " NMRSelectionBegin", 0, "warning Error reading in  NMRSelectionBegin."},
      {"QuantumSelectionBegin", "QuantumSelectionBeginning of all", -1},
      {"Begin\r\n3\r\n", "Begin\r\n 3.4 atoms\r\n", -1, "", "NumNMRAtoms=3"},
      {"Begin\r\n3\r\n", "Begin\r\n32768\r\n", 0, "warning Overflow."},
      {Quantum, "QuantumSelectionBegin\r\n0\r\n", -1, "", "NumQuantumAtoms=0 NumLabelledAtoms=1"},
      {Quantum, "QuantumSelectionBegin\r\nx\r\n", -1, "", "NumQuantumAtoms=0 NumLabelledAtoms=1"},
      {Quantum, "QuantumSelectionBegin\r\n-5\r\n", -1, "", "NumLabelledAtoms=1"},
      {"QuantumSelectionEnd", "whatever", -1, "", "NumLabelledAtoms=1"},
      {"mol 1 atom 2\r\nmol 2", "mol 1 atom\r\nmol 2", -1, "", "NMRAtom(1)=0 NMRAtom(2)=3"},
      {"mol 1 atom 2\r\nmol 2", "a\t1 b 2 c\r\nmol 2", -1, "", "NMRAtom(1)=2"},
      {"mol 1 atom 2\r\nmol 2", "mol 1 atom 2x\r\nmol 2", 0, Mismatch},
      {"mol 2 atom 1\r\nNMR", "mol 3 atom 4\r\nNMR", -1, "", "NMRAtom(2)=7"},
      {"mol 2 atom 1\r\nNMR", "mol 4 atom 1\r\n", 0, "warning Molecular index 4 in the NMR atom selection is invalid."},
      {Quantum, "QuantumSelectionBegin\r\n1\r\nmol 4 atom 1\r\n", 0,
       "warning Molecular index 4 in the quantum atom selection is invalid."},
      {"1\r\nmol 1 atom 2\r\nLabelled", "1\r\nmol 32767 atom 2\r\nLabelled", 0,
       "warning Molecular index 32767 in the quantum atom selection is invalid."},
      {"mol 1 atom 2\r\nEquivalent", "mol 4 atom 2\r\nEquivalent", 0,
       "warning Molecular index 4 in the equivalent atom selection is invalid."},
      {"EquivalentSet 2", "Equivalent\r\nEquivalentSet 9", -1, "error Unknown message \"Equivalent\" in the filePATH.",
       "EquivalentAtom(1,0)=2"},
      {"mol 1 atom 2\r\nEquiv", "molecule\r\nmol 1 atom 2\r\nEquiv", -1, "", "EquivalentSetSize(1)=1"},
      {"EquivalentSet 1\r\n", "", 0, Subscript},
      {"EquivalentSet 2", Repeat(19, Member) + "EquivalentSet 2", -1, "", "EquivalentSetSize(0)=21"},
      {"EquivalentSet 2", Repeat(20, Member) + "EquivalentSet 2", 0, Subscript},
      {"EquivalentAtomsEnd", Repeat(9, Set) + "EquivalentAtomsEnd", -1, "", "NumEquivalentSets=11"},
      {"EquivalentAtomsEnd", Repeat(10, Set) + "EquivalentAtomsEnd", 0, Subscript},

      {"TotalCharge = -1", "OptionsBegin\r\nTotalCharge x -2 = 3", -1, "", "TotalCharge=-2"},
      {"= KRDO1", "= two words", -1, "", "SemiEmpiricalMethod=two"},
      {"TotalCharge = -1", "TotalCharge =", -1, "warning Error reading in option \"TotalCharge =\" from file PATH.",
       "TotalCharge=0"},
      {"TotalCharge", "Totalcharge", -1, "warning Unknown option \"Totalcharge = -1\" from file PATH", "TotalCharge=0"},
      {"Limit = 50", "Limit = many", 0, Mismatch},
      {"Limit = 50", "Limit = 40000", 0, "warning Overflow."},
      {"Limit = 50", "Limit = 50.5", -1, "", "SCFIterationLimit=50"},
      {"CalculateCoupling = Yes", "CalculateCoupling = 2", -1, "", "CalculateCoupling=0"},
      {"CalculateShieldTensor = No", "CalculateShieldTensor = Yes", -1, "", "CalculateShieldTensor=0"},

      {"1 6 9", "1 6", -1, "warning Error reading in option \"1 6\" from file PATH.", "NMRAtomicNumber(2)=8"},
      {"1 6 9", "1 6 7 8", -1, "warning Error reading in option \"1 6 7 8\" from file PATH.", "NMRAtomicNumber(2)=7"},
      {"1 6 9", "1 6 9\r\n7 7 7", -1, "", "NMRAtomicNumber(0)=7"},
      {"1 6 9", "1 C 9", 0, Mismatch},
      {"1 6 9", "14 6 9", -1, "", "ChemicalShift(0)=-30.5"},
      {"NumbersEnd", "NumbersEnd\r\n\r\n OptionsBegin\r\nmore", -1},
      {"ShieldingCouplingBegin\r\nSHIELDING\r\n30.5 130 1E-05\r\nTENSOR", "skipped", -1, Subscript,
       "SpectraAvailable=-1 ShieldingAvailable=0"},

      {"Begin\r\n 2", "Begin\r\n 0", 0, "", "SpectraAvailable=0"},
      {"Begin\r\n 2", "Begin\r\n x", 0, Mismatch},
      {"Begin\r\n 2", "Begin\r\n 2147483647", 0, "warning Out of memory.", "SpectraAvailable=0"},
      {Peak, "-250  0.25  1", 0,
       "warning The actual number of data should be four for each peak of NMR spectrum. | warning Type mismatch."},
      {Peak, "-250  0.25  1  0.125  7", -1,
       "warning The actual number of data should be four for each peak of NMR spectrum.", "PeakLineWidth(1)=0.125"},
      {Peak, "", -1, "warning The actual number of data should be four for each peak of NMR spectrum.",
       "PeakFrequency(1)=-100.5"},
      {Peak, "-250  0.25  2.5 1", -1, "", "PeakDegeneracy(1)=2"},
      {"SPECTRATYPE", "1 1 1\r\nSPECTRATYPE", -1},
      {"FREQUENCY  INTENSITY", "FREQUENCYxyz", -1, "", "SpectraAvailable=-1"},
      {"Begin\r\n 2 \r\n", "Begin\r\n", -1, "", "SpectraAvailable=-1 PeakCount=0"},
      {"SpectraEnd", "SpectraEnd\r\nSpectraBegin\r\nSpectraEnd", -1, "", "SpectraAvailable=-1 PeakCount=2"},
      {"SpectraEnd", "SpectraEnd\r\nSpectraBegin\r\n1000000000", 0, "warning Out of memory.",
       "SpectraAvailable=-1 PeakCount=2"},
      {"SpectraEnd", "SpectraBegin\r\n0", 0, "", "SpectraAvailable=0"},
      {"TYPE\r\n 1", "TYPE\r\n 6", -1, "", "SpectraType=5"},
      {"TYPE\r\n 1", "TYPE\r\n 7", -1,
       "warning Spectral type --- 7 is not supported by the current version of Zelvanor.", "SpectraType=0"},
      {"32 190 0 0 -0.5 0", "1 2 3 4 5 6 7", -1, "", "ReferenceShielding(5)=6 ReferenceShielding(6)=0"},
      {"NMRATOMSWITHSPINHALF\r\n 2 \r\n", "", -1, "", "NumSpinHalfNMRAtoms=3"},
      {"TYPE\r\n 1 \r\nREFERENCESHIELDING\r\n32 190 0 0 -0.5 0", "NONE\r\nREFERENCESHIELDING\r\n7\r\nSPECTRATYPE\r\n2",
       -1, "", "SpectraType=1 ReferenceShielding(0)=7 NumSpinHalfAtoms=1"},
      {"NMRFrequency = 100", "NMRFrequency = -100", -1, "", "SpectrumSpan=-600000"},
      {"NMRFrequency = 100", "NMRFrequency = 0", -1, "", "SpectrumSpan=600000"},
  };
  for (const ChangeRow& R : Rows) {
    ResetProgram();
    const Text Path = WriteFile("doc.nmr", Change(Full, R.From, R.To));
    const Text What = Join(R.From, " -> ", R.To);
    EXPECT_EQ(Read(Path), R.Result) << What;
    Text Expected = R.Boxes;
    if (Expected.find("PATH") != Text::npos) Expected = Change(Expected, "PATH", Path);
    EXPECT_EQ(Boxes(), Expected) << What;
    ExpectValues(R.Values, What);
    EXPECT_EQ(fuzz::BrokenPromise(), "") << What;
  }
}

const Text ResultsOnly =
    "NMRSelectionBegin\r\n3\r\nmol 1 atom 1\r\nmol 1 atom 2\r\nmol 1 atom 3\r\nx\r\nQuantumSelectionBegin\r\n0\r\nx\r\n"
    "EquivalentAtomsBegin\r\nEquivalentAtomsEnd\r\nLabelledAtomsBegin\r\n0\r\nx\r\n";

TEST_F(DocumentTest, SectionsInAnyOrderAndNumber) {
  EXPECT_EQ(ReadContent(ResultsOnly + Elements + Results + Options + Spectrum + Options + Elements), -1);
  EXPECT_EQ(Boxes(), "");
  ExpectValues("MoleculeLoaded=0 NMRAtomsValid=0 SpectraAvailable=-1 TotalCharge=-1");
  ResetProgram();
  EXPECT_EQ(ReadContent(Selections), 0) << "molecule 2 is one too far without a molecule block";
  ResetProgram();
  EXPECT_EQ(ReadContent(Molecule + Selections), -1) << "all other sections are optional";
  ExpectValues("ParamResultsStale=-1 NMRAtomsValid=-1");
}

TEST_F(DocumentTest, ResultsWithoutAMolecule) {
  ASSERT_EQ(ReadContent(ResultsOnly + "NMRAtomicNumbersBegin\r\n1 14 103\r\nNMRAtomicNumbersEnd\r\n"), -1);
  ExpectValues(
      "NumAtoms=0 NumMolecules=0 MoleculeAtomCount(0)=3 AtomElement(0)=H AtomElement(1)=Si AtomElement(2)=Lr "
      "AtomType(1)=Si AtomMolecule(2)=1 AtomInMolecule(0)=1 AtomInMolecule(2)=3");
  const Text Path = TempPath("results.nmr");
  ASSERT_EQ(WriteDocument(Path), -1);
  EXPECT_TRUE(ReadBytes(Path).starts_with(ResultsOnly.substr(0, ResultsOnly.find("x\r\n"))));
}

struct ResultsRow {
  const char* What;
  Texts Lines;  // of a section for two NMR atoms, behind its first line
  Flag Result;
  int Warnings;
  std::function<bool()> Holds;
};

TEST_F(DocumentTest, ResultLines) {
  WorkspaceState& W = Workspace;
  const ResultsRow Rows[] = {
      {"empty",
       {"ShieldingCouplingEnd"},
       -1,
       0,
       [&] { return W.ShieldingAvailable == 0 && W.ShieldTensor.UpperBound() == 28 && W.Coupling.UpperColumn() == 2; }},
      {"line before any keyword", {"1 2", "1", "ShieldingCouplingEnd"}, -1, 1, [&] { return W.Shielding[0] == 0.0F; }},
      {"too few and too many",
       {"SHIELDING", "5", "6 7 8", "ShieldingCouplingEnd"},
       -1,
       2,
       [&] { return W.Shielding[0] == 6.0F && W.Shielding[1] == 7.0F; }},
      {"commas",
       {"COUPLING", "1, 2,", "3, 4"},
       -1,
       0,
       [&] { return W.Coupling(0, 1) == 2.0F && W.Coupling(1, 1) == 4.0F; }},
      {"no comma among the shieldings", {"SHIELDING", "1, 2"}, 0, 1, [&] { return W.ShieldingAvailable == -1; }},
      {"two commas", {"COUPLING", "1,, 2"}, 0, 1, [&] { return W.CouplingAvailable == -1; }},
      {"stops behind the last row",
       {"COUPLING", "1 2", "3 4", "SHIELDING", "9 9"},
       -1,
       0,
       [&] { return W.ShieldingAvailable == 0 && !AtEnd(LineWork.FileNumber); }},
      {"any order",
       {"COUPLING", "1 2", "SHIELDING", "9 8", "COUPLING", "3 4"},
       -1,
       0,
       [&] { return W.Shielding[1] == 8.0F && W.Coupling(1, 0) == 3.0F; }},
      {"9 values are first lines",
       {"TENSOR", "1 1 1 1 1 1 1 1 1", "2, 2 2 2 2 2 2 2 2,", "3 3 3 3 3", "4 4 4 4 4 4 4 4 4", "ShieldingCouplingEnd"},
       -1,
       0,
       [&] { return W.ShieldTensor[0] == 2.0F && W.ShieldTensor[9] == 3.0F && W.ShieldTensor[14] == 4.0F; }},
      {"a blank line moves on too",
       {"TENSOR", "", "5 5 5 5 5", "ShieldingCouplingEnd"},
       -1,
       0,
       [&] { return W.ShieldTensor[9] == 0.0F && W.ShieldTensor[23] == 5.0F; }},
      {"tensor runs out of its array", {"TENSOR", "", "", "", "ShieldingCouplingEnd"}, -1, 0, [] { return true; }},
      {"values beyond the array", {"TENSOR", "", "1 2 3 4 5 6 7"}, 0, 1, [] { return true; }},
      {"end of file", {"SHIELDING", "1 2"}, 0, 1, [&] { return W.ParamResultsStale == 0; }}};
  for (const ResultsRow& R : Rows) {
    ResetProgram();
    W.NumNMRAtoms = 2;
    W.ParamResultsStale = True;
    const Integer File = OpenContent(JoinLines(R.Lines));
    EXPECT_EQ(ReadShieldingCoupling("here", File), R.Result) << R.What;
    EXPECT_EQ(static_cast<int>(Shown().Boxes.size()), R.Warnings) << R.What << testing::PrintToString(Shown().Boxes);
    EXPECT_TRUE(R.Holds()) << R.What;
    CloseFile(File);
  }
  for (const int Count : {2340, 2341}) {
    ResetProgram();
    W.NumNMRAtoms = Count;
    EXPECT_EQ(ReadShieldingCoupling("here", OpenContent("ShieldingCouplingEnd")), Count == 2340 ? -1 : 0);
    EXPECT_EQ(Shown().Boxes, Count == 2340 ? Texts{} : Texts{"warning Overflow."});
    CloseFile(LineWork.FileNumber);
  }
}

TEST_F(DocumentTest, EveryCutIsTold) {
  const std::size_t Behind = Full.find("LabelledAtomsEnd");
  const std::size_t Count = Full.find(" 2 \r\n");
  for (std::size_t Length = 0; Length < Full.size(); ++Length) {
    ResetProgram();
    const Flag Result = ReadContent(TextView(Full).substr(0, Length));
    const Text What = "cut at " + std::to_string(Length);
    EXPECT_EQ(fuzz::BrokenPromise(), "") << What;
    if (IsSet(Result)) {
      EXPECT_GT(Length, Behind) << What;
      EXPECT_EQ(WriteDocument(TempPath("cut.nmr")), -1) << What << ": what was read can be saved";
    } else if (Length != Count + 1) {  // a blank count is one below 1
      EXPECT_FALSE(Shown().Boxes.empty()) << What;
    }
  }
}

TEST_F(DocumentTest, FailedSavesAreTold) {
  ASSERT_EQ(ReadContent(Full), -1);
  const Text Folder = MakeFolder("folder.nmr");
  const Text Lost = TempPath("no-folder/a.nmr");
  Workspace.DocumentDirty = True;
  for (const Text& Path : {Folder, Lost, Text("/dev/full")}) EXPECT_EQ(WriteDocument(Path), 0);
  EXPECT_EQ(Shown().Boxes, (Texts{"warning Zelvanor cannot open file " + Folder + ".",
                                  "warning Zelvanor cannot open file " + Lost + ".",
                                  "warning Error saving the current information to file /dev/full."}));
  EXPECT_EQ(Workspace.DocumentDirty, -1);

  // A molecule so large that the disk is full before its last line.
  Workspace.HostTextLineCount = 1000;
  Workspace.HostTextLine.ReDim(1000);
  for (int Line = 0; Line < 1000; ++Line) Workspace.HostTextLine[Line] = Text(200, 'x');
  EXPECT_EQ(WriteDocument("/dev/full"), 0);
  ASSERT_EQ(Shown().Boxes.size(), 4U) << "a save that fails is never silent";
  EXPECT_EQ(Shown().Boxes[3], "warning Error saving the current information to file /dev/full.");
}

}  // namespace
}  // namespace zelvanor::test
