#include "fuzz/Promises.h"

#include <vector>

#include "platform/TextFiles.h"
#include "shell/MainForm.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor::fuzz {

namespace {

WorkspaceState& W = Workspace;

constexpr int NumSets = 21;  // those of the array
constexpr int LargestSet = 21;
constexpr int LargestResultCount = 2340;

struct Promise {
  const char* Words;
  bool Holds;
};

template <class... Arrays>
bool HoldAll(int Count, const Arrays&... All) {
  return ((All.UpperBound() >= Count) && ...);
}

bool AreFlags() {
  for (const Flag Value :
       {W.MoleculeLoaded, W.NMRAtomsValid, W.ShieldingAvailable, W.CouplingAvailable, W.SpectraAvailable,
        W.DocumentDirty, W.ParamResultsStale, W.SpectResultsStale, W.AtomTypesChanged, Main.IsBusy}) {
    if (Value != True && Value != False) return false;
  }
  return true;
}

bool AreSetsWhole() {
  for (int Set = 0; Set < NumSets; ++Set) {
    if (W.EquivalentSetSize[Set] < 0 || W.EquivalentSetSize[Set] > LargestSet) return false;
  }
  return W.NumEquivalentSets >= 0 && W.NumEquivalentSets <= NumSets;
}

// An indented atom line, which is not counted, may take the spare last element.
bool IsTableLongEnough() {
  const int Last = W.NumAtoms - 1;
  return W.NumAtoms >= 0 &&
         HoldAll(Last, W.AtomNumber, W.AtomName, W.AtomicNumber, W.AtomElement, W.AtomType, W.AtomFlags, W.AtomCharge,
                 W.AtomX, W.AtomY, W.AtomZ, W.AtomCoordination, W.AtomMolecule, W.AtomInMolecule) &&
         W.AtomNeighbour.UpperRow() >= Last && W.AtomNeighbour.UpperColumn() >= MaxCoordination &&
         W.AtomBondType.UpperRow() >= Last && W.AtomBondType.UpperColumn() >= MaxCoordination &&
         HoldAll(W.NumMolecules, W.MoleculeAtomCount);
}

// Bonds are checked within the molecules that the text has ended.
bool AreAtomsSound() {
  int Atom = 0;
  for (int Molecule = 0; Molecule < W.NumMolecules; ++Molecule) {
    const int First = Atom;
    const int End = First + W.MoleculeAtomCount[Molecule];
    if (End < First || End > W.AtomicNumber.UpperBound() + 1) return false;
    for (; Atom < End; ++Atom) {
      if (W.AtomicNumber[Atom] < 0 || W.AtomicNumber[Atom] > LargestElement) return false;
      if (W.AtomCoordination[Atom] < 0 || W.AtomCoordination[Atom] > MaxCoordination) return false;
      for (int N = 0; N < W.AtomCoordination[Atom]; ++N) {
        if (W.AtomNeighbour(Atom, N) < First || W.AtomNeighbour(Atom, N) >= End) return false;
      }
    }
  }
  return true;
}

}  // namespace

Text BrokenPromise() {
  const auto Where = [](Flag Declared, bool Holds) { return !IsSet(Declared) || Holds; };
  const int Count = W.NumNMRAtoms;
  const bool Table = IsTableLongEnough();
  const std::vector<Promise> Promises = {
      {"a flag is neither -1 nor 0", AreFlags()},
      {"a list of atoms is shorter than its count", HoldAll(Count, W.NMRAtom, W.NMRAtomicNumber) &&
                                                        HoldAll(W.NumQuantumAtoms, W.QuantumAtom) &&
                                                        HoldAll(W.NumLabelledAtoms, W.LabelledAtom)},
      {"an equivalent set is larger than its array", AreSetsWhole()},
      {"the host text is shorter than its count", W.HostTextLine.UpperBound() >= W.HostTextLineCount},
      {"the molecule has no whole atom table", Where(W.MoleculeLoaded, Table)},
      {"an atom of the molecule makes no sense", Where(W.MoleculeLoaded, Table && AreAtomsSound())},
      {"shieldings are declared that are not there",
       Where(W.ShieldingAvailable, Count <= LargestResultCount && HoldAll(Count, W.Shielding, W.ChemicalShift) &&
                                       HoldAll(TensorValues * Count, W.ShieldTensor))},
      {"couplings are declared that are not there",
       Where(W.CouplingAvailable, W.Coupling.UpperRow() >= Count && W.Coupling.UpperColumn() >= Count)},
      {"a spectrum is declared that is not there",
       Where(W.SpectraAvailable,
             HoldAll(W.PeakCount, W.PeakFrequency, W.PeakIntensity, W.PeakDegeneracy, W.PeakLineWidth))},
      {"a measured spectrum is declared that is not there",
       HoldAll(W.MeasuredCount, W.MeasuredPoint) && W.MeasuredCount >= 0 && W.MeasuredCount != 1},
      {"integrals are declared that are not there", HoldAll(W.IntegralCount, W.IntegralHigh, W.IntegralLow)},
      {"the program is still busy", Main.IsBusy == False},
      {"the menus are still off", Main.mnuHelp.Enabled == True && Main.mnuView.Enabled == True},
      {"a file is still open", FreeFile() == 1},
  };
  for (const Promise& Each : Promises) {
    if (!Each.Holds) return Each.Words;
  }
  return {};
}

}  // namespace zelvanor::fuzz
