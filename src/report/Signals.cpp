#include "report/Signals.h"

#include <algorithm>
#include <cmath>

#include "tables/AtomLabels.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

struct Weighed {
  Double Ppm;
  Double Weight;
};

bool HasMap() { return IsSet(W.SpectraAvailable) && W.PeakCount > 0 && W.PeakSiteLines >= W.PeakCount; }

Double PpmOfPeak(Long Peak) { return W.NMRFrequency > 0 ? -Double{W.PeakFrequency[Peak]} / W.NMRFrequency : 0.0; }

// Calls Take(peak, site, weight) for every part that a site has in a line, but for traces of mixing.
template <class Visit>
void ForEachShare(const Visit& Take) {
  for (Long Peak = 0, Entry = 0; Peak < W.PeakCount; ++Peak) {
    for (; Entry < W.PeakSiteEnd[Peak]; ++Entry) {
      constexpr int LeastShare = 10;  // percent
      if (W.PeakSiteShare[Entry] < LeastShare) continue;
      Take(Peak, int(W.PeakSite[Entry]), Double{W.PeakIntensity[Peak]} * W.PeakSiteShare[Entry] / 100.0);
    }
  }
}

// The places between which all but Tail of the weight lies on either side.
void TakeExtent(std::vector<Weighed>& Parts, Signal& To) {
  constexpr Double Tail = 0.01;
  if (Parts.empty()) return;
  std::sort(Parts.begin(), Parts.end(), [](const Weighed& A, const Weighed& B) { return A.Ppm < B.Ppm; });
  Double Total = 0;
  for (const Weighed& Part : Parts) Total += Part.Weight;
  const auto Inside = [&](auto First, auto Last) {
    Double Sum = 0;
    for (; First != Last; ++First) {
      Sum += First->Weight;
      if (Sum > Tail * Total) return First->Ppm;
    }
    return To.Of.Ppm;
  };
  To.Low = Inside(Parts.begin(), Parts.end());
  To.High = Inside(Parts.rbegin(), Parts.rend());
}

void FindExtents(std::vector<Signal>& Signals) {
  for (Signal& Each : Signals) {
    const std::vector<Double> Offsets = SplitFirstOrder(Each.Of, Each.Of.Splittings.size());
    const auto [Least, Most] = std::minmax_element(Offsets.begin(), Offsets.end());
    const Double MHz = W.NMRFrequency > 0 ? Double(W.NMRFrequency) : 1.0;
    Each.Low = Each.Of.Ppm + *Least / MHz;
    Each.High = Each.Of.Ppm + *Most / MHz;
  }
  if (!HasMap()) return;
  std::vector<std::vector<Weighed>> OfSite(static_cast<std::size_t>(W.NumNMRAtoms) + 1);
  ForEachShare([&](Long Peak, int Site, Double Weight) {
    if (Site > 0 && Site <= W.NumNMRAtoms) OfSite[static_cast<std::size_t>(Site)].push_back({PpmOfPeak(Peak), Weight});
  });
  for (Signal& Each : Signals) {
    if (Each.Of.Site > 0) TakeExtent(OfSite[static_cast<std::size_t>(Each.Of.Site)], Each);
  }
}

// Atoms of one element in one molecule.
struct NamedGroup {
  Text Head;  // "2:H"
  std::vector<int> Numbers;
};

Text NameGroup(const NamedGroup& Of) {
  Text Words = Of.Head;
  for (std::size_t First = 0; First < Of.Numbers.size();) {
    std::size_t Last = First;
    while (Last + 1 < Of.Numbers.size() && Of.Numbers[Last + 1] == Of.Numbers[Last] + 1) ++Last;
    if (Last < First + 2) Last = First;  // two in a row are no range
    Words += Join(First == 0 ? "" : ",", Long{Of.Numbers[First]});
    if (Last > First) Words += Join(EnDash, Long{Of.Numbers[Last]});
    First = Last + 1;
  }
  return Words;
}

}  // namespace

std::vector<Signal> FindSignals() {
  std::vector<Signal> Signals;
  for (Multiplet& Each : FindMultiplets()) Signals.push_back({std::move(Each)});
  if (Signals.empty()) {
    constexpr int Observed[] = {1, 6, 7, 8, 9, 15};
    for (int Entry = 0; Entry < W.NumNMRAtoms; ++Entry) {
      if (W.NMRAtomicNumber[Entry] == Observed[W.SpectraType]) {
        Signals.push_back({Multiplet{0, {Entry}, W.ChemicalShift[Entry], "", {}}});
      }
    }
    std::stable_sort(Signals.begin(), Signals.end(),
                     [](const Signal& A, const Signal& B) { return A.Of.Ppm > B.Of.Ppm; });
  }
  FindExtents(Signals);
  return Signals;
}

std::vector<int> FindSignalOfPeaks(const std::vector<Signal>& Signals) {
  std::vector<int> Owners(static_cast<std::size_t>(std::max<Long>(W.PeakCount, 0)), -1);
  if (!HasMap()) return Owners;
  std::vector<int> SignalOfSite(static_cast<std::size_t>(W.NumNMRAtoms) + 1, -1);
  for (std::size_t Place = 0; Place < Signals.size(); ++Place) {
    SignalOfSite[static_cast<std::size_t>(Signals[Place].Of.Site)] = static_cast<int>(Place);
  }
  // The largest share stands first.
  ForEachShare([&](Long Peak, int Site, Double) {
    int& Owner = Owners[static_cast<std::size_t>(Peak)];
    if (Owner < 0 && Site > 0 && Site <= W.NumNMRAtoms) Owner = SignalOfSite[static_cast<std::size_t>(Site)];
  });
  return Owners;
}

int AtomOfEntry(int Entry) {
  const int Number = W.NMRAtom[Entry];
  if (!IsSet(W.MoleculeLoaded) || Number < 1 || Number > W.NumAtoms) return -1;
  return W.AtomicNumber[Number - 1] == W.NMRAtomicNumber[Entry] ? Number - 1 : -1;
}

Text NameEntries(const std::vector<int>& Entries) {
  std::vector<NamedGroup> Groups;
  for (const int Entry : Entries) {
    const int Atom = AtomOfEntry(Entry);
    const Text Molecule = Atom >= 0 && W.NumMolecules > 1 ? Join(W.AtomMolecule[Atom], ":") : Text();
    const Text Head = Molecule + ElementSymbol(W.NMRAtomicNumber[Entry]);
    const auto Same = std::find_if(Groups.begin(), Groups.end(), [&](const auto& Each) { return Each.Head == Head; });
    NamedGroup& Group = Same == Groups.end() ? Groups.emplace_back(NamedGroup{Head, {}}) : *Same;
    Group.Numbers.push_back(Atom >= 0 ? int(W.AtomInMolecule[Atom]) : Entry + 1);
  }
  Text Words;
  for (NamedGroup& Group : Groups) {
    std::sort(Group.Numbers.begin(), Group.Numbers.end());
    Words += Join(Words.empty() ? "" : ", ", NameGroup(Group));
  }
  return Words;
}

bool FindAssignedShift(int Entry, Double& Ppm) {
  const int Atom = AtomOfEntry(Entry);
  for (int Place = 0; Atom >= 0 && Place < W.NumAssigned; ++Place) {
    if (W.AssignedAtom[Place] != Atom + 1) continue;
    Ppm = W.AssignedShift[Place];
    return true;
  }
  return false;
}

bool AreShiftsMeasured() {
  constexpr Double Rounding = 5.0e-4;  // ppm: shieldings are Singles
  bool Found = false;
  for (int Entry = 0; Entry < W.NumNMRAtoms; ++Entry) {
    if (!IsObservedNucleus(W.NMRAtomicNumber[Entry], IsLabelled(W.NMRAtom[Entry]), W.SpectraType)) continue;
    Double Ppm = 0;
    if (!FindAssignedShift(Entry, Ppm) || std::fabs(Ppm - W.ChemicalShift[Entry]) > Rounding) return false;
    Found = true;
  }
  return Found;
}

}  // namespace zelvanor
