#pragma once

#include <cairo.h>

#include <functional>

#include "pictures/PictureText.h"

namespace zelvanor::pictures {

// A picture in both ways of writing it: as SVG text, in which texts stay texts, and drawn by cairo.
struct Picture {
  PictureSize Size;
  std::function<Text()> Svg;
  std::function<void(cairo_t*)> Draw;
};

// Whether the path's ending names a form that WritePicture knows: .svg, .png or .pdf.
bool IsPictureFile(const Text& Path);
// The bytes of a PDF file whose pages have this size in points; empty where it can't be made.
Text BuildPdf(Double Width, Double Height, const std::function<void(cairo_surface_t*)>& DrawPages);

// Throws a Failure where the file can't be written.
// A picture of pixels is Scale times as fine as the screen's.
void WritePicture(const Picture& Shown, const Text& Path, Double Scale = 1.0);

}  // namespace zelvanor::pictures
