#include "atomsets/AtomSetChecks.h"

#include <vector>

#include "atomsets/AtomSets.h"
#include "shell/MainForm.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

void MarkChanged(Flag& Stale) { W.DocumentDirty = Stale = True; }

// Takes over the count and the entries; any difference makes the document dirty and a stage stale. Returns the entries
// that changed.
std::vector<int> TakeEntries(const WorkList& Work, Array<Integer>& Set, Integer& Count, Flag& Stale) {
  if (Work.Count != Count) {
    MarkChanged(Stale);
    Set.ReDim(Work.Count);
    Count = Work.Count;
  }
  std::vector<int> Changed;
  for (int Entry = 0; Entry < Count; ++Entry) {
    if (Set[Entry] == Work.Atom[Entry]) continue;
    Set[Entry] = Work.Atom[Entry];
    Changed.push_back(Entry);
  }
  if (!Changed.empty()) MarkChanged(Stale);
  return Changed;
}

// An atom as messages name it: the atom in its molecule, and the molecule.
Text PlaceOf(int AtomNumber) {
  return Join(W.AtomInMolecule[AtomNumber - 1], " in molecule ", W.AtomMolecule[AtomNumber - 1]);
}

void EnableSubsets(Flag Enabled) {
  if (AtomSets.EnableNMRSubsets) AtomSets.EnableNMRSubsets(Enabled);
}

// Later readers of the equivalent sets go by their sizes.
void ForgetEquivalentSets() {
  W.NumEquivalentSets = 0;
  for (int Set = 0; Set < NumSavedSets; ++Set) W.EquivalentSetSize[Set] = 0;
}

void ForgetLabelledAtoms() {
  W.NumLabelledAtoms = 0;
  W.LabelledAtom.ReDim(0);
}

// The number of the first NMR atom outside the quantum region; 0 when there is none.
int FindNMRAtomOutside() {
  const AtomNumbers Region = NumbersIn(W.QuantumAtom, W.NumQuantumAtoms);
  for (int Entry = 0; Entry < W.NumNMRAtoms; ++Entry) {
    if (!Region.contains(W.NMRAtom[Entry])) return W.NMRAtom[Entry];
  }
  return 0;
}

void RecreateNMRResults(int Count) {
  W.Coupling.ReDim(Count, Count);  // first: it is the one that may not find the memory
  W.NMRAtomicNumber.ReDim(Count);
  W.Shielding.ReDim(Count);
  W.ShieldingError.ReDim(Count);
  W.ChemicalShift.ReDim(Count);
}

// The sets go where one of their members is no NMR atom any more. The host may have left gaps between them.
void CheckEquivalentAtoms() {
  const AtomNumbers Members = NumbersIn(W.NMRAtom, W.NumNMRAtoms);
  for (int Set = 0; Set < NumSavedSets; ++Set) {
    for (int Member = 0; Member < W.EquivalentSetSize[Set]; ++Member) {
      const int Number = W.EquivalentAtom(Set, Member);
      if (Members.contains(Number)) continue;
      ShowWarning(Join("Equivalent atom ", PlaceOf(Number), " in equivalent set  ", Long{Set + 1},
                       " doesn't belong to the NMR atoms, please reset the equivalent atoms and/or the labelled "
                       "atoms."));
      ForgetEquivalentSets();
      ForgetLabelledAtoms();
      return;
    }
  }
}

}  // namespace

bool TakeQuantumAtoms(const WorkList& Work) {
  if (Work.Count == 0 && W.NumQuantumAtoms == 0) return true;
  TakeEntries(Work, W.QuantumAtom, W.NumQuantumAtoms, W.ParamResultsStale);
  if (const int Outside = FindNMRAtomOutside(); Outside != 0) {
    ShowWarning(Join("NMR atom ", PlaceOf(Outside),
                     " isn't in the region of the quantum atoms, please reset the NMR atoms and/or NMR equivalent "
                     "atoms and/or labelled atoms."));
    W.NumNMRAtoms = 0;
    W.NMRAtom.ReDim(0);
    ForgetLabelledAtoms();
    ForgetEquivalentSets();
    EnableSubsets(False);
  }
  return true;
}

bool TakeNMRAtoms(const WorkList& Work) {
  if (Work.Count == 0) {
    ShowWarning("No NMR atom selection yet. Please make an NMR atom selection.");
    return false;
  }
  if (Work.Count != W.NumNMRAtoms) {
    MarkChanged(W.ParamResultsStale);
    RecreateNMRResults(Work.Count);
  }
  for (const int Entry : TakeEntries(Work, W.NMRAtom, W.NumNMRAtoms, W.ParamResultsStale)) {
    W.NMRAtomicNumber[Entry] = ElementOfAtom(W.NMRAtom[Entry]);
  }
  EnableSubsets(True);
  if (W.NumQuantumAtoms != 0) {
    if (const int Outside = FindNMRAtomOutside(); Outside != 0) {
      ShowWarning(Join("Atom ", PlaceOf(Outside),
                       " is a NMR atom but not in the quantum atom region.  Please delete this atom from the NMR atom "
                       "region."));
      return false;
    }
  }
  for (MenuItem* Item : {&Main.mnuViewShielding, &Main.mnuViewCoupling, &Main.mnuFileSave, &Main.mnuFileSaveAs}) {
    SetEnabled(*Item, False);
  }
  CheckEquivalentAtoms();
  return true;
}

bool TakeLabelledAtoms(const WorkList& Work) {
  const AtomNumbers Labelled = NumbersIn(Work.Atom, Work.Count);
  for (int Set = 0; Set < NumSavedSets; ++Set) {
    const int Size = W.EquivalentSetSize[Set];
    int InSet = 0;
    for (int Member = 0; Member < Size; ++Member) InSet += Labelled.contains(W.EquivalentAtom(Set, Member)) ? 1 : 0;
    if (InSet > 0 && InSet != Size) {
      ShowError(Join("The atoms in Equivalent-Atom set ", Long{Set + 1}, " are only partly labelled."));
      return false;
    }
  }
  TakeEntries(Work, W.LabelledAtom, W.NumLabelledAtoms, W.SpectResultsStale);
  return true;
}

}  // namespace zelvanor
