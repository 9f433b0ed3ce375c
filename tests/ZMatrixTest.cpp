// Z-matrix files: rows in all their forms, places, bonds, what is refused.

#include <algorithm>
#include <cmath>

#include "Support.h"
#include "files/FileCommands.h"
#include "files/Matching.h"
#include "files/ZMatrixImport.h"

namespace zelvanor::test {

namespace {

using ZMatrixTest = ProgramTest;

// Opens rows behind three lines of keywords and titles.
void OpenRows(const Text& Rows, const Text& Head = "AM1\ntitle\n\n") {
  Shown().Boxes.clear();
  Settings.NMRParmPath = ZELVANOR_DATA;
  Shown().Files.push_back(WriteFile("rows.zmt", Head + Rows));
  mnuFileOpen_Click();
}

Text AtomPlace(int Atom) {
  const auto Rounded = [](Single Value) { return GeneralForm(std::round(Double{Value} * 1e4) / 1e4 + 0.0); };
  return ElementSymbol(Workspace.AtomicNumber[Atom]) + " " + Rounded(Workspace.AtomX[Atom]) + " " +
         Rounded(Workspace.AtomY[Atom]) + " " + Rounded(Workspace.AtomZ[Atom]);
}

Text Places() {
  Text All;
  for (int Atom = 0; Atom < Workspace.NumAtoms; ++Atom) All += (Atom == 0 ? "" : ", ") + AtomPlace(Atom);
  return All;
}

// The bonds that are not single ones to hydrogen, as "1=2 2-3": by rising numbers.
Text Bonds() {
  Text All;
  for (int Atom = 0; Atom < Workspace.NumAtoms; ++Atom) {
    for (int N = 0; N < Workspace.AtomCoordination[Atom]; ++N) {
      const int Other = Workspace.AtomNeighbour(Atom, N);
      if (Other < Atom || Workspace.AtomicNumber[Other] == 1 || Workspace.AtomicNumber[Atom] == 1) continue;
      const TextView Letter = Workspace.AtomBondType(Atom, N).Trimmed();
      const char Mark = Letter == "s" ? '-' : Letter == "d" ? '=' : Letter == "t" ? '#' : Letter == "a" ? ':' : '?';
      All += (All.empty() ? "" : " ") + std::to_string(Atom + 1) + Mark + std::to_string(Other + 1);
    }
  }
  return All;
}

}  // namespace

TEST_F(ZMatrixTest, PlacesRowsInAllTheirForms) {
  const Text Water = "O 0 0 0, H 0.96 0 0, H -0.24 0.9295 0";  // 104.478 degrees
  const struct {
    const char* Rows;
    Text Places;
  } Cases[] = {
      {"O\nH 0.96 1\nH 0.96 1 104.4775 1 1 2\n", Water},
      {"O 0 0 0 0 0 0 0 0 0 -0.4\nH 0.96 1 0 0 0 0 1 0 0 0.2\nH 0.96 -1 104.4775 +1 0 0 1 2 0 0.2\n", Water},
      {"8 0.0 0 0.0 0 0.0 0\n1 .96D0 1 0.0 0 0.0 0 1\n1 9.6E-1 1 104.4775 1 0.0 0 1 2\n", Water},
      {"O(A1)\nH2.014 0.96 1 1\nD 0.96, 1, 104.4775, 1, 1, 2\n\nsymmetry 1 2 3\n", Water},
      {"* a comment\nO17\n* another\nh 0.96 0\nT 0.96 0 104.4775 0 1 2\n0 0 0 0 0 0 0\nC 1 1 1\n", Water},
      // without references the third row hangs on the second
      {"H\nO 0.96 1\nH 0.96 1 90.0 1\n", "H 0 0 0, O 0.96 0 0, H 0.96 0.96 0"},
      // the dihedral angle turns clockwise, seen from the second reference to the first
      {"H\nO 1 1\nO 1 1 90 1\nH 1 1 90 1 90 1 3 2 1\n", "H 0 0 0, O 1 0 0, O 1 1 0, H 1 1 1"},
      {"H\nO 1 1\nO 1 1 90 1\nH 1.0 90.0 180.0 3 2 1\n", "H 0 0 0, O 1 0 0, O 1 1 0, H 2 1 0"},
      // dummies give places alone; straight ahead no dihedral angle is needed
      {"XX\n99 1 0\nC 1 0 90 0 0 0 1 2\nN 1.15 1 180 1 0 0 3 1 2\n", "C 0 1 0, N 0 2.15 0"},
      // rows without references hold coordinates, all of them or some
      {"O 0 1 0 1 0 1\nH 0.96 1 0 1 0 1\nH -0.24 1 0.9295 1 0 1\n", Water},
      {"C 1.5 1 0.5 1 -2 1\nO 2.5 1 0.5 1 -2 1 -0.3\n", "C 1.5 0.5 -2, O 2.5 0.5 -2"},
      {"H\nO 1 1\nO 1 1 90 1 0 0 2 1 0\nH 2 1 1 1 0 1\n", "H 0 0 0, O 1 0 0, O 1 1 0, H 2 1 0"},
  };
  for (const auto& Case : Cases) {
    OpenRows(Case.Rows);
    EXPECT_EQ(Boxes(), "") << Case.Rows;
    EXPECT_EQ(Places(), Case.Places) << Case.Rows;
  }
}

TEST_F(ZMatrixTest, ReportsRowsByLine) {
  const Text Start = "O\nH 1 1\nH 1 1 90 1 1 2\n";
  const struct {
    Text Rows;
    int Line;
    const char* What;
  } Cases[] = {
      {"O\nQq 1 1\n", 5, "\"Qq\" is no element"},
      {"O\n120 1 1\n", 5, "there is no element 120"},
      {"O\nH 1.x 1\n", 5, "\"1.x\" is no number"},
      {"O\nH 1 1\nH 1 4 90 1 0 0 1 2 0\n", 6, "the optimisation flag \"4\" is none of 0, 1 and -1"},
      {"O\nH -1 1 0 0 0 0 1 0 0\n", 5, "the bond length is not greater than 0"},
      {"O\nH 1 1\nH 1 1 1045 1 0 0 1 2 0\n", 6, "the bond angle is more than a full turn"},
      {Start + "H 1 1 90 1 0 1 4 2 1\n", 7, "row 4 can't be placed from row 4"},
      {Start + "H 1 1 90 1 0 1 1 0 0\n", 7, "row 4 can't be placed from row 0"},
      {Start + "H 1 1 90 1 0 1 1 2 1\n", 7, "row 1 is named twice"},
      {Start + "H 1 1 90 1 0 1 1 2.5 3\n", 7, "\"2.5\" is no number of an atom"},
      {Start + "H 1 1 90\n", 7, "the row is not complete"},
      {Start + "H 1 1 120.0 1 90.0 1\n", 7, "the row is not complete"},
      {"C\nC 1 1\nC 1 1 180 1 2 1\nH 1 1 90 1 0 1 3 2 1\n", 7,
       "rows 3, 2 and 1 stand on one line, so that the dihedral angle has no meaning"},
      {"XX\nC 1 1\nC 1 1 0 1 2 1\nH 1 1 90 1 0 1 3 1 2\n", 7, "rows 3 and 1 stand in one place"},
      {"O\nH 1 1\nH 1 1 0 1 1 2\n", 6, "the atom stands in the place of that of line 5"},
      {"O\nH 9999999 1\n", 5, "\"9999999\" is too large"},
  };
  for (const auto& Case : Cases) {
    OpenRows(Case.Rows);
    EXPECT_EQ(Boxes(), "warning Error at line " + std::to_string(Case.Line) + " in file " + TempPath("rows.zmt") +
                           ": " + Case.What + ".");
    EXPECT_EQ(Workspace.NumAtoms, 0) << Case.Rows;
    EXPECT_FALSE(IsSet(Workspace.MoleculeLoaded)) << Case.Rows;
  }
}

TEST_F(ZMatrixTest, BondsAreThoseThatAChemistDraws) {
  const Text Methyl = "H -.36 1 1.03 1 0 1\nH -.36 1 -.515 1 .89 1\nH -.36 1 -.515 1 -.89 1\n";
  const struct {
    const char* Name;
    Text Rows;
    const char* Bonds;
  } Cases[] = {
      {"nitromethane", "C 0 0 0\nN 1.49 0 0\nO 2.05 1.088 0\nO 2.05 -1.088 0\n" + Methyl, "1-2 2=3 2-4"},
      {"acetate", "C 0 0 0\nC 1.54 0 0\nO 2.165 1.09 0\nO 2.165 -1.08 0\n" + Methyl, "1-2 2-3 2=4"},
      {"acetamide", "C 0 0 0\nC 1.52 0 0\nO 2.135 1.065 0\nN 2.195 -1.169 0\nH 3.20 -1.17 0\nH 1.69 -2.04 0\n" + Methyl,
       "1-2 2=3 2-4"},
      {"methyl azide", "C 0 0 0\nN 1.47 0 0\nN 2.085 1.065 0\nN 2.65 2.044 0\n" + Methyl, "1-2 2=3 3=4"},
      {"methyl isonitrile", "C 0 0 0\nN 1.43 0 0\nC 2.60 0 0\n" + Methyl, "1-2 2#3"},
      {"diacetylene", "H -1.06 0 0\nC 0 0 0\nC 1.21 0 0\nC 2.58 0 0\nC 3.79 0 0\nH 4.85 0 0\n", "2#3 3-4 4#5"},
      {"butatriene",
       "C 0 0 0\nC 1.31 0 0\nC 2.58 0 0\nC 3.89 0 0\nH -.55 .93 0\nH -.55 -.93 0\nH 4.44 .93 0\nH 4.44 -.93 0\n",
       "1=2 2=3 3=4"},
      {"sulfate", "S 0 0 0\nO .85 .85 .85\nO .85 -.85 -.85\nO -.85 .85 -.85\nO -.85 -.85 .85\n", "1=2 1=3 1-4 1-5"},
      {"carbon monoxide", "C 0 0 5\nO 1.13 0 5\n", "1#2"},
      {"furan",
       "O 1.16 0 0\nC .358 1.103 0\nC -.938 .682 0\nC -.938 -.682 0\nC .358 -1.103 0\nH .69 2.13 0\nH -1.81 1.32 0\n"
       "H -1.81 -1.32 0\nH .69 -2.13 0\n",
       "1:2 1:5 2:3 3:4 4:5"},
      {"benzoquinone",
       "C 1.42 0 0\nC .71 1.23 0\nC -.71 1.23 0\nC -1.42 0 0\nC -.71 -1.23 0\nC .71 -1.23 0\nO 2.65 0 0\n"
       "H 1.25 2.165 0\nH -1.25 2.165 0\nO -2.65 0 0\nH -1.25 -2.165 0\nH 1.25 -2.165 0\n",
       "1-2 1-6 1=7 2=3 3-4 4-5 4=10 5=6"},
      {"pyridine N-oxide",
       "N 1.39 0 0\nC .695 1.204 0\nC -.695 1.204 0\nC -1.39 0 0\nC -.695 -1.204 0\nC .695 -1.204 0\nO 2.62 0 0\n"
       "H 1.235 2.139 0\nH -1.235 2.139 0\nH -2.47 0 0\nH -1.235 -2.139 0\nH 1.235 -2.139 0\n",
       "1:2 1:6 1-7 2:3 3:4 4:5 5:6"},
      {"phenolate",
       "C 1.40 0 0\nC .70 1.212 0\nC -.70 1.212 0\nC -1.40 0 0\nC -.70 -1.212 0\nC .70 -1.212 0\nO 2.63 0 0\n"
       "H 1.24 2.148 0\nH -1.24 2.148 0\nH -2.48 0 0\nH -1.24 -2.148 0\nH 1.24 -2.148 0\n",
       "1:2 1:6 1-7 2:3 3:4 4:5 5:6"},
  };
  for (const auto& Case : Cases) {
    OpenRows(Case.Rows);
    EXPECT_EQ(Boxes(), "") << Case.Name;
    EXPECT_EQ(Bonds(), Case.Bonds) << Case.Name;
  }
}

// Whatever a file holds, reading it ends with a result or a Failure.
TEST_F(ZMatrixTest, BrokenFilesEndWithAResultOrAFailure) {
  const Text Whole = ReadBytes(Text(ZELVANOR_DATA) + "/../examples/acetonitrile.zmt");
  ASSERT_GT(Whole.size(), 400U);
  int Read = 0;
  int Refused = 0;
  const auto Try = [&](const Text& Content) {
    try {
      ConvertZMatrix(WriteFile("broken.zmt", Content));
      EXPECT_LE(CidGetHtrNdt(TreeHandleValue(), AtomNodeKind), 7);  // the dummy may become an atom
      ++Read;
    } catch (const Failure& Problem) {
      EXPECT_NE(Problem.What, "");
      ++Refused;
    }
    EXPECT_EQ(FreeFile(), 1);
  };
  for (std::size_t Length = 0; Length < Whole.size(); Length += 3) Try(Whole.substr(0, Length));
  for (std::size_t Place = 0; Place < Whole.size(); Place += 2) {
    for (const char Byte : {'\0', '-', '9', 'x', '\n', '\xff'}) {
      Text Changed = Whole;
      Changed[Place] = Byte;
      Try(Changed);
    }
  }
  EXPECT_GT(Read, 100);
  EXPECT_GT(Refused, 100);
}

}  // namespace zelvanor::test
