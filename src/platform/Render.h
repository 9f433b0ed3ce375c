#pragma once

#include <array>
#include <functional>
#include <vector>

#include "platform/Controls.h"

namespace zelvanor {

inline constexpr int ViewTransformSize = 12;

// How atoms and bonds are drawn, as the members AtomRenderType and BondRenderType hold it.
enum AtomRender { AtomLabels = 1, AtomDisks = 2, AtomSpheres = 3 };
enum BondRender { BondSticks = 1, BondLines = 2, BondCylinders = 3 };

// Orders 1 to 3 are what they say.
inline constexpr int AromaticBond = 4;

// A bond as one of its atoms has it. Both atoms of a bond hold it; each draws the half at its own end.
struct RenderBond {
  int Neighbor = -1;  // atom index; -1 until it is given
  int Order = 1;
};

struct RenderAtom {
  int AtomicNumber = 0;
  Colour Color = 0;
  Single Radius = 0;  // angstrom
  Double X = 0;       // angstrom
  Double Y = 0;
  Double Z = 0;
  Text Label;
  std::vector<RenderBond> Bonds;
};

// The control that draws a molecule. The program gives it atoms, bonds and a view matrix through the members below; a
// front end draws the list of RenderScene.h and reports the mouse through RenderMouseDown and its companions.
//
// The view matrix has 4 rows of 3 columns, rows outermost: rows 0..2 turn and magnify, row 3 moves. A point is a row
// vector in front of it. View space is in pixels from the middle of the control: x to the right, y up, z to the viewer.
struct RenderControl : Control {
  RenderControl(Form* Owner, Text Name) : Control(ControlKind::RenderControl, Owner, std::move(Name)) {}

  // Positions in twips from the top left corner.
  using MouseEvent = std::function<void(int Button, int Shift, Single X, Single Y)>;

  std::vector<RenderAtom> Atoms;
  std::array<Double, ViewTransformSize> Transform{1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
  int AtomRenderType = AtomLabels;
  int BondRenderType = BondSticks;
  Colour BackColor = White;
  Colour LabelColor = Rgb(255, 255, 0);
  Colour BondColor = Rgb(192, 192, 192);  // of sticks and cylinders; bonds have the colours of their atoms
  Colour MarkColor = 0;                   // the labels of atoms of this colour are drawn in it
  Flag DoubleBuffer = False;
  bool Monochrome = false;     // black on white with greys, whatever the colours are
  bool SimpleDrawing = false;  // plain forms that are drawn fast, while the view moves

  int ThisAtom = 0;  // the atom that the atom members act on
  int ThisBond = 0;  // the bond of that atom that the bond members act on

  MouseEvent MouseDown;
  MouseEvent MouseMove;
  MouseEvent MouseUp;
  std::function<void(int Button, int Shift, int Atom)> AtomClick;
  std::function<void(int Button, int Shift)> NoAtomClick;
  std::function<void(Double Notches)> MouseWheel;  // away from the user is positive

  int PressedButton = 0;  // that went down, and where
  Single PressedX = 0;
  Single PressedY = 0;
};

// Members. An index outside 0..AtomCount - 1 (of bonds: 0..BondCount - 1, of ViewTransform: 0..11) throws "Subscript
// out of range", a render type outside 1..3 "Invalid property value".
Double GetViewTransform(const RenderControl& Of, int Index);
void SetViewTransform(RenderControl& Of, int Index, Double Value);
Integer GetAtomCount(const RenderControl& Of);
void SetAtomCount(RenderControl& Of, int Count);  // the atoms become new ones, without bonds
void SetThisAtom(RenderControl& Of, int Atom);
Colour GetAtomColor(const RenderControl& Of);
void SetAtomColor(RenderControl& Of, Colour Value);
void SetAtomText(RenderControl& Of, TextView Value);
void SetAtomicNumber(RenderControl& Of, int Value);
void SetAtomRadius(RenderControl& Of, Single Value);
void SetXCoordinate(RenderControl& Of, Double Value);
void SetYCoordinate(RenderControl& Of, Double Value);
void SetZCoordinate(RenderControl& Of, Double Value);
void SetBondCount(RenderControl& Of, int Count);
void SetThisBond(RenderControl& Of, int Bond);
void SetNeighborAtom(RenderControl& Of, int Atom);
void SetBondOrder(RenderControl& Of, int Order);
void SetAtomRenderType(RenderControl& Of, int Value);
void SetBondRenderType(RenderControl& Of, int Value);
void SetDoubleBuffer(RenderControl& Of, Flag Value);
void SetBackColor(RenderControl& Of, Colour Value);

// Has the front end draw the control again. The setters above call it, but for the atom and bond members that describe
// an atom: who takes a system in calls it once at the end.
void RepaintRender(RenderControl& Of);

inline constexpr const char* InvalidProperty = "Invalid property value";

// The user's mouse, in twips. A button that comes up near where it went down is a click, on the atom that the pointer
// is on or on none.
void RenderMouseDown(RenderControl& Of, int Button, int Shift, Single X, Single Y);
void RenderMouseMove(RenderControl& Of, int Button, int Shift, Single X, Single Y);
void RenderMouseUp(RenderControl& Of, int Button, int Shift, Single X, Single Y);

}  // namespace zelvanor
