#include "setup/NucleiCount.h"

#include <algorithm>
#include <unordered_set>

#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

void SetResultFlags(int Count) {
  if (Count >= 1) {
    // The values of the new table may be filled in by hand.
    W.SpectResultsStale = W.ShieldingAvailable = W.CouplingAvailable = W.DocumentDirty = True;
    return;
  }
  // With the values the spectrum goes that was made from them.
  W.ShieldingAvailable = W.CouplingAvailable = W.SpectraAvailable = False;
  if (W.ViewMode == SpectrumViewMode) W.ViewMode = MoleculeView;
}

// What is new is zero, the couplings are those of the atoms that stay.
void ResizeResults(int Old, Integer Count) {
  const Integer NumTensorValues = TensorValues * Count;  // too many atoms end here, before anything has changed
  Array2<Single> Resized(Count, Count);
  // Atoms that were chosen but never computed have no couplings yet.
  const int Known = std::min(W.Coupling.UpperRow(), W.Coupling.UpperColumn());
  const auto Kept = static_cast<std::size_t>(std::min({Old, int(Count), Known}));
  for (int Row = 0; Row < static_cast<int>(Kept); ++Row) {
    std::ranges::copy(W.Coupling.Row(Row).first(Kept), Resized.Row(Row).begin());
  }
  W.Coupling = std::move(Resized);
  W.NumNMRAtoms = Count;
  W.NMRAtom.ReDimPreserve(Count);
  W.NMRAtomicNumber.ReDimPreserve(Count);
  W.Shielding.ReDimPreserve(Count);
  W.ShieldingError.ReDimPreserve(Count);
  W.ChemicalShift.ReDimPreserve(Count);
  W.ShieldTensor.ReDimPreserve(NumTensorValues);
}

void ClearResults(int Atom) {
  W.Shielding[Atom] = 0;
  W.ShieldingError[Atom] = 0;
  const auto FirstValue = static_cast<std::size_t>(TensorValues) * static_cast<std::size_t>(Atom);
  std::ranges::fill(W.ShieldTensor.Span().subspan(FirstValue, TensorValues), 0.0F);
  std::ranges::fill(W.Coupling.Row(Atom), 0.0F);
  for (int Other = 0; Other < W.NumNMRAtoms; ++Other) W.Coupling(Other, Atom) = 0;
}

// The lowest atoms that are no NMR atoms yet, for the places From to End - 1.
void AssignFreeAtoms(int From, int End) {
  std::unordered_set<int> Used;
  for (int Place = 0; Place < From; ++Place) Used.insert(W.NMRAtom[Place]);
  int Free = 0;
  for (int Place = From; Place < End; ++Place) {
    while (Used.contains(Free + 1)) ++Free;
    W.NMRAtom[Place] = Free + 1;
    W.NMRAtomicNumber[Place] = W.AtomicNumber[Free];
    ClearResults(Place);
    ++Free;
  }
}

// An NMR atom lies in the quantum region where there is one.
void ExtendQuantumRegion() {
  std::unordered_set<int> Region;
  for (int Entry = 0; Entry < W.NumQuantumAtoms; ++Entry) Region.insert(W.QuantumAtom[Entry]);
  for (int Place = 0; Place < W.NumNMRAtoms; ++Place) {
    if (!Region.insert(W.NMRAtom[Place]).second) continue;
    ++W.NumQuantumAtoms;
    W.QuantumAtom.ReDimPreserve(W.NumQuantumAtoms);
    W.QuantumAtom[W.NumQuantumAtoms - 1] = W.NMRAtom[Place];
  }
}

// The atoms behind the last one of the system, all of the spectrum's element.
void MakeVirtualMolecule() {
  const int Element = W.ReferenceElement[W.SpectraType];
  const Text Symbol = ElementSymbol(Element);
  W.MoleculeAtomCount[W.NumMolecules] = W.NumNMRAtoms - W.NumAtoms;
  for (int Atom = W.NumAtoms; Atom < W.NumNMRAtoms; ++Atom) {
    W.NMRAtom[Atom] = Atom + 1;
    W.NMRAtomicNumber[Atom] = Element;
    W.AtomType[Atom] = TextView(Symbol);
    W.AtomElement[Atom] = TextView(Symbol);
    W.AtomInMolecule[Atom] = Atom - W.NumAtoms + 1;
    W.AtomMolecule[Atom] = W.NumMolecules + 1;
    ClearResults(Atom);
  }
}

}  // namespace

void ResizeNMRAtoms(Integer Count) {
  const int Old = W.NumNMRAtoms;
  ResizeResults(Old, Count);
  SetResultFlags(Count);
  if (W.NumAtoms < Count) ExtendForResults();
  if (Count <= Old) return;
  for (int Place = Old; Place < Count; ++Place) W.NMRAtom[Place] = 0;
  AssignFreeAtoms(Old, std::min<int>(Count, W.NumAtoms));
  if (Count > W.NumAtoms) {
    MakeVirtualMolecule();
  } else if (W.NumQuantumAtoms != 0) {
    ExtendQuantumRegion();
  }
}

void LabelHeavyNuclei() {
  W.NumLabelledAtoms = 0;
  W.LabelledAtom.ReDim(W.NumNMRAtoms);
  for (int Place = 0; Place < W.NumNMRAtoms; ++Place) {
    const int Element = W.NMRAtomicNumber[Place];
    if (Element != 6 && Element != 7) continue;
    W.LabelledAtom[W.NumLabelledAtoms] = W.NMRAtom[Place];
    ++W.NumLabelledAtoms;
  }
  W.LabelledAtom.ReDimPreserve(W.NumLabelledAtoms);
}

}  // namespace zelvanor
