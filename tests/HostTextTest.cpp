#include <chrono>

#include "Support.h"
#include "files/HostText.h"

namespace zelvanor::test {
namespace {

class HostTextTest : public ProgramTest {};

// Two molecules: carbon monoxide with a lone pair atom, and a hydrogen.
const Texts TwoMolecules = Pieces(
    "; made by hand|forcefield amber|sys 0|view 1 0 0  0 1 0|mol 1 one|atom 7 C1 C CA s 0.25 1.5 -2 3E-2 2 2 d 3 "
    "s|atom 8 Oxygen O O2 - -0.25 1 2 3 1 1 d|atom 9 - Lp ** - 0 0 0 0 1 1 s|endmol 1|mol 2|atom 1 H1 h HC "
    "verylongflags 1 0 0 0 0|endmol 2");

void Store(const Texts& Lines) {
  Workspace.HostTextLineCount = static_cast<Long>(Lines.size());
  Workspace.HostTextLine.ReDim(Workspace.HostTextLineCount);
  for (std::size_t Index = 0; Index < Lines.size(); ++Index)
    Workspace.HostTextLine[static_cast<int>(Index)] = TextView(Lines[Index]);
}

TEST_F(HostTextTest, ReadsTwoMolecules) {
  Store(TwoMolecules);
  ASSERT_EQ(ParseHostText("here"), -1);
  const WorkspaceState& W = Workspace;
  EXPECT_EQ(Shown().Boxes, Texts{});
  EXPECT_EQ(Shown().Statuses, (Texts{" Reading atom 1...", " Reading atom 2...", " Reading atom 3...",
                                     " Reading atom 4...", " Read 4 atoms."}));
  ExpectValues("NumAtoms=4 NumMolecules=2");
  EXPECT_EQ(Numbers(W.MoleculeAtomCount, 2), (std::vector<int>{3, 1}));
  EXPECT_EQ(Numbers(W.AtomNumber, 4), (std::vector<int>{7, 8, 9, 1}));
  EXPECT_EQ(Numbers(W.AtomicNumber, 4), (std::vector<int>{6, 8, 0, 1}));
  EXPECT_EQ(Numbers(W.AtomMolecule, 4), (std::vector<int>{1, 1, 1, 2}));
  EXPECT_EQ(Numbers(W.AtomInMolecule, 4), (std::vector<int>{1, 2, 3, 1}));
  EXPECT_EQ(Numbers(W.AtomCoordination, 4), (std::vector<int>{2, 1, 1, 0}));
  EXPECT_EQ(W.AtomName[1].View(), "Oxyge");
  EXPECT_EQ(W.AtomElement[3].View(), "h   ");
  EXPECT_EQ(W.AtomType[2].Trimmed(), "**");
  EXPECT_EQ(W.AtomFlags[3].View(), "verylon");
  ExpectValues("AtomCharge(1)=-0.25 AtomX(0)=1.5 AtomY(0)=-2 AtomZ(0)=0.03 AtomNeighbour(0,0)=1 AtomNeighbour(0,1)=2");
  EXPECT_EQ(W.AtomBondType(0, 0).Trimmed(), "d");
  EXPECT_EQ(W.AtomBondType(0, 1).Trimmed(), "s");
  EXPECT_EQ(W.HostViewText, "1 0 0 0 1 0 ");
}

struct FaultRow {
  const char* What;
  Texts Lines;
  Flag Result;
  Texts Boxes;
  int NumAtoms = -1;  // -1: not looked at
};

TEST_F(HostTextTest, FaultsAndTheirMessages) {
  const Text Mol = "mol 1";
  const Text End = "endmol 1";
  const Text H = "atom 1 H1 H HC - 0 0 0 0 0";
  const Text BadC =
      "The atomic coordination has to be greater than 0 and less than or equal to 12 in the current version "
      "of Zelvanor, but it is ";
  const FaultRow Rows[] = {
      {"no lines with atoms", {"mol 1", "endmol 1"}, 0, {"warning here does not contain any atom."}},
      {"a lone keyword is counted, but is no record", {"atom", Mol, H, End}, -1, {}, 1},
      {"9 tokens", {Mol, "atom 1 H1 H HC - 0 0 0", H, End}, -1, {"warning Error at line 1 in file here."}, 1},
      {"10 tokens", {Mol, "atom 1 H1 H HC - 0 0 0 0", End}, 0, {"warning Type mismatch."}},
      {"12 neighbours are fine",
       {Mol, "atom 1 C C C - 0 0 0 0 12 1 s 1 s 1 s 1 s 1 s 1 s 1 s 1 s 1 s 1 s 1 s 1 s", End},
       -1,
       {},
       1},
      {"13 neighbours",
       {Mol, "atom 1 C C C - 0 0 0 0 13", End},
       -1,
       {"error " + BadC + "13 for atom 1 in molecule 1."},
       1},
      {"-1 neighbours",
       {Mol, H, "atom 1 C C C - 0 0 0 0 -1", End},
       -1,
       {"error " + BadC + "-1 for atom 2 in molecule 1."},
       2},
      {"a neighbour is missing", {Mol, "atom 1 C C C - 0 0 0 0 2 1 s", End}, 0, {"warning Type mismatch."}},
      {"far too few neighbours", {Mol, "atom 1 C C C - 0 0 0 0 4 1 s", End}, 0, {"warning Type mismatch."}},
      {"a bond type is missing", {Mol, "atom 1 C C C - 0 0 0 0 1 1", End}, -1, {}, 1},
      {"bond out of the molecule",
       {Mol, H, "atom 2 H H H - 0 0 0 0 1 3 s", End, "mol 2", H, "endmol 2"},
       0,
       {"error Bad reference to atom 3 from atom 2 in molecule 1."}},
      {"bond into the molecule before",
       {Mol, H, End, "mol 2", "atom 2 H H H - 0 0 0 0 1 0 s", "endmol 2"},
       0,
       {"error Bad reference to atom 0 from atom 1 in molecule 2."}},
      {"unknown element",
       {Mol, H, "atom 2 X Qq H - 0 0 0 0 0", End},
       0,
       {"error Invalid atom element Qq for atom 2 in molecule 1."}},
      {"the first problem in atom order",
       {Mol, "atom 1 X Qq H - 0 0 0 0 0", "atom 2 H H H - 0 0 0 0 1 9 s", End},
       0,
       {"error Invalid atom element Qq for atom 1 in molecule 1."}},
      {"of one atom the bond comes first",
       {Mol, "atom 1 X Qq H - 0 0 0 0 1 9 s", End},
       0,
       {"error Bad reference to atom 9 from atom 1 in molecule 1."}},
      {"serial number", {Mol, "atom 1x H H H - 0 0 0 0 0", End}, 0, {"warning Type mismatch."}},
      {"serial number too large", {Mol, "atom 32768 H H H - 0 0 0 0 0", End}, 0, {"warning Overflow."}},
      {"charge", {Mol, "atom 1 H H H - zero 0 0 0 0", End}, 0, {"warning Type mismatch."}},
      {"coordinate", {Mol, "atom 1 H H H - 0 0 1,5 0 0", End}, 0, {"warning Type mismatch."}},
      {"end without a molecule", {H, End}, 0, {"warning Subscript out of range."}},
      {"more ends than counted", {H, "  mol 1", End}, -1, {}, 1},
      {"indented atoms run past the table", {Mol, H, "  " + H, "  " + H, End}, 0, {"warning Subscript out of range."}},
      {"foreign force field",
       {"forcefield mm2", Mol, H, End},
       -1,
       {"warning The current force field is mm2 in the file here.  Some atom types may not be available Zelvanor."},
       1},
      {"known force fields", {"forcefield AmBeR", "forcefield krdo", "forcefield mm2 x", Mol, H, End}, -1, {}, 1},
      {"case counts", {Mol, "Atom 1 H H H - 0 0 0 0 0", H, End}, -1, {}, 1}};
  for (const FaultRow& R : Rows) {
    ResetProgram();
    Store(R.Lines);
    EXPECT_EQ(ParseHostText("here"), R.Result) << R.What;
    EXPECT_EQ(Shown().Boxes, R.Boxes) << R.What;
    if (R.NumAtoms >= 0) {
      EXPECT_EQ(Workspace.NumAtoms, R.NumAtoms) << R.What;
    }
  }
}

TEST_F(HostTextTest, TheLargestSystem) {
  const Text Atom = "atom 1 H H H - 0 0 0 0 0\r\n";
  for (const int Count : {32767, 32768}) {
    ResetProgram();
    Text Content = "mol 1\r\n";
    for (int Place = 0; Place < Count; ++Place) Content += Atom;
    ASSERT_EQ(ReadHostFile(WriteFile("large.mvs", Content + "endmol 1\r\n")), -1);
    EXPECT_EQ(ParseHostText("here"), Count == 32767 ? -1 : 0);
    EXPECT_EQ(Shown().Boxes, Count == 32767 ? Texts{} : Texts{"warning Overflow."});
  }
}

TEST_F(HostTextTest, ReadsFiles) {
  const Text Long(300, 'x');
  ASSERT_EQ(ReadHostFile(WriteFile("a.mvs", "one\r\ntwo\n\nfour\r" + Long)), -1);
  EXPECT_EQ(Workspace.HostTextLineCount, 5);
  EXPECT_EQ(Workspace.HostTextLine[1].Trimmed(), "two");
  EXPECT_EQ(Workspace.HostTextLine[2].Trimmed(), "");
  EXPECT_EQ(Workspace.HostTextLine[3].Trimmed(), "four");
  EXPECT_EQ(Workspace.HostTextLine[4].View(), Long.substr(0, 256));
  EXPECT_EQ(Workspace.HostTextLine[5].Trimmed(), "");

  const Text Empty = WriteFile("empty.mvs", "");
  EXPECT_EQ(ReadHostFile(Empty), 0);
  const Text Missing = TempPath("missing.mvs");
  EXPECT_EQ(ReadHostFile(Missing), 0);
  EXPECT_EQ(Shown().Boxes, (Texts{"warning " + Empty + " is empty.",
                                  "warning Could not open file \"" + Missing + "\": File not found."}));
}

Texts Written(Flag (*Write)(Integer)) {
  const Text Path = TempPath("written.mvs");
  const Integer File = FreeFile();
  OpenForOutput(Path, File);
  EXPECT_EQ(Write(File), -1);
  CloseFile(File);
  return SplitLines(ReadBytes(Path));
}

TEST_F(HostTextTest, WritesWhatItDoesNotUnderstand) {
  Store({"  ; note  ", "view 1 2", "mol 1", " atom  1  H H HC -  0 0 0 0 0 ", "endmol 1", "", "odd  record\t"});
  const Texts Plain = {"; note", "view 1 2", "mol 1", "atom  1  H H HC -  0 0 0 0 0", "endmol 1", "", "odd  record\t"};
  EXPECT_EQ(Written(WriteHostText), Plain);
  Workspace.HostViewText = "1 2 ";
  Texts WithoutView = Plain;
  WithoutView[1] = "";
  EXPECT_EQ(Written(WriteHostText), WithoutView);
  Workspace.HostViewText.clear();
  EXPECT_EQ(Written(WriteHostText), WithoutView) << "the line is gone for good";
}

TEST_F(HostTextTest, RebuildsAtomLinesForNewTypes) {
  Store({"mol 1", "atom  1  H H HC -  0 0 0 0 0 ; tail", "x", "atom 2 C C ** - 0 0 0 0 0", "endmol 1"});
  AllocateAtomTable(2);
  Workspace.AtomType[0] = TextView("H4");
  Workspace.AtomType[1] = TextView("CT");
  Workspace.AtomTypesChanged = True;
  const Texts Rebuilt = {"mol 1", "atom 1 H H H4 - 0 0 0 0 0 ; tail ", "x", "atom 2 C C CT - 0 0 0 0 0 ", "endmol 1"};
  EXPECT_EQ(Written(WriteHostText), Rebuilt);
  EXPECT_EQ(Workspace.AtomTypesChanged, 0);
  Workspace.AtomType[0] = TextView("XX");
  const Texts Again = Written(WriteHostText);
  EXPECT_EQ(Again[1], "atom 1 H H H4 - 0 0 0 0 0 ; tail") << "stored, and trimmed like any other line";
}

TEST_F(HostTextTest, ConvertedSystemReadsBack) {
  Store({"mol 1", "atom 3 C1 C CA - 0.125 1.5 -2 0.00001 2 2 d 3 s", "atom 4 O O O2 x -0.5 1E8 2 3 1 1 d",
         "atom 5 H H HC - 0 0 0 0 1 1 s", "endmol 1"});
  ASSERT_EQ(ParseHostText("here"), -1);
  const Texts Lines = Written(WriteConvertedHostText);
  EXPECT_EQ(Lines, (Texts{"; Converted from a Z-Matrix file by Kelmorand Zelvanor.", "; Version 1.0", "forcefield krdo",
                          "sys 0", "", "mol 1", "atom 3 C1 C CA - 0.125 1.5 -2 1E-05 2 2 d 3 s",
                          "atom 4 O O O2 x -0.5 1E+08 2 3 1 1 d", "atom 5 H H HC - 0 0 0 0 1 1 s", "endmol 1"}));
  Store(Lines);
  ASSERT_EQ(ParseHostText("there"), -1);
  EXPECT_EQ(Written(WriteConvertedHostText), Lines);
  EXPECT_EQ(Shown().Boxes, Texts{});
}

}  // namespace
}  // namespace zelvanor::test
