#include "platform/RenderScene.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <tuple>
#include <utility>

namespace zelvanor {

namespace {

// Sizes in angstrom, so that they grow with the molecule; the limits are in pixels.
struct Measure {
  Double Angstrom;
  Double Least;
  Double Most;
  Double At(Double Scale) const { return std::clamp(Angstrom * Scale, Least, Most); }
};

constexpr Measure StickWidth{0.06, 1.5, 4};
constexpr Measure LineWidth{0.12, 2, 12};
constexpr Measure MultipleLineWidth{0.07, 1.5, 8};
constexpr Measure CylinderWidth{0.26, 3, 200};
constexpr Measure MultipleCylinderWidth{0.13, 2, 100};
constexpr Measure LineGap{0.15, 3, 200};  // between the middles of the lines of one bond
constexpr Measure CylinderGap{0.2, 4, 200};
constexpr Measure DotRadius{0.09, 2, 6};
constexpr Measure LabelHeight{0.3, 11, 18};
constexpr Double LeastBallRadius = 1.5;
constexpr Double LeastPickRadius = 4;

// A bond begins a little inside the ball of its atom, so that no gap shows.
constexpr Double InsideBall = 0.9;
// Of two things at one depth the one with the larger bias is in front (angstrom).
constexpr Double BallBias = 0.02;
constexpr Double DotBias = 0.2;
constexpr Double LabelBias = 0.21;
// What lies farther out cannot show.
constexpr Double FarthestPixel = 1.0e6;

constexpr Colour MonochromeBond = Rgb(150, 150, 150);

struct SceneBuilder {
  const RenderControl& Of;
  RenderScene& Scene;
  Double Scale;
  Double Width;
  Double Height;
  std::vector<ViewPoint> Points;
};

int RedOf(Colour Value) { return Value & 255; }
int GreenOf(Colour Value) { return (Value >> 8) & 255; }
int BlueOf(Colour Value) { return (Value >> 16) & 255; }
Double BrightnessOf(Colour Value) { return 0.299 * RedOf(Value) + 0.587 * GreenOf(Value) + 0.114 * BlueOf(Value); }

// In monochrome the atoms are light, so that the grey of marked ones stands out and labels are read on all of them.
Colour ShownAtomColor(const RenderControl& Of, Colour Value) {
  if (!Of.Monochrome || Value == Of.MarkColor) return Value;
  constexpr int Darkest = 170;
  const int Grey = Darkest + static_cast<int>(BrightnessOf(Value) * (255 - Darkest) / 255);
  return Rgb(Grey, Grey, Grey);
}

Colour ShownBondColor(const RenderControl& Of) { return Of.Monochrome ? MonochromeBond : Of.BondColor; }

Colour ShownLabelColor(const RenderControl& Of, const RenderAtom& Atom) {
  if (Of.Monochrome) return Black;
  const bool Marked = Of.AtomRenderType == AtomLabels && Atom.Color == Of.MarkColor;
  return Marked ? Of.MarkColor : Of.LabelColor;
}

// Black round a light text, white round a dark one: it is read on every ground.
Colour HaloOf(Colour Value) { return BrightnessOf(Value) > 110 ? Black : White; }
Colour EdgeOf(Colour Value) { return ShadeOf(Value, 0.5); }

bool Shows(const SceneBuilder& B, const ViewPoint& Place, Double Margin) {
  // Also false for what is no number.
  return Place.X > -Margin && Place.X < B.Width + Margin && Place.Y > -Margin && Place.Y < B.Height + Margin &&
         std::fabs(Place.Depth) < FarthestPixel;
}

Double BallRadius(const RenderAtom& Atom, Double Scale) { return std::max(Atom.Radius * Scale, LeastBallRadius); }

// Round a dot ends what the bonds at it leave open.
Double DotRadiusOf(const RenderControl& Of, Double Scale) {
  const Double Dot = DotRadius.At(Scale);
  switch (Of.BondRenderType) {
    case BondLines:
      return std::max(Dot, LineWidth.At(Scale) / 2 + 1);
    case BondCylinders:
      return std::max(Dot, CylinderWidth.At(Scale) / 2);
    default:
      return Dot;
  }
}

Double DrawnRadius(const RenderControl& Of, const RenderAtom& Atom, Double Scale) {
  return Of.AtomRenderType == AtomLabels ? DotRadiusOf(Of, Scale) : BallRadius(Atom, Scale);
}

void AddBall(SceneBuilder& B, const RenderAtom& Atom, const ViewPoint& Place, int Index) {
  const bool Dot = B.Of.AtomRenderType == AtomLabels;
  if (Dot && !Atom.Label.empty()) return;
  const bool Round = B.Of.AtomRenderType == AtomSpheres || (Dot && B.Of.BondRenderType == BondCylinders);
  DrawItem Item;
  Item.Form = Round && !B.Scene.Simple ? DrawForm::Sphere : DrawForm::Disc;
  Item.Depth = static_cast<Single>(Place.Depth + (Dot ? DotBias : BallBias) * B.Scale);
  Item.X1 = static_cast<Single>(Place.X);
  Item.Y1 = static_cast<Single>(Place.Y);
  Item.Size = static_cast<Single>(DrawnRadius(B.Of, Atom, B.Scale));
  Item.Fill = ShownAtomColor(B.Of, Atom.Color);
  Item.Edge = EdgeOf(Item.Fill);
  Item.Atom = Index;
  B.Scene.Unsorted.push_back(Item);
}

void AddLabel(SceneBuilder& B, const RenderAtom& Atom, const ViewPoint& Place, int Index) {
  if (Atom.Label.empty() || B.Scene.Simple) return;
  DrawItem Item;
  Item.Form = DrawForm::Label;
  Item.Depth = static_cast<Single>(Place.Depth + LabelBias * B.Scale);
  Item.X1 = static_cast<Single>(Place.X);
  Item.Y1 = static_cast<Single>(Place.Y);
  Item.Size = static_cast<Single>(LabelHeight.At(B.Scale));
  Item.Fill = ShownLabelColor(B.Of, Atom);
  Item.Edge = HaloOf(Item.Fill);
  Item.Atom = Index;
  B.Scene.Unsorted.push_back(Item);
}

// A bond from ball to ball, or the half of it that belongs to one of its atoms.
struct BondPiece {
  ViewPoint Start;
  ViewPoint End;
  Double NormalX = 0;  // of length 1 on the surface, the same for both halves
  Double NormalY = 1;
  Colour Fill = 0;
  int Atom = 0;
};

void AddLine(SceneBuilder& B, const BondPiece& Piece, DrawForm Form, Double Width, Double Offset) {
  DrawItem Item;
  Item.Form = Form;
  Item.Depth = static_cast<Single>((Piece.Start.Depth + Piece.End.Depth) / 2);
  Item.X1 = static_cast<Single>(Piece.Start.X + Offset * Piece.NormalX);
  Item.Y1 = static_cast<Single>(Piece.Start.Y + Offset * Piece.NormalY);
  Item.X2 = static_cast<Single>(Piece.End.X + Offset * Piece.NormalX);
  Item.Y2 = static_cast<Single>(Piece.End.Y + Offset * Piece.NormalY);
  // The light falls on the same side of both halves.
  if (std::tie(Item.X2, Item.Y2) < std::tie(Item.X1, Item.Y1)) {
    std::swap(Item.X1, Item.X2);
    std::swap(Item.Y1, Item.Y2);
  }
  Item.Size = static_cast<Single>(Width);
  Item.Fill = Piece.Fill;
  Item.Edge = B.Scene.Simple ? Item.Fill : EdgeOf(Item.Fill);
  Item.Atom = Piece.Atom;
  B.Scene.Unsorted.push_back(Item);
}

// On which side of the bond its ring lies: the side of the atoms that its two atoms are bonded to aromatically. 1 or
// -1.
Double RingSide(const SceneBuilder& B, int First, int Second, const BondPiece& Piece) {
  Double Side = 0;
  const auto AddNeighbors = [&](int Atom, int Other) {
    const ViewPoint& From = B.Points[static_cast<std::size_t>(Atom)];
    for (const RenderBond& Bond : B.Of.Atoms[static_cast<std::size_t>(Atom)].Bonds) {
      if (Bond.Order != AromaticBond || Bond.Neighbor == Other || Bond.Neighbor < 0) continue;
      const ViewPoint& To = B.Points[static_cast<std::size_t>(Bond.Neighbor)];
      Side += (To.X - From.X) * Piece.NormalX + (To.Y - From.Y) * Piece.NormalY;
    }
  };
  AddNeighbors(First, Second);
  AddNeighbors(Second, First);
  return Side < 0 ? -1.0 : 1.0;
}

// Two lines or three side by side; an aromatic bond is one line and a dashed one on the side of the ring.
void AddOrders(SceneBuilder& B, const BondPiece& Piece, int Neighbor, int Order) {
  const bool Cylinders = B.Of.BondRenderType == BondCylinders;
  const DrawForm Form = Cylinders ? DrawForm::Cylinder : DrawForm::Line;
  const Double Single1 = (Cylinders ? CylinderWidth : LineWidth).At(B.Scale);
  const Double Multiple = (Cylinders ? MultipleCylinderWidth : MultipleLineWidth).At(B.Scale);
  const Double Gap = (Cylinders ? CylinderGap : LineGap).At(B.Scale);
  switch (Order) {
    case 2:
      AddLine(B, Piece, Form, Multiple, Gap / 2);
      return AddLine(B, Piece, Form, Multiple, -Gap / 2);
    case 3:
      AddLine(B, Piece, Form, Multiple, Gap);
      AddLine(B, Piece, Form, Multiple, 0);
      return AddLine(B, Piece, Form, Multiple, -Gap);
    case AromaticBond:
      AddLine(B, Piece, Form, Multiple, 0);
      return AddLine(B, Piece, DrawForm::DashedLine, Multiple * (Cylinders ? 0.6 : 1.0),
                     Gap * RingSide(B, Piece.Atom, Neighbor, Piece));
    default:
      return AddLine(B, Piece, Form, Single1, 0);
  }
}

// How far into a bond, as a share of its length, the ball of an atom at its end reaches.
Double BallShareOf(const SceneBuilder& B, int Index, Double Length) {
  const RenderAtom& Atom = B.Of.Atoms[static_cast<std::size_t>(Index)];
  if (B.Of.AtomRenderType == AtomLabels && !Atom.Label.empty()) return 0;
  return InsideBall * DrawnRadius(B.Of, Atom, B.Scale) / Length;
}

// The piece of a bond at the atom First: all of it, or up to its middle.
void AddBondPiece(SceneBuilder& B, int First, int Second, int Order, Colour Fill, bool Whole) {
  const ViewPoint& From = B.Points[static_cast<std::size_t>(First)];
  const ViewPoint& To = B.Points[static_cast<std::size_t>(Second)];
  const Double DX = To.X - From.X;
  const Double DY = To.Y - From.Y;
  const Double DZ = To.Depth - From.Depth;
  const Double Length = std::sqrt(DX * DX + DY * DY + DZ * DZ);
  if (!(Length > 0 && Length < FarthestPixel)) return;
  const Double Start = BallShareOf(B, First, Length);
  const Double End = Whole ? 1 - BallShareOf(B, Second, Length) : 0.5;
  if (!(Start < End)) return;

  BondPiece Piece;
  Piece.Start = {From.X + Start * DX, From.Y + Start * DY, From.Depth + Start * DZ};
  Piece.End = {From.X + End * DX, From.Y + End * DY, From.Depth + End * DZ};
  Piece.Atom = First;
  Piece.Fill = Fill;
  if (const Double Flat = std::hypot(DX, DY); Flat > 0) {
    const Double Sign = First < Second ? 1.0 : -1.0;
    Piece.NormalX = -DY / Flat * Sign;
    Piece.NormalY = DX / Flat * Sign;
  }
  if (B.Scene.Simple || B.Of.BondRenderType == BondSticks) {
    return AddLine(B, Piece, DrawForm::Line, StickWidth.At(B.Scale), 0);
  }
  AddOrders(B, Piece, Second, Order);
}

bool IsListed(const SceneBuilder& B, int Atom, int Neighbor) {
  const std::vector<RenderBond>& Bonds = B.Of.Atoms[static_cast<std::size_t>(Atom)].Bonds;
  return std::any_of(Bonds.begin(), Bonds.end(),
                     [Neighbor](const RenderBond& Bond) { return Bond.Neighbor == Neighbor; });
}

// Both atoms list a bond, as a rule: each draws its own half, or where both halves have one colour the first atom draws
// all of it. A bond that one atom alone lists is drawn by that one.
void AddBond(SceneBuilder& B, int Index, const RenderBond& Bond) {
  const auto FillAt = [&B](int Atom) {
    if (B.Of.BondRenderType != BondLines) return ShownBondColor(B.Of);
    return ShownAtomColor(B.Of, B.Of.Atoms[static_cast<std::size_t>(Atom)].Color);
  };
  const int Neighbor = Bond.Neighbor;
  const Colour Fill = FillAt(Index);
  const Colour OtherFill = FillAt(Neighbor);
  const bool Shared = IsListed(B, Neighbor, Index);
  if (Fill == OtherFill) {
    if (!Shared || Index < Neighbor) AddBondPiece(B, Index, Neighbor, Bond.Order, Fill, true);
    return;
  }
  AddBondPiece(B, Index, Neighbor, Bond.Order, Fill, false);
  if (!Shared) AddBondPiece(B, Neighbor, Index, Bond.Order, OtherFill, false);
}

void ProjectAtoms(SceneBuilder& B) {
  B.Points.reserve(B.Of.Atoms.size());
  for (const RenderAtom& Atom : B.Of.Atoms) B.Points.push_back(ProjectPoint(B.Of, Atom.X, Atom.Y, Atom.Z));
}

void AddAtoms(SceneBuilder& B) {
  // A bond reaches as far from its atom as the atoms are apart; that much margin keeps it.
  const Double BondMargin = 4 * B.Scale;
  const int Count = static_cast<int>(B.Of.Atoms.size());
  for (int Index = 0; Index < Count; ++Index) {
    const RenderAtom& Atom = B.Of.Atoms[static_cast<std::size_t>(Index)];
    const ViewPoint& Place = B.Points[static_cast<std::size_t>(Index)];
    const Double Margin = std::max(BondMargin, DrawnRadius(B.Of, Atom, B.Scale)) + LabelHeight.Most * 4;
    if (!Shows(B, Place, Margin)) continue;
    for (const RenderBond& Bond : Atom.Bonds) {
      if (Bond.Neighbor >= 0) AddBond(B, Index, Bond);
    }
    AddBall(B, Atom, Place, Index);
    AddLabel(B, Atom, Place, Index);
  }
}

// A float as a whole number of the same order.
std::uint32_t SortKey(Single Value) {
  const auto Bits = std::bit_cast<std::uint32_t>(Value);
  constexpr std::uint32_t SignBit = 0x80000000U;
  return (Bits & SignBit) != 0 ? ~Bits : Bits | SignBit;
}

// What lies at one depth keeps the order in which it was added.
void SortItems(RenderScene& Scene) {
  Scene.Order.clear();
  Scene.Order.reserve(Scene.Unsorted.size());
  for (std::size_t Place = 0; Place < Scene.Unsorted.size(); ++Place) {
    Scene.Order.push_back(std::uint64_t{SortKey(Scene.Unsorted[Place].Depth)} << 32 | Place);
  }
  std::sort(Scene.Order.begin(), Scene.Order.end());
  Scene.Items.clear();
  Scene.Items.reserve(Scene.Unsorted.size());
  for (const std::uint64_t Entry : Scene.Order) {
    Scene.Items.push_back(Scene.Unsorted[static_cast<std::uint32_t>(Entry)]);
  }
}

}  // namespace

void BuildScene(const RenderControl& Of, RenderScene& Scene) {
  Scene.Background = Of.Monochrome ? White : Of.BackColor;
  Scene.Simple = Of.SimpleDrawing;
  Scene.Unsorted.clear();
  SceneBuilder Builder{Of,
                       Scene,
                       ViewScale(Of),
                       static_cast<Double>(Of.Width) / TwipsPerPixelX,
                       static_cast<Double>(Of.Height) / TwipsPerPixelY,
                       {}};
  ProjectAtoms(Builder);
  AddAtoms(Builder);
  SortItems(Scene);
}

ViewPoint ProjectPoint(const RenderControl& Of, Double X, Double Y, Double Z) {
  const auto& M = Of.Transform;
  const Double MiddleX = static_cast<Double>(Of.Width) / TwipsPerPixelX / 2;
  const Double MiddleY = static_cast<Double>(Of.Height) / TwipsPerPixelY / 2;
  return {MiddleX + X * M[0] + Y * M[3] + Z * M[6] + M[9], MiddleY - (X * M[1] + Y * M[4] + Z * M[7] + M[10]),
          X * M[2] + Y * M[5] + Z * M[8] + M[11]};
}

Double ViewScale(const RenderControl& Of) {
  constexpr std::size_t LinearPart = 9;
  Double Sum = 0;
  for (std::size_t Place = 0; Place < LinearPart; ++Place) Sum += Of.Transform[Place] * Of.Transform[Place];
  return std::sqrt(Sum / 3);
}

int PickAtom(const RenderControl& Of, Double X, Double Y) {
  const Double Scale = ViewScale(Of);
  int Picked = -1;
  Double Nearest = 0;
  for (std::size_t Index = 0; Index < Of.Atoms.size(); ++Index) {
    const RenderAtom& Atom = Of.Atoms[Index];
    const ViewPoint Place = ProjectPoint(Of, Atom.X, Atom.Y, Atom.Z);
    const Double Reach = std::max(DrawnRadius(Of, Atom, Scale), LeastPickRadius);
    if (!(std::hypot(Place.X - X, Place.Y - Y) <= Reach)) continue;
    if (Picked >= 0 && Place.Depth <= Nearest) continue;
    Picked = static_cast<int>(Index);
    Nearest = Place.Depth;
  }
  return Picked;
}

Colour ShadeOf(Colour Value, Double Share) {
  const auto Shade = [Share](int Part) {
    const Double Shaded = Share <= 1 ? Part * Share : Part + (255 - Part) * (Share - 1);
    return std::clamp(static_cast<int>(std::lround(Shaded)), 0, 255);
  };
  return Rgb(Shade(RedOf(Value)), Shade(GreenOf(Value)), Shade(BlueOf(Value)));
}

}  // namespace zelvanor
