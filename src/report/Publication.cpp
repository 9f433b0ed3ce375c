#include <algorithm>
#include <cmath>
#include <vector>

#include "basic/NumberText.h"
#include "measured/Multiplets.h"
#include "report/Report.h"
#include "spectrum/PeakLists.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

// One entry of the list: atoms whose signals read the same.
struct Signal {
  Double Ppm = 0;
  Text Words;  // of the multiplet; empty for a shift alone
  Long Atoms = 0;
};

void AddSignal(std::vector<Signal>& To, Signal One) {
  const auto Same = std::find_if(To.begin(), To.end(), [&](const Signal& Each) {
    return Each.Words == One.Words && std::fabs(Each.Ppm - One.Ppm) < 0.005;
  });
  if (Same == To.end()) {
    To.push_back(std::move(One));
  } else {
    Same->Atoms += One.Atoms;
  }
}

Text WordsOf(const Multiplet& Each) {
  const Text All = MultipletWords(Each);
  return All.substr(All.find(' ') + 1);
}

std::vector<Signal> FindSignals() {
  std::vector<Signal> Signals;
  for (const Multiplet& Each : FindMultiplets()) {
    AddSignal(Signals, {Each.Ppm, WordsOf(Each), static_cast<Long>(Each.Atoms.size())});
  }
  if (!Signals.empty()) return Signals;
  // Without couplings there are shifts alone.
  for (int Entry = 0; Entry < W.NumNMRAtoms; ++Entry) {
    const int Element = W.NMRAtomicNumber[Entry];
    constexpr int Observed[] = {1, 6, 7, 8, 9, 15};
    if (Element == Observed[W.SpectraType]) AddSignal(Signals, {Double{W.ChemicalShift[Entry]}, "", 1});
  }
  std::stable_sort(Signals.begin(), Signals.end(), [](const Signal& A, const Signal& B) { return A.Ppm > B.Ppm; });
  return Signals;
}

}  // namespace

Text BuildPublicationText() {
  if (!IsSet(W.ShieldingAvailable)) throw Failure("There are no shifts to report");
  ComputeChemicalShifts();
  const Text Nucleus = ObservedNucleus();
  const bool Proton = W.SpectraType == 0;
  const Text Element = Nucleus.substr(Nucleus.find_first_not_of("0123456789"));
  Text Line = Join(Nucleus, " NMR (", W.NMRFrequency, " MHz, calculated) δ ");
  bool First = true;
  for (const Signal& Each : FindSignals()) {
    Text Details = Each.Words == "s" && !Proton ? Text() : Each.Words;
    if (Proton || Each.Atoms > 1) Details += Join(Details.empty() ? "" : ", ", Each.Atoms, Element);
    Line += Join(First ? "" : ", ", FormatNumber(Each.Ppm, Proton ? "0.00" : "0.0"));
    if (!Details.empty()) Line += Join(" (", Details, ")");
    First = false;
  }
  return Line + ".\n";
}

}  // namespace zelvanor
