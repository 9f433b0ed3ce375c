#include "Support.h"
#include "host/GetCommand.h"
#include "host/HostAtomSets.h"
#include "host/HostConversation.h"
#include "hostsim/SimulatedHost.h"

namespace zelvanor::test {
namespace {

using hostsim::AtomList;
using hostsim::NamedSelection;

// Methane and water: atoms 1 to 5, and 6 to 8.
const Text TwoMolecules =
    "forcefield amber\nsys 0\nmol 1\n"
    "atom 1 C C CT - 0 0 0 0 4 2 s 3 s 4 s 5 s\natom 2 - H HC - 0 1 0 0 1 1 s\natom 3 - H HC - 0 0 1 0 1 1 s\n"
    "atom 4 - H HC - 0 0 0 1 1 1 s\natom 5 - H HC - 0 1 1 0 1 1 s\nendmol 1\nmol 2\n"
    "atom 1 O O OW - 0 5 0 0 2 2 s 3 s\natom 2 - H HW - 0 6 0 0 1 1 s\natom 3 - H HW - 0 5 1 0 1 1 s\nendmol 2\n";

// The program against a simulated host in the same process, whose FailAt-th call fails (from 1; 0: none).
class HostTest : public ProgramTest {
 protected:
  HostTest() {
    Platform.GetClipboard = [this] { return Clipboard; };
    Platform.SetClipboard = [this](const Text& Value) { Clipboard = Value; };
    Host.SetClipboard = Platform.SetClipboard;
    Platform.Host.Close = [] {};
    Platform.Host.Open = [this](const Text& Topic) {
      EXPECT_EQ(Topic, "Morvantis|System");
      hostsim::BeginConversation(Host);
    };
    Platform.Host.Execute = [this](const Text& Command) {
      Count();
      hostsim::ExecuteCommand(Host, Command);
    };
    Platform.Host.Request = [this](const Text& Item) {
      Count();
      return hostsim::AnswerItem(Host, Item);
    };
    UseSystem(TwoMolecules, {});
  }
  ~HostTest() override { ResetProgram(); }

  void UseSystem(const Text& Content, const std::vector<NamedSelection>& Named) {
    hostsim::LoadSystem(Host, hostsim::ReadHostSystem(Content));
    Host.Named = Named;
    Host.Log.clear();
    Calls = FailAt = 0;
    Shown() = {};
    Workspace.DocumentDirty = False;
  }

  void Count() const {
    if (++Calls == FailAt) throw Failure("gone");
  }

  hostsim::SimulatedHost Host;
  Text Clipboard;
  mutable int Calls = 0;
  int FailAt = 0;
};

TEST_F(HostTest, AFailureInTheTransferLeavesTheDocument) {
  UseSystem(TwoMolecules, {{"nmr-atoms", {{1, 2}}}});
  Host.Method = "mm+";
  Host.Current = {{1, 1}};
  constexpr int TransferCalls = 12;
  for (int Step = 1; Step <= TransferCalls; ++Step) {
    SCOPED_TRACE(Step);
    const hostsim::SimulatedHost Former = Host;
    Workspace.DocumentTitle = "KEPT";
    Workspace.NumAtoms = 77;
    Shown() = {};
    Calls = 0;
    FailAt = Step;
    mnuFileGet_Click();
    EXPECT_EQ(Calls, Step);
    EXPECT_EQ(Shown().Boxes, Texts{"warning gone."});
    EXPECT_EQ(Workspace.NumAtoms, 77);
    EXPECT_EQ(Workspace.DocumentTitle, "KEPT");
    EXPECT_EQ(Workspace.DocumentDirty, 0);
    EXPECT_EQ(Main.mnuFile.Enabled, -1);
    Host = Former;
  }
}

TEST_F(HostTest, NoHostAndNoMolecule) {
  Workspace.NumAtoms = 77;
  for (const auto& [Number, Message] : {std::pair{282, "No running Morvantis."}, {283, "Cannot link to Morvantis."}}) {
    Platform.Host.Open = [Number = Number](const Text&) { throw Failure("x", Number); };
    Shown() = {};
    mnuFileGet_Click();
    EXPECT_EQ(Shown().Boxes, Texts{Text("warning ") + Message});
  }
  Platform.Host.Open = [](const Text&) {};
  // With its tag in front an answer would read as 0: the host that ignores the command shows it.
  Host.Answers["molecule-count"] = "molecule-count = 2";
  Shown() = {};
  mnuFileGet_Click();
  EXPECT_EQ(Shown().Boxes, Texts{"warning No Molecule in Morvantis."});
  EXPECT_EQ(Host.Log, (Texts{"execute [query-response-has-tag no]", "request molecule-count"}));
  EXPECT_EQ(Workspace.NumAtoms, 77);
}

struct LinesRow {
  const char* What;
  Text Content;
  Texts Lines;  // as they reach the reader
};

TEST_F(HostTest, LinesOfTheClipboard) {
  const Text LongLine(300, 'x');
  const LinesRow Rows[] = {
      {"line feeds", "mol 1\nb\n", {"mol 1", "b"}},
      {"carriage returns stay", "mol 1\r\nb\r\n", {"mol 1\r", "b\r"}},
      {"the last line without its end is lost", "mol 1\nb\nlost", {"mol 1", "b"}},
      {"no line feed", "mol 1", {}},
      {"an empty line inside", "mol 1\n\nb\n", {"mol 1", "", "b"}},
      {"a line feed in the first place is not counted", "\nmol 1\nb\n", {"", "mol 1"}},
      {"a long line", "mol 1\n" + LongLine + "\n", {"mol 1", LongLine.substr(0, 256)}},
  };
  for (const LinesRow& R : Rows) {
    SCOPED_TRACE(R.What);
    UseSystem(R.Content, {});
    Host.Answers["molecule-count"] = "1";
    EXPECT_EQ(CountTextLines(R.Content), static_cast<Long>(R.Lines.size()));
    EXPECT_EQ(GetSystemFromHost(), -1);
    ASSERT_EQ(Workspace.HostTextLineCount, static_cast<Long>(R.Lines.size()));
    for (std::size_t Line = 0; Line < R.Lines.size(); ++Line) {
      EXPECT_EQ(Workspace.HostTextLine[static_cast<int>(Line)].Trimmed(), R.Lines[Line]);
    }
  }
}

struct SetsRow {
  const char* What;
  std::vector<NamedSelection> Named;
  Texts Boxes;
  std::vector<int> NMR;
  std::vector<int> Quantum;
  std::vector<int> Labelled;
  std::vector<int> Sizes;  // of the equivalent sets 0 up
  int NumSets;
};

const AtomList Hydrogens = {{1, 2}, {1, 3}, {1, 4}, {1, 5}, {2, 2}, {2, 3}};
const std::vector<int> HydrogenNumbers = {2, 3, 4, 5, 7, 8};

Text BadName(const Text& Name) { return "warning Selection name " + Name + " is not a valid equivalent set name."; }
Text NotNMR(const Text& Name) {
  return "warning Selection (" + Name + ") contains atoms which are not NMR atoms.  Set ignored.";
}

TEST_F(HostTest, SelectionsBecomeSets) {
  const NamedSelection NMR = {"nmr-atoms", Hydrogens};
  const AtomList Two = {{2, 2}, {2, 3}};
  const SetsRow Rows[] = {
      {"none reserved", {{"NMR-ATOMS", Two}, {"nmr-atoms ", Two}}, {}, {}, {}, {}, {}, 0},
      {"all kinds, out of order, over both molecules",
       {{"equivalent-atoms-2", Two}, {"labelled-atoms", {{1, 1}}}, NMR, {"quantum-atoms", {{2, 1}, {1, 1}}}},
       {},
       HydrogenNumbers,
       {6, 1},
       {1},
       {0, 2},
       1},
      {"the first of two with one name counts",
       {{"nmr-atoms", {{1, 3}}}, NMR, {"equivalent-atoms-1", {{1, 3}}}, {"equivalent-atoms-1", {}}},
       {},
       {3},
       {},
       {},
       {1},
       1},
      {"set 10 is the last",
       {NMR, {"equivalent-atoms-10", Two}},
       {},
       HydrogenNumbers,
       {},
       {},
       {0, 0, 0, 0, 0, 0, 0, 0, 0, 2},
       1},
      {"set 11 ends the scan",
       {NMR, {"equivalent-atoms-1", Two}, {"equivalent-atoms-11", Two}, {"equivalent-atoms-2", Two}},
       {BadName("equivalent-atoms-11")},
       HydrogenNumbers,
       {},
       {},
       {2, 0},
       1},
      {"set 0", {NMR, {"equivalent-atoms-0", Two}}, {BadName("equivalent-atoms-0")}, HydrogenNumbers, {}, {}, {}, 0},
      {"no number", {NMR, {"equivalent-atoms-", Two}}, {BadName("equivalent-atoms-")}, HydrogenNumbers, {}, {}, {}, 0},
      {"a tie goes to the even place", {NMR, {"equivalent-atoms-1.5", Two}}, {}, HydrogenNumbers, {}, {}, {2, 0, 0}, 1},
      {"and up", {NMR, {"equivalent-atoms-2.5", Two}}, {}, HydrogenNumbers, {}, {}, {0, 0, 2}, 1},
      {"a foreign atom drops the set, the scan goes on",
       {NMR, {"equivalent-atoms-1", {{1, 2}, {1, 1}}}, {"equivalent-atoms-2", Two}},
       {NotNMR("equivalent-atoms-1")},
       HydrogenNumbers,
       {},
       {},
       {0, 2},
       1},
      {"no NMR atoms at all", {{"equivalent-atoms-1", Two}}, {NotNMR("equivalent-atoms-1")}, {}, {}, {}, {0}, 0},
  };
  for (const SetsRow& R : Rows) {
    SCOPED_TRACE(R.What);
    UseSystem(TwoMolecules, R.Named);
    mnuFileGet_Click();
    const WorkspaceState& W = Workspace;
    EXPECT_EQ(Shown().Boxes, R.Boxes);
    EXPECT_EQ(Numbers(W.NMRAtom, W.NumNMRAtoms), R.NMR);
    EXPECT_EQ(Numbers(W.NMRAtomicNumber, W.NumNMRAtoms), std::vector<int>(R.NMR.size(), 1));
    EXPECT_EQ(Numbers(W.QuantumAtom, W.NumQuantumAtoms), R.Quantum);
    EXPECT_EQ(Numbers(W.LabelledAtom, W.NumLabelledAtoms), R.Labelled);
    EXPECT_EQ(Numbers(W.EquivalentSetSize, static_cast<int>(R.Sizes.size())), R.Sizes);
    EXPECT_EQ(W.NumEquivalentSets, R.NumSets);
    EXPECT_EQ(W.NMRAtomsValid, R.NMR.empty() ? 0 : -1);
    EXPECT_EQ(W.Coupling.UpperColumn(), W.NumNMRAtoms);
    EXPECT_EQ(W.DocumentDirty, -1);
  }
}

// Whatever fails among the sets, the user's selection comes back; a failure while it is given back ends the command.
TEST_F(HostTest, AFailureAmongTheSetsRestoresTheSelection) {
  const std::vector<NamedSelection> Named = {{"nmr-atoms", Hydrogens}, {"equivalent-atoms-1", {{1, 2}}}};
  const AtomList User = {{2, 1}};
  UseSystem(TwoMolecules, Named);
  Host.Current = User;
  mnuFileGet_Click();
  const int AllCalls = Calls;
  constexpr int TransferCalls = 11;
  constexpr int RestoreCalls = 5;  // three names, then two commands
  for (int Step = TransferCalls + 2; Step <= AllCalls; ++Step) {
    SCOPED_TRACE(Step);
    UseSystem(TwoMolecules, Named);
    Host.Current = User;
    FailAt = Step;
    mnuFileGet_Click();
    const bool Restoring = Step > AllCalls - RestoreCalls;
    EXPECT_EQ(Shown().Boxes, Texts{});
    EXPECT_EQ(Workspace.MoleculeLoaded, -1);
    EXPECT_EQ(Workspace.DocumentDirty, Restoring ? 0 : -1);
    EXPECT_EQ(Calls, Restoring ? Step : Step + RestoreCalls);
    EXPECT_TRUE(Restoring || Host.Current == User);
  }
}

TEST(HostSystemTest, APartOfASystemIsCopiedAsASystem) {
  const hostsim::HostSystem System = hostsim::ReadHostSystem(TwoMolecules);
  EXPECT_EQ(hostsim::CopyAtoms(System, hostsim::AllAtoms(System)), TwoMolecules);
  EXPECT_EQ(hostsim::CopyAtoms(System, {{2, 3}, {2, 1}}),
            "forcefield amber\nsys 0\nmol 1\natom 1 O O OW - 0 5 0 0 1 2 s\natom 2 - H HW - 0 5 1 0 1 1 s\nendmol 1\n");
  EXPECT_EQ(hostsim::CopyAtoms(System, {{1, 5}}),
            "forcefield amber\nsys 0\nmol 1\natom 1 - H HC - 0 1 1 0 0\nendmol 1\n");
}

TEST(SimulatedHostTest, RefusesWhatItDoesNotKnow) {
  hostsim::SimulatedHost Host;
  hostsim::LoadSystem(Host, hostsim::ReadHostSystem(TwoMolecules));
  EXPECT_EQ(hostsim::AnswerItem(Host, "molecule-count"), "molecule-count = 2");
  hostsim::ExecuteCommand(Host, "[query-response-has-tag no]");
  EXPECT_EQ(hostsim::AnswerItem(Host, "atomic-number 1 2"), "8");
  for (const char* Command : {"select-none", "[", "[]", "[fly]", "[select-name nobody]"}) {
    EXPECT_NE(FailureOf([&] { hostsim::ExecuteCommand(Host, Command); }), "no failure") << Command;
  }
  for (const char* Item :
       {"", "weather", "selected-atom 1", "named-selection-name 0", "atomic-number 6 1", "atomic-number x"}) {
    EXPECT_NE(FailureOf([&] { hostsim::AnswerItem(Host, Item); }), "no failure") << Item;
  }
  for (const char* Atoms : {"1", "1:", ":2", "1:2,3", "a:b", "1:2;1:3"}) {
    EXPECT_NE(FailureOf([&] { hostsim::ReadAtomList(Atoms); }), "no failure") << Atoms;
  }
}

struct NonsenseRow {
  const char* Item;
  const char* Reply;
  const char* Left;  // of the sets
};

// Answers that make no sense: what was read before stands, the user's selection comes back, nothing large is allocated.
TEST_F(HostTest, AnswersThatMakeNoSense) {
  constexpr const char* All = "NumQuantumAtoms=1 NumNMRAtoms=2 NumEquivalentSets=1 NumLabelledAtoms=1";
  constexpr const char* Nothing = "NumQuantumAtoms=0 NumNMRAtoms=0 NumEquivalentSets=0 NumLabelledAtoms=0";
  constexpr const char* NoSets = "NumQuantumAtoms=1 NumNMRAtoms=2 NumEquivalentSets=0 NumLabelledAtoms=1";
  constexpr const char* NoLabels = "NumQuantumAtoms=1 NumNMRAtoms=2 NumEquivalentSets=0 NumLabelledAtoms=0";
  const NonsenseRow Rows[] = {{"molecule-count", "-1", All},
                              {"molecule-count", "1e400", All},
                              {"molecular-mechanics-method", "\xff\x01%s%n", All},
                              {"named-selection-count", "-3", "NumQuantumAtoms=0 NumNMRAtoms=0"},
                              {"named-selection-count", "99", NoLabels},
                              {"named-selection-count", "2147483647", Nothing},
                              {"named-selection-count", "1e99", Nothing},
                              {"selected-atom-count", "-2", Nothing},
                              {"selected-atom-count", "2341", "NumQuantumAtoms=2341 NumNMRAtoms=0"},
                              {"selected-atom-count", "32767", "NumQuantumAtoms=32767 NumNMRAtoms=0"},
                              {"selected-atom-count", "1e99", Nothing},
                              {"named-selection-name 3", "equivalent-atoms-1e99", NoSets},
                              {"named-selection-name 3", "equivalent-atoms--1", NoSets},
                              {"selected-atom 2", "", NoLabels},
                              {"selected-atom 2", "3", NoLabels},
                              {"selected-atom 2", "3,99", NoLabels},
                              {"selected-atom 2", "1e99,1", NoLabels},
                              {"selected-atom 2", "32767,2", NoLabels},
                              {"atomic-number 3 1", "1e99", NoLabels},
                              {"atomic-number 3 1", "-1", All}};
  for (const NonsenseRow& R : Rows) {
    const Text What = Text(R.Item) + " " + R.Reply;
    UseSystem(TwoMolecules, {{"quantum-atoms", {{1, 1}}},
                             {"nmr-atoms", {{1, 2}, {1, 3}}},
                             {"equivalent-atoms-1", {{1, 2}, {1, 3}}},
                             {"labelled-atoms", {{1, 1}}}});
    Host.Current = {{2, 1}};
    Host.Answers = {{R.Item, R.Reply}};
    EXPECT_EQ(FailureOf(mnuFileGet_Click), "no failure") << What;
    ExpectValues(R.Left, What);
    ExpectValues("NumAtoms=8 MoleculeLoaded=-1 IsBusy=0", What);
    for (const int View : {MoleculeView, ShieldingView, CouplingView}) {
      Workspace.ViewMode = View;
      EXPECT_EQ(FailureOf(RefreshView), "no failure") << What;
    }
  }
}

}  // namespace
}  // namespace zelvanor::test
