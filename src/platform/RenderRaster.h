#pragma once

#include <array>
#include <cstdint>
#include <unordered_map>

#include "platform/RenderScene.h"

namespace zelvanor {

// Draws the forms of a scene into pixels, smoothly and fast enough for a picture of thousands of atoms in each step of
// a drag. Texts are left to the front end, which has the fonts.

// Rows of pixels from the top, each 0xffRRGGBB. Ratio is the number of them to a pixel of the scene.
struct PixelPicture {
  std::uint32_t* Pixels = nullptr;
  int Width = 0;
  int Height = 0;
  int RowLength = 0;  // pixels from one row to the next
  Double Ratio = 1;
};

// Shades of spheres and cylinders by colour; kept from one picture to the next.
inline constexpr std::size_t NumShades = 64;
using ShadeRow = std::array<std::uint32_t, NumShades>;
struct ShadeTables {
  std::unordered_map<Colour, ShadeRow> Spheres;
  std::unordered_map<Colour, ShadeRow> Cylinders;
};

void FillPicture(const PixelPicture& Target, Colour Value);
// Draws one form; nothing for a label. Plain ones have no smoothing and cost a fraction.
void DrawForms(const PixelPicture& Target, const DrawItem& Item, bool Plain, ShadeTables& Shades);

// Stretch and gap of a dashed line, in its widths.
inline constexpr Double DashShare = 2.0;
inline constexpr Double GapShare = 1.4;
// Of the edge of a disc and of the margin of a line.
inline constexpr Double EdgeWidth = 1;

}  // namespace zelvanor
