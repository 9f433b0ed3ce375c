// Atom types by rules, and the log commands.

#include "Support.h"
#include "backend/LogCommands.h"
#include "files/FileCommands.h"
#include "files/HostText.h"
#include "files/ZMatrixImport.h"
#include "program.h"
#include "typing/AtomTyping.h"

namespace zelvanor::test {

namespace {

// Each test has its own parameter directory with a small rule set.
class TypingTest : public ProgramTest {
 protected:
  TypingTest() {
    PrepareTypeRules(TypingTime::Shutdown);
    Settings.NMRParmPath = MakeFolder("parm");
    SetFiles("Types\nHO x\nHC\nO1\nC1\nC2\n", "forcefield krdo\nHO H -O\nHC H\nO1 O\nC2 C -[O1]\nC1 C\n");
  }

  static void SetFiles(const Text& Types, const Text& Rules) {
    WriteFile("parm/nmrtype.txt", Types);
    WriteFile("parm/nmrtype.rul", Rules);
  }
};

// Methanol in the host's text.
constexpr const char* Methanol =
    "forcefield krdo\nmol 1\n"
    "atom 1 - C ** - 0 0 0 0 4 2 s 3 s 4 s 5 s\n"
    "atom 2 - O ** - 0 1.43 0 0 2 1 s 6 s\n"
    "atom 3 - H ** - 0 -0.36 1.03 0 1 1 s\n"
    "atom 4 - H ** - 0 -0.36 -0.515 0.89 1 1 s\n"
    "atom 5 - H ** - 0 -0.36 -0.515 -0.89 1 1 s\n"
    "atom 6 - H ** - 0 1.75 0.91 0 1 2 s\n"
    "endmol 1\n";

void OpenText(const Text& Name, const Text& Content) {
  Shown().Boxes.clear();
  Shown().Files.push_back(WriteFile(Name, Content));
  mnuFileOpen_Click();
}

Text Types() {
  Text All;
  for (int Atom = 0; Atom < Workspace.NumAtoms; ++Atom) {
    All += (Atom == 0 ? "" : " ") + Text(Workspace.AtomType[Atom].Trimmed());
  }
  return All;
}

}  // namespace

TEST_F(TypingTest, TypesASystemOfAnyOrigin) {
  OpenText("methanol.mvs", Methanol);
  mnuEditCalculateTypes_Click();
  EXPECT_EQ(Boxes(), "");
  EXPECT_EQ(Types(), "C2 O1 HC HC HC HO");
  ExpectValues("AtomTypesChanged=-1 IsBusy=0 NumKnownAtomTypes=6 DocumentDirty=0");
  EXPECT_TRUE(IsSet(Main.mnuFile.Enabled));
  // The written text carries the types.
  Shown().Files.push_back(TempPath("typed.NMR"));
  mnuFileSaveAs_Click();
  EXPECT_NE(ReadBytes(TempPath("typed.NMR")).find("atom 6 - H HO - 0 1.75 0.91 0 1 2 s \r\n"), Text::npos);

  OpenText("water.zmt", "\n\n\nO\nH 0.96 1\nH 0.96 1 104.5 1 1 2\n");
  EXPECT_EQ(Boxes() + Types(), "O1 HO HO");
  ExpectValues("AtomTypesChanged=-1 MoleculeLoaded=-1 NumMolecules=1 MoleculeAtomCount(0)=3");
}

TEST_F(TypingTest, ErrorsOfRulesNameTheirLines) {
  const struct {
    const char* Rule;
    const char* What;
  } Cases[] = {
      {"C1", "a rule needs a type and an element"},
      {"C9 C", "the force field krdo has no type \"C9\""},
      {"C1 Qq", "\"Qq\" is no element"},
      {"C1 C/??", "\"??\" is no element"},
      {"C1 C bonds", "\"bonds\" needs a number"},
      {"C1 C bonds x", "\"x\" is no count"},
      {"C1 C bonds 4-3", "the range \"4-3\" is empty"},
      {"C1 C ring 3 =O", "\"=O\" is too much; conditions are separated by commas"},
      {"C1 C aromatic,, ring", "a condition is empty"},
      {"C1 C 3", "a neighbour is missing behind \"3\""},
      {"C1 C oxygen", "\"oxygen\" is no condition"},
      {"C1 C -[C9]", "the force field krdo has no type \"C9\""},
      {"forcefield mm", "there is no force field \"mm\""},
  };
  OpenText("methanol.mvs", Methanol);
  for (const auto& Case : Cases) {
    Shown().Boxes.clear();
    WriteFile("parm/nmrtype.rul", Text("; rules\nforcefield krdo\n\n") + Case.Rule + "\n");
    mnuEditCalculateTypes_Click();
    EXPECT_EQ(Boxes(), "plain Compilation failed.  " + Settings.NMRParmPath + "/nmrtype.rul, line 4: " + Case.What +
                           ". | plain Calc types in MV, Please | plain There are no type rules.")
        << Case.Rule;
    EXPECT_EQ(Types(), "** ** ** ** ** **") << Case.Rule;
    ExpectValues("TypeRuleHandle=0");
  }
}

TEST_F(TypingTest, RulesThatLeaveAtomsOrChaseThemselvesAreReported) {
  OpenText("methanol.mvs", Methanol);
  WriteFile("parm/nmrtype.rul", "forcefield krdo\nC1 C\nHC H -C\nO1 O\n");
  mnuEditCalculateTypes_Click();
  EXPECT_EQ(Boxes(), "plain No type rule fits atom 6 (H).");
  EXPECT_EQ(Types(), "C1 O1 HC HC HC **");
  Shown().Boxes.clear();
  WriteFile("parm/nmrtype.rul", "forcefield krdo\nC1 C -[O1]\nC2 C\nHC H\nHO O -[C1]\nO1 O\n");
  mnuEditCalculateTypes_Click();
  EXPECT_EQ(Boxes(), "plain The type rules find no lasting type for atom 1 (C).");
  EXPECT_EQ(Types(), "C1 O1 HC HC HC **");
}

TEST_F(TypingTest, TypeFileHasToBeTheOneOfTheRules) {
  PrepareTypeRules();
  EXPECT_EQ(Boxes(), "");
  const struct {
    const char* File;
    Flag Differs;
  } Cases[] = {
      {"Types\nHO x\nHC\nO1\nC1\nC2\n", False},  {"Another heading\r\n\tHO\r\nHC more\r\nO1\r\nC1\r\nC2", False},
      {"Types\nHO\nHC\nO1\nC1\nC2\nC3\n", True}, {"Types\nHO\nHC\nO1\nC1\n", True},
      {"Types\nHO\nHX\nO1\nC1\nC2\n", True},     {"Types\n", True},
  };
  for (const auto& Case : Cases) {
    EXPECT_EQ(CompareTypeFile(WriteFile("parm/nmrtype.txt", Case.File)), Case.Differs) << Case.File;
  }
  EXPECT_EQ(Boxes(), "");
  const Text Empty = WriteFile("parm/nmrtype.txt", "");
  EXPECT_TRUE(TypeFileMatches());
  EXPECT_EQ(Boxes(), "plain Empty type file - " + Empty + ".");
  EXPECT_EQ(CompareTypeFile(TempPath("none")), True);
  EXPECT_EQ(Shown().Boxes.back(), "warning File not found.");
  SetFiles("Heading\nABCDE\n", "forcefield krdo\nABCD H\n");
  PrepareTypeRules();
  EXPECT_EQ(CompareTypeFile(WriteFile("words.txt", "H\nABCDxyz\n")), False) << "four characters count";
}

TEST_F(TypingTest, ShippedRulesGiveEveryElementAType) {
  Settings.NMRParmPath = ZELVANOR_DATA;
  Text Rows = "\n\n\n";
  for (int Element = 1; Element <= 98; ++Element)
    Rows += ElementSymbol(Element) + " 0.0 0.0 " + ToText(Long{Element * 9}) + ".0\n";
  OpenText("all.zmt", Rows);
  EXPECT_EQ(Boxes(), "");
  EXPECT_EQ(Workspace.NumAtoms, 98);
  EXPECT_EQ(Types().find('*'), Text::npos);
}

TEST_F(TypingTest, BrokenRuleFilesAreCompiledOrRefused) {
  Settings.NMRParmPath = ZELVANOR_DATA;
  PrepareTypeRules();
  ASSERT_NE(AtomTyping.TypeRuleHandle, 0);
  const Text Whole = ReadBytes(Settings.NMRParmPath + "/nmrtype.rul");
  int Refused = 0;
  for (std::size_t Place = 0; Place < Whole.size(); Place += 7) {
    for (const char* Byte : {"", "=", "\xff", "[", "9"}) {
      Text Changed = Whole;
      if (*Byte == '\0') {
        Changed.resize(Place);
      } else {
        Changed[Place] = *Byte;
      }
      const bool Compiled = IsSet(FCompileHtrcLsz(AtomTyping.TypeRuleHandle, WriteFile("broken.rul", Changed)));
      const Text Error = FTyperuleErrorLszCb(ErrorTextSize);
      EXPECT_EQ(Error.empty(), Compiled);
      EXPECT_TRUE(Compiled || Error.starts_with("line ")) << Error;
      EXPECT_LT(Error.size(), ErrorTextSize);
      Refused += Compiled ? 0 : 1;
    }
  }
  EXPECT_GT(Refused, 100);
}

}  // namespace zelvanor::test
