#include "measured/MeasuredView.h"

#include <algorithm>
#include <cmath>

#include "basic/Numbers.h"
#include "measured/MeasuredTrace.h"
#include "measured/Multiplets.h"
#include "molecule/AtomSelection.h"
#include "platform/Form.h"
#include "platform/Variables.h"
#include "shell/Frame.h"
#include "spectrum/SpectrumDrawing.h"
#include "spectrum/SpectrumInteraction.h"
#include "spectrum/SpectrumView.h"
#include "tables/AtomLabels.h"
#include "workspace/Helpers.h"

namespace zelvanor {

MeasuredViewState MeasuredView;

namespace {

WorkspaceState& W = Workspace;

constexpr Double LeastScale = 1.0e-3;
constexpr Double LargestScale = 1.0e6;

void Stretch(Double Factor) {
  MeasuredView.Scale = std::clamp(MeasuredView.Scale * Factor, LeastScale, LargestScale);
  DrawSpectra();
}

void Arrange(MeasuredArrangement Chosen) {
  MeasuredView.Arrangement = Chosen;
  SetChecked(Main.mnuMeasuredOverlay, ToFlag(Chosen == OverlayArrangement));
  SetChecked(Main.mnuMeasuredStack, ToFlag(Chosen == StackArrangement));
  SetChecked(Main.mnuMeasuredMirror, ToFlag(Chosen == MirrorArrangement));
  RefreshView();
}

void TurnOver(MenuItem& Item) {
  SetChecked(Item, ToFlag(!IsSet(Item.Checked)));
  RefreshView();
}

bool HasMap() { return W.PeakSiteLines >= W.PeakCount && IsSet(W.SpectraAvailable); }

// The entries of a line in the map.
std::pair<Long, Long> EntriesOf(Long Peak) {
  if (!HasMap() || Peak < 0 || Peak >= W.PeakSiteLines) return {0, 0};
  return {Peak == 0 ? 0 : W.PeakSiteEnd[Peak - 1], W.PeakSiteEnd[Peak]};
}

// A share below this is a trace of mixing, no assignment.
constexpr int LeastShare = 10;  // percent

}  // namespace

void InitMeasuredView() {
  MeasuredView = {};
  for (MenuItem* Item : {&Main.mnuMeasuredStack, &Main.mnuMeasuredMirror, &Main.mnuMeasuredEqualArea,
                         &Main.mnuViewLabels, &Main.mnuViewTree, &Main.mnuViewPane}) {
    SetChecked(*Item, False);
  }
  SetChecked(Main.mnuMeasuredOverlay, True);
}

void AddMeasuredViewVariables() {
  AddVariable("MeasuredArrangement", MeasuredView.Arrangement);
  AddVariable("MeasuredEqualArea", MeasuredView.EqualArea);
  AddVariable("MeasuredScale", MeasuredView.Scale);
}

void Spectrum1_MouseWheel(Double Notches, int Shift) {
  constexpr Double FactorPerNotch = 1.25;
  constexpr Double MostNotches = 20.0;
  if ((Shift & CtrlKey) == 0 || !HasMeasured()) return;
  Stretch(std::pow(FactorPerNotch, std::clamp(Notches, -MostNotches, MostNotches)));
}

bool PressSpectrumViewKey(int KeyCode, int Shift) {
  constexpr int Backspace = 8;
  constexpr int Up = 38;
  constexpr int Down = 40;
  if (KeyCode == Backspace) {
    bool Went = false;
    IgnoreFailure([&] { Went = ZoomBack(); });
    return Went;
  }
  if ((Shift & CtrlKey) == 0 || !HasMeasured() || (KeyCode != Up && KeyCode != Down)) return false;
  Spectrum1_MouseWheel(KeyCode == Up ? 1.0 : -1.0, CtrlKey);
  return true;
}

void mnuMeasuredOverlay_Click() { Arrange(OverlayArrangement); }
void mnuMeasuredStack_Click() { Arrange(StackArrangement); }
void mnuMeasuredMirror_Click() { Arrange(MirrorArrangement); }

void mnuMeasuredEqualArea_Click() {
  TurnOver(Main.mnuMeasuredEqualArea);
  MeasuredView.EqualArea = Main.mnuMeasuredEqualArea.Checked;
  MeasuredView.Scale = 1.0;
  RefreshView();
}

void mnuViewLabels_Click() { TurnOver(Main.mnuViewLabels); }
void mnuViewTree_Click() { TurnOver(Main.mnuViewTree); }
void mnuViewPane_Click() { ShowPane(ToFlag(!IsSet(Main.mnuViewPane.Checked))); }

Text DescribePeakAtoms(Long Peak) {
  Text Words;
  const auto [First, End] = EntriesOf(Peak);
  for (Long Entry = First; Entry < End; ++Entry) {
    if (W.PeakSiteShare[Entry] < LeastShare) continue;
    for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
      if (W.SiteOfNMRAtom[Atom] == W.PeakSite[Entry]) Words += Join(Words.empty() ? "" : ", ", AtomLabel(Atom));
    }
    Words += Join(" ", W.PeakSiteShare[Entry], "%");
  }
  return Words;
}

void ShowAtomsOfPeak(Long Peak) {
  const auto [First, End] = EntriesOf(Peak);
  MeasuredView.Picked = First < End ? int(W.PeakSite[First]) : 0;
  MeasuredView.Marked.clear();
  if (Peak >= 0 && First == End) {
    // Without a map the nearest shift is the best guess.
    Double Least = INFINITY;
    const Double Ppm = Divide(-Double{W.PeakFrequency[Peak]}, W.NMRFrequency);
    for (const Multiplet& Each : FindMultiplets()) {
      if (std::fabs(Each.Ppm - Ppm) >= Least) continue;
      Least = std::fabs(Each.Ppm - Ppm);
      MeasuredView.Picked = Each.Site;
    }
  }
  if (const Text Words = DescribePeakAtoms(Peak); !Words.empty()) Main.Spectrum1.Description += "  Atoms: " + Words;
  if (PaneWidth() == 0) return;
  UnselectAllAtoms(Main.MolRender1);
  for (Long Entry = First; Entry < End; ++Entry) {
    if (W.PeakSiteShare[Entry] < LeastShare) continue;
    for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
      const int Shown = W.NMRAtom[Atom] - 1;
      if (W.SiteOfNMRAtom[Atom] == W.PeakSite[Entry] && Shown >= 0 && Shown < GetAtomCount(Main.MolRender1)) {
        SelectAtom(Main.MolRender1, Shown, True);
      }
    }
  }
  RepaintRender(Main.MolRender1);
}

void MarkLinesOfAtom(int Atom) {
  std::vector<int> Sites;
  if (HasMap()) {
    for (int Place = 0; Place < W.NumNMRAtoms; ++Place) {
      if (Atom >= 0 && W.NMRAtom[Place] == Atom + 1 && W.SiteOfNMRAtom[Place] > 0) {
        Sites.push_back(W.SiteOfNMRAtom[Place]);
      }
    }
  }
  if (Sites == MeasuredView.Marked) return;
  MeasuredView.Marked = Sites;
  DrawSpectra();
}

}  // namespace zelvanor
