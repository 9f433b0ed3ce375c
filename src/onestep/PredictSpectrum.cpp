#include "onestep/PredictSpectrum.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <vector>

#include "atomsets/AtomSetChecks.h"
#include "atomsets/Equivalence.h"
#include "backend/Compute.h"
#include "shell/Frame.h"
#include "shell/MainForm.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

// The spectrometer that the user chose last, and what this room has made of it: a frequency that stands as it was set
// does not drift by its rounding.
struct Spectrometer {
  Double Protons = 400;  // MHz
  Long Set = 0;
};

Spectrometer Chosen;

Long FrequencyFor(const Nucleus& Observed) {
  const auto Present =
      std::find_if(Nuclei.begin(), Nuclei.end(), [](const Nucleus& Row) { return Row.SpectraType == W.SpectraType; });
  if (W.NMRFrequency > 0 && W.NMRFrequency != Chosen.Set && Present != Nuclei.end()) {
    Chosen.Protons = W.NMRFrequency * 100.0 / Present->Percent;
  }
  return std::max<Long>(1, static_cast<Long>(std::lround(Chosen.Protons * Observed.Percent / 100.0)));
}

std::set<int> SelectedMolecules() {
  std::set<int> Molecules;
  for (int K = 0; K < Main.NumSelectedAtoms; ++K) Molecules.insert(W.AtomMolecule[Main.SelectedAtom[K]]);
  return Molecules;
}

std::vector<int> AtomsOf(const Nucleus& Observed) {
  const std::set<int> Molecules = SelectedMolecules();
  std::vector<int> Numbers;
  for (int Atom = 0; Atom < W.NumAtoms; ++Atom) {
    if (W.AtomicNumber[Atom] != Observed.Element) continue;
    if (Observed.Element == 1 && IsLabelled(Atom + 1)) continue;  // deuterium
    if (Molecules.empty() || Molecules.contains(W.AtomMolecule[Atom])) Numbers.push_back(Atom + 1);
  }
  return Numbers;
}

void SetList(Array<Integer>& Target, Integer& Count, const std::vector<int>& Numbers) {
  Count = static_cast<int>(Numbers.size());
  Target.ReDim(Count);
  for (int K = 0; K < Count; ++K) Target[K] = Numbers[static_cast<std::size_t>(K)];
}

// Deuterium stays; of the other elements what is observed is labelled.
void LabelAtoms(const Nucleus& Observed, const std::vector<int>& Numbers) {
  std::vector<int> Labels;
  for (int K = 0; K < W.NumLabelledAtoms; ++K) {
    const int Number = W.LabelledAtom[K];
    if (Number > 0 && Number <= W.NumAtoms && W.AtomicNumber[Number - 1] == 1) Labels.push_back(Number);
  }
  if (Observed.Labelled) Labels.insert(Labels.end(), Numbers.begin(), Numbers.end());
  SetList(W.LabelledAtom, W.NumLabelledAtoms, Labels);
}

void ShareShieldings(const std::vector<int>& Classes) {
  std::map<int, std::vector<int>> Members;
  for (int Entry = 0; Entry < W.NumNMRAtoms; ++Entry) {
    Members[Classes.at(static_cast<std::size_t>(W.NMRAtom[Entry] - 1))].push_back(Entry);
  }
  for (const auto& [Class, Entries] : Members) {
    for (Array<Single>* Values : {&W.Shielding, &W.ShieldingError}) {
      if (Entries.back() > Values->UpperBound()) continue;
      Double Sum = 0;
      for (const int Entry : Entries) Sum += Double{(*Values)[Entry]};
      for (const int Entry : Entries) (*Values)[Entry] = static_cast<Single>(Sum / static_cast<Double>(Entries.size()));
    }
  }
}

}  // namespace

bool SetUpNucleus(const Nucleus& Observed, Long Frequency) {
  const std::vector<int> Numbers = AtomsOf(Observed);
  if (Numbers.empty()) return false;
  W.NumQuantumAtoms = 0;
  W.QuantumAtom.ReDim(0);
  TakeEquivalentSets({});
  WorkList Work;
  SetList(Work.Atom, Work.Count, Numbers);
  TakeNMRAtoms(Work);
  LabelAtoms(Observed, Numbers);
  TakeEquivalentSets(FindEquivalentSets(FindAtomClasses(), NumSavedSets));
  W.NMRFrequency = Frequency > 0 ? Frequency : FrequencyFor(Observed);
  Chosen.Set = W.NMRFrequency;
  W.SpectraType = Observed.SpectraType;
  // Two rare isotopes hardly ever stand in one molecule: their spectra show no couplings between them.
  W.CalculateShielding = True;
  W.CalculateCoupling = Observed.Labelled ? 0.0F : -1.0F;
  W.DocumentDirty = W.ParamResultsStale = W.SpectResultsStale = True;
  return true;
}

namespace {

// The atoms count as not belonging to the molecule while this lives. Afterwards they do, also where the computation
// threw: tables name them by molecule and atom, as they do when the document is opened again.
class DetachedAtoms {
 public:
  DetachedAtoms() { W.NMRAtomsValid = False; }
  ~DetachedAtoms() { W.NMRAtomsValid = True; }
  DetachedAtoms(const DetachedAtoms&) = delete;
  DetachedAtoms& operator=(const DetachedAtoms&) = delete;
};

}  // namespace

int ComputeNucleus(const Nucleus& Observed) {
  const std::vector<int> Classes = FindAtomClasses();
  // The reader of stage 1 would average couplings too, but of ten sets alone: here all classes share their shieldings.
  const DetachedAtoms Held;
  return ComputeStages(Observed.SpinHalf ? 2 : 1, [&] { ShareShieldings(Classes); });
}

void PredictSpectrum(const Nucleus& Observed) {
  Fire(Rooms.EndTableEdit);
  if (!IsSet(W.MoleculeLoaded)) return ShowWarning("There is no molecule: open one first.");
  try {
    if (!SetUpNucleus(Observed, 0)) {
      return ShowWarning(Join("There is no ", Observed.Name, " in the molecules, so there is no spectrum of it."));
    }
    const int Done = ComputeNucleus(Observed);
    if (Done == 2) {
      EnterSpectrumView();
      if (Rooms.LinesAndEnvelopCommand) Rooms.LinesAndEnvelopCommand();
    } else if (Done == 1) {
      W.ViewMode = ShieldingView;
      RefreshView();
    } else {
      RefreshView();
    }
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
    RefreshView();
  }
}

}  // namespace zelvanor
