#include <cairo.h>

#include "basic/Failure.h"
#include "basic/NumberText.h"
#include "pictures/MoleculePicture.h"
#include "pictures/PictureFile.h"
#include "pictures/PictureText.h"
#include "pictures/ViewPictures.h"
#include "shell/MainForm.h"
#include "spectrum/SpectrumDrawing.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor::pictures {

namespace {

// Of the font's size: how far its base line lies below the top that a text hangs from.
constexpr Double AscentShare = 0.93;

// The surface that the view shows. The tables and an empty molecule view draw nothing: the spectrum stands for them
// where there is one.
const PictureSurface& ShownSurface() {
  if (!IsSet(Main.Spectrum1.Visible)) {
    if (!IsSet(Workspace.SpectraAvailable)) throw Failure("the view holds no picture");
    DrawSpectra();
  }
  return Main.Spectrum1;
}

// Lines that go on where the last one of the same pen ended are one path: the envelope stays in one piece.
template <class Begin, class Continue, class End>
void WalkLines(const PictureSurface& Surface, Begin BeginPath, Continue ContinuePath, End EndPath) {
  const PictureLine* Last = nullptr;
  for (const PictureLine& Line : Surface.Lines) {
    const bool Joined = Last != nullptr && Last->X2 == Line.X1 && Last->Y2 == Line.Y1 && Last->Pen == Line.Pen;
    if (!Joined) {
      if (Last != nullptr) EndPath();
      BeginPath(Line);
    }
    ContinuePath(Line);
    Last = &Line;
  }
  if (Last != nullptr) EndPath();
}

// Written by hand, so that texts stay texts in the programs that open it.
Text BuildSvg(const PictureSurface& Surface) {
  const auto Number = [](Double Value) { return GeneralForm(Value); };
  Text Svg = SvgHead(Surface, Surface.BackColor);
  WalkLines(
      Surface,
      [&](const PictureLine& Line) {
        Svg += Join("<path fill=\"none\" stroke=\"", SvgColour(Line.Pen), "\" d=\"M", Number(Line.X1 + 0.5), " ",
                    Number(Line.Y1 + 0.5));
      },
      [&](const PictureLine& Line) { Svg += Join(" L", Number(Line.X2 + 0.5), " ", Number(Line.Y2 + 0.5)); },
      [&] { Svg += "\"/>\n"; });
  const Text Rim = Join(" paint-order=\"stroke\" stroke=\"", SvgColour(Surface.BackColor), "\" stroke-width=\"",
                        Long{2 * RimPixels + 1}, "\" stroke-linejoin=\"round\"");
  for (const PictureText& Item : Surface.Texts) {
    Svg += Join("<text x=\"", Long{Item.X}, "\" y=\"", Number(Item.Y + SurfaceFontPixels * AscentShare),
                "\" font-family=\"", PictureFont, "\" font-size=\"", Long{SurfaceFontPixels}, "\" fill=\"",
                SvgColour(Item.Pen), "\"", Item.Rimmed ? Rim : Text(), ">", SvgEscaped(Item.Value), "</text>\n");
  }
  return Svg + "</svg>\n";
}

void DrawRim(cairo_t* Context, const PictureText& Item, Double Base, Colour Rim) {
  cairo_new_path(Context);
  cairo_move_to(Context, Item.X, Base);
  cairo_text_path(Context, PlainUtf8(Item.Value).c_str());
  cairo_set_line_width(Context, 2 * RimPixels + 1);  // half of it is seen
  cairo_set_line_join(Context, CAIRO_LINE_JOIN_ROUND);
  SetSource(Context, Rim);
  cairo_stroke(Context);
}

void DrawWithCairo(cairo_t* Context, const PictureSurface& Surface) {
  SetSource(Context, Surface.BackColor);
  cairo_paint(Context);
  cairo_set_line_width(Context, 1.0);
  cairo_set_line_cap(Context, CAIRO_LINE_CAP_SQUARE);
  Colour Pen = 0;
  WalkLines(
      Surface,
      [&](const PictureLine& Line) {
        Pen = Line.Pen;
        cairo_move_to(Context, Line.X1 + 0.5, Line.Y1 + 0.5);
      },
      [&](const PictureLine& Line) { cairo_line_to(Context, Line.X2 + 0.5, Line.Y2 + 0.5); },
      [&] {
        SetSource(Context, Pen);
        cairo_stroke(Context);
      });
  cairo_select_font_face(Context, PictureFont, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(Context, SurfaceFontPixels);
  for (const PictureText& Item : Surface.Texts) {
    const Double Base = Item.Y + SurfaceFontPixels * AscentShare;
    if (Item.Rimmed) DrawRim(Context, Item, Base, Surface.BackColor);
    SetSource(Context, Item.Pen);
    cairo_move_to(Context, Item.X, Base);
    cairo_show_text(Context, PlainUtf8(Item.Value).c_str());
  }
}

Picture ShownPicture() {
  if (ShowsMolecule()) return {SizeOf(Main.MolRender1), BuildMoleculeSvg, DrawMolecule};
  const PictureSurface& Surface = ShownSurface();
  return {SizeOf(Surface), [&Surface] { return BuildSvg(Surface); },
          [&Surface](cairo_t* Context) { DrawWithCairo(Context, Surface); }};
}

}  // namespace

void WriteViewPicture(const Text& Path, Double Scale) {
  if (!IsPictureFile(Path)) throw Failure("a picture is written as .svg, .png or .pdf: " + Path);
  WritePicture(ShownPicture(), Path, Scale);
}

}  // namespace zelvanor::pictures
