#include "files/StructureSketch.h"

#include <algorithm>
#include <cmath>

namespace zelvanor {

namespace {

constexpr Double SymbolRoom = 0.3;   // that a symbol takes off a bond
constexpr Double BondGap = 0.14;     // between the lines of a double bond
constexpr Double InnerShare = 0.14;  // by which its inner line is shorter at each end

// From one atom to another, moved to the left of its way by Shift, and shortened at both ends.
DrawnStroke Between(const SketchAtom& A, const SketchAtom& B, Double Shift, Double AtStart, Double AtEnd) {
  const Double Length = std::max(std::hypot(B.X - A.X, B.Y - A.Y), 1.0e-6);
  const Double UX = (B.X - A.X) / Length;
  const Double UY = (B.Y - A.Y) / Length;
  return {A.X + UX * AtStart - UY * Shift, A.Y + UY * AtStart + UX * Shift, B.X - UX * AtEnd - UY * Shift,
          B.Y - UY * AtEnd + UX * Shift};
}

Double RoomAt(const SketchAtom& Atom) { return Atom.Symbol.empty() ? 0 : SymbolRoom; }

// On which side of a bond more neighbours stand: 1 or -1, 0 for none.
int SideOf(const Sketch& Of, const SketchBond& Wanted) {
  const SketchAtom& A = Of.Atoms[Wanted.First];
  const SketchAtom& B = Of.Atoms[Wanted.Second];
  int Sum = 0;
  for (const SketchBond& Each : Of.Bonds) {
    const bool AtFirst = Each.First == Wanted.First || Each.Second == Wanted.First;
    const bool AtSecond = Each.First == Wanted.Second || Each.Second == Wanted.Second;
    if (AtFirst == AtSecond) continue;  // neither, or the bond itself
    const std::size_t Shared = AtFirst ? Wanted.First : Wanted.Second;
    const SketchAtom& C = Of.Atoms[Each.First == Shared ? Each.Second : Each.First];
    const Double Cross = (B.X - A.X) * (C.Y - A.Y) - (B.Y - A.Y) * (C.X - A.X);
    // Bonds of a ring count more than those that leave it.
    Sum += (Cross > 0 ? 1 : -1) * (Each.Aromatic ? 3 : 1);
  }
  return (Sum > 0) - (Sum < 0);
}

}  // namespace

void ScaleToBonds(Sketch& Of) {
  std::vector<Double> Lengths;
  for (const SketchBond& Each : Of.Bonds) {
    const SketchAtom& A = Of.Atoms[Each.First];
    const SketchAtom& B = Of.Atoms[Each.Second];
    Lengths.push_back(std::hypot(B.X - A.X, B.Y - A.Y));
  }
  if (Lengths.empty()) return;
  const auto Middle = Lengths.begin() + static_cast<std::ptrdiff_t>(Lengths.size() / 2);
  std::nth_element(Lengths.begin(), Middle, Lengths.end());
  const Double Length = *Middle;
  if (!(Length > 0)) return;
  for (SketchAtom& Each : Of.Atoms) {
    Each.X /= Length;
    Each.Y /= Length;
  }
}

std::vector<Double> DirectionsAt(const Sketch& Of, std::size_t Place) {
  std::vector<Double> All;
  const SketchAtom& Own = Of.Atoms[Place];
  for (const SketchBond& Each : Of.Bonds) {
    if (Each.First != Place && Each.Second != Place) continue;
    const SketchAtom& Other = Of.Atoms[Each.First == Place ? Each.Second : Each.First];
    All.push_back(std::atan2(Other.Y - Own.Y, Other.X - Own.X));
  }
  std::sort(All.begin(), All.end());
  return All;
}

void ShortenSymbols(Sketch& Of) {
  constexpr Double Leaning = 0.1;
  for (std::size_t Place = 0; Place < Of.Atoms.size(); ++Place) {
    SketchAtom& Each = Of.Atoms[Place];
    const std::vector<Double> Directions = DirectionsAt(Of, Place);
    Double Right = 0;
    for (const Double Direction : Directions) Right += std::cos(Direction);
    Each.HydrogensFirst = Right > Leaning;
    // A carbon is shown where no bond would, with its charge, and as a rare isotope.
    if (Each.Symbol == "C" && !Directions.empty() && Each.Charge == 0 && Each.Isotope == 0) Each.Symbol.clear();
  }
}

void AddBondStrokes(const Sketch& Of, const SketchBond& Each, std::vector<DrawnStroke>& To) {
  const SketchAtom& A = Of.Atoms[Each.First];
  const SketchAtom& B = Of.Atoms[Each.Second];
  const auto Add = [&](Double Shift, Double AtA, Double AtB) { To.push_back(Between(A, B, Shift, AtA, AtB)); };
  const int Side = SideOf(Of, Each);
  if (Each.Order == 2 && Side == 0) {
    for (const Double Shift : {BondGap / 2, -BondGap / 2}) Add(Shift, RoomAt(A), RoomAt(B));
    return;
  }
  Add(0, RoomAt(A), RoomAt(B));
  const auto AddInner = [&](int Beside) {
    Add(Beside * BondGap, std::max(RoomAt(A), InnerShare), std::max(RoomAt(B), InnerShare));
  };
  if (Each.Order == 2) AddInner(Side);
  if (Each.Order == 3) {
    for (const int Beside : {-1, 1}) AddInner(Beside);
  }
}

DrawnStroke StrokeFrom(const SketchAtom& Centre, const SketchAtom& Other, StrokeKind Kind) {
  DrawnStroke Made = Between(Centre, Other, 0, 0, RoomAt(Other));
  Made.Kind = Kind;
  return Made;
}

}  // namespace zelvanor
