#include "pictures/PictureFile.h"

#include <cairo-pdf.h>

#include <algorithm>
#include <cmath>

#include "basic/Failure.h"
#include "platform/Paths.h"
#include "platform/TextFiles.h"

namespace zelvanor::pictures {

namespace {

constexpr Double PointsPerPixel = 0.75;  // at 96 pixels an inch

void Draw(const Picture& Shown, cairo_surface_t* Target, Double Scale) {
  cairo_t* Context = cairo_create(Target);
  cairo_scale(Context, Scale, Scale);
  Shown.Draw(Context);
  cairo_destroy(Context);
}

cairo_status_t Append(void* Target, const unsigned char* Data, unsigned Length) {
  static_cast<Text*>(Target)->append(reinterpret_cast<const char*>(Data), Length);
  return CAIRO_STATUS_SUCCESS;
}

// The bytes of a picture file; empty where the picture is too large. The file is written by the one writer that notices
// a full disk: cairo's own one for PDF does not.
Text BuildPng(const Picture& Shown, Double Scale) {
  Text Content;
  cairo_surface_t* Target = cairo_image_surface_create(
      CAIRO_FORMAT_RGB24, std::max(static_cast<int>(std::lround(Shown.Size.Width * Scale)), 1),
      std::max(static_cast<int>(std::lround(Shown.Size.Height * Scale)), 1));
  Draw(Shown, Target, Scale);
  const cairo_status_t Status = cairo_surface_write_to_png_stream(Target, Append, &Content);
  cairo_surface_destroy(Target);
  return Status == CAIRO_STATUS_SUCCESS ? Content : Text();
}

}  // namespace

Text BuildPdf(Double Width, Double Height, const std::function<void(cairo_surface_t*)>& DrawPages) {
  Text Content;
  cairo_surface_t* Target = cairo_pdf_surface_create_for_stream(Append, &Content, Width, Height);
  DrawPages(Target);
  cairo_surface_finish(Target);
  const cairo_status_t Status = cairo_surface_status(Target);
  cairo_surface_destroy(Target);
  return Status == CAIRO_STATUS_SUCCESS ? Content : Text();
}

bool IsPictureFile(const Text& Path) {
  const Text Ending = EndingOf(Path);
  return Ending == ".SVG" || Ending == ".PNG" || Ending == ".PDF";
}

void WritePicture(const Picture& Shown, const Text& Path, Double Scale) {
  const Text Ending = EndingOf(Path);
  if (Ending == ".SVG") return WriteWholeFile(Path, Shown.Svg());
  const Text Content = Ending == ".PNG"
                           ? BuildPng(Shown, Scale)
                           : BuildPdf(Shown.Size.Width * PointsPerPixel, Shown.Size.Height * PointsPerPixel,
                                      [&Shown](cairo_surface_t* Target) { Draw(Shown, Target, PointsPerPixel); });
  if (Content.empty()) throw Failure("can't write " + Path);
  WriteWholeFile(Path, Content);
}

}  // namespace zelvanor::pictures
