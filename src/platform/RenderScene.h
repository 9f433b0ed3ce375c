#pragma once

#include <cstdint>
#include <vector>

#include "platform/Render.h"

namespace zelvanor {

// What the render control shows, as a list of plain forms from the farthest to the nearest. Both front ends draw it in
// this order; everything that depends on turning, style and colours is settled here. Places are in pixels from the top
// left corner of the control, y down.

enum class DrawForm : std::uint8_t {
  Disc,        // round X1, Y1 with radius Size, outlined in Edge
  Sphere,      // the same, shaded: lit from the upper left
  Line,        // of width Size with flat ends, with a margin of one pixel in Edge on both sides
  DashedLine,  // the same, without margin
  Cylinder,    // of diameter Size, shaded across
  Label,       // the label of Atom, centred on X1, Y1, Size pixels high, with a halo of Edge
};

struct DrawItem {
  DrawForm Form = DrawForm::Disc;
  Single Depth = 0;  // larger is nearer
  Single X1 = 0;
  Single Y1 = 0;
  Single X2 = 0;
  Single Y2 = 0;
  Single Size = 0;
  Colour Fill = 0;
  Colour Edge = 0;  // equal to Fill: none
  int Atom = 0;
};

struct RenderScene {
  Colour Background = White;
  bool Simple = false;  // plain forms
  std::vector<DrawItem> Items;

  // Room for the sorting, kept from one step of a drag to the next.
  std::vector<DrawItem> Unsorted;
  std::vector<std::uint64_t> Order;
};

// Projects, colours and sorts what the control holds. Parts outside the surface are left out.
void BuildScene(const RenderControl& Of, RenderScene& Scene);

// A point of the model on the surface.
struct ViewPoint {
  Double X = 0;
  Double Y = 0;
  Double Depth = 0;  // larger is nearer
};
ViewPoint ProjectPoint(const RenderControl& Of, Double X, Double Y, Double Z);

// Pixels to an angstrom: the mean stretch of the view matrix.
Double ViewScale(const RenderControl& Of);

// The atom nearest to the viewer of those under the pointer, in pixels from the top left corner: within its drawn
// radius, and at least 4 pixels. -1 for none.
int PickAtom(const RenderControl& Of, Double X, Double Y);

// A colour darkened (Share below 1) or lightened towards white (Share above 1, up to 2).
Colour ShadeOf(Colour Value, Double Share);

// Shades from the middle of a sphere's light to its rim, and of a cylinder's from its lit line to its sides.
inline constexpr Double LightShade = 1.6;
inline constexpr Double RimShade = 0.45;
// Where a sphere's light falls: so far from its middle, in radii, to the left and up.
inline constexpr Double LightOffset = 0.35;

}  // namespace zelvanor
