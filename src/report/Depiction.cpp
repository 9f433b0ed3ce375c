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

constexpr Double Margin = 0.95;      // above and below all atoms
constexpr Double SideMargin = 1.3;   // beside them, for numbers
constexpr Double SymbolRoom = 0.3;   // that a symbol takes off a bond
constexpr Double BondGap = 0.14;     // between the lines of a double bond
constexpr Double InnerShare = 0.14;  // by which its inner line is shorter at each end
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

struct Bond {
  int First;  // places in the list of drawn atoms
  int Second;
  int Order;
  bool Aromatic;
};

struct Sketch {
  std::vector<DrawnAtom> Atoms;
  std::vector<Bond> Bonds;
  std::map<int, int> PlaceOf;  // by index of the atom
};

int OrderOf(TextView Type) { return Type == "d" ? 2 : Type == "t" ? 3 : 1; }

void AddBonds(Sketch& To) {
  for (std::size_t Place = 0; Place < To.Atoms.size(); ++Place) {
    const int Atom = To.Atoms[Place].Atom;
    for (int K = 0; K < W.AtomCoordination[Atom]; ++K) {
      const auto Other = To.PlaceOf.find(W.AtomNeighbour(Atom, K));
      if (Other == To.PlaceOf.end() || Other->second <= static_cast<int>(Place)) continue;
      const Text Type(TrimBlanks(W.AtomBondType(Atom, K).View()));
      To.Bonds.push_back({static_cast<int>(Place), Other->second, OrderOf(Type), Type == "a"});
    }
  }
}

// Every aromatic carbon, and every nitrogen with two neighbours, gets one double bond where that is possible; other
// elements only where a carbon would have none.
void ChooseDoubleBonds(Sketch& Of) {
  constexpr int Carbon = 6;
  constexpr int Nitrogen = 7;
  const std::size_t Count = Of.Atoms.size();
  std::vector<bool> Wanted(Count, false);
  std::vector<bool> HasDouble(Count, false);
  for (const Bond& Each : Of.Bonds) {
    for (const int End : {Each.First, Each.Second}) {
      if (Each.Order > 1) HasDouble[static_cast<std::size_t>(End)] = true;
    }
  }
  Matching Pairs;
  StartMatching(Pairs, static_cast<int>(Count));
  for (const Bond& Each : Of.Bonds) {
    const auto First = static_cast<std::size_t>(Each.First);
    const auto Second = static_cast<std::size_t>(Each.Second);
    if (!Each.Aromatic || HasDouble[First] || HasDouble[Second]) continue;
    AddEdge(Pairs, Each.First, Each.Second);
    Wanted[First] = Wanted[Second] = true;
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
  for (Bond& Each : Of.Bonds) {
    if (Pairs.Mate[static_cast<std::size_t>(Each.First)] == Each.Second) Each.Order = 2;
  }
}

void PlaceAtoms(Sketch& To, const std::vector<FlatPlace>& Places) {
  for (std::size_t K = 0; K < To.Atoms.size(); ++K) {
    To.Atoms[K].X = Places[K].X;
    To.Atoms[K].Y = -Places[K].Y;
  }
}

// Directions of an atom's bonds, in radians.
std::vector<Double> DirectionsAt(const Sketch& Of, int Place) {
  std::vector<Double> All;
  const DrawnAtom& Own = Of.Atoms[static_cast<std::size_t>(Place)];
  for (const Bond& Each : Of.Bonds) {
    if (Each.First != Place && Each.Second != Place) continue;
    const DrawnAtom& Other = Of.Atoms[static_cast<std::size_t>(Each.First == Place ? Each.Second : Each.First)];
    All.push_back(std::atan2(Other.Y - Own.Y, Other.X - Own.X));
  }
  std::sort(All.begin(), All.end());
  return All;
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

void NameAtom(DrawnAtom& To, std::size_t Bonds) {
  constexpr int Carbon = 6;
  const int Element = W.AtomicNumber[To.Atom];
  // A carbon is shown where no bond would, and with its charge.
  if (Element != Carbon || Bonds == 0 || To.Charge != 0) To.Symbol = ElementSymbol(Element);
}

void PlaceWords(Sketch& To) {
  constexpr Double AtCarbon = 0.36;
  constexpr Double BesideCarbon = 0.2;
  constexpr Double AtSymbol = 0.62;
  for (std::size_t Place = 0; Place < To.Atoms.size(); ++Place) {
    DrawnAtom& Each = To.Atoms[Place];
    const std::vector<Double> Directions = DirectionsAt(To, static_cast<int>(Place));
    NameAtom(Each, Directions.size());
    Double Right = 0;
    for (const Double Direction : Directions) Right += std::cos(Direction);
    constexpr Double Leaning = 0.1;
    Each.HydrogensFirst = Right > Leaning;
    Double Free = FreeDirection(Directions);
    // Beside a symbol stand its hydrogens: the numbers go above or below.
    if (!Each.Symbol.empty() && Each.Hydrogens > 0) Free = std::sin(Free) < 0 ? -FullTurn / 4 : FullTurn / 4;
    constexpr Double Sideways = 0.5;
    Each.NumbersSide = std::cos(Free) > Sideways ? 1 : std::cos(Free) < -Sideways ? -1 : 0;
    const Double Distance = !Each.Symbol.empty() ? AtSymbol : Each.NumbersSide == 0 ? AtCarbon : BesideCarbon;
    Each.NumbersX = Each.X + Distance * std::cos(Free);
    Each.NumbersY = Each.Y + Distance * std::sin(Free);
  }
}

// On which side of a bond more neighbours stand: 1 or -1, 0 for none.
int SideOf(const Sketch& Of, const Bond& Wanted) {
  const DrawnAtom& A = Of.Atoms[static_cast<std::size_t>(Wanted.First)];
  const DrawnAtom& B = Of.Atoms[static_cast<std::size_t>(Wanted.Second)];
  int Sum = 0;
  for (const Bond& Each : Of.Bonds) {
    const bool AtFirst = Each.First == Wanted.First || Each.Second == Wanted.First;
    const bool AtSecond = Each.First == Wanted.Second || Each.Second == Wanted.Second;
    if (AtFirst == AtSecond) continue;  // neither, or the bond itself
    const int Shared = AtFirst ? Wanted.First : Wanted.Second;
    const DrawnAtom& C = Of.Atoms[static_cast<std::size_t>(Each.First == Shared ? Each.Second : Each.First)];
    const Double Cross = (B.X - A.X) * (C.Y - A.Y) - (B.Y - A.Y) * (C.X - A.X);
    // Bonds of a ring count more than those that leave it.
    Sum += (Cross > 0 ? 1 : -1) * (Each.Aromatic ? 3 : 1);
  }
  return (Sum > 0) - (Sum < 0);
}

struct Line {
  Double X1, Y1, X2, Y2;
};

// Moved to the left of its way by Shift, and shortened at both ends.
Line Moved(const Line& From, Double Shift, Double AtStart, Double AtEnd) {
  const Double Length = std::max(std::hypot(From.X2 - From.X1, From.Y2 - From.Y1), 1.0e-6);
  const Double UX = (From.X2 - From.X1) / Length;
  const Double UY = (From.Y2 - From.Y1) / Length;
  return {From.X1 + UX * AtStart - UY * Shift, From.Y1 + UY * AtStart + UX * Shift, From.X2 - UX * AtEnd - UY * Shift,
          From.Y2 - UY * AtEnd + UX * Shift};
}

void AddStroke(Depiction& To, const Line& Of, StrokeKind Kind = StrokeKind::Plain) {
  To.Strokes.push_back({Of.X1, Of.Y1, Of.X2, Of.Y2, Kind});
}

void DrawBond(const Sketch& Of, const Bond& Each, Depiction& To) {
  const DrawnAtom& A = Of.Atoms[static_cast<std::size_t>(Each.First)];
  const DrawnAtom& B = Of.Atoms[static_cast<std::size_t>(Each.Second)];
  const Line Axis{A.X, A.Y, B.X, B.Y};
  const Double AtA = A.Symbol.empty() ? 0 : SymbolRoom;
  const Double AtB = B.Symbol.empty() ? 0 : SymbolRoom;
  const int Side = SideOf(Of, Each);
  if (Each.Order == 2 && Side == 0) {
    AddStroke(To, Moved(Axis, BondGap / 2, AtA, AtB));
    return AddStroke(To, Moved(Axis, -BondGap / 2, AtA, AtB));
  }
  AddStroke(To, Moved(Axis, 0, AtA, AtB));
  if (Each.Order == 1) return;
  const Double InnerA = std::max(AtA, InnerShare);
  const Double InnerB = std::max(AtB, InnerShare);
  if (Each.Order == 2) return AddStroke(To, Moved(Axis, Side * BondGap, InnerA, InnerB));
  for (const int Beside : {-1, 1}) AddStroke(To, Moved(Axis, Beside * BondGap, InnerA, InnerB));
}

void DrawBonds(const Sketch& Of, const std::map<std::pair<int, int>, bool>& Wedges, Depiction& To) {
  for (const Bond& Each : Of.Bonds) {
    const auto DrawnAs = [&](int From, int Towards) {
      const DrawnAtom& Centre = Of.Atoms[static_cast<std::size_t>(From)];
      const DrawnAtom& Other = Of.Atoms[static_cast<std::size_t>(Towards)];
      const auto Found = Wedges.find({Centre.Atom, Other.Atom});
      if (Found == Wedges.end() || Each.Order != 1) return false;
      AddStroke(To, Moved({Centre.X, Centre.Y, Other.X, Other.Y}, 0, 0, Other.Symbol.empty() ? 0 : SymbolRoom),
                Found->second ? StrokeKind::Wedge : StrokeKind::Hashes);
      return true;
    };
    if (!DrawnAs(Each.First, Each.Second) && !DrawnAs(Each.Second, Each.First)) DrawBond(Of, Each, To);
  }
}

Sketch BeginSketch() {
  Sketch Made;
  for (int Atom = 0; Atom < W.NumAtoms; ++Atom) {
    if (W.AtomicNumber[Atom] == 0 || CarrierOf(Atom) != Atom) continue;
    Made.PlaceOf[Atom] = static_cast<int>(Made.Atoms.size());
    Made.Atoms.emplace_back().Atom = Atom;
  }
  const auto AtomAt = [&](int Atom) -> DrawnAtom& { return Made.Atoms[static_cast<std::size_t>(Made.PlaceOf[Atom])]; };
  for (int Atom = 0; Atom < W.NumAtoms; ++Atom) {
    if (W.AtomicNumber[Atom] == 1 && CarrierOf(Atom) != Atom) ++AtomAt(CarrierOf(Atom)).Hydrogens;
  }
  for (const auto& [Atom, Charge] : FormalCharges()) {
    if (Made.PlaceOf.contains(Atom - 1)) AtomAt(Atom - 1).Charge = Charge;
  }
  for (int Entry = 0; Entry < W.NumNMRAtoms; ++Entry) {
    const int Atom = AtomOfEntry(Entry);
    if (Atom >= 0 && Made.PlaceOf.contains(CarrierOf(Atom))) AtomAt(CarrierOf(Atom)).Entries.push_back(Entry);
  }
  return Made;
}

// Moves all places so that they begin at the margin.
void MoveToCorner(Sketch& Of, Depiction& To) {
  Double Left = INFINITY;
  Double Top = INFINITY;
  Double Right = -INFINITY;
  Double Bottom = -INFINITY;
  for (const DrawnAtom& Each : Of.Atoms) {
    Left = std::min(Left, Each.X);
    Right = std::max(Right, Each.X);
    Top = std::min(Top, Each.Y);
    Bottom = std::max(Bottom, Each.Y);
  }
  for (DrawnAtom& Each : Of.Atoms) {
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
  Sketch Drawn = BeginSketch();
  if (Drawn.Atoms.empty()) return Made;
  AddBonds(Drawn);
  ChooseDoubleBonds(Drawn);
  std::vector<int> Atoms;
  for (const DrawnAtom& Each : Drawn.Atoms) Atoms.push_back(Each.Atom);
  const std::vector<FlatPlace> Places = FindFlatPlaces(Atoms);
  PlaceAtoms(Drawn, Places);
  MoveToCorner(Drawn, Made);
  PlaceWords(Drawn);
  DrawBonds(Drawn, FindWedges(Atoms, Places), Made);
  Made.Atoms = std::move(Drawn.Atoms);
  return Made;
}

}  // namespace zelvanor
