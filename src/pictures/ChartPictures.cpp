#include <cairo.h>

#include <numbers>

#include "basic/Failure.h"
#include "basic/NumberText.h"
#include "pictures/PictureFile.h"
#include "pictures/PictureText.h"
#include "pictures/ViewPictures.h"
#include "platform/ChartPicture.h"
#include "tables/frmGraph.h"
#include "workspace/Helpers.h"

namespace zelvanor::pictures {

namespace {

constexpr Double QuarterTurn = std::numbers::pi / 2;

Text Measure(Double Value) { return FormatNumber(Value, "0.0#"); }

Text SvgShape(const ChartShape& Shape) {
  Text Places;
  for (const ChartPoint& Corner : Shape.Corners) Places += Join(Measure(Corner.X), ",", Measure(Corner.Y), " ");
  const Text Fill = Shape.Filled ? SvgColour(Shape.Fill) : Text("none");
  return Join(Shape.Filled ? "<polygon" : "<polyline", " fill=\"", Fill, "\" stroke=\"", SvgColour(Shape.Edge),
              "\" stroke-linejoin=\"round\" points=\"", Places, "\"/>\n");
}

Text SvgText(const ChartText& Item) {
  constexpr const char* Anchors[] = {"start", "middle", "end"};
  Text Tag = Join("<text text-anchor=\"", Anchors[static_cast<int>(Item.Align)], "\" font-family=\"", PictureFont,
                  "\" font-size=\"", Long{Item.Pixels}, "\" y=\"", Measure(Item.Pixels * ChartBaseShare), "\"");
  if (Item.Bold) Tag += " font-weight=\"bold\"";
  Tag += Join(" transform=\"translate(", Measure(Item.X), ",", Measure(Item.Y), ")", Item.Upright ? " rotate(-90)" : "",
              "\">");
  return Tag + SvgEscaped(Item.Words) + "</text>\n";
}

Text BuildSvg(const ChartPicture& Picture) {
  Text Svg = SvgHead(Graph(), White);
  for (const ChartShape& Shape : Picture.Shapes) Svg += SvgShape(Shape);
  for (const ChartText& Item : Picture.Texts) Svg += SvgText(Item);
  return Svg + "</svg>\n";
}

void DrawShape(cairo_t* Context, const ChartShape& Shape) {
  cairo_new_path(Context);
  for (const ChartPoint& Corner : Shape.Corners) cairo_line_to(Context, Corner.X, Corner.Y);
  if (Shape.Filled) {
    cairo_close_path(Context);
    SetSource(Context, Shape.Fill);
    cairo_fill_preserve(Context);
  }
  SetSource(Context, Shape.Edge);
  cairo_stroke(Context);
}

void DrawText(cairo_t* Context, const ChartText& Item) {
  cairo_select_font_face(Context, PictureFont, CAIRO_FONT_SLANT_NORMAL,
                         Item.Bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(Context, Item.Pixels);
  cairo_text_extents_t Size;
  const Text Words = PlainUtf8(Item.Words);
  cairo_text_extents(Context, Words.c_str(), &Size);
  const Double Before = static_cast<int>(Item.Align) * Size.x_advance / 2.0;
  cairo_save(Context);
  cairo_translate(Context, Item.X, Item.Y);
  if (Item.Upright) cairo_rotate(Context, -QuarterTurn);
  cairo_move_to(Context, -Before, Item.Pixels * ChartBaseShare);
  cairo_set_source_rgb(Context, 0, 0, 0);
  cairo_show_text(Context, Words.c_str());
  cairo_restore(Context);
}

void DrawPicture(cairo_t* Context, const ChartPicture& Picture) {
  cairo_set_source_rgb(Context, 1, 1, 1);
  cairo_paint(Context);
  cairo_set_line_width(Context, 1.0);
  cairo_set_line_join(Context, CAIRO_LINE_JOIN_ROUND);
  for (const ChartShape& Shape : Picture.Shapes) DrawShape(Context, Shape);
  for (const ChartText& Item : Picture.Texts) DrawText(Context, Item);
}

}  // namespace

void WriteChartPicture(const Text& Path) {
  const ChartControl& Chart = Graph();
  if (Chart.Points.empty()) throw Failure("nothing has been plotted");
  if (!IsPictureFile(Path)) throw Failure("a chart is written as .svg, .png or .pdf: " + Path);
  const PictureSize Size = SizeOf(Chart);
  const ChartPicture Drawn = DrawChart(Chart, Size.Width, Size.Height);
  WritePicture(
      {Size, [&Drawn] { return BuildSvg(Drawn); }, [&Drawn](cairo_t* Context) { DrawPicture(Context, Drawn); }}, Path);
}

}  // namespace zelvanor::pictures
