#include "fit/FitPlan.h"

#include <algorithm>
#include <cmath>

#include "atomsets/Equivalence.h"
#include "backend/SpectInput.h"
#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "measured/MeasuredTrace.h"
#include "spectrum/EnvelopeCurve.h"
#include "spectrum/PeakLists.h"
#include "spectrum/SpectrumView.h"
#include "tables/AtomLabels.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

FitState Fit;

namespace {

WorkspaceState& W = Workspace;

constexpr Double SmallestCoupling = 0.05;  // Hz; smaller ones stay as they are
constexpr Double FarthestHz = 10.0;        // of a coupling from its start
constexpr Double ProtonReach = 0.5;        // ppm, of a shift from its start
constexpr Double OtherReach = 10.0;
constexpr Double ProtonRoom = 0.2;  // ppm, of a window beyond the shifts
constexpr Double OtherRoom = 3.0;

bool IsProton() { return W.SpectraType == 0; }

// The sites of stage 2 and what belongs to them.
struct PlanSite {
  int Atom = 0;  // index of the NMR atom that stands for it
  bool Observed = false;
  Double Ppm = 0;
  int Class = 0;  // of atoms with the same surroundings; 0: not known
};

std::vector<PlanSite> FindPlanSites() {
  const std::vector<int> Classes = IsSet(W.MoleculeLoaded) ? FindAtomClasses() : std::vector<int>();
  std::vector<PlanSite> Sites;
  for (const SpinSite& Each : FindSpinSites()) {
    const int Number = W.NMRAtom[Each.Atom];
    const bool Known = Number > 0 && Number <= static_cast<int>(Classes.size());
    Sites.push_back({.Atom = Each.Atom,
                     .Observed = IsSet(W.NMRAtomSpinHalf[Each.Atom]),
                     .Ppm = W.ChemicalShift[Each.Atom],
                     .Class = Known ? Classes[static_cast<std::size_t>(Number - 1)] : 0});
  }
  return Sites;
}

bool IsWithin(Double Ppm) {
  return std::any_of(Fit.Windows.begin(), Fit.Windows.end(),
                     [&](const auto& Window) { return Window.second <= Ppm && Ppm <= Window.first; });
}

// The atoms that the choice names, by site.
std::vector<bool> FindChosen(const FitChoice& Choice, std::size_t NumSites) {
  std::vector<bool> Chosen(NumSites, Choice.Atoms.empty());
  const std::vector<int> SiteOf = FindSiteOfAtoms();
  for (const int Number : Choice.Atoms) {
    bool Found = false;
    for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
      const int Site = SiteOf[static_cast<std::size_t>(Atom)];
      if (W.NMRAtom[Atom] != Number || Site == 0) continue;
      Chosen[static_cast<std::size_t>(Site - 1)] = Found = true;
    }
    if (!Found) throw Failure(Join("atom ", Long{Number}, " is no NMR atom with a spin"));
  }
  return Chosen;
}

// Where the view is zoomed it shows what the user means.
bool TakeZoomedWindow() {
  const SpectrumViewState& V = SpectrumView;
  if (!(V.SpectrometerMHz > 0) || !(V.ViewHigh > V.ViewLow)) return false;
  const Double Low = V.ViewLow + V.HorizontalOffset;
  const Double High = V.ViewHigh + V.HorizontalOffset;
  constexpr Double Whole = 0.95;
  if (High - Low > Whole * (V.FullHigh - V.FullLow)) return false;
  // Frequencies of the view are negated.
  Fit.Windows = {{-Low / V.SpectrometerMHz, -High / V.SpectrometerMHz}};
  return true;
}

void ChooseWindows(const FitChoice& Choice, const std::vector<PlanSite>& Sites, const std::vector<bool>& Chosen) {
  Fit.Windows = Choice.Windows;
  for (auto& [High, Low] : Fit.Windows) {
    if (High < Low) std::swap(High, Low);
  }
  if (!Fit.Windows.empty() || (Choice.Atoms.empty() && TakeZoomedWindow())) return;
  const Double Room = IsProton() ? ProtonRoom : OtherRoom;
  for (std::size_t K = 0; K < Sites.size(); ++K) {
    if (Sites[K].Observed && Chosen[K]) Fit.Windows.emplace_back(Sites[K].Ppm + Room, Sites[K].Ppm - Room);
  }
}

// Sites that keep one shift: atoms of the same surroundings with the same value.
std::vector<int> FindShiftGroups(const std::vector<PlanSite>& Sites) {
  constexpr Double Same = 1.0e-4;  // ppm
  std::vector<int> Groups;
  for (std::size_t K = 0; K < Sites.size(); ++K) {
    int Group = static_cast<int>(K);
    for (std::size_t Other = 0; Other < K; ++Other) {
      if (Sites[K].Class > 0 && Sites[K].Class == Sites[Other].Class &&
          std::fabs(Sites[K].Ppm - Sites[Other].Ppm) < Same) {
        Group = Groups[Other];
        break;
      }
    }
    Groups.push_back(Group);
  }
  return Groups;
}

void AddShiftRows(const FitChoice& Choice, const std::vector<PlanSite>& Sites, const std::vector<int>& Groups,
                  const std::vector<bool>& Chosen) {
  for (std::size_t K = 0; K < Sites.size(); ++K) {
    if (!Sites[K].Observed || Groups[K] != static_cast<int>(K)) continue;
    const Single Bar = Sites[K].Atom <= W.ShieldingError.UpperBound() ? W.ShieldingError[Sites[K].Atom] : 0.0F;
    const Double Reach = std::max(IsProton() ? ProtonReach : OtherReach, 3.0 * Bar);
    FitRow Row{.Kind = FitShift, .Start = Sites[K].Ppm, .Low = Sites[K].Ppm - Reach, .High = Sites[K].Ppm + Reach};
    Row.Free = false;
    for (std::size_t Member = K; Member < Sites.size(); ++Member) {
      if (Groups[Member] != Groups[K]) continue;
      Row.Sites.push_back(static_cast<int>(Member) + 1);
      Row.Free = Row.Free || (Choice.Shifts && Chosen[Member] && IsWithin(Sites[K].Ppm));
    }
    Fit.Rows.push_back(std::move(Row));
  }
}

void AddCouplingRows(const FitChoice& Choice, const std::vector<PlanSite>& Sites, const std::vector<int>& Groups,
                     const std::vector<bool>& Chosen) {
  constexpr Double Same = 1.0e-3;  // Hz
  for (std::size_t A = 0; A < Sites.size(); ++A) {
    for (std::size_t B = A + 1; B < Sites.size(); ++B) {
      const Double Hz = W.Coupling(Sites[A].Atom, Sites[B].Atom);
      if (std::fabs(Hz) < SmallestCoupling) continue;
      const bool Shown = (Sites[A].Observed && IsWithin(Sites[A].Ppm)) || (Sites[B].Observed && IsWithin(Sites[B].Ppm));
      const bool Free = Choice.Couplings && Shown && Chosen[A] && Chosen[B];
      const std::pair<int, int> Pair{static_cast<int>(A) + 1, static_cast<int>(B) + 1};
      const auto GroupsOf = [&](const std::pair<int, int>& Of) {
        return std::minmax(Groups[static_cast<std::size_t>(Of.first - 1)],
                           Groups[static_cast<std::size_t>(Of.second - 1)]);
      };
      const auto Tied = std::find_if(Fit.Rows.begin(), Fit.Rows.end(), [&](const FitRow& Row) {
        return Row.Kind == FitCoupling && std::fabs(Row.Start - Hz) < Same &&
               GroupsOf(Row.Pairs.front()) == GroupsOf(Pair);
      });
      if (Tied != Fit.Rows.end()) {
        Tied->Pairs.push_back(Pair);
        Tied->Free = Tied->Free || Free;
        continue;
      }
      FitRow Row{.Kind = FitCoupling, .Start = Hz, .Low = Hz - FarthestHz, .High = Hz + FarthestHz};
      Row.Pairs = {Pair};
      Row.Free = Free;
      Fit.Rows.push_back(std::move(Row));
    }
  }
}

void AddShapeRows(const FitChoice& Choice) {
  constexpr Double Narrowest = 0.1;  // Hz
  constexpr Double Widest = 30.0;
  FitRow Width{.Kind = FitWidth, .Start = 1.0, .Low = Narrowest, .High = Widest};
  if (Choice.Width)
    Width.Start = std::clamp(EnvelopeWidth(), 0.5, 3.0);
  else
    Width.Start = std::clamp(EnvelopeWidth(), Narrowest, Widest);
  Width.Free = Choice.Width;
  Fit.Rows.push_back(std::move(Width));
  constexpr Double Any = 1.0e9;
  Fit.Rows.push_back({.Kind = FitScale, .Low = 0, .High = Any});
  Fit.Rows.push_back({.Kind = FitOffset, .Low = -Any, .High = Any});
}

// The first comparison blurs by what the shifts may be wrong.
Double ChooseBroadening(const std::vector<PlanSite>& Sites) {
  Double Widest = IsProton() ? 0.1 : 1.0;  // ppm
  const Double Most = IsProton() ? 0.4 : 6.0;
  for (const PlanSite& Each : Sites) {
    if (Each.Atom <= W.ShieldingError.UpperBound() && IsWithin(Each.Ppm)) {
      Widest = std::max(Widest, 1.5 * Double{W.ShieldingError[Each.Atom]});
    }
  }
  return std::min(Widest, Most);
}

Text LabelsOfSite(int Site) {
  const std::vector<int> SiteOf = FindSiteOfAtoms();
  Text Labels;
  for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
    if (SiteOf[static_cast<std::size_t>(Atom)] == Site) Labels += (Labels.empty() ? "" : ", ") + AtomLabel(Atom);
  }
  return Labels;
}

}  // namespace

Text WhyNoFit() {
  if (!HasMeasured()) return "There is no measured spectrum: open one with File > Open Measured.";
  if (!IsSet(W.ShieldingAvailable) || !IsSet(W.CouplingAvailable)) {
    return "There are no shieldings and couplings to begin with: compute them first.";
  }
  if (!W.MeasuredNucleus.empty() && W.MeasuredNucleus != ObservedNucleus()) {
    return Join("The measured spectrum is of ", W.MeasuredNucleus, ", the simulation of ", ObservedNucleus(), ".");
  }
  return "";
}

void PlanFit(const FitChoice& Choice) {
  Fit = {};
  const std::vector<PlanSite> Sites = FindPlanSites();
  if (std::none_of(Sites.begin(), Sites.end(), [](const PlanSite& Each) { return Each.Observed; })) {
    throw Failure("the NMR atoms hold no nucleus that is observed");
  }
  const std::vector<bool> Chosen = FindChosen(Choice, Sites.size());
  ChooseWindows(Choice, Sites, Chosen);
  if (std::none_of(Sites.begin(), Sites.end(),
                   [](const PlanSite& Each) { return Each.Observed && IsWithin(Each.Ppm); })) {
    throw Failure("no simulated signal lies in the window");
  }
  const std::vector<int> Groups = FindShiftGroups(Sites);
  AddShiftRows(Choice, Sites, Groups, Chosen);
  AddCouplingRows(Choice, Sites, Groups, Chosen);
  AddShapeRows(Choice);
  Fit.Broadening = ChooseBroadening(Sites);
}

Text NameOfFitRow(const FitRow& Row) {
  switch (Row.Kind) {
    case FitShift: {
      Text Name = "shift of ";
      for (const int Site : Row.Sites) Name += (Site == Row.Sites.front() ? "" : ", ") + LabelsOfSite(Site);
      return Name;
    }
    case FitCoupling: {
      Text Name =
          Join("J of ", LabelsOfSite(Row.Pairs.front().first), " with ", LabelsOfSite(Row.Pairs.front().second));
      if (Row.Pairs.size() > 1) Name += Join(" and ", static_cast<Long>(Row.Pairs.size()) - 1, " more");
      return Name;
    }
    case FitWidth:
      return "line width";
    case FitScale:
      return "scale";
    default:
      return "baseline";
  }
}

void TakeFitIntoTables() {
  Fit.Taken.clear();
  const std::vector<int> SiteOf = FindSiteOfAtoms();
  const auto ForEachAtom = [&](int Site, auto Act) {
    for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
      if (SiteOf[static_cast<std::size_t>(Atom)] == Site) Act(Atom);
    }
  };
  for (const FitRow& Row : Fit.Rows) {
    if (!Row.Free || Row.Error < 0) continue;
    for (const int Site : Row.Sites) {
      ForEachAtom(Site, [&](int Atom) {
        W.Shielding[Atom] = ToSingle(Double{W.Shielding[Atom]} + Double{W.ChemicalShift[Atom]} - Row.Value);
        Fit.Taken.push_back({.First = Atom, .Value = W.Shielding[Atom]});
        // What is measured has no error bar of a prediction.
        if (Atom <= W.ShieldingError.UpperBound()) W.ShieldingError[Atom] = ToSingle(Row.Error);
      });
    }
    for (const auto& [A, B] : Row.Pairs) {
      ForEachAtom(A, [&, Other = B](int First) {
        ForEachAtom(Other, [&](int Second) {
          W.Coupling(First, Second) = W.Coupling(Second, First) = ToSingle(Row.Value);
          Fit.Taken.push_back({.First = First, .Second = Second, .Value = ToSingle(Row.Value)});
        });
      });
    }
  }
  FindSpinSites();  // the shifts follow
  W.DocumentDirty = W.SpectResultsStale = True;
}

bool HasTakenValues() {
  return std::all_of(Fit.Taken.begin(), Fit.Taken.end(), [](const TakenValue& Each) {
    if (Each.First >= W.NumNMRAtoms || Each.Second >= W.NumNMRAtoms) return false;
    if (Each.Second < 0) return Each.First <= W.Shielding.UpperBound() && W.Shielding[Each.First] == Each.Value;
    return IsSet(W.CouplingAvailable) && W.Coupling(Each.First, Each.Second) == Each.Value;
  });
}

}  // namespace zelvanor
