#include "batch/PictureFile.h"

#include <cairo-pdf.h>

#include "batch/Batch.h"
#include "batch/TextFile.h"

namespace zelvanor::batch {

namespace {

constexpr Double PointsPerPixel = 0.75;  // at 96 pixels an inch

void Draw(const Picture& Shown, cairo_surface_t* Target, Double Scale) {
  cairo_t* Context = cairo_create(Target);
  cairo_scale(Context, Scale, Scale);
  Shown.Draw(Context);
  cairo_destroy(Context);
}

cairo_status_t WritePng(const Picture& Shown, const Text& Path) {
  cairo_surface_t* Target = cairo_image_surface_create(CAIRO_FORMAT_RGB24, Shown.Size.Width, Shown.Size.Height);
  Draw(Shown, Target, 1.0);
  const cairo_status_t Status = cairo_surface_write_to_png(Target, Path.c_str());
  cairo_surface_destroy(Target);
  return Status;
}

cairo_status_t WritePdf(const Picture& Shown, const Text& Path) {
  cairo_surface_t* Target =
      cairo_pdf_surface_create(Path.c_str(), Shown.Size.Width * PointsPerPixel, Shown.Size.Height * PointsPerPixel);
  Draw(Shown, Target, PointsPerPixel);
  cairo_surface_finish(Target);
  const cairo_status_t Status = cairo_surface_status(Target);
  cairo_surface_destroy(Target);
  return Status;
}

}  // namespace

bool IsPictureFile(const Text& Path) {
  const Text Ending = EndingOf(Path);
  return Ending == ".SVG" || Ending == ".PNG" || Ending == ".PDF";
}

void WritePicture(const Picture& Shown, const Text& Path) {
  const Text Ending = EndingOf(Path);
  if (Ending == ".SVG") return WriteText(Path, Shown.Svg());
  const cairo_status_t Status = Ending == ".PNG" ? WritePng(Shown, Path) : WritePdf(Shown, Path);
  if (Status != CAIRO_STATUS_SUCCESS) throw ScriptStop{CannotCarryOut, "can't write " + Path};
}

}  // namespace zelvanor::batch
