#include "measured/Multiplets.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "backend/SpectInput.h"
#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "tables/AtomLabels.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr Double LeastCoupling = 0.3;  // Hz
constexpr Double SameCoupling = 0.35;  // Hz
constexpr Double WeakRatio = 5.0;      // distance in Hz by coupling
constexpr std::size_t MostKinds = 4;

// By the number of equal nuclei.
constexpr std::array<const char*, 10> Names = {"", "d", "t", "q", "quint", "sext", "sept", "oct", "non", "dec"};

// The sites: the NMR atoms of each.
std::vector<std::vector<int>> FindSites() {
  std::vector<std::vector<int>> Sites;
  const std::vector<int> SiteOf = FindSiteOfAtoms();
  for (std::size_t Atom = 0; Atom < SiteOf.size(); ++Atom) {
    if (SiteOf[Atom] == 0) continue;
    Sites.resize(std::max(Sites.size(), static_cast<std::size_t>(SiteOf[Atom])));
    Sites[static_cast<std::size_t>(SiteOf[Atom]) - 1].push_back(static_cast<int>(Atom));
  }
  return Sites;
}

bool IsObserved(int Atom) {
  return IsObservedNucleus(W.NMRAtomicNumber[Atom], IsLabelled(W.NMRAtom[Atom]), W.SpectraType);
}

void AddSplitting(std::vector<Splitting>& To, Double Hz, int Nuclei) {
  for (Splitting& Each : To) {
    if (std::fabs(Each.Hz - Hz) > SameCoupling) continue;
    Each.Hz = (Each.Hz * Each.Nuclei + Hz * Nuclei) / (Each.Nuclei + Nuclei);
    Each.Nuclei += Nuclei;
    return;
  }
  To.push_back({Hz, Nuclei});
}

Multiplet Describe(const std::vector<std::vector<int>>& Sites, std::size_t Site) {
  const int Own = Sites[Site].front();
  Multiplet Made{static_cast<int>(Site) + 1, Sites[Site], W.ChemicalShift[Own], "", {}};
  bool Strong = false;
  for (std::size_t Partner = 0; Partner < Sites.size(); ++Partner) {
    if (Partner == Site) continue;
    const int Other = Sites[Partner].front();
    const Double Hz = std::fabs(Double{W.Coupling(Own, Other)});
    if (Hz < LeastCoupling) continue;
    const Double Distance = std::fabs(Made.Ppm - W.ChemicalShift[Other]) * W.NMRFrequency;
    Strong = Strong || (IsObserved(Other) && Distance < WeakRatio * Hz);
    AddSplitting(Made.Splittings, Hz, static_cast<int>(Sites[Partner].size()));
  }
  std::sort(Made.Splittings.begin(), Made.Splittings.end(),
            [](const Splitting& A, const Splitting& B) { return A.Hz > B.Hz; });
  for (const Splitting& Each : Made.Splittings) {
    Strong = Strong || Each.Nuclei >= static_cast<int>(Names.size());
    if (!Strong) Made.Kind += Names[static_cast<std::size_t>(Each.Nuclei)];
  }
  if (Made.Splittings.empty()) Made.Kind = "s";
  // Patterns that nobody reads: three kinds, one of them of five lines or more.
  const bool Wide = std::any_of(Made.Splittings.begin(), Made.Splittings.end(), [](const Splitting& Each) {
    constexpr int Four = 4;
    return Each.Nuclei >= Four;
  });
  if (Strong || Made.Splittings.size() > MostKinds || (Wide && Made.Splittings.size() > 2)) Made.Kind = "m";
  return Made;
}

}  // namespace

std::vector<Multiplet> FindMultiplets() {
  std::vector<Multiplet> Found;
  if (!IsSet(W.ShieldingAvailable) || !IsSet(W.CouplingAvailable)) return Found;
  const std::vector<std::vector<int>> Sites = FindSites();
  for (std::size_t Site = 0; Site < Sites.size(); ++Site) {
    if (!Sites[Site].empty() && IsObserved(Sites[Site].front())) Found.push_back(Describe(Sites, Site));
  }
  std::stable_sort(Found.begin(), Found.end(), [](const Multiplet& A, const Multiplet& B) { return A.Ppm > B.Ppm; });
  return Found;
}

Text MultipletAtoms(const Multiplet& Of) {
  Text Words;
  for (const int Atom : Of.Atoms) Words += Join(Words.empty() ? "" : ", ", AtomLabel(Atom));
  return Words;
}

Text MultipletWords(const Multiplet& Of) {
  Text Words = Join(FormatNumber(Of.Ppm, "0.00"), " ", Of.Kind);
  Text Couplings;
  for (const Splitting& Each : Of.Splittings) {
    Couplings += Join(Couplings.empty() ? "" : ", ", FormatNumber(Each.Hz, "0.0"));
  }
  if (!Couplings.empty() && Of.Kind != "m") Words += Join(", J = ", Couplings, " Hz");
  return Words;
}

std::vector<Double> SplitFirstOrder(const Multiplet& Of, std::size_t Levels) {
  std::vector<Double> Offsets = {0.0};
  for (std::size_t Level = 0; Level < std::min(Levels, Of.Splittings.size()); ++Level) {
    const auto& [Hz, Nuclei] = Of.Splittings[Level];
    std::vector<Double> Next;
    constexpr std::size_t Most = 4096;
    if (Offsets.size() * static_cast<std::size_t>(Nuclei + 1) > Most) break;
    for (const Double Offset : Offsets) {
      for (int Up = 0; Up <= Nuclei; ++Up) Next.push_back(Offset + Hz * (Up - Nuclei / 2.0));
    }
    Offsets = std::move(Next);
  }
  return Offsets;
}

}  // namespace zelvanor
