#pragma once

#include <cairo.h>

#include "platform/Controls.h"

namespace zelvanor::pictures {

// What the pictures of spectrum and molecule have in common.

inline constexpr const char* PictureFont = "sans-serif";

struct PictureSize {
  int Width;  // pixels, at least 1
  int Height;
};
PictureSize SizeOf(const Control& Surface);

Text SvgColour(Colour Value);
// The words, with what is markup in SVG escaped.
Text SvgEscaped(TextView Value);
// The head of a picture of this control's size, with its background.
Text SvgHead(const Control& Surface, Colour Background);

// A part of a colour as a share of 1; Shift is 0 for red, 8 for green, 16 for blue.
constexpr Double PartOf(Colour Value, int Shift) { return ((Value >> Shift) & 255) / 255.0; }
void SetSource(cairo_t* Context, Colour Value);

}  // namespace zelvanor::pictures
