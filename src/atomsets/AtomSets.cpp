#include "atomsets/AtomSets.h"

#include <algorithm>

#include "basic/TextTools.h"
#include "platform/Variables.h"
#include "workspace/Helpers.h"

namespace zelvanor {

AtomSetsState AtomSets;

namespace {
WorkspaceState& W = Workspace;

template <class Field>
Text ShownText(const Field& Value) {
  return UpperCase(TrimBlanks(Value.View()));
}
}  // namespace

int CountListedAtoms() { return std::max<int>(W.NumAtoms, W.NumNMRAtoms); }

Integer ElementOfAtom(int AtomNumber) {
  if (AtomNumber <= W.NumAtoms) return W.AtomicNumber[AtomNumber - 1];
  // A placeholder has its symbol alone.
  return ElementNumber(TrimBlanks(W.AtomElement[AtomNumber - 1].View()));
}

Text AtomEntryText(int AtomNumber) {
  if (AtomNumber == 0) return "(no atom)";  // the host ended in the middle of a set
  const int Atom = AtomNumber - 1;
  return Join("M ", W.AtomMolecule[Atom], " A ", W.AtomInMolecule[Atom], " ", ShownText(W.AtomElement[Atom]), " ",
              ShownText(W.AtomType[Atom]));
}

void StoreEntryText(int AtomNumber) {
  if (AtomNumber == 0) return;
  const int Atom = AtomNumber - 1;
  W.AtomElement[Atom] = TextView(ShownText(W.AtomElement[Atom]));
  W.AtomType[Atom] = TextView(ShownText(W.AtomType[Atom]));
}

void FillAtomList(ListBox& List, const Array<Integer>& Atoms, int Count) {
  std::vector<Text> Items;
  Items.reserve(static_cast<std::size_t>(std::max(Count, 0)));
  for (int Entry = 0; Entry < Count; ++Entry) Items.push_back(AtomEntryText(Atoms[Entry]));
  SetItems(List, std::move(Items));
}

void FillWithAllAtoms(ListBox& List) {
  std::vector<Text> Items;
  for (int Number = 1; Number <= CountListedAtoms(); ++Number) Items.push_back(AtomEntryText(Number));
  SetItems(List, std::move(Items));
}

std::vector<int> SelectedRows(const ListBox& List) {
  std::vector<int> Rows;
  for (std::size_t Row = 0; Row < List.Selected.size(); ++Row) {
    if (List.Selected[Row]) Rows.push_back(static_cast<int>(Row));
  }
  return Rows;
}

void DropSelectedEntries(const ListBox& List, Array<Integer>& Entries, Integer& Count) {
  int Kept = 0;
  for (int Entry = 0; Entry < Count; ++Entry) {
    const auto Row = static_cast<std::size_t>(Entry);
    if (Row < List.Selected.size() && List.Selected[Row]) continue;
    Entries[Kept++] = Entries[Entry];
  }
  Count = Kept;
}

AtomNumbers NumbersIn(const Array<Integer>& Atoms, int Count) {
  const auto Entries = Atoms.Span().first(static_cast<std::size_t>(std::clamp(Count, 0, Atoms.UpperBound() + 1)));
  return AtomNumbers(Entries.begin(), Entries.end());
}

void AddAtomSetVariables() {
  AddVariable("AtomSetMode", AtomSets.AtomSetMode);
  AddVariable("AtomSetDialogReload", AtomSets.AtomSetDialogReload);
  AddArray("ElementChoice", AtomSets.ElementChoice, [] { return NumElementChoices; });
  AddVariable("ElementChoiceAccepted", AtomSets.ElementChoiceAccepted);
}

}  // namespace zelvanor
