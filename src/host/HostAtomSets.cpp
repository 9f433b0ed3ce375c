#include "host/HostAtomSets.h"

#include <algorithm>
#include <set>

#include "basic/Numbers.h"
#include "host/HostConversation.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr const char* QuantumName = "quantum-atoms";
constexpr const char* NMRName = "nmr-atoms";
constexpr const char* LabelledName = "labelled-atoms";
constexpr TextView EquivalentPrefix = "equivalent-atoms-";
// More atoms than this and the host's set is not taken.
constexpr Double LargestSet = 20.0;

// An atom as the host names it; both numbers count from 1.
struct HostAtom {
  Integer Atom;
  Integer Molecule;
};

Double RequestNumber(const Text& Item) { return PrefixNumber(HostRequest(Item)); }

Text RequestSelectionName(Long Number) { return HostRequest(Join("named-selection-name ", Number)); }

// Walks the names up to the first that fits.
bool FindSelection(Long NumSelections, TextView Name) {
  for (Long Number = 1; Number <= NumSelections; ++Number) {
    if (RequestSelectionName(Number) == Name) return true;
  }
  return false;
}

void SelectInHost(TextView Name) {
  HostExecute("[select-none]");
  HostExecute(Join("[select-name ", Name, "]"));
}

// Place counts from 1.
HostAtom ReadSelectedAtom(Long Place) {
  const Text Reply = HostRequest(Join("selected-atom ", Place));
  const std::size_t Comma = Reply.find(',');
  if (Comma == Text::npos) throw Failure("The answer of Morvantis is no atom");
  return {ToInteger(PrefixNumber(TextView(Reply).substr(0, Comma))),
          ToInteger(PrefixNumber(TrimLeftBlanks(TextView(Reply).substr(Comma + 1))))};
}

Integer GlobalNumber(const HostAtom& Atom) {
  Integer Number = Atom.Atom;
  for (int Molecule = 0; Molecule <= Atom.Molecule - 2; ++Molecule) Number += W.MoleculeAtomCount[Molecule];
  return Number;
}

// The quantum or the labelled atoms.
void ReadPlainSet(Long NumSelections, TextView Name, Integer& Count, Array<Integer>& Set) {
  Count = 0;
  if (!FindSelection(NumSelections, Name)) return;
  SelectInHost(Name);
  const Integer NumSelected = ToInteger(RequestNumber("selected-atom-count"));
  Set.ReDim(NumSelected);
  Count = NumSelected;
  for (int Place = 0; Place < Count; ++Place) Set[Place] = GlobalNumber(ReadSelectedAtom(Place + 1));
}

void ReadNMRAtoms(Long NumSelections) {
  W.NumNMRAtoms = 0;
  if (!FindSelection(NumSelections, NMRName)) return;
  SelectInHost(NMRName);
  const Integer NumSelected = ToInteger(RequestNumber("selected-atom-count"));
  const Integer NumTensorValues =
      TensorValues * NumSelected;  // too many atoms end here, before anything large is allocated
  if (NumTensorValues < 0) throw Failure(failures::Subscript);
  W.NMRAtom.ReDim(NumSelected);
  W.NMRAtomicNumber.ReDim(NumSelected);
  W.Shielding.ReDim(NumSelected);
  W.ShieldingError.ReDim(NumSelected);
  W.ChemicalShift.ReDim(NumSelected);
  W.Coupling.ReDim(NumSelected, NumSelected);
  W.NumNMRAtoms = NumSelected;
  for (int Place = 0; Place < W.NumNMRAtoms; ++Place) {
    const HostAtom Atom = ReadSelectedAtom(Place + 1);
    W.NMRAtomicNumber[Place] = ToInteger(RequestNumber(Join("atomic-number ", Atom.Atom, " ", Atom.Molecule)));
    W.NMRAtom[Place] = GlobalNumber(Atom);
  }
}

bool IsNMRAtom(int AtomNumber) {
  const auto Atoms = W.NMRAtom.Span().first(static_cast<std::size_t>(int(W.NumNMRAtoms)));
  return std::find(Atoms.begin(), Atoms.end(), AtomNumber) != Atoms.end();
}

enum class SetOutcome { Taken, Dropped, ScanEnds };

// One of the selections for equivalent sets; the set's index comes from its name.
SetOutcome ReadEquivalentSet(const Text& Name) {
  const Double Place = PrefixNumber(TextView(Name).substr(EquivalentPrefix.size())) - 1.0;
  // A place just under ten would round to a set that no document holds.
  if (Place < 0.0 || Place >= NumSavedSets || RoundEven(Place) >= NumSavedSets) {
    ShowWarning(Join("Selection name ", Name, " is not a valid equivalent set name."));
    return SetOutcome::ScanEnds;
  }
  const Integer Set = ToInteger(Place);
  SelectInHost(Name);
  const Double NumSelected = RequestNumber("selected-atom-count");
  if (NumSelected > LargestSet) {
    ShowWarning(Join("Selection ", Name, " has too many atoms. Ignoring Set."));
    return SetOutcome::ScanEnds;
  }
  const Integer Size = ToInteger(NumSelected);
  for (int Member = 0; Member < Size; ++Member) {
    const Integer Atom = GlobalNumber(ReadSelectedAtom(Member + 1));
    if (!IsNMRAtom(Atom)) {
      ShowWarning(Join("Selection (", Name, ") contains atoms which are not NMR atoms.  Set ignored."));
      return SetOutcome::Dropped;
    }
    W.EquivalentAtom(Set, Member) = Atom;
  }
  W.EquivalentSetSize[Set] = Size;
  return SetOutcome::Taken;
}

void ReadEquivalentSets(Long NumSelections) {
  for (int Set = 0; Set < NumSavedSets; ++Set) W.EquivalentSetSize[Set] = 0;
  W.NumEquivalentSets = 0;
  Integer NumTaken = 0;
  std::set<Text> Seen;  // of two selections with one name the first counts
  for (Long Number = 1; Number <= NumSelections; ++Number) {
    const Text Name = RequestSelectionName(Number);
    if (!Name.starts_with(EquivalentPrefix) || !Seen.insert(Name).second) continue;
    const SetOutcome Outcome = ReadEquivalentSet(Name);
    if (Outcome == SetOutcome::ScanEnds) break;
    if (Outcome == SetOutcome::Taken) ++NumTaken;
  }
  W.NumEquivalentSets = NumTaken;
}

void ReadSets(Long NumSelections) {
  ReadPlainSet(NumSelections, QuantumName, W.NumQuantumAtoms, W.QuantumAtom);
  ReadNMRAtoms(NumSelections);
  ReadEquivalentSets(NumSelections);  // looks its members up among the NMR atoms
  ReadPlainSet(NumSelections, LabelledName, W.NumLabelledAtoms, W.LabelledAtom);
  W.NMRAtomsValid = ToFlag(W.NumNMRAtoms > 0);
}

void RestoreSelection(Long NumSelections) {
  for (Long Number = 1; Number <= NumSelections; ++Number) {
    if (RequestSelectionName(Number) == SavedSelection) SelectInHost(SavedSelection);
  }
}

}  // namespace

void GetHostAtomSets() {
  Long NumSelections = 0;
  bool AnyNamed = true;
  IgnoreFailure([&] {
    NumSelections = ToInteger(RequestNumber("named-selection-count"));  // names beyond number are no answer
    AnyNamed = NumSelections != 0;
    if (!AnyNamed) {
      ShowWarning(
          "Morvantis has no named selections.\r\r"
          "Select and name the atoms with nuclear spins as \"nmr-atoms\".");
      return;
    }
    ReadSets(NumSelections);
  });
  if (AnyNamed) RestoreSelection(NumSelections);
}

}  // namespace zelvanor
