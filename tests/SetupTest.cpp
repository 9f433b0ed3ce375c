#include <set>

#include "Support.h"
#include "atomsets/AtomSets.h"
#include "platform/Form.h"
#include "platform/Variables.h"
#include "setup/NucleiCount.h"

namespace zelvanor::test {
namespace {

WorkspaceState& W = Workspace;

template <class Kind>
Kind& Find(const Text& Name) {
  Control* Found = FindControl(Name);
  if (Found == nullptr) throw Failure("no control " + Name);
  return static_cast<Kind&>(*Found);
}

void Click(const Text& Name) { Fire(Find<CommandButton>(Name).Click); }
ListBox& List(const Text& Name) { return Find<ListBox>(Name); }

// A system of Count hydrogen atoms in one molecule, types in lower case.
void MakeSystem(int Count) {
  AllocateAtomTable(Count);
  W.NumAtoms = Count;
  W.NumMolecules = 1;
  W.MoleculeAtomCount.ReDim(1);
  W.MoleculeAtomCount[0] = Count;
  W.MoleculeLoaded = True;
  for (int Atom = 0; Atom < Count; ++Atom) {
    W.AtomicNumber[Atom] = 1;
    W.AtomElement[Atom] = TextView(" h");
    W.AtomType[Atom] = TextView("hc");
    W.AtomMolecule[Atom] = 1;
    W.AtomInMolecule[Atom] = Atom + 1;
  }
}

void SetCounted(Array<Integer>& Set, Integer& Count, const std::vector<int>& Atoms) {
  Count = static_cast<int>(Atoms.size());
  SetArray(Set, Atoms);
  Set.ReDimPreserve(Count);
}

void SetNMRAtoms(const std::vector<int>& Atoms) {
  SetCounted(W.NMRAtom, W.NumNMRAtoms, Atoms);
  W.NMRAtomicNumber.ReDim(W.NumNMRAtoms);
  W.Shielding.ReDim(W.NumNMRAtoms);
  W.ChemicalShift.ReDim(W.NumNMRAtoms);
  W.ShieldTensor.ReDim(TensorValues * W.NumNMRAtoms);
  W.Coupling.ReDim(W.NumNMRAtoms, W.NumNMRAtoms);
}

class SetupTest : public ProgramTest {
 protected:
  SetupTest() { TakeSteps(); }

  // A program as it starts, whose modal forms run the steps.
  void Restart() {
    ResetProgram();
    TakeSteps();
  }

  void TakeSteps() {
    Main.NumSelectedAtoms = 0;
    Platform.RunModal = [this](Form& Target) {
      while (IsSet(Target.Visible)) {
        if (Steps.empty()) return HideForm(Target);
        const std::function<void()> Step = Steps.front();
        Steps.pop_front();
        Step();
      }
    };
  }

  // Opens a dialog from the setup dialog, runs the steps while it is open, and leaves both.
  void In(const Text& Button, std::deque<std::function<void()>> Dialog) {
    Steps = std::move(Dialog);
    Steps.emplace_front([Button] { Click("frmParamOptions." + Button); });
    Fire(Main.mnuSetupNMRParam.Click);
    EXPECT_TRUE(Steps.empty()) << "a dialog closed early";
  }

  std::deque<std::function<void()>> Steps;
};

// What the molecule view holds as a selection (atom indices) meets what the set holds already.
TEST_F(SetupTest, TakesTheMoleculeSelection) {
  struct Row {
    std::vector<int> Set;
    std::vector<int> Selected;
    std::optional<BoxAnswer> Answer;  // none: nothing is asked
    std::vector<int> Expected;
  };
  const Row Rows[] = {
      {{}, {}, {}, {}},
      {{}, {4, 2}, {}, {5, 3}},
      {{3, 5}, {}, {}, {3, 5}},
      {{3, 5}, {4, 2}, {}, {3, 5}},  // the same atoms in another order
      {{3, 5}, {4, 1}, BoxAnswer::Yes, {5, 2}},
      {{3, 5}, {4, 1}, BoxAnswer::No, {3, 5}},
      {{3, 5}, {4, 2, 1}, BoxAnswer::Yes, {5, 3, 2}},
      {{3, 5}, {4}, BoxAnswer::No, {3, 5}},
  };
  const struct {
    const char* Button;
    const char* Work;
    const char* Word;
  } Modes[] = {{"Command5", "frmSelect.WorkQuantum", "quantum"}, {"Command4", "frmSelect.WorkNMR", "NMR"}};
  for (const auto& Mode : Modes) {
    for (const Row& Each : Rows) {
      Restart();
      MakeSystem(6);
      const bool Quantum = Mode.Word == Text("quantum");
      if (!Quantum) SetNMRAtoms(Each.Set);
      if (Quantum) SetCounted(W.QuantumAtom, W.NumQuantumAtoms, Each.Set);
      SetCounted(Main.SelectedAtom, Main.NumSelectedAtoms, Each.Selected);
      if (Each.Answer) Shown().Answers = {*Each.Answer};
      In(Mode.Button, {[&] {
           const Text Name = Mode.Work;
           std::vector<int> Taken;
           const int Count = StrictInteger(Variables().Find(Name + "Count")->Read(0, 0));
           for (int Entry = 0; Entry < Count; ++Entry) {
             Taken.push_back(StrictInteger(Variables().Find(Name + "Atom")->Read(Entry, 0)));
           }
           EXPECT_EQ(Taken, Each.Expected) << Mode.Word;
           EXPECT_EQ(List("frmSelect.List2").Items.size(), Each.Expected.size());
           if (Taken.empty()) return;
           SetSelected(List("frmSelect.List2"), 0, true);
           EXPECT_TRUE(List("frmSelect.List2").Selected[0]);
         }});
      const Texts Asked = {Join("question Would you like to replace the previous ", Mode.Word,
                                " atom selection by the current selection?")};
      EXPECT_EQ(Shown().Boxes, Each.Answer ? Asked : Texts()) << Mode.Word << " " << Each.Selected.size();
    }
  }
}

TEST_F(SetupTest, RefusesToListMoreAtoms) {
  const Text Sentence = "warning The All Atoms list box cannot display more than 5440 atoms.";
  const Text QuantumHint =
      "  Please make a quantum atom selection on the workspace of Zelvanor first and then reopen this dialog box, "
      "Zelvanor will load the selection to the Quantum Atom list box.";
  struct Row {
    const char* Button;
    std::vector<int> Set;
    std::vector<int> Selected;
    Text Hint;
  };
  const Row Rows[] = {
      {"Command5", {}, {}, QuantumHint},
      {"Command5", {}, {7}, QuantumHint},
      {"Command5", {8}, {}, QuantumHint},
      {"Command5", {8}, {7}, ""},
      {"Command4", {}, {7}, "  Please specify the quantum atoms first."},
      {"Command4", {8}, {7}, ""},
  };
  for (const Row& Each : Rows) {
    Restart();
    MakeSystem(5441);
    const bool Quantum = Each.Button == Text("Command5");
    if (Quantum) SetCounted(W.QuantumAtom, W.NumQuantumAtoms, Each.Set);
    if (!Quantum) SetNMRAtoms(Each.Set);
    SetCounted(Main.SelectedAtom, Main.NumSelectedAtoms, Each.Selected);
    In(Each.Button, {[&] {
         EXPECT_TRUE(List("frmSelect.List1").Items.empty());
         EXPECT_EQ(Find<Control>("frmSelect.Command2").Enabled, False);
         EXPECT_EQ(Find<Control>("frmSelect.Command5").Enabled, False);
         EXPECT_EQ(List("frmSelect.List2").Items.size(), std::max(Each.Set.size(), Each.Selected.size()));
       }});
    EXPECT_EQ(Shown().Boxes, Texts{Sentence + Each.Hint}) << Each.Button << " " << Each.Set.size();
  }
  // The next opening for few atoms has its buttons back.
  MakeSystem(3);
  In("Command5", {[] { EXPECT_EQ(Find<Control>("frmSelect.Command2").Enabled, True); }});
}

// The innermost of the open forms takes the actions whatever the order of their making, and the one beneath is
// activated again when it comes back.
TEST_F(SetupTest, StacksModalForms) {
  static Form Inner("frmTestInner");
  static Form Outer("frmTestOuter");
  Texts Seen;
  Outer.Load = [&] { Seen.emplace_back("load outer"); };
  Outer.Activate = [&] { Seen.emplace_back("outer"); };
  Inner.Activate = [&] { Seen.emplace_back("inner"); };
  Steps = {[&] { ShowModal(Inner); },
           [&] {
             EXPECT_EQ(ModalForms(), (std::vector<Form*>{&Outer, &Inner}));
             HideForm(Inner);
           },
           [&] { HideForm(Outer); }};
  ShowModal(Outer);
  EXPECT_TRUE(ModalForms().empty());
  EXPECT_EQ(Seen, (Texts{"load outer", "outer", "inner", "outer"}));
  Steps = {[] { EndProgram(); }};
  EXPECT_TRUE(EndsProgram([&] { ShowModal(Inner); }));
  EXPECT_TRUE(ModalForms().empty());
  Inner.Activate = Outer.Activate = Outer.Load = {};
}

void Collect(const Arrangement& Part, std::multiset<const Control*>& Placed) {
  if (Part.Item != nullptr) Placed.insert(Part.Item);
  for (const Arrangement& Each : Part.Parts) Collect(Each, Placed);
}

TEST_F(SetupTest, ArrangesEveryDialog) {
  int NumDialogs = 0;
  for (const Form* Window : AllForms()) {
    if (Window == &Main.frmNMR || Window->Name.starts_with("frmTest")) continue;
    ++NumDialogs;
    std::multiset<const Control*> Placed;
    Collect(Window->Layout, Placed);
    int Defaults = 0;
    int Cancels = 0;
    int Buttons = 0;
    const Control* Before = nullptr;
    for (const Control* Item : Window->Controls) {
      const Text Name = ControlName(*Item);
      EXPECT_EQ(Placed.count(Item), 1U) << Name;
      const bool Labelled = Before != nullptr && Before->Kind == ControlKind::Label;
      EXPECT_TRUE(!Item->Caption.empty() || !Item->AccessibleName.empty() || Labelled || Name == "frmSelect.Label1" ||
                  Name == "frmSelect.Label2")
          << Name << " does not say what it is";
      if (Item->Kind == ControlKind::CommandButton) {
        ++Buttons;
        Defaults += static_cast<const CommandButton*>(Item)->IsDefault ? 1 : 0;
        Cancels += static_cast<const CommandButton*>(Item)->IsCancel ? 1 : 0;
      }
      Before = Item;
    }
    EXPECT_EQ(Placed.size(), Window->Controls.size()) << Window->Name;
    // The plot has no buttons: closing its window hides it.
    EXPECT_EQ(Defaults, Buttons > 0 ? 1 : 0) << Window->Name;
    EXPECT_EQ(Cancels, Buttons > 0 ? 1 : 0) << Window->Name;
  }
  EXPECT_GE(NumDialogs, 8);
}

}  // namespace
}  // namespace zelvanor::test
