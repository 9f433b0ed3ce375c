#include "platform/Render.h"

#include <cmath>

#include "platform/RenderScene.h"
#include "platform/Services.h"

namespace zelvanor {

namespace {

// How far the pointer may have moved between the button's going down and coming up, for a click.
constexpr int ClickSlackPixels = 3;

std::size_t CheckIndex(int Index, std::size_t Count) {
  if (Index < 0 || static_cast<std::size_t>(Index) >= Count) throw Failure(failures::Subscript);
  return static_cast<std::size_t>(Index);
}

RenderAtom& CurrentAtom(RenderControl& Of) { return Of.Atoms[CheckIndex(Of.ThisAtom, Of.Atoms.size())]; }

RenderBond& CurrentBond(RenderControl& Of) {
  std::vector<RenderBond>& Bonds = CurrentAtom(Of).Bonds;
  return Bonds[CheckIndex(Of.ThisBond, Bonds.size())];
}

void SetRenderType(RenderControl& Of, int& Type, int Value) {
  if (Value < 1 || Value > 3) throw Failure(InvalidProperty);
  Type = Value;
  RepaintRender(Of);
}

bool IsNear(Single From, Single To) { return std::fabs(From - To) <= TwipsFromPixels(ClickSlackPixels); }

}  // namespace

Double GetViewTransform(const RenderControl& Of, int Index) {
  return Of.Transform[CheckIndex(Index, Of.Transform.size())];
}

void SetViewTransform(RenderControl& Of, int Index, Double Value) {
  Of.Transform[CheckIndex(Index, Of.Transform.size())] = Value;
  RepaintRender(Of);
}

Integer GetAtomCount(const RenderControl& Of) { return {static_cast<int>(Of.Atoms.size())}; }

void SetAtomCount(RenderControl& Of, int Count) {
  if (Count < 0) throw Failure(InvalidProperty);
  Of.Atoms.assign(static_cast<std::size_t>(Count), {});
  Of.ThisAtom = Of.ThisBond = 0;
}

void SetThisAtom(RenderControl& Of, int Atom) {
  CheckIndex(Atom, Of.Atoms.size());
  Of.ThisAtom = Atom;
}

Colour GetAtomColor(const RenderControl& Of) { return Of.Atoms[CheckIndex(Of.ThisAtom, Of.Atoms.size())].Color; }

void SetAtomColor(RenderControl& Of, Colour Value) {
  CurrentAtom(Of).Color = Value;
  RepaintRender(Of);
}

void SetAtomText(RenderControl& Of, TextView Value) { CurrentAtom(Of).Label = Value; }
void SetAtomicNumber(RenderControl& Of, int Value) { CurrentAtom(Of).AtomicNumber = Value; }
void SetAtomRadius(RenderControl& Of, Single Value) { CurrentAtom(Of).Radius = Value; }
void SetXCoordinate(RenderControl& Of, Double Value) { CurrentAtom(Of).X = Value; }
void SetYCoordinate(RenderControl& Of, Double Value) { CurrentAtom(Of).Y = Value; }
void SetZCoordinate(RenderControl& Of, Double Value) { CurrentAtom(Of).Z = Value; }

void SetBondCount(RenderControl& Of, int Count) {
  if (Count < 0) throw Failure(InvalidProperty);
  CurrentAtom(Of).Bonds.assign(static_cast<std::size_t>(Count), {});
  Of.ThisBond = 0;
}

void SetThisBond(RenderControl& Of, int Bond) {
  CheckIndex(Bond, CurrentAtom(Of).Bonds.size());
  Of.ThisBond = Bond;
}

void SetNeighborAtom(RenderControl& Of, int Atom) {
  CheckIndex(Atom, Of.Atoms.size());
  CurrentBond(Of).Neighbor = Atom;
}

void SetBondOrder(RenderControl& Of, int Order) {
  if (Order < 1 || Order > AromaticBond) throw Failure(InvalidProperty);
  CurrentBond(Of).Order = Order;
}

void SetAtomRenderType(RenderControl& Of, int Value) { SetRenderType(Of, Of.AtomRenderType, Value); }
void SetBondRenderType(RenderControl& Of, int Value) { SetRenderType(Of, Of.BondRenderType, Value); }
void SetDoubleBuffer(RenderControl& Of, Flag Value) { Of.DoubleBuffer = Value; }

void SetBackColor(RenderControl& Of, Colour Value) {
  Of.BackColor = Value;
  RepaintRender(Of);
}

void RepaintRender(RenderControl& Of) {
  if (Platform.ControlChanged) Platform.ControlChanged(Of, Property::Picture);
}

void RenderMouseDown(RenderControl& Of, int Button, int Shift, Single X, Single Y) {
  Of.PressedButton = Button;
  Of.PressedX = X;
  Of.PressedY = Y;
  if (Of.MouseDown) Of.MouseDown(Button, Shift, X, Y);
}

void RenderMouseMove(RenderControl& Of, int Button, int Shift, Single X, Single Y) {
  if (Of.MouseMove) Of.MouseMove(Button, Shift, X, Y);
}

void RenderMouseUp(RenderControl& Of, int Button, int Shift, Single X, Single Y) {
  const bool Click = Of.PressedButton == Button && IsNear(Of.PressedX, X) && IsNear(Of.PressedY, Y);
  if (Of.PressedButton == Button) Of.PressedButton = 0;
  if (Of.MouseUp) Of.MouseUp(Button, Shift, X, Y);
  if (!Click) return;
  const int Atom = PickAtom(Of, Double{X} / TwipsPerPixelX, Double{Y} / TwipsPerPixelY);
  if (Atom >= 0) {
    if (Of.AtomClick) Of.AtomClick(Button, Shift, Atom);
  } else if (Of.NoAtomClick) {
    Of.NoAtomClick(Button, Shift);
  }
}

}  // namespace zelvanor
