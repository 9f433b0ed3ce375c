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

bool IsNumber(TextView Word) {
  return !Word.empty() && Word.find_first_not_of("+-0123456789.Ee") == TextView::npos &&
         Word.find_first_of("0123456789") != TextView::npos;
}

// Calls Try with the text in which a number is replaced by an odd one: by each of them, for the first numbers of each
// line. Of lines that differ in their numbers only, the first is taken. Returns the number of calls.
int ReplaceEachNumber(const Text& Content, const std::function<void(const Text& Changed, const Text& What)>& Try) {
  constexpr std::size_t NumOfALine = 2;
  int NumTries = 0;
  std::set<Text> Seen;
  for (std::size_t Start = 0; Start < Content.size();) {
    const std::size_t End = std::min(Content.find('\n', Start), Content.size());
    Text Pattern;
    std::vector<std::pair<std::size_t, std::size_t>> Numbers;
    for (std::size_t Place = Start; Place < End;) {
      const std::size_t Stop = std::min(Content.find_first_of(" =,()\r\n", Place), End);
      const bool Number = IsNumber(TextView(Content).substr(Place, Stop - Place));
      Pattern += Number ? "#" : Content.substr(Place, Stop - Place);
      if (Number && Numbers.size() < NumOfALine) Numbers.emplace_back(Place, Stop - Place);
      Place = Stop + 1;
    }
    if (!Numbers.empty() && Seen.insert(Pattern).second) {
      for (const auto& [Place, Length] : Numbers) {
        for (const char* Odd : OddNumbers) {
          Text Changed = Content;
          ++NumTries;
          Try(Changed.replace(Place, Length, Odd), Content.substr(Start, End - Start) + " with " + Odd);
        }
      }
    }
    Start = End + 1;
  }
  return NumTries;
}

TEST_F(LimitsTest, NoNumberOfADocumentBreaksTheProgram) {
  const Text Saved = TempPath("saved.NMR");
  const int NumTries = ReplaceEachNumber(Example("ethanol.NMR"), [&](const Text& Changed, const Text& What) {
    ResetProgram();
    Open(WriteFile("odd.NMR", Changed));
    ExpectFinite(What);
    for (const int View : {MoleculeView, ShieldingView, CouplingView, SpectrumViewMode}) {
      W.ViewMode = View;
      EXPECT_EQ(FailureOf(RefreshView), "no failure") << What;
    }
    SpectrumView.DisplayMode = 2;
    SetValue(Main.HScroll2, 5);
    Fire(Main.mnuLinesAndEnvelop.Click);
    Fire(Main.mnuGaussian.Click);
    ExpectValues("IsBusy=0", What);
    // What is whole can be saved and comes back.
    if (Boxes().empty() && IsSet(WriteDocument(Saved))) {
      EXPECT_EQ(ReadDocument(Saved), -1) << What << ": " << Boxes();
    }
  });
  EXPECT_GT(NumTries, 200);
}

// The example's settings, of the long tables the first lines only.
Text ShortSettings() {
  constexpr int LinesOfATable = 4;
  Text Kept;
  int LinesLeft = 0;
  std::istringstream Lines(Example("nmr.ini"));
  for (Text Line; std::getline(Lines, Line);) {
    if (Line.starts_with('[')) LinesLeft = Line == "[nmr]" || Line == "[ReferenceShieldings]" ? 1000 : LinesOfATable;
    if (LinesLeft-- > 0) Kept += Line + "\n";
  }
  return Kept;
}

TEST_F(LimitsTest, NoNumberOfTheSettingsBreaksTheStart) {
  const Text Folder = MakeFolder("ini");
  const Text WinIni =
      WriteFile("win.ini", "[Zelvanor]\nNMRExePath=" + Folder + "\nNMRParmPath=" + ZELVANOR_DATA + "\n");
  const int NumTries = ReplaceEachNumber(ShortSettings(), [&](const Text& Changed, const Text& What) {
    ResetProgram();
    WriteFile("ini/nmr.ini", Changed);
    Platform.WinIniPath = [&] { return WinIni; };
    const bool Ended = EndsProgram([] { Form_Load(""); });
    EXPECT_EQ(Ended, Boxes().find("error Error in ini file: ") != Text::npos) << What << ": " << Boxes();
    ExpectFinite(What);
    if (Ended) return;
    EXPECT_TRUE(EndsProgram([] { UnloadForm(Main.frmNMR); })) << What;
    // What has been written is taken at the next start without a word of its own about it.
    ResetProgram();
    Platform.WinIniPath = [&] { return WinIni; };
    EXPECT_FALSE(EndsProgram([] { Form_Load(""); })) << What << ": " << Boxes();
  });
  EXPECT_GT(NumTries, 200);
}

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
