#pragma once

#include "basic/Array.h"
#include "basic/FixedText.h"
#include "basic/Types.h"

namespace zelvanor {

// A bonded atom has at most this many neighbours.
inline constexpr int MaxCoordination = 12;
inline constexpr int NumSavedSets = 10;
inline constexpr int TensorValues = 14;
inline constexpr int NumReferenceEntries = 7;
// Longest line of the host text that is kept.
inline constexpr std::size_t HostLineLength = 256;

inline constexpr int MoleculeView = 1;
inline constexpr int ShieldingView = 2;
inline constexpr int CouplingView = 3;
inline constexpr int SpectrumViewMode = 4;

// The document: everything that is worth keeping about the present system, and the flags that say how far its pieces
// agree. There is one, it lives as long as the process, and every routine works on it directly.
//
// An atom number is 1-based and global, an atom index 0-based and global: number k stands at index k - 1. On files and
// screens an atom is the pair molecule, atom in the molecule, both 1-based.
struct WorkspaceState {
  // Counts; they are always cleared together.
  Integer NumAtoms;
  Integer NumMolecules;
  Integer NumQuantumAtoms;
  Integer NumNMRAtoms;  // sizes all results; at most 2340, since 14 times it must fit an Integer
  Integer NumLabelledAtoms;
  Integer NumEquivalentSets;

  // Atom table, index 0..NumAtoms (0..NumNMRAtoms in a results-only document, see ExtendForResults).
  Array<Integer> AtomNumber;          // serial in its molecule, as the source gave it
  Array<FixedText<5>> AtomName;       // "-" for none
  Array<Integer> AtomicNumber;        // 0..128, 0 being the lone pair
  Array<FixedText<4>> AtomElement;    // symbol as the source gave it
  Array<FixedText<5>> AtomType;       // force-field type, "**" when not known
  Array<FixedText<7>> AtomFlags;      // "-" for none
  Array<Single> AtomCharge;           // e
  Array<Single> AtomX, AtomY, AtomZ;  // angstrom
  Array<Integer> AtomCoordination;    // neighbours, 0..12
  Array2<Integer> AtomNeighbour;      // [atom, 0..12]: atom index of neighbour j
  Array2<FixedText<2>> AtomBondType;  // [atom, 0..12]: s, d, t, a
  Array<Integer> AtomMolecule;        // 1-based
  Array<Integer> AtomInMolecule;      // 1-based
  Array<Integer> MoleculeAtomCount;   // 0..NumMolecules, element i: atoms of molecule i + 1

  // Atom sets; all entries are atom numbers.
  Array<Integer> NMRAtom;
  Array<Integer> NMRAtomicNumber;  // beside NMRAtom; survives without a molecule
  Array<Integer> QuantumAtom;
  Array<Integer> LabelledAtom;
  Array<Integer> EquivalentSetSize{20};    // only sets 0..9 are cleared and written
  Array2<Integer> EquivalentAtom{10, 20};  // [set, member]

  // Stage 1 results, index 0..NumNMRAtoms.
  Array<Single> Shielding;       // ppm
  Array<Single> ShieldingError;  // ppm, half width that two of three values keep; 0: unknown
  Array<Single> ChemicalShift;   // ppm: reference shielding of the element less the shielding
  Array<Single> ShieldTensor;    // 14 for each atom at 14 i: 9 components by rows, 3 eigenvalues, isotropic, anisotropy
  Array2<Single> Coupling;       // Hz, [NMR atom, NMR atom]

  // Stage 2 results: a list of peaks, index 0..PeakCount. PeakCount means something only with SpectraAvailable.
  Long PeakCount = 0;
  Array<Single> PeakFrequency;  // Hz; negated once the spectrum view has taken the list in
  Array<Single> PeakIntensity;
  Array<Long> PeakDegeneracy;
  Array<Single> PeakLineWidth;  // Hz
  Long SpectrumSpan = 0;        // ppm: a shift well outside every real one, where nuclei that are not observed are put

  // The measured spectrum beside the simulated one: points at equal distances, the largest shift first, index
  // 0..MeasuredCount; an intensity is a point times MeasuredFactor. Places are in Hz from 0 ppm at MeasuredMHz, so that
  // ppm are Hz / MeasuredMHz.
  Long MeasuredCount = 0;  // 0: there is none
  Array<Long> MeasuredPoint;
  Double MeasuredFactor = 1;
  Double MeasuredFirst = 0;
  Double MeasuredLast = 0;
  Double MeasuredMHz = 0;
  Text MeasuredNucleus;  // as "1H"; empty where it is not known
  Text MeasuredSolvent;
  Text MeasuredTitle;
  // Ranges of it that are integrated, index 0..IntegralCount, in ppm; the integrals together are IntegralTotal nuclei,
  // or with 0 as many as the simulation has.
  Long IntegralCount = 0;
  Array<Double> IntegralHigh;
  Array<Double> IntegralLow;
  Double IntegralTotal = 0;

  // Which sites make a line of the spectrum, as the backend tells: line i has the entries PeakSiteEnd(i - 1) to
  // PeakSiteEnd(i) - 1, the largest share first. Sites count from 1, in the order of the backend's input.
  Long PeakSiteLines = 0;  // lines that are told of; 0: nothing is known
  Array<Long> PeakSiteEnd;
  Array<Integer> PeakSite;
  Array<Integer> PeakSiteShare;  // percent
  Array<Integer> SiteOfNMRAtom;  // beside NMRAtom; 0 for one that is in no site

  // Shifts that were measured and assigned to atoms, index 0..NumAssigned; they stay when others are computed.
  Integer NumAssigned;
  Array<Integer> AssignedAtom;  // atom numbers, each once
  Array<Single> AssignedShift;  // ppm
  Text ShieldingMethod;         // what the backend says of its shieldings; empty where it is not known

  Integer NumSpinHalfNMRAtoms;
  Integer NumSpinHalfAtoms;
  Array<Flag> NMRAtomSpinHalf;
  Array2<Flag> NMRPairSpinHalf;

  // Calculation options.
  Text SemiEmpiricalMethod;
  Integer TotalCharge;
  Integer SpinMultiplicity;
  Single SCFConvergenceLimit = 0;
  Integer SCFIterationLimit;
  Flag SCFAccelerateConvergence = False;
  Integer LogPrintLevel;
  Flag ModifySlaterExponents = False;
  Flag ComputeThreeCenterTerms = False;
  Flag IncludeDOrbitalsForSecondRow = False;
  Long NMRFrequency = 0;  // MHz
  Flag CalculateShielding = False;
  Single CalculateCoupling = 0;  // -1 for true, 0 for false: a number, not a Flag
  Flag CalculateShieldTensor = False;
  Integer SpectraType;  // 0..5: H, C, N, O, F, P
  Flag WeakCouplingApproximation = False;
  Double MinimalIntensity = 0;
  Flag AbsLineWidth = False;
  Single MinAbsLineWidth = 0;  // ppm
  Single MaxAbsLineWidth = 0;  // ppm

  // Reference shieldings (ppm): entries 0..5 are those of H, C, N, O, F, P; entry 6 serves every other element.
  Integer NumReferenceElements;
  Array<Integer> ReferenceElement;
  Array<Text> ReferenceElementName;
  Array<Single> ReferenceShielding;
  Text ReferenceLevel;  // level of theory that they belong to; empty: the user's own

  // Document state. At most one of the three paths names the origin of the system.
  Text DocumentTitle;
  Text DocumentPath;
  Text HostTextPath;
  Text ZMatrixPath;
  Text LogFilePath;
  Text ParamDescription;
  Text SpectDescription;
  Integer ViewMode;  // 1 molecule, 2 shielding table, 3 coupling table, 4 spectrum

  // Validity.
  Flag MoleculeLoaded = False;
  Flag NMRAtomsValid = False;
  Flag ShieldingAvailable = False;
  Flag CouplingAvailable = False;
  Flag SpectraAvailable = False;
  Flag DocumentDirty = False;
  Flag ParamResultsStale = False;
  Flag SpectResultsStale = False;
  Flag AtomTypesChanged = False;  // AtomType is newer than HostTextLine

  // Text buffers.
  Array<FixedText<HostLineLength>> HostTextLine;  // 0..HostTextLineCount: the system in the host text format
  Long HostTextLineCount = 0;
  Text HostViewText;

  friend bool operator==(const WorkspaceState&, const WorkspaceState&) = default;
};

extern WorkspaceState Workspace;

// Empties the molecule, the atom sets, the stage 1 results and the measured spectrum, with their flags; ShieldTensor is
// not touched.
void ClearWorkspace();
void ClearMeasured();
// Empties the peak arrays and clears SpectraAvailable; PeakCount is not touched.
void ClearSpectrum();

// Allocates the atom table for NumAtoms atoms, zero and blank.
void AllocateAtomTable(int NumAtoms);
// Allocates the stage 1 results for Count NMR atoms, zero. Throws a Failure, with nothing changed, for more than 2340.
void AllocateResults(Integer Count);
// Allocates all peak arrays for NumPeaks, zero.
void AllocatePeaks(int NumPeaks);
// Gives a document with fewer atoms than NMR atoms room for a placeholder molecule, keeping what is there.
void ExtendForResults();

// A value that was typed or replaced has no error bar.
void ForgetShieldingError(int Place);

// Whether an atom number stands in LabelledAtom.
bool IsLabelled(int AtomNumber);
// The entry of the element in the list H, C, N, O, F, P, or 6 for every other one.
int ReferenceEntryOf(int AtomicNumber);

// ChemicalShift of every NMR atom from Shielding and ReferenceShielding, and SpectrumSpan from their largest magnitude.
void ComputeChemicalShifts();
// NumSpinHalfAtoms: the NMR atoms that carry the observed nucleus of SpectraType.
void CountSpinHalfAtoms();
// Whether an atom carries a spin one half that the calculation counts: carbon, nitrogen and oxygen only as labelled
// isotopes, hydrogen only as the common one, every other element in any case.
bool HasCountedSpin(int AtomicNumber, bool Labelled);
// Whether an NMR atom is the observed nucleus of the spectrum type: its element, with a counted spin.
bool IsObservedNucleus(int AtomicNumber, bool Labelled, int SpectraType);

}  // namespace zelvanor
