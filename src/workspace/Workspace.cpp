#include "workspace/Workspace.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "basic/Numbers.h"
#include "workspace/References.h"

namespace zelvanor {

WorkspaceState Workspace;

namespace {
constexpr std::array<int, 6> ReferenceNumbers = {1, 6, 7, 8, 9, 15};
// SpectrumSpan lies this many times farther out than the largest shift.
constexpr Double SpanFactor = 10000.0;
}  // namespace

void AllocateAtomTable(int NumAtoms) {
  WorkspaceState& W = Workspace;
  W.AtomNumber.ReDim(NumAtoms);
  W.AtomName.ReDim(NumAtoms);
  W.AtomicNumber.ReDim(NumAtoms);
  W.AtomElement.ReDim(NumAtoms);
  W.AtomType.ReDim(NumAtoms);
  W.AtomFlags.ReDim(NumAtoms);
  W.AtomCharge.ReDim(NumAtoms);
  W.AtomX.ReDim(NumAtoms);
  W.AtomY.ReDim(NumAtoms);
  W.AtomZ.ReDim(NumAtoms);
  W.AtomCoordination.ReDim(NumAtoms);
  W.AtomNeighbour.ReDim(NumAtoms, MaxCoordination);
  W.AtomBondType.ReDim(NumAtoms, MaxCoordination);
  W.AtomMolecule.ReDim(NumAtoms);
  W.AtomInMolecule.ReDim(NumAtoms);
}

void ClearWorkspace() {
  WorkspaceState& W = Workspace;
  W.NumAtoms = W.NumMolecules = W.NumQuantumAtoms = W.NumNMRAtoms = W.NumLabelledAtoms = W.NumEquivalentSets = 0;
  AllocateAtomTable(0);
  W.MoleculeAtomCount.ReDim(0);
  W.QuantumAtom.ReDim(0);
  W.NMRAtom.ReDim(0);
  W.LabelledAtom.ReDim(0);
  W.NMRAtomicNumber.ReDim(0);
  W.Shielding.ReDim(0);
  W.ShieldingError.ReDim(0);
  W.ChemicalShift.ReDim(0);
  W.Coupling.ReDim(0, 0);
  for (int Set = 0; Set < NumSavedSets; ++Set) W.EquivalentSetSize[Set] = 0;
  W.NumAssigned = 0;
  W.AssignedAtom.ReDim(0);
  W.AssignedShift.ReDim(0);
  W.ShieldingMethod.clear();
  W.NMRAtomsValid = W.ShieldingAvailable = W.CouplingAvailable = False;
  UseOwnReferences();
  ClearMeasured();
}

void ClearMeasured() {
  WorkspaceState& W = Workspace;
  W.MeasuredCount = 0;
  W.MeasuredPoint.ReDim(0);
  W.MeasuredFactor = 1;
  W.MeasuredFirst = W.MeasuredLast = W.MeasuredMHz = W.IntegralTotal = 0;
  W.IntegralCount = 0;
  for (Text* Words : {&W.MeasuredNucleus, &W.MeasuredSolvent, &W.MeasuredTitle}) Words->clear();
}

void ForgetShieldingError(int Place) {
  if (Place <= Workspace.ShieldingError.UpperBound()) Workspace.ShieldingError[Place] = 0;
}

void AllocateResults(Integer Count) {
  WorkspaceState& W = Workspace;
  const Integer TensorBound = TensorValues * Count;  // too many atoms end here, before anything large is allocated
  Array2<Single> Coupling(Count, Count);
  W.ShieldTensor.ReDim(TensorBound);
  W.Shielding.ReDim(Count);
  W.ShieldingError.ReDim(Count);
  W.ChemicalShift.ReDim(Count);
  W.Coupling = std::move(Coupling);
}

void AllocatePeaks(int NumPeaks) {
  WorkspaceState& W = Workspace;
  W.PeakFrequency.ReDim(NumPeaks);
  W.PeakIntensity.ReDim(NumPeaks);
  W.PeakDegeneracy.ReDim(NumPeaks);
  W.PeakLineWidth.ReDim(NumPeaks);
}

void ClearSpectrum() {
  AllocatePeaks(0);
  Workspace.PeakSiteLines = 0;
  Workspace.SpectraAvailable = False;
}

void ExtendForResults() {
  WorkspaceState& W = Workspace;
  // A table that is longer already, since lines of its text hold no whole atom, stays so.
  const auto Extend = [](int UpperBound, auto&... All) {
    (All.ReDimPreserve(std::max(All.UpperBound(), UpperBound)), ...);
  };
  Extend(W.NumNMRAtoms, W.AtomNumber, W.AtomName, W.AtomicNumber, W.AtomElement, W.AtomType, W.AtomInMolecule,
         W.AtomMolecule);
  Extend(W.NumMolecules + 1, W.MoleculeAtomCount);
}

bool IsLabelled(int AtomNumber) {
  for (int Place = 0; Place < Workspace.NumLabelledAtoms; ++Place) {
    if (Workspace.LabelledAtom[Place] == AtomNumber) return true;
  }
  return false;
}

int ReferenceEntryOf(int AtomicNumber) {
  return static_cast<int>(std::find(ReferenceNumbers.begin(), ReferenceNumbers.end(), AtomicNumber) -
                          ReferenceNumbers.begin());
}

void ComputeChemicalShifts() {
  WorkspaceState& W = Workspace;
  Double Largest = 1.0;
  for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
    const int Entry = ReferenceEntryOf(W.NMRAtomicNumber[Atom]);
    W.ChemicalShift[Atom] = ToSingle(Double{W.ReferenceShielding[Entry]} - W.Shielding[Atom]);
    Largest = std::max(Largest, std::fabs(Double{W.ChemicalShift[Atom]}));
  }
  const Double Sign = W.NMRFrequency < 0 ? -1.0 : 1.0;
  W.SpectrumSpan = ToLong(Largest * SpanFactor * Sign);
}

bool HasCountedSpin(int AtomicNumber, bool Labelled) {
  switch (AtomicNumber) {
    case 1:
      return !Labelled;
    case 6:
    case 7:
    case 8:
      return Labelled;
    default:
      return true;
  }
}

bool IsObservedNucleus(int AtomicNumber, bool Labelled, int SpectraType) {
  if (SpectraType < 0 || SpectraType >= static_cast<int>(ReferenceNumbers.size())) return false;
  return AtomicNumber == ReferenceNumbers[static_cast<std::size_t>(SpectraType)] &&
         HasCountedSpin(AtomicNumber, Labelled);
}

void CountSpinHalfAtoms() {
  WorkspaceState& W = Workspace;
  W.NumSpinHalfAtoms = W.NumNMRAtoms;
  if (W.SpectraType < 0 || W.SpectraType >= static_cast<int>(ReferenceNumbers.size())) return;
  W.NumSpinHalfAtoms = 0;
  for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
    if (IsObservedNucleus(W.NMRAtomicNumber[Atom], IsLabelled(W.NMRAtom[Atom]), W.SpectraType)) ++W.NumSpinHalfAtoms;
  }
}

}  // namespace zelvanor
