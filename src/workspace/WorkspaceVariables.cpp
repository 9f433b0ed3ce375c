#include "workspace/WorkspaceVariables.h"

#include <algorithm>

#include "platform/Variables.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

int CountAtoms() { return W.NumAtoms; }
// Some columns of the atom table run on over the placeholder atoms of a results-only document.
int CountListedAtoms() { return std::max<int>(W.NumAtoms, std::min<int>(W.NumNMRAtoms, W.AtomMolecule.UpperBound())); }
int CountNMRAtoms() { return W.NumNMRAtoms; }
int CountPeaks() { return W.SpectraAvailable != False ? W.PeakCount : 0; }

void AddCounts() {
  AddVariable("NumAtoms", W.NumAtoms);
  AddVariable("NumMolecules", W.NumMolecules);
  AddVariable("NumQuantumAtoms", W.NumQuantumAtoms);
  AddVariable("NumNMRAtoms", W.NumNMRAtoms);
  AddVariable("NumLabelledAtoms", W.NumLabelledAtoms);
  AddVariable("NumEquivalentSets", W.NumEquivalentSets);
}

void AddAtomTable() {
  AddArray("AtomNumber", W.AtomNumber, CountListedAtoms);
  AddArray("AtomName", W.AtomName, CountListedAtoms);
  AddArray("AtomicNumber", W.AtomicNumber, CountListedAtoms);
  AddArray("AtomElement", W.AtomElement, CountListedAtoms);
  AddArray("AtomType", W.AtomType, CountListedAtoms);
  AddArray("AtomFlags", W.AtomFlags, CountAtoms);
  AddArray("AtomCharge", W.AtomCharge, CountAtoms);
  AddArray("AtomX", W.AtomX, CountAtoms);
  AddArray("AtomY", W.AtomY, CountAtoms);
  AddArray("AtomZ", W.AtomZ, CountAtoms);
  AddArray("AtomCoordination", W.AtomCoordination, CountAtoms);
  const auto CountNeighbours = [](int Atom) { return int(W.AtomCoordination[Atom]); };
  AddArray2("AtomNeighbour", W.AtomNeighbour, CountAtoms, CountNeighbours);
  AddArray2("AtomBondType", W.AtomBondType, CountAtoms, CountNeighbours);
  AddArray("AtomMolecule", W.AtomMolecule, CountListedAtoms);
  AddArray("AtomInMolecule", W.AtomInMolecule, CountListedAtoms);
  AddArray("MoleculeAtomCount", W.MoleculeAtomCount, [] { return W.MoleculeAtomCount.UpperBound(); });
}

void AddAtomSets() {
  AddArray("NMRAtom", W.NMRAtom, CountNMRAtoms);
  AddArray("NMRAtomicNumber", W.NMRAtomicNumber, CountNMRAtoms);
  AddArray("QuantumAtom", W.QuantumAtom, [] { return int(W.NumQuantumAtoms); });
  AddArray("LabelledAtom", W.LabelledAtom, [] { return int(W.NumLabelledAtoms); });
  AddArray("EquivalentSetSize", W.EquivalentSetSize, [] { return NumSavedSets; });
  AddArray2(
      "EquivalentAtom", W.EquivalentAtom, [] { return NumSavedSets; },
      [](int Set) { return int(W.EquivalentSetSize[Set]); });
}

void AddResults() {
  AddArray("Shielding", W.Shielding, CountNMRAtoms);
  AddArray("ShieldingError", W.ShieldingError, CountNMRAtoms);
  AddArray("ChemicalShift", W.ChemicalShift, CountNMRAtoms);
  AddArray("ShieldTensor", W.ShieldTensor, [] { return int(TensorValues * W.NumNMRAtoms); });
  AddArray2("Coupling", W.Coupling, CountNMRAtoms, [](int) { return CountNMRAtoms(); });
  AddVariable("PeakCount", W.PeakCount);
  AddArray("PeakFrequency", W.PeakFrequency, CountPeaks);
  AddArray("PeakIntensity", W.PeakIntensity, CountPeaks);
  AddArray("PeakDegeneracy", W.PeakDegeneracy, CountPeaks);
  AddArray("PeakLineWidth", W.PeakLineWidth, CountPeaks);
  AddVariable("SpectrumSpan", W.SpectrumSpan);
  AddVariable("NumSpinHalfNMRAtoms", W.NumSpinHalfNMRAtoms);
  AddVariable("NumSpinHalfAtoms", W.NumSpinHalfAtoms);
  AddArray("NMRAtomSpinHalf", W.NMRAtomSpinHalf, CountNMRAtoms);
  AddArray2("NMRPairSpinHalf", W.NMRPairSpinHalf, CountNMRAtoms, [](int) { return CountNMRAtoms(); });
}

void AddOptions() {
  AddVariable("SemiEmpiricalMethod", W.SemiEmpiricalMethod);
  AddVariable("TotalCharge", W.TotalCharge);
  AddVariable("SpinMultiplicity", W.SpinMultiplicity);
  AddVariable("SCFConvergenceLimit", W.SCFConvergenceLimit);
  AddVariable("SCFIterationLimit", W.SCFIterationLimit);
  AddVariable("SCFAccelerateConvergence", W.SCFAccelerateConvergence);
  AddVariable("LogPrintLevel", W.LogPrintLevel);
  AddVariable("ModifySlaterExponents", W.ModifySlaterExponents);
  AddVariable("ComputeThreeCenterTerms", W.ComputeThreeCenterTerms);
  AddVariable("IncludeDOrbitalsForSecondRow", W.IncludeDOrbitalsForSecondRow);
  AddVariable("NMRFrequency", W.NMRFrequency);
  AddVariable("CalculateShielding", W.CalculateShielding);
  AddVariable("CalculateCoupling", W.CalculateCoupling);
  AddVariable("CalculateShieldTensor", W.CalculateShieldTensor);
  AddVariable("SpectraType", W.SpectraType);
  AddVariable("WeakCouplingApproximation", W.WeakCouplingApproximation);
  AddVariable("MinimalIntensity", W.MinimalIntensity);
  AddVariable("AbsLineWidth", W.AbsLineWidth);
  AddVariable("MinAbsLineWidth", W.MinAbsLineWidth);
  AddVariable("MaxAbsLineWidth", W.MaxAbsLineWidth);
  AddVariable("NumReferenceElements", W.NumReferenceElements);
  const auto CountReferences = [] { return NumReferenceEntries; };
  AddArray("ReferenceElement", W.ReferenceElement, CountReferences);
  AddArray("ReferenceElementName", W.ReferenceElementName, CountReferences);
  AddArray("ReferenceShielding", W.ReferenceShielding, CountReferences);
  AddVariable("ReferenceLevel", W.ReferenceLevel);
}

void AddDocumentState() {
  AddVariable("DocumentTitle", W.DocumentTitle);
  AddVariable("DocumentPath", W.DocumentPath);
  AddVariable("HostTextPath", W.HostTextPath);
  AddVariable("ZMatrixPath", W.ZMatrixPath);
  AddVariable("LogFilePath", W.LogFilePath);
  AddVariable("ParamDescription", W.ParamDescription);
  AddVariable("SpectDescription", W.SpectDescription);
  AddVariable("ViewMode", W.ViewMode);
  AddVariable("MoleculeLoaded", W.MoleculeLoaded);
  AddVariable("NMRAtomsValid", W.NMRAtomsValid);
  AddVariable("ShieldingAvailable", W.ShieldingAvailable);
  AddVariable("CouplingAvailable", W.CouplingAvailable);
  AddVariable("SpectraAvailable", W.SpectraAvailable);
  AddVariable("DocumentDirty", W.DocumentDirty);
  AddVariable("ParamResultsStale", W.ParamResultsStale);
  AddVariable("SpectResultsStale", W.SpectResultsStale);
  AddVariable("AtomTypesChanged", W.AtomTypesChanged);
  AddArray("HostTextLine", W.HostTextLine, [] { return int(W.HostTextLineCount); });
  AddVariable("HostTextLineCount", W.HostTextLineCount);
  AddVariable("HostViewText", W.HostViewText);
}

void AddLineWork() {
  AddVariable("FileNumber", LineWork.FileNumber);
  AddArray("Tokens", LineWork.Tokens, [] { return LineWork.Tokens.UpperBound(); });
  AddVariable("TokenCount", LineWork.TokenCount);
}

}  // namespace

void AddWorkspaceVariables() {
  AddCounts();
  AddAtomTable();
  AddAtomSets();
  AddResults();
  AddOptions();
  AddDocumentState();
  AddLineWork();
}

}  // namespace zelvanor
