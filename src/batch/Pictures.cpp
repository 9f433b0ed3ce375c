#include <cairo.h>

#include "basic/NumberText.h"
#include "batch/Batch.h"
#include "batch/MoleculePicture.h"
#include "batch/PictureFile.h"
#include "batch/PictureText.h"
#include "batch/TextFile.h"
#include "shell/MainForm.h"
#include "spectrum/SpectrumDrawing.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor::batch {

namespace {

// Of the font's size: how far its base line lies below the top that a text hangs from.
constexpr Double AscentShare = 0.93;

// The surface that the view shows. The tables and an empty molecule view draw nothing: the spectrum stands for them
// where there is one.
const PictureSurface& ShownSurface() {
  if (!IsSet(Main.Spectrum1.Visible)) {
    if (!IsSet(Workspace.SpectraAvailable)) throw ScriptStop{CannotCarryOut, "the view holds no picture"};
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
  for (const PictureText& Item : Surface.Texts) {
    Svg += Join("<text x=\"", Long{Item.X}, "\" y=\"", Number(Item.Y + SurfaceFontPixels * AscentShare),
                "\" font-family=\"", PictureFont, "\" font-size=\"", Long{SurfaceFontPixels}, "\" fill=\"",
                SvgColour(Item.Pen), "\">", SvgEscaped(Item.Value), "</text>\n");
  }
  return Svg + "</svg>\n";
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
    SetSource(Context, Item.Pen);
    cairo_move_to(Context, Item.X, Item.Y + SurfaceFontPixels * AscentShare);
    cairo_show_text(Context, PictureWords(Item.Value).c_str());
  }
}

Picture ShownPicture() {
  if (ShowsMolecule()) return {SizeOf(Main.MolRender1), BuildMoleculeSvg, DrawMolecule};
  const PictureSurface& Surface = ShownSurface();
  return {SizeOf(Surface), [&Surface] { return BuildSvg(Surface); },
          [&Surface](cairo_t* Context) { DrawWithCairo(Context, Surface); }};
}

Double FrequencyOf(Long Peak) {
  const Double Stored = Workspace.PeakFrequency[Peak];
  return Stored == 0.0 ? 0.0 : -Stored;
}

Double ShiftOf(Long Peak) { return Workspace.NMRFrequency == 0 ? 0.0 : FrequencyOf(Peak) / Workspace.NMRFrequency; }

Text BuildCsv() {
  Text Csv = "ppm,Hz,intensity,degeneracy,line width\n";
  for (Long Peak = 0; Peak < Workspace.PeakCount; ++Peak) {
    Csv += Join(static_cast<Single>(ShiftOf(Peak)), ",", static_cast<Single>(FrequencyOf(Peak)), ",",
                Workspace.PeakIntensity[Peak], ",", Workspace.PeakDegeneracy[Peak], ",", Workspace.PeakLineWidth[Peak],
                "\n");
  }
  return Csv;
}

const char* NucleusName() {
  constexpr const char* Names[] = {"^1H", "^13C", "^15N", "^17O", "^19F", "^31P"};
  const int Type = Workspace.SpectraType;
  return Type >= 0 && Type < 6 ? Names[Type] : "^1H";
}

// A peak table by the JCAMP-DX standard for NMR, version 5: shift in ppm, intensity, width in Hz.
Text BuildJcamp() {
  Text Dx = Join("##TITLE=", Workspace.DocumentTitle.empty() ? Text("untitled") : Workspace.DocumentTitle,
                 "\n##JCAMP-DX=5.00\n##DATA TYPE=NMR PEAK TABLE\n##DATA CLASS=PEAK TABLE\n##ORIGIN=Zelvanor\n"
                 "##OWNER=",
                 Workspace.SpectDescription, "\n##.OBSERVE FREQUENCY=", Workspace.NMRFrequency,
                 "\n##.OBSERVE NUCLEUS=", NucleusName(),
                 "\n##XUNITS=PPM\n##YUNITS=ARBITRARY UNITS\n##NPOINTS=", Workspace.PeakCount,
                 "\n$$ each row: shift in ppm, intensity, line width in Hz; its frequency in Hz ",
                 "and degeneracy behind it\n##PEAK TABLE=(XYW..XYW)\n");
  for (Long Peak = 0; Peak < Workspace.PeakCount; ++Peak) {
    Dx += Join(static_cast<Single>(ShiftOf(Peak)), ", ", Workspace.PeakIntensity[Peak], ", ",
               Workspace.PeakLineWidth[Peak], " $$ ", static_cast<Single>(FrequencyOf(Peak)), " ",
               Workspace.PeakDegeneracy[Peak], "\n");
  }
  return Dx + "##END=\n";
}

}  // namespace

void WriteView(const Text& Path) {
  if (EndingOf(Path) == ".CSV") return WriteTable(Path);
  if (!IsPictureFile(Path)) {
    throw ScriptStop{CannotCarryOut, "a view is written as .svg, .png or .pdf, a table as .csv: " + Path};
  }
  WritePicture(ShownPicture(), Path);
}

void SavePeaks(const Text& Path) {
  if (!IsSet(Workspace.SpectraAvailable)) throw ScriptStop{CannotCarryOut, "there is no spectrum to save"};
  const Text Ending = EndingOf(Path);
  if (Ending == ".CSV") return WriteText(Path, BuildCsv());
  if (Ending == ".JDX" || Ending == ".DX") return WriteText(Path, BuildJcamp());
  throw ScriptStop{CannotCarryOut, "a peak list is saved as .csv or .jdx: " + Path};
}

}  // namespace zelvanor::batch
