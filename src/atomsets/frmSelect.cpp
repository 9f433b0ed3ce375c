#include "atomsets/frmSelect.h"

#include "atomsets/AtomSetChecks.h"
#include "atomsets/AtomSets.h"
#include "atomsets/frmSelect2.h"
#include "platform/Form.h"
#include "platform/Variables.h"
#include "shell/MainForm.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr int MostListedAtoms = 5440;

struct SelectForm {
  Form frmSelect{"frmSelect"};
  Label Label1{&frmSelect, "Label1"};
  ListBox List1{&frmSelect, "List1", true};
  CommandButton Command5{&frmSelect, "Command5"};
  CommandButton Command2{&frmSelect, "Command2"};
  CommandButton Command3{&frmSelect, "Command3"};
  Label Label2{&frmSelect, "Label2"};
  ListBox List2{&frmSelect, "List2", true};
  CommandButton Command6{&frmSelect, "Command6"};
  CommandButton Command4{&frmSelect, "Command4"};
  CommandButton Command1{&frmSelect, "Command1"};

  // What the user has made of each set; atom numbers.
  WorkList Quantum;
  WorkList NMR;
  WorkList Labelled;
};

SelectForm Dialog;

WorkList& WorkOfMode() {
  switch (AtomSets.AtomSetMode) {
    case QuantumMode:
      return Dialog.Quantum;
    case NMRMode:
      return Dialog.NMR;
    default:
      return Dialog.Labelled;
  }
}

// What List1 is made of; null: of all atoms.
const WorkList* Candidates() {
  if (AtomSets.AtomSetMode == LabelledMode) return &Dialog.NMR;
  return AtomSets.AtomSetMode == NMRMode && Dialog.Quantum.Count != 0 ? &Dialog.Quantum : nullptr;
}

// Without the places that the host has left without an atom.
void CopySet(WorkList& Work, const Array<Integer>& Set, Integer Count) {
  Work.Atom = Set;
  Work.Count = 0;
  for (int Entry = 0; Entry < Count; ++Entry) {
    if (Set[Entry] == 0) continue;
    Work.Atom[Work.Count] = Set[Entry];
    ++Work.Count;
  }
}

void ShowWork() {
  const WorkList& Work = WorkOfMode();
  FillAtomList(Dialog.List2, Work.Atom, Work.Count);
}

void ShowTexts() {
  struct ModeTexts {
    const char* Title;
    const char* Left;
    const char* Right;
    const char* SelectButton;
  };
  static constexpr ModeTexts Rows[] = {
      {"Quantum Atom Selection", "All Atoms", "Quantum Atoms", "&Select All"},
      {"NMR Atom Selection", "All Atoms", "NMR Atoms", "&Select ..."},
      {"Labelled Atom Selection", "NMR Atoms", "Labelled Atoms", "&Select All"},
  };
  const ModeTexts& Texts = Rows[AtomSets.AtomSetMode - 1];
  SetCaption(Dialog.frmSelect, Texts.Title);
  SetCaption(Dialog.Label1, AtomSets.AtomSetMode == NMRMode && W.NumQuantumAtoms != 0 ? "Quantum Atoms" : Texts.Left);
  SetCaption(Dialog.Label2, Texts.Right);
  SetCaption(Dialog.Command5, Texts.SelectButton);
}

// The list of all atoms is too long to be shown: atoms come in from the molecule view alone.
void RefuseAllAtoms() {
  SetEnabled(Dialog.Command5, False);
  SetEnabled(Dialog.Command2, False);
  Text Message = "The All Atoms list box cannot display more than 5440 atoms.";
  if (Main.NumSelectedAtoms == 0 || WorkOfMode().Count == 0) {
    Message += AtomSets.AtomSetMode == QuantumMode
                   ? "  Please make a quantum atom selection on the workspace of Zelvanor first and then reopen this "
                     "dialog box, Zelvanor will load the selection to the Quantum Atom list box."
                   : "  Please specify the quantum atoms first.";
  }
  ShowWarning(Message);
}

void FillCandidates() {
  if (const WorkList* Source = Candidates()) {
    FillAtomList(Dialog.List1, Source->Atom, Source->Count);
  } else if (CountListedAtoms() <= MostListedAtoms) {
    FillWithAllAtoms(Dialog.List1);
  } else {
    RefuseAllAtoms();
  }
}

bool SelectionIsIn(const WorkList& Work) {
  if (Main.NumSelectedAtoms != Work.Count) return false;
  AtomNumbers Selected;
  for (int Entry = 0; Entry < Main.NumSelectedAtoms; ++Entry) Selected.insert(Main.SelectedAtom[Entry] + 1);
  for (int Entry = 0; Entry < Work.Count; ++Entry) {
    if (!Selected.contains(Work.Atom[Entry])) return false;
  }
  return true;
}

// The atoms selected in the molecule view are offered as the new set.
void TakeMoleculeSelection() {
  WorkList& Work = WorkOfMode();
  if (Main.NumSelectedAtoms == 0) return;
  if (Work.Count != 0) {
    if (SelectionIsIn(Work)) return;
    const char* Name = AtomSets.AtomSetMode == QuantumMode ? "quantum" : "NMR";
    if (AskYesNo(Join("Would you like to replace the previous ", Name, " atom selection by the current selection?")) !=
        BoxAnswer::Yes) {
      return;
    }
  }
  Work.Count = Main.NumSelectedAtoms;
  Work.Atom.ReDim(Work.Count);
  for (int Entry = 0; Entry < Work.Count; ++Entry) Work.Atom[Entry] = Main.SelectedAtom[Entry] + 1;
}

void Reload() {
  SetItems(Dialog.List1, {});
  SetItems(Dialog.List2, {});
  CopySet(Dialog.Quantum, W.QuantumAtom, W.NumQuantumAtoms);
  CopySet(Dialog.NMR, W.NMRAtom, W.NumNMRAtoms);
  CopySet(Dialog.Labelled, W.LabelledAtom, W.NumLabelledAtoms);
  SetEnabled(Dialog.Command5, True);
  SetEnabled(Dialog.Command2, True);
  ShowTexts();
  FillCandidates();
  if (AtomSets.AtomSetMode != LabelledMode) TakeMoleculeSelection();
  ShowWork();
}

void Form_Activate() {
  if (!IsSet(AtomSets.AtomSetDialogReload)) return;
  try {
    Reload();
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
  }
}

// Add
void Command2_Click() {
  WorkList& Work = WorkOfMode();
  const WorkList* Source = Candidates();
  AtomNumbers Present = NumbersIn(Work.Atom, Work.Count);
  std::vector<Text> Added;
  for (const int Row : SelectedRows(Dialog.List1)) {
    const Integer Number = Source == nullptr ? Integer(Row + 1) : Source->Atom[Row];
    if (!Present.insert(Number).second) continue;
    ++Work.Count;
    Work.Atom.ReDimPreserve(Work.Count);
    Work.Atom[Work.Count - 1] = Number;
    Added.push_back(Dialog.List1.Items[static_cast<std::size_t>(Row)]);
  }
  AppendItems(Dialog.List2, Added);
}

// Delete
void Command3_Click() {
  WorkList& Work = WorkOfMode();
  DropSelectedEntries(Dialog.List2, Work.Atom, Work.Count);
  ShowWork();
}

void SelectByElement() {
  ShowElementChoice();
  if (!IsSet(AtomSets.ElementChoiceAccepted)) return;
  const bool InQuantumRegion = W.NumQuantumAtoms != 0;
  const int All = NumElementChoices - 1;
  std::vector<bool> Rows(Dialog.List1.Items.size());
  for (std::size_t Row = 0; Row < Rows.size(); ++Row) {
    const int Place = static_cast<int>(Row);
    const int Choice = ReferenceEntryOf(ElementOfAtom(InQuantumRegion ? int(W.QuantumAtom[Place]) : Place + 1));
    Rows[Row] = AtomSets.ElementChoice[All] != 0 || (Choice < All && AtomSets.ElementChoice[Choice] != 0);
  }
  SetSelection(Dialog.List1, std::move(Rows));
}

void Command5_Click() {
  if (AtomSets.AtomSetMode == NMRMode) return SelectByElement();
  SetSelection(Dialog.List1, std::vector<bool>(Dialog.List1.Items.size(), true));
}

// Reset
void Command6_Click() {
  WorkOfMode() = WorkList();
  SetItems(Dialog.List2, {});
}

// The lists' texts go to the atom table.
void StoreListedTexts() {
  const WorkList& Work = WorkOfMode();
  for (int Entry = 0; Entry < Work.Count; ++Entry) StoreEntryText(Work.Atom[Entry]);
  const WorkList* Source = Candidates();
  for (int Row = 0; Row < static_cast<int>(Dialog.List1.Items.size()); ++Row) {
    StoreEntryText(Source == nullptr ? Row + 1 : int(Source->Atom[Row]));
  }
}

// OK
void Command4_Click() {
  try {
    bool Done = false;
    switch (AtomSets.AtomSetMode) {
      case QuantumMode:
        Done = TakeQuantumAtoms(Dialog.Quantum);
        break;
      case NMRMode:
        Done = TakeNMRAtoms(Dialog.NMR);
        break;
      default:
        Done = TakeLabelledAtoms(Dialog.Labelled);
    }
    if (!Done) return;
    StoreListedTexts();
    WorkOfMode() = WorkList();
    HideForm(Dialog.frmSelect);
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
  }
}

void Command1_Click() { HideForm(Dialog.frmSelect); }

void AddWorkVariables() {
  const auto Add = [](const Text& Name, WorkList& Work) {
    AddArray("frmSelect.Work" + Name + "Atom", Work.Atom, [&Work] { return int(Work.Count); });
    AddVariable("frmSelect.Work" + Name + "Count", Work.Count);
  };
  Add("Quantum", Dialog.Quantum);
  Add("NMR", Dialog.NMR);
  Add("Labelled", Dialog.Labelled);
}

}  // namespace

void BuildAtomSetForm() {
  auto& D = Dialog;
  SetUpButton(D.Command5, "&Select All", Command5_Click);
  SetUpButton(D.Command2, "&Add =>", Command2_Click);
  SetUpButton(D.Command3, "&Delete <=", Command3_Click);
  SetUpButton(D.Command6, "&Reset", Command6_Click);
  SetUpOkAndCancel(D.Command4, "&OK", Command4_Click, D.Command1, Command1_Click);
  D.List1.EmptyHint = "There are no atoms to choose from: open a molecule first.";
  D.List2.EmptyHint = "None yet: select atoms on the left, then Add.";
  D.frmSelect.Activate = Form_Activate;
  D.frmSelect.Layout = ColumnOf({RowOf({ColumnOf({ItemOf(D.Label1), ItemOf(D.List1), ItemOf(D.Command5)}),
                                        ColumnOf({StretchOf(), ItemOf(D.Command2), ItemOf(D.Command3), StretchOf()}),
                                        ColumnOf({ItemOf(D.Label2), ItemOf(D.List2), ItemOf(D.Command6)})}),
                                 RowOf({StretchOf(), ItemOf(D.Command4), ItemOf(D.Command1)})});
  AddWorkVariables();
}

void ShowAtomSets(int Mode) {
  AtomSets.AtomSetMode = Mode;
  ShowTexts();  // the title has to be there when the window opens
  ShowModal(Dialog.frmSelect);
}

}  // namespace zelvanor
