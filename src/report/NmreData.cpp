#include <algorithm>
#include <cmath>
#include <vector>

#include "basic/NumberText.h"
#include "measured/Multiplets.h"
#include "report/MolBlock.h"
#include "report/Report.h"
#include "report/Signals.h"
#include "spectrum/PeakLists.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr Double LeastCoupling = 0.05;  // Hz

// Atoms that have one signal, under one label.
struct Labelled {
  std::vector<int> Entries;  // NMR atoms
  Text Label;
};

// Equivalent atoms have one label: they are in one site of the calculation. Atoms without a spin that counts, as carbon
// beside observed protons, have one each.
std::vector<Labelled> FindLabels() {
  std::vector<Labelled> All;
  for (const Signal& Each : FindSignals()) All.push_back({Each.Of.Atoms, ""});
  for (int Entry = 0; Entry < W.NumNMRAtoms; ++Entry) {
    const auto Has = [&](const Labelled& Each) {
      return std::find(Each.Entries.begin(), Each.Entries.end(), Entry) != Each.Entries.end();
    };
    if (std::none_of(All.begin(), All.end(), Has)) All.push_back({{Entry}, ""});
  }
  for (Labelled& Each : All) {
    const int First = Each.Entries.front();
    Each.Label = Join(ElementSymbol(W.NMRAtomicNumber[First]), W.NMRAtom[First]);
  }
  return All;
}

Text Tag(const Text& Name, const Text& Value) { return Join(">  <NMREDATA_", Name, ">\n", Value, "\n"); }

Text Assignment(const std::vector<Labelled>& Labels) {
  Text Lines;
  for (const Labelled& Each : Labels) {
    Lines += Join(Each.Label, ", ", FormatNumber(W.ChemicalShift[Each.Entries.front()], "0.0000"));
    for (const int Entry : Each.Entries) Lines += Join(", ", W.NMRAtom[Entry]);
    Lines += "\\\n";
  }
  return Lines;
}

Double CouplingOf(const Labelled& First, const Labelled& Second) {
  return IsSet(W.CouplingAvailable) ? Double{W.Coupling(First.Entries.front(), Second.Entries.front())} : 0.0;
}

Text Couplings(const std::vector<Labelled>& Labels) {
  Text Lines;
  for (std::size_t First = 0; First < Labels.size(); ++First) {
    for (std::size_t Second = First + 1; Second < Labels.size(); ++Second) {
      const Double Hz = CouplingOf(Labels[First], Labels[Second]);
      if (std::fabs(Hz) < LeastCoupling) continue;
      Lines += Join(Labels[First].Label, ", ", Labels[Second].Label, ", ", FormatNumber(Hz, "0.00"), "\\\n");
    }
  }
  return Lines;
}

// "J=7.61(H17),1.52(H19)", the largest first; those of the multiplet's pattern.
Text AssignedCouplings(const std::vector<Labelled>& Labels, std::size_t Own) {
  constexpr Double LeastSplitting = 0.3;  // Hz, as in the multiplets
  std::vector<std::pair<Double, Text>> All;
  for (std::size_t Other = 0; Other < Labels.size(); ++Other) {
    const Double Hz = Other == Own ? 0.0 : std::fabs(CouplingOf(Labels[Own], Labels[Other]));
    if (Hz >= LeastSplitting) All.emplace_back(Hz, Labels[Other].Label);
  }
  std::stable_sort(All.begin(), All.end(), [](const auto& A, const auto& B) { return A.first > B.first; });
  Text Words;
  for (const auto& [Hz, Label] : All)
    Words += Join(Words.empty() ? ", J=" : ",", FormatNumber(Hz, "0.00"), "(", Label, ")");
  return Words;
}

// The signals of the observed nucleus, which stand first among the labels.
Text Signals(const std::vector<Labelled>& Labels) {
  Text Lines = Join("Larmor=", FormatNumber(W.NMRFrequency, "0.00"), "\\\nSpectrum_Location=none\\\n");
  const std::vector<Signal> All = FindSignals();
  for (std::size_t Place = 0; Place < All.size(); ++Place) {
    const Multiplet& Of = All[Place].Of;
    Lines += FormatNumber(Of.Ppm, "0.0000");
    if (!Of.Kind.empty()) Lines += Join(", S=", Of.Kind, AssignedCouplings(Labels, Place));
    Lines += Join(", N=", static_cast<Long>(Of.Atoms.size()), ", L=", Labels[Place].Label, "\\\n");
  }
  return Lines;
}

}  // namespace

Text BuildNmreData() {
  if (!IsSet(W.MoleculeLoaded) || !IsSet(W.ShieldingAvailable)) throw Failure("There are no shifts to report");
  ComputeChemicalShifts();
  const std::vector<Labelled> Labels = FindLabels();
  Text File = Join(BuildMolBlock(), Tag("VERSION", "1.1\\\n"), Tag("LEVEL", "0\\\n"));
  if (!W.MeasuredSolvent.empty()) File += Tag("SOLVENT", W.MeasuredSolvent + "\\\n");
  File += Tag("ASSIGNMENT", Assignment(Labels));
  if (const Text Pairs = Couplings(Labels); !Pairs.empty()) File += Tag("J", Pairs);
  return Join(File, Tag("1D_" + ObservedNucleus(), Signals(Labels)), "$$$$\n");
}

}  // namespace zelvanor
