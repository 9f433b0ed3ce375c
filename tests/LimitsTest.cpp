#include <algorithm>
#include <cmath>
#include <set>
#include <sstream>

#include "Support.h"
#include "files/DocumentReader.h"
#include "files/DocumentWriter.h"
#include "files/FileCommands.h"
#include "files/HostText.h"
#include "platform/Form.h"
#include "program.h"

// Numbers that are none, and counts at and beyond what the program holds.
namespace zelvanor::test {
namespace {

WorkspaceState& W = Workspace;

constexpr const char* OddNumbers[] = {"nan",      "-inf",   "1e308", "-1e308",     "1e400", "-3.4e38",
                                      "4.9e-324", "1e-400", "32768", "2147483648", "1,5",   "."};

Text Example(const Text& Name) { return ReadBytes(Text(ZELVANOR_DATA) + "/../examples/" + Name); }

template <class T>
bool AllFinite(Array<T>& Values) {
  return std::ranges::all_of(Values.Span(), [](T Value) { return std::isfinite(Double{Value}); });
}

void ExpectFinite(const Text& What) {
  for (Array<Single>* Values :
       {&W.AtomX, &W.AtomY, &W.AtomZ, &W.AtomCharge, &W.Shielding, &W.ChemicalShift, &W.ShieldTensor, &W.PeakFrequency,
        &W.PeakIntensity, &W.PeakLineWidth, &W.ReferenceShielding}) {
    EXPECT_TRUE(AllFinite(*Values)) << What;
  }
  for (const Single Value : W.Coupling.Span()) ASSERT_TRUE(std::isfinite(Value)) << What;
  for (const Double Value :
       {Double{W.SCFConvergenceLimit}, W.MinimalIntensity, Double{W.MinAbsLineWidth}, Double{W.MaxAbsLineWidth}}) {
    EXPECT_TRUE(std::isfinite(Value)) << What;
  }
}

class LimitsTest : public ProgramTest {
 protected:
  static void Open(const Text& Path) {
    Shown().Files = {Path};
    Shown().Answers = {BoxAnswer::No};
    mnuFileOpen_Click();
  }
};

// A field goes by the leading number of its text. Where that does not fit there is a warning, and the field goes back
// to a number.
TEST_F(LimitsTest, NoFieldTakesWhatIsNoNumber) {
  int NumFields = 0;
  for (MenuItem* Command : {&Main.mnuSetupNMRParam, &Main.mnuSetupNMRSpect, &Main.mnuSetupReferenceShielding}) {
    ResetProgram();
    Open(Text(ZELVANOR_DATA) + "/../examples/ethanol.NMR");
    std::set<Text> Visited;
    Platform.RunModal = [&](Form& Dialog) {
      for (Control* Item : Dialog.Controls) {
        if (Item->Kind != ControlKind::TextField || !IsSet(Item->Enabled)) continue;
        auto& Field = static_cast<TextField&>(*Item);
        if (IsSet(Field.ReadOnly)) continue;
        ++NumFields;
        for (const char* Odd : OddNumbers) {
          Shown() = {};
          EXPECT_EQ(FailureOf([&] { SetText(Field, Odd); }), "no failure") << ControlName(Field) << " " << Odd;
          if (Boxes().empty()) continue;  // its leading number fits
          EXPECT_TRUE(Boxes().starts_with("warning ")) << ControlName(Field) << ": " << Boxes();
          EXPECT_EQ(FailureOf([&] { StrictNumber(Field.Value); }), "no failure") << ControlName(Field) << " " << Odd;
        }
      }
      // The dialogs behind its buttons too, each once.
      for (Control* Item : Dialog.Controls) {
        if (Item->Kind == ControlKind::CommandButton && !static_cast<CommandButton*>(Item)->IsCancel &&
            Visited.insert(ControlName(*Item)).second && IsSet(Dialog.Visible)) {
          EXPECT_EQ(FailureOf([&] { Fire(static_cast<CommandButton*>(Item)->Click); }), "no failure");
        }
      }
      if (IsSet(Dialog.Visible)) HideForm(Dialog);
    };
    Fire(Command->Click);
    ExpectFinite(Command->Caption);
  }
  EXPECT_EQ(NumFields, 6);
}

Text Chain(int NumAtoms, int NumNeighbours = 0) {
  Text Content = "mol 1\n";
  for (int Atom = 1; Atom <= NumAtoms; ++Atom) {
    Content += Join("atom ", Long{Atom}, " H H HC - 0 0 0 0 ", Long{NumNeighbours});
    for (int Neighbour = 1; Neighbour <= NumNeighbours; ++Neighbour) {
      Content += Join(" ", Long{(Atom + Neighbour - 1) % NumAtoms + 1}, " s");
    }
    Content += "\n";
  }
  return Content + "endmol 1\n";
}

TEST_F(LimitsTest, AtomsAndNeighbours) {
  struct Row {
    int NumAtoms;
    int NumNeighbours;
    int Loaded;
    int Known;
    const char* Boxes;
  };
  const Row Rows[] = {{32767, 0, -1, 32767, ""},
                      {32768, 0, 0, 0, "warning Overflow."},
                      {14, 12, -1, 14, ""},
                      {14, 13, -1, 14, "it is 13 for atom 14 in molecule 1."}};
  for (const Row& R : Rows) {
    const Text What = Join(Long{R.NumAtoms}, " atoms, ", Long{R.NumNeighbours}, " neighbours");
    ResetProgram();
    Open(WriteFile("many.mvs", Chain(R.NumAtoms, R.NumNeighbours)));
    EXPECT_TRUE(Boxes().ends_with(R.Boxes)) << What << ": " << Boxes();
    EXPECT_EQ(W.MoleculeLoaded, R.Loaded) << What;
    EXPECT_EQ(W.NumAtoms, R.Known) << What;
    EXPECT_EQ(FailureOf(RefreshView), "no failure") << What;
    if (!IsSet(R.Loaded) || R.NumNeighbours > 12) continue;
    ASSERT_EQ(WriteDocument(TempPath("many.NMR")), -1) << What;
    Open(TempPath("many.NMR"));
    EXPECT_EQ(W.NumAtoms, R.Known) << What;
  }
}

// A document of NMR atoms alone, in sets of SetSize.
Text NucleiDocument(int NumNMRAtoms, int NumSets, int SetSize) {
  Text Content = Join("NMRSelectionBegin\r\n", Long{NumNMRAtoms}, "\r\n");
  for (int Atom = 1; Atom <= NumNMRAtoms; ++Atom) Content += Join("mol 1 atom ", Long{Atom}, "\r\n");
  Content += "end\r\nQuantumSelectionBegin\r\n0\r\nend\r\nEquivalentAtomsBegin\r\n";
  for (int Set = 0; Set < NumSets; ++Set) {
    Content += "EquivalentSet\r\n";
    for (int Atom = 1; Atom <= SetSize; ++Atom) Content += Join("mol 1 atom ", Long{Set * SetSize + Atom}, "\r\n");
  }
  Content += "EquivalentAtomsEnd\r\nLabelledAtomsBegin\r\n0\r\nend\r\nNMRAtomicNumbersBegin\r\n";
  for (int Atom = 0; Atom < NumNMRAtoms; ++Atom) Content += "1 ";
  Content += "\r\nNMRAtomicNumbersEnd\r\nShieldingCouplingBegin\r\nSHIELDING\r\n";
  for (int Atom = 0; Atom < NumNMRAtoms; ++Atom) Content += "30 ";
  return Content + "\r\nShieldingCouplingEnd\r\n";
}

TEST_F(LimitsTest, NMRAtomsAndEquivalentSets) {
  struct Row {
    int NumNMRAtoms;
    int NumSets;
    int SetSize;
    int Available;  // of the shieldings, which stand behind both
    const char* Boxes;
  };
  const Row Rows[] = {{2340, 0, 0, -1, ""},
                      {2341, 0, 0, 0, "warning Overflow."},
                      {32767, 0, 0, 0, "warning Overflow."},
                      {250, 10, 20, -1, ""},
                      {250, 10, 21, -1, ""},
                      {250, 10, 22, 0, "warning Subscript out of range."},
                      {250, 11, 20, -1, ""},
                      {250, 12, 20, 0, "warning Subscript out of range."}};
  for (const Row& R : Rows) {
    const Text What = Join(Long{R.NumNMRAtoms}, " NMR atoms, ", Long{R.NumSets}, " sets of ", Long{R.SetSize});
    ResetProgram();
    Open(WriteFile("nuclei.NMR", NucleiDocument(R.NumNMRAtoms, R.NumSets, R.SetSize)));
    EXPECT_EQ(Boxes(), R.Boxes) << What;
    EXPECT_EQ(W.ShieldingAvailable, R.Available) << What;
    EXPECT_EQ(FailureOf(RefreshView), "no failure") << What;
    // Ten sets are saved; the eleventh, which the reader has room for, is not.
    if (R.NumSets == 0 || !IsSet(R.Available)) continue;
    ASSERT_EQ(WriteDocument(TempPath("sets.NMR")), -1) << What;
    Open(TempPath("sets.NMR"));
    EXPECT_EQ(W.NumEquivalentSets, 10) << What;
    EXPECT_EQ(W.EquivalentSetSize[9], R.SetSize) << What;
  }
}

// A line of host text takes 256 bytes where it is kept, however short it is in its file.
TEST_F(LimitsTest, MoreLinesThanAnySystemHas) {
  const Text Lines(MostHostLines + 1, '\n');
  const std::pair<const char*, Text> Rows[] = {
      {"lines.mvs", "warning The file is too large."},
      {"lines.NMR", "error The file is too large"},
      {"rows.zmt", "warning Error at line 32771 in file %: there are more than 32767 rows."}};
  for (const auto& [Name, Expected] : Rows) {
    ResetProgram();
    Text Content = Text(Name) == "lines.NMR" ? "BeginMVS\n" + Lines : Lines;
    if (Text(Name) == "rows.zmt") {
      Content = "\n\n\nH\nH 1\nH 1 0 90\n";
      for (int Row = 4; Row <= 32768; ++Row) Content += "H 1 0 90 0 90 0 1 2 3\n";
    }
    const Text Path = WriteFile(Name, Content);
    Open(Path);
    EXPECT_EQ(Boxes(), Expected.find('%') == Text::npos ? Expected : Change(Expected, "%", Path));
    ExpectValues("MoleculeLoaded=0 IsBusy=0 NumAtoms=0", Name);
  }
}

TEST_F(LimitsTest, LongLines) {
  for (const std::size_t Length : {std::size_t{255}, std::size_t{256}, std::size_t{257}, std::size_t{100000}}) {
    const Text Long(Length, 'x');
    ResetProgram();
    Open(WriteFile("long.NMR", Change(Example("ethanol.NMR"), "OptionsBegin\r\n", "OptionsBegin\r\n" + Long + "\r\n")));
    EXPECT_EQ(Boxes(), "warning Error reading in option \"" + Long + "\" from file " + TempPath("long.NMR") + ".");
    EXPECT_EQ(W.SpectraAvailable, -1);
    Open(WriteFile("long.mvs", "; " + Long + "\n" + Example("ethanol.mvs")));
    EXPECT_EQ(W.NumAtoms, 9);
    EXPECT_EQ(W.HostTextLine[0].Trimmed(), ("; " + Long).substr(0, 256));
    Open(WriteFile("long.zmt", Long + "\n\n\nH\n" + Long + " 1\n"));
    EXPECT_EQ(W.MoleculeLoaded, 0);
    Open(WriteFile("long.dat", Long + "\n" + Long));
    EXPECT_TRUE(Boxes().ends_with("warning Unknown file format: " + TempPath("long.dat") + ".")) << Length;
  }
}

}  // namespace
}  // namespace zelvanor::test
