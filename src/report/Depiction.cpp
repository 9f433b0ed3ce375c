#include "report/Depiction.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>

#include "files/Matching.h"
#include "report/FlatPlaces.h"
#include "report/Handedness.h"
#include "report/MolBlock.h"
#include "report/Signals.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr Double Margin = 0.95;     // above and below all atoms
constexpr Double SideMargin = 1.3;  // beside them, for numbers
constexpr Double FullTurn = 2 * std::numbers::pi;

bool IsHeavy(int Atom) { return W.AtomicNumber[Atom] > 1; }

// A hydrogen is drawn at the atom that carries it.
int CarrierOf(int Atom) {
  for (int K = 0; !IsHeavy(Atom) && K < W.AtomCoordination[Atom]; ++K) {
    const int Other = W.AtomNeighbour(Atom, K);
    if (IsHeavy(Other)) return Other;
  }
  return Atom;
}

struct Plan {
  Sketch Drawn;
  std::vector<DrawnAtom> Atoms;        // beside those of the sketch, without its share of them
  std::map<int, std::size_t> PlaceOf;  // by index of the atom
};

int OrderOf(TextView Type) { return Type == "d" ? 2 : Type == "t" ? 3 : 1; }

void AddBonds(Plan& To) {
  for (std::size_t Place = 0; Place < To.Atoms.size(); ++Place) {
    const int Atom = To.Atoms[Place].Atom;
    for (int K = 0; K < W.AtomCoordination[Atom]; ++K) {
      const auto Other = To.PlaceOf.find(W.AtomNeighbour(Atom, K));
      if (Other == To.PlaceOf.end() || Other->second <= Place) continue;
      const Text Type(TrimBlanks(W.AtomBondType(Atom, K).View()));
      To.Drawn.Bonds.push_back({Place, Other->second, OrderOf(Type), Type == "a"});
    }
  }
}

// Every aromatic carbon, and every nitrogen with two neighbours, gets one double bond where that is possible; other
// elements only where a carbon would have none.
void ChooseDoubleBonds(Plan& Of) {
  constexpr int Carbon = 6;
  constexpr int Nitrogen = 7;
  const std::size_t Count = Of.Atoms.size();
  std::vector<bool> Wanted(Count, false);
  std::vector<bool> HasDouble(Count, false);
  for (const SketchBond& Each : Of.Drawn.Bonds) {
    if (Each.Order > 1) HasDouble[Each.First] = HasDouble[Each.Second] = true;
  }
  Matching Pairs;
  StartMatching(Pairs, static_cast<int>(Count));
  for (const SketchBond& Each : Of.Drawn.Bonds) {
    if (!Each.Aromatic || HasDouble[Each.First] || HasDouble[Each.Second]) continue;
    AddEdge(Pairs, static_cast<int>(Each.First), static_cast<int>(Each.Second));
    Wanted[Each.First] = Wanted[Each.Second] = true;
  }
  const auto NeedsOne = [&](std::size_t Place) {
    const int Atom = Of.Atoms[Place].Atom;
    return Wanted[Place] &&
           (W.AtomicNumber[Atom] == Carbon || (W.AtomicNumber[Atom] == Nitrogen && W.AtomCoordination[Atom] == 2));
  };
  for (std::size_t Place = 0; Place < Count; ++Place) Pairs.Closed[Place] = !NeedsOne(Place);
  const auto MateAll = [&] {
    for (std::size_t Place = 0; Place < Count; ++Place) {
      if (NeedsOne(Place) && Pairs.Mate[Place] < 0) FindMate(Pairs, static_cast<int>(Place));
    }
  };
  MateAll();
  for (std::size_t Place = 0; Place < Count; ++Place) Pairs.Closed[Place] = !Wanted[Place];
  MateAll();
  for (SketchBond& Each : Of.Drawn.Bonds) {
    if (Pairs.Mate[Each.First] == static_cast<int>(Each.Second)) Each.Order = 2;
  }
}

// The middle of the widest gap between the bonds.
Double FreeDirection(const std::vector<Double>& Taken) {
  if (Taken.empty()) return FullTurn / 4;
  Double Widest = 0;
  Double Middle = 0;
  for (std::size_t K = 0; K < Taken.size(); ++K) {
    const Double Next = K + 1 < Taken.size() ? Taken[K + 1] : Taken.front() + FullTurn;
    if (Next - Taken[K] > Widest) {
      Widest = Next - Taken[K];
      Middle = (Next + Taken[K]) / 2;
    }
  }
  return Middle;
}

void PlaceNumbers(Plan& To) {
  constexpr Double AtCarbon = 0.36;
  constexpr Double BesideCarbon = 0.2;
  constexpr Double AtSymbol = 0.62;
  for (std::size_t Place = 0; Place < To.Atoms.size(); ++Place) {
    const SketchAtom& At = To.Drawn.Atoms[Place];
    DrawnAtom& Each = To.Atoms[Place];
    Double Free = FreeDirection(DirectionsAt(To.Drawn, Place));
    // Beside a symbol stand its hydrogens: the numbers go above or below.
    if (!At.Symbol.empty() && At.Hydrogens > 0) Free = std::sin(Free) < 0 ? -FullTurn / 4 : FullTurn / 4;
    constexpr Double Sideways = 0.5;
    Each.NumbersSide = std::cos(Free) > Sideways ? 1 : std::cos(Free) < -Sideways ? -1 : 0;
    const Double Distance = !At.Symbol.empty() ? AtSymbol : Each.NumbersSide == 0 ? AtCarbon : BesideCarbon;
    Each.NumbersX = At.X + Distance * std::cos(Free);
    Each.NumbersY = At.Y + Distance * std::sin(Free);
  }
}

void DrawBonds(const Plan& Of, const std::map<std::pair<int, int>, bool>& Wedges, Depiction& To) {
  for (const SketchBond& Each : Of.Drawn.Bonds) {
    const auto DrawnAs = [&](std::size_t From, std::size_t Towards) {
      const auto Found = Wedges.find({Of.Atoms[From].Atom, Of.Atoms[Towards].Atom});
      if (Found == Wedges.end() || Each.Order != 1) return false;
      To.Strokes.push_back(StrokeFrom(Of.Drawn.Atoms[From], Of.Drawn.Atoms[Towards],
                                      Found->second ? StrokeKind::Wedge : StrokeKind::Hashes));
      return true;
    };
    if (DrawnAs(Each.First, Each.Second) || DrawnAs(Each.Second, Each.First)) continue;
    AddBondStrokes(Of.Drawn, Each, To.Strokes);
  }
}

Plan BeginPlan() {
  Plan Made;
  for (int Atom = 0; Atom < W.NumAtoms; ++Atom) {
    if (W.AtomicNumber[Atom] == 0 || CarrierOf(Atom) != Atom) continue;
    Made.PlaceOf[Atom] = Made.Atoms.size();
    Made.Atoms.emplace_back().Atom = Atom;
    Made.Drawn.Atoms.emplace_back().Symbol = ElementSymbol(W.AtomicNumber[Atom]);
  }
  for (int Atom = 0; Atom < W.NumAtoms; ++Atom) {
    if (W.AtomicNumber[Atom] == 1 && CarrierOf(Atom) != Atom)
      ++Made.Drawn.Atoms[Made.PlaceOf[CarrierOf(Atom)]].Hydrogens;
  }
  for (const auto& [Atom, Charge] : FormalCharges()) {
    if (Made.PlaceOf.contains(Atom - 1)) Made.Drawn.Atoms[Made.PlaceOf[Atom - 1]].Charge = Charge;
  }
  for (int Entry = 0; Entry < W.NumNMRAtoms; ++Entry) {
    const int Atom = AtomOfEntry(Entry);
    if (Atom < 0) continue;
    if (const auto Place = Made.PlaceOf.find(CarrierOf(Atom)); Place != Made.PlaceOf.end())
      Made.Atoms[Place->second].Entries.push_back(Entry);
  }
  return Made;
}

// Moves all places so that they begin at the margin.
void MoveToCorner(Sketch& Of, Depiction& To) {
  Double Left = INFINITY;
  Double Top = INFINITY;
  Double Right = -INFINITY;
  Double Bottom = -INFINITY;
  for (const SketchAtom& Each : Of.Atoms) {
    Left = std::min(Left, Each.X);
    Right = std::max(Right, Each.X);
    Top = std::min(Top, Each.Y);
    Bottom = std::max(Bottom, Each.Y);
  }
  for (SketchAtom& Each : Of.Atoms) {
    Each.X += SideMargin - Left;
    Each.Y += Margin - Top;
  }
  To.Width = Right - Left + 2 * SideMargin;
  To.Height = Bottom - Top + 2 * Margin;
}

}  // namespace

Depiction DepictMolecules() {
  Depiction Made;
  if (!IsSet(W.MoleculeLoaded)) return Made;
  Plan Of = BeginPlan();
  if (Of.Atoms.empty()) return Made;
  AddBonds(Of);
  ChooseDoubleBonds(Of);
  std::vector<int> Atoms;
  for (const DrawnAtom& Each : Of.Atoms) Atoms.push_back(Each.Atom);
  const std::vector<FlatPlace> Places = FindFlatPlaces(Atoms);
  for (std::size_t K = 0; K < Places.size(); ++K) {
    Of.Drawn.Atoms[K].X = Places[K].X;
    Of.Drawn.Atoms[K].Y = -Places[K].Y;
  }
  ScaleToBonds(Of.Drawn);
  MoveToCorner(Of.Drawn, Made);
  ShortenSymbols(Of.Drawn);
  PlaceNumbers(Of);
  DrawBonds(Of, FindWedges(Atoms, Places), Made);
  Made.Atoms = std::move(Of.Atoms);
  for (std::size_t K = 0; K < Made.Atoms.size(); ++K) static_cast<SketchAtom&>(Made.Atoms[K]) = Of.Drawn.Atoms[K];
  return Made;
}

}  // namespace zelvanor
