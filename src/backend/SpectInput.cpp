#include "backend/SpectInput.h"

#include <vector>

#include "basic/Numbers.h"
#include "platform/TextFiles.h"
#include "settings/SettingsState.h"
#include "setup/ReferenceShieldings.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

// Nuclei that are not observed stand this many ppm apart, beyond SpectrumSpan.
constexpr Double OutOfRangeStep = 100.0;

// Duplicate members of an equivalent set have degeneracy 0; its first member has the set's size.
int FindDegeneracy(int Atom) {
  int Degeneracy = 1;
  for (int Set = 0; Set < NumSavedSets; ++Set) {
    const int Size = W.EquivalentSetSize[Set];
    for (int Member = 0; Member < Size; ++Member) {
      if (W.EquivalentAtom(Set, Member) != W.NMRAtom[Atom]) continue;
      if (Member > 0) return 0;
      Degeneracy = Size;
      break;
    }
  }
  return Degeneracy;
}

std::vector<SpinSite> BuildSites() {
  std::vector<SpinSite> Sites;
  int OutOfRange = 0;
  for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
    const int Degeneracy = FindDegeneracy(Atom);
    if (Degeneracy == 0) continue;
    Double Shift = W.ChemicalShift[Atom];
    if (!IsSet(W.NMRAtomSpinHalf[Atom])) Shift = W.SpectrumSpan + OutOfRangeStep * OutOfRange++;
    Sites.push_back({Atom, Degeneracy, Shift});
  }
  return Sites;
}

// Only the sites with a counted spin, which the file holds.
std::vector<SpinSite> KeepCounted(const std::vector<SpinSite>& All) {
  std::vector<SpinSite> Kept;
  W.NumSpinHalfNMRAtoms = 0;
  for (const SpinSite& Each : All) {
    if (!IsSet(W.NMRPairSpinHalf(Each.Atom, Each.Atom))) continue;
    Kept.push_back(Each);
    W.NumSpinHalfNMRAtoms += Each.Degeneracy;
  }
  return Kept;
}

void Print(TextView Line) { PrintLine(LineWork.FileNumber, Line); }

void PrintSiteCounts(const std::vector<SpinSite>& Sites) {
  Text Line;
  for (const SpinSite& Each : Sites) Line += Join(W.NMRAtomicNumber[Each.Atom], " ");
  Line += ' ';
  for (const SpinSite& Each : Sites) Line += Join(Long{Each.Degeneracy}, " ");
  Print(Line + " ");
}

void PrintCouplings(const std::vector<SpinSite>& Sites) {
  for (const SpinSite& Row : Sites) {
    Text Line;
    for (const SpinSite& Column : Sites) {
      if (!Line.empty()) Line += ' ';
      // Both sites have a counted spin, so their pair has.
      Line += FormatNumber(W.Coupling(Row.Atom, Column.Atom), "0.000");
    }
    Print(Line);
  }
}

void WriteSites(const std::vector<SpinSite>& Sites) {
  Print(W.ParamDescription);
  Print(PrintForm(static_cast<Long>(Sites.size())));
  PrintSiteCounts(Sites);
  Print("FIELD");
  Print(PrintForm(W.NMRFrequency));
  Print("SHIELDING");
  if (!Sites.empty()) {
    Text Line;
    for (const SpinSite& Each : Sites) Line += (Line.empty() ? "" : " ") + FormatNumber(Each.Shift, "0.000");
    Print(Line);
  }
  Print("COUPLING");
  PrintCouplings(Sites);
  Print("MINIMALINTENSITY");
  Print(FormatNumber(W.MinimalIntensity, "0.00000"));
  Print("WEAKCOUPLINGAPPROXIMATION");
  Print(IsSet(W.WeakCouplingApproximation) ? "1" : "0");
}

bool AnyObserved() {
  for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
    if (IsSet(W.NMRAtomSpinHalf[Atom])) return true;
  }
  return false;
}

void WarnOfNoObserved() {
  const Text& Name = W.ReferenceElementName[W.SpectraType];
  ShowWarning(Join(Name,
                   " is not present in the current NMR atom selection.  Please make sure that the current NMR atoms "
                   "include ",
                   Name, "."));
}

}  // namespace

std::vector<int> FindSiteOfAtoms() {
  std::vector<int> Sites;
  std::vector<int> SiteOfSet(NumSavedSets);
  int Count = 0;
  for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
    if (!HasCountedSpin(W.NMRAtomicNumber[Atom], IsLabelled(W.NMRAtom[Atom]))) {
      Sites.push_back(0);
      continue;
    }
    int Own = -1;
    for (int Set = 0; Set < NumSavedSets && Own < 0; ++Set) {
      for (int Member = 0; Member < W.EquivalentSetSize[Set]; ++Member) {
        if (W.EquivalentAtom(Set, Member) == W.NMRAtom[Atom]) Own = Set;
      }
    }
    int& Site = Own < 0 ? Count : SiteOfSet[static_cast<std::size_t>(Own)];
    if (Own < 0 || Site == 0) {
      ++Count;
      Site = Count;
    }
    Sites.push_back(Site);
  }
  return Sites;
}

Flag FindSpinHalfNuclei() {
  try {
    FillReferenceElements();
    W.NMRAtomSpinHalf.ReDim(W.NumNMRAtoms);
    W.NMRPairSpinHalf.ReDim(W.NumNMRAtoms, W.NumNMRAtoms);
    std::vector<bool> Counted;
    for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
      const bool Labelled = IsLabelled(W.NMRAtom[Atom]);
      const int Element = W.NMRAtomicNumber[Atom];
      W.NMRAtomSpinHalf[Atom] = ToFlag(IsObservedNucleus(Element, Labelled, W.SpectraType));
      Counted.push_back(HasCountedSpin(Element, Labelled));
    }
    for (int Row = 0; Row < W.NumNMRAtoms; ++Row) {
      const std::span<Flag> Flags = W.NMRPairSpinHalf.Row(Row);
      for (std::size_t Column = 0; Column < Counted.size(); ++Column) {
        Flags[Column] = ToFlag(Counted[static_cast<std::size_t>(Row)] && Counted[Column]);
      }
    }
    return True;
  } catch (const Failure&) {
    ShowWarning("Error ocurred when selecting the type of NMR spectrum.");
    return False;
  }
}

std::vector<SpinSite> FindSpinSites() {
  if (!IsSet(FindSpinHalfNuclei())) throw Failure("the observed nuclei could not be told");
  ComputeChemicalShifts();
  return KeepCounted(BuildSites());
}

Flag WriteSpectInput(const Text& Path) {
  bool Written = false;
  bool Observed = false;
  try {
    if (IsSet(FindSpinHalfNuclei())) {
      LineWork.FileNumber = FreeFile();
      OpenForOutput(Path, LineWork.FileNumber);
      ComputeChemicalShifts();
      WriteSites(KeepCounted(BuildSites()));
      CloseFile(LineWork.FileNumber);
      Observed = AnyObserved();
      if (!Observed) WarnOfNoObserved();
      Written = true;
    }
  } catch (const Failure&) {
    CloseFileQuietly(LineWork.FileNumber);
  }
  if (!Written) ShowWarning(Join("Error writing the file ", Settings.SpectInputFile, "."));
  CountSpinHalfAtoms();
  return ToFlag(Observed);
}

}  // namespace zelvanor
