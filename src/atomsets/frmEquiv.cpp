#include "atomsets/frmEquiv.h"

#include <array>

#include "atomsets/AtomSets.h"
#include "atomsets/Equivalence.h"
#include "platform/Form.h"
#include "platform/Variables.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr int MostMembers = 20;                // of a set that is applied
constexpr int MemberPlaces = MostMembers + 1;  // in the list: one too many is refused by Apply, not by Add

struct EquivalentForm {
  Form frmEquiv{"frmEquiv"};
  Label Label1{&frmEquiv, "Label1"};
  ListBox List1{&frmEquiv, "List1", true};
  CommandButton Command2{&frmEquiv, "Command2"};
  CommandButton Command3{&frmEquiv, "Command3"};
  Label Label3{&frmEquiv, "Label3"};
  TextField Text1{&frmEquiv, "Text1"};
  CommandButton Command8{&frmEquiv, "Command8"};
  CommandButton Command7{&frmEquiv, "Command7"};
  Label Label2{&frmEquiv, "Label2"};
  ListBox List2{&frmEquiv, "List2", true};
  CommandButton Command5{&frmEquiv, "Command5"};
  CommandButton Command6{&frmEquiv, "Command6"};
  CommandButton Command9{&frmEquiv, "Command9"};
  CommandButton Command4{&frmEquiv, "Command4"};
  CommandButton Command1{&frmEquiv, "Command1"};

  // What is seen goes to the applied sets by Apply, and they to the Workspace by OK.
  Integer CurrentSet;    // from 0
  Integer WorkSetCount;  // sets reached so far, at least 1
  Array<Integer> WorkSetSize{NumSavedSets - 1};
  Array2<Integer> WorkEquivalentAtom{10, 20};
  Array<Integer> WorkMember{MemberPlaces - 1};
  Integer WorkMemberCount;
};

EquivalentForm Dialog;

Integer& AppliedSize() { return Dialog.WorkSetSize[Dialog.CurrentSet]; }

void ShowMembers() { FillAtomList(Dialog.List2, Dialog.WorkMember, Dialog.WorkMemberCount); }

void ShowSetNumber() { SetText(Dialog.Text1, GeneralForm(Dialog.CurrentSet + 1)); }

void LoadAppliedSet() {
  Dialog.WorkMemberCount = AppliedSize();
  for (int Member = 0; Member < Dialog.WorkMemberCount; ++Member) {
    Dialog.WorkMember[Member] = Dialog.WorkEquivalentAtom(Dialog.CurrentSet, Member);
  }
  ShowMembers();
}

void Form_Activate() {
  try {
    SetItems(Dialog.List2, {});
    SetText(Dialog.Text1, "1");
    FillAtomList(Dialog.List1, W.NMRAtom, W.NumNMRAtoms);
    Dialog.CurrentSet = 0;
    Dialog.WorkSetCount = W.NumEquivalentSets == 0 ? Integer(1) : W.NumEquivalentSets;
    for (int Set = 0; Set < NumSavedSets; ++Set) {
      Dialog.WorkSetSize[Set] = W.EquivalentSetSize[Set];
      for (int Member = 0; Member < Dialog.WorkSetSize[Set]; ++Member) {
        Dialog.WorkEquivalentAtom(Set, Member) = W.EquivalentAtom(Set, Member);
      }
    }
    LoadAppliedSet();
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
  }
}

void WarnOfTooMany() { ShowWarning(Join("Too many equivalent atoms in the same set.  Limit is ", Long{MostMembers})); }

// Add
void Command2_Click() {
  const std::vector<int> Rows = SelectedRows(Dialog.List1);
  if (static_cast<int>(Rows.size()) > MostMembers) {
    return ShowWarning(Join("The number of selected equivalent atoms (", static_cast<Long>(Rows.size()),
                            ") for the current set is greater than the maximum number (", Long{MostMembers},
                            ") Zelvanor can handle."));
  }
  AtomNumbers Present = NumbersIn(Dialog.WorkMember, Dialog.WorkMemberCount);
  std::vector<Text> Added;
  bool TooMany = false;
  for (const int Row : Rows) {
    const Integer Number = W.NMRAtom[Row];
    if (Present.contains(Number)) continue;
    TooMany = Dialog.WorkMemberCount == MemberPlaces;
    if (TooMany) break;
    Present.insert(Number);
    Dialog.WorkMember[Dialog.WorkMemberCount] = Number;
    ++Dialog.WorkMemberCount;
    Added.push_back(Dialog.List1.Items[static_cast<std::size_t>(Row)]);
  }
  AppendItems(Dialog.List2, Added);
  if (TooMany) WarnOfTooMany();
}

// Delete
void Command3_Click() {
  DropSelectedEntries(Dialog.List2, Dialog.WorkMember, Dialog.WorkMemberCount);
  ShowMembers();
}

// Reset
void Command5_Click() {
  Dialog.WorkMemberCount = 0;
  SetItems(Dialog.List2, {});
}

// False: the set is too large, which has been shown.
bool Apply() {
  if (Dialog.WorkMemberCount > MostMembers) {
    WarnOfTooMany();
    return false;
  }
  AppliedSize() = Dialog.WorkMemberCount;
  for (int Member = 0; Member < Dialog.WorkMemberCount; ++Member) {
    Dialog.WorkEquivalentAtom(Dialog.CurrentSet, Member) = Dialog.WorkMember[Member];
  }
  return true;
}

// How what is seen stands to the applied set.
enum class Edit { None, NothingYet, SetUp, Changed, Deleted };

Edit FindEdit() {
  const int Size = AppliedSize();
  if (Dialog.WorkMemberCount == 0) return Size == 0 ? Edit::NothingYet : Edit::Deleted;
  if (Size == 0) return Edit::SetUp;
  if (Size != Dialog.WorkMemberCount) return Edit::Changed;
  // The order does not count.
  const AtomNumbers Members = NumbersIn(Dialog.WorkMember, Dialog.WorkMemberCount);
  for (int Member = 0; Member < Size; ++Member) {
    if (!Members.contains(Dialog.WorkEquivalentAtom(Dialog.CurrentSet, Member))) return Edit::Changed;
  }
  return Edit::None;
}

// Offers to apply a pending edit. False: a set that is too large keeps the user where it can be mended.
bool OfferApply(const char* Question) { return AskYesNo(Question) != BoxAnswer::Yes || Apply(); }

constexpr const char* SetUpQuestion = "The current set of equivalent atoms has been set up, would you like to save it?";
constexpr const char* ChangedQuestion =
    "The current set of equivalent atoms has been changed, would you like to save the changes?";

// Previous
void Command8_Click() {
  if (Dialog.CurrentSet == 0) return;
  switch (FindEdit()) {
    case Edit::Deleted:
      if (!OfferApply("You have deleted the equivalent atoms of the current set, would you like to commit it?")) return;
      break;
    case Edit::SetUp:
      if (!OfferApply(SetUpQuestion)) return;
      break;
    case Edit::Changed:
      if (!OfferApply(ChangedQuestion)) return;
      break;
    default:
      break;
  }
  --Dialog.CurrentSet;
  ShowSetNumber();
  LoadAppliedSet();
}

// False: the user stays on this set.
bool SettleBeforeNext() {
  switch (FindEdit()) {
    case Edit::SetUp:
      return OfferApply(SetUpQuestion);
    case Edit::NothingYet:
      if (AskYesNo("You haven't set up the current set of equivalent atoms, would you like to continue?") ==
          BoxAnswer::Yes) {
        return true;
      }
      SetFocus(Dialog.List1);
      return false;
    case Edit::Changed:
      return OfferApply(ChangedQuestion);
    case Edit::Deleted:
      return OfferApply("You have deleted the current set of equivalent atoms, would you like to commit it?");
    default:
      return true;
  }
}

// Next
void Command7_Click() {
  if (Dialog.CurrentSet == NumSavedSets - 1 || !SettleBeforeNext()) return;
  ++Dialog.CurrentSet;
  // A set that nobody has reached yet is empty, unless the host has left a gap before it.
  if (Dialog.CurrentSet >= Dialog.WorkSetCount) ++Dialog.WorkSetCount;
  LoadAppliedSet();
  ShowSetNumber();
}

// False: the command ends, the dialog stays.
bool SettleBeforeLeaving() {
  Text Question;
  switch (FindEdit()) {
    case Edit::SetUp:
      Question = Join("You have selected some atoms for the equivalent-atom set ", Dialog.CurrentSet + 1,
                      ".  Would you like to save this change?");
      break;
    case Edit::Changed:
      Question = "The current set of equivalent atoms has been changed, would you like to save the change?";
      break;
    case Edit::Deleted:
      return OfferApply(
          "You have deleted the equivalent atoms for the current set, would you like to commit this change?");
    default:
      return true;
  }
  const BoxAnswer Answer = AskYesNoCancel(Question);
  return Answer == BoxAnswer::No || (Answer == BoxAnswer::Yes && Apply());
}

// Warns of the first member of set A that stands in set B as well.
bool ShareAtom(int A, int B) {
  for (int J = 0; J < Dialog.WorkSetSize[A]; ++J) {
    for (int K = 0; K < Dialog.WorkSetSize[B]; ++K) {
      if (Dialog.WorkEquivalentAtom(A, J) != Dialog.WorkEquivalentAtom(B, K)) continue;
      ShowWarning(Join("Atom ", Long{J + 1}, " in equivalent set ", Long{A + 1}, " is identical to atom ", Long{K + 1},
                       " in equivalent set ", Long{B + 1}, "."));
      return true;
    }
  }
  return false;
}

bool AnyAtomInTwoSets() {
  for (int A = 0; A < NumSavedSets; ++A) {
    for (int B = A + 1; B < NumSavedSets; ++B) {
      if (ShareAtom(A, B)) return true;
    }
  }
  return false;
}

// Takes a value over; a difference makes stage 1 stale, at whose end results are averaged over the sets.
void Take(Integer& Target, Integer Value) {
  if (Target == Value) return;
  W.DocumentDirty = W.ParamResultsStale = True;
  Target = Value;
}

// OK
void Command4_Click() {
  if (!SettleBeforeLeaving() || AnyAtomInTwoSets()) return;
  W.NumEquivalentSets = Dialog.WorkSetCount;
  for (int Set = 0; Set < NumSavedSets; ++Set) Take(W.EquivalentSetSize[Set], Dialog.WorkSetSize[Set]);
  for (int Set = 0; Set < NumSavedSets; ++Set) {
    for (int Member = 0; Member < Dialog.WorkSetSize[Set]; ++Member) {
      Take(W.EquivalentAtom(Set, Member), Dialog.WorkEquivalentAtom(Set, Member));
    }
  }
  for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) StoreEntryText(W.NMRAtom[Atom]);
  HideForm(Dialog.frmEquiv);
}

// Find: from the bonds, in place of the sets there are.
void Command9_Click() {
  try {
    const std::vector<std::vector<int>> Sets = FindEquivalentSets(FindAtomClasses(), NumSavedSets);
    if (Sets.empty()) return ShowWarning("No NMR atoms are equivalent.");
    for (int Set = 0; Set < NumSavedSets; ++Set) Dialog.WorkSetSize[Set] = 0;
    Dialog.WorkSetCount = static_cast<int>(Sets.size());
    for (int Set = 0; Set < Dialog.WorkSetCount; ++Set) {
      const std::vector<int>& Members = Sets[static_cast<std::size_t>(Set)];
      Dialog.WorkSetSize[Set] = static_cast<int>(Members.size());
      for (int Member = 0; Member < Dialog.WorkSetSize[Set]; ++Member) {
        Dialog.WorkEquivalentAtom(Set, Member) = Members[static_cast<std::size_t>(Member)];
      }
    }
    Dialog.CurrentSet = 0;
    ShowSetNumber();
    LoadAppliedSet();
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
  }
}

void Command1_Click() { HideForm(Dialog.frmEquiv); }

void AddWorkVariables() {
  AddVariable("frmEquiv.CurrentSet", Dialog.CurrentSet);
  AddVariable("frmEquiv.WorkSetCount", Dialog.WorkSetCount);
  AddArray("frmEquiv.WorkSetSize", Dialog.WorkSetSize, [] { return NumSavedSets; });
  AddArray2(
      "frmEquiv.WorkEquivalentAtom", Dialog.WorkEquivalentAtom, [] { return NumSavedSets; },
      [](int Set) { return int(Dialog.WorkSetSize[Set]); });
  AddArray("frmEquiv.WorkMember", Dialog.WorkMember, [] { return int(Dialog.WorkMemberCount); });
  AddVariable("frmEquiv.WorkMemberCount", Dialog.WorkMemberCount);
}

}  // namespace

void BuildEquivalentForm() {
  auto& D = Dialog;
  D.frmEquiv.Caption = "Equivalent Atom Selection";
  D.Label1.Caption = "NMR Atoms";
  D.Label2.Caption = "Equivalent Atoms";
  D.Label3.Caption = "Set:";
  D.Text1.ReadOnly = True;
  SetUpButton(D.Command2, "&Add =>", Command2_Click);
  SetUpButton(D.Command3, "&Delete <=", Command3_Click);
  SetUpButton(D.Command8, "<", Command8_Click, "Previous set");
  SetUpButton(D.Command7, ">", Command7_Click, "Next set");
  SetUpButton(D.Command5, "&Reset", Command5_Click);
  SetUpButton(D.Command6, "A&pply", [] { Apply(); });
  SetUpButton(D.Command9, "&Find", Command9_Click, "Find equivalent atoms");
  SetUpOkAndCancel(D.Command4, "&OK", Command4_Click, D.Command1, Command1_Click);
  D.List1.EmptyHint = "There are no NMR atoms: choose them first.";
  D.List2.EmptyHint = "This set is empty: select equivalent atoms on the left, then Add.";
  D.frmEquiv.Activate = Form_Activate;
  D.frmEquiv.Layout =
      ColumnOf({RowOf({ColumnOf({ItemOf(D.Label1), ItemOf(D.List1)}),
                       ColumnOf({StretchOf(), ItemOf(D.Command2), ItemOf(D.Command3), StretchOf(),
                                 RowOf({ItemOf(D.Label3), ItemOf(D.Text1)}),
                                 RowOf({ItemOf(D.Command8), ItemOf(D.Command7)}), StretchOf()}),
                       ColumnOf({ItemOf(D.Label2), ItemOf(D.List2), RowOf({ItemOf(D.Command5), ItemOf(D.Command6)})})}),
                RowOf({ItemOf(D.Command9), StretchOf(), ItemOf(D.Command4), ItemOf(D.Command1)})});
  AddWorkVariables();
}

void ShowEquivalentSets() {
  AtomSets.AtomSetMode = EquivalentMode;
  ShowModal(Dialog.frmEquiv);
}

}  // namespace zelvanor
