#include "pictures/MoleculePicture.h"

#include <cmath>
#include <functional>
#include <numbers>
#include <set>

#include "basic/NumberText.h"
#include "pictures/PictureText.h"
#include "platform/RenderRaster.h"
#include "shell/MainForm.h"
#include "workspace/Helpers.h"

namespace zelvanor::pictures {

namespace {

// Of the label's height: how far its base line lies below its middle.
constexpr Double MiddleShare = 0.36;
constexpr Double HaloWidth = 3;

RenderScene PresentScene() {
  RenderScene Scene;
  BuildScene(Main.MolRender1, Scene);
  return Scene;
}

const Text& LabelOf(const DrawItem& Item) { return Main.MolRender1.Atoms[static_cast<std::size_t>(Item.Atom)].Label; }

// A cylinder's own axes: along it and across it.
struct Axis {
  Double Length;
  Double Angle;  // radians, clockwise
};
Axis AxisOf(const DrawItem& Item) {
  const Double DX = Double{Item.X2} - Item.X1;
  const Double DY = Double{Item.Y2} - Item.Y1;
  return {std::hypot(DX, DY), std::atan2(DY, DX)};
}

Text SvgNumber(Double Value) { return FormatNumber(Value, "0.0#"); }
Text SvgName(const char* Kind, Colour Fill) { return Join(Kind, Long{Fill}); }

// One gradient for each colour of spheres and cylinders, in the measures of the form that it fills.
Text SvgGradients(const RenderScene& Scene) {
  std::set<Colour> Spheres;
  std::set<Colour> Cylinders;
  for (const DrawItem& Item : Scene.Items) {
    if (Item.Form == DrawForm::Sphere) Spheres.insert(Item.Fill);
    if (Item.Form == DrawForm::Cylinder) Cylinders.insert(Item.Fill);
  }
  const auto Stop = [](const char* Offset, Colour Value) {
    return Join("<stop offset=\"", Offset, "\" stop-color=\"", SvgColour(Value), "\"/>");
  };
  Text Svg = "<defs>\n";
  const Text Light = SvgNumber(0.5 - LightOffset / 2);
  for (const Colour Fill : Spheres) {
    Svg += Join("<radialGradient id=\"", SvgName("s", Fill), "\" cx=\"0.5\" cy=\"0.5\" r=\"0.5\" fx=\"", Light,
                "\" fy=\"", Light, "\">", Stop("0", ShadeOf(Fill, LightShade)), Stop("0.5", Fill),
                Stop("1", ShadeOf(Fill, RimShade)), "</radialGradient>\n");
  }
  for (const Colour Fill : Cylinders) {
    Svg += Join("<linearGradient id=\"", SvgName("c", Fill), "\" x1=\"0\" y1=\"0\" x2=\"0\" y2=\"1\">",
                Stop("0", ShadeOf(Fill, RimShade)), Stop("0.4", ShadeOf(Fill, LightShade)),
                Stop("1", ShadeOf(Fill, RimShade)), "</linearGradient>\n");
  }
  return Svg + "</defs>\n";
}

Text SvgRound(const DrawItem& Item, const Text& Fill, bool Edge) {
  Text Svg = Join("<circle cx=\"", SvgNumber(Item.X1), "\" cy=\"", SvgNumber(Item.Y1), "\" r=\"", SvgNumber(Item.Size),
                  "\" fill=\"", Fill, "\"");
  if (Edge) Svg += Join(" stroke=\"", SvgColour(Item.Edge), "\"");
  return Svg + "/>\n";
}

Text SvgStroke(const DrawItem& Item, Colour Pen, Double Width, const Text& Extra) {
  return Join("<path d=\"M", SvgNumber(Item.X1), " ", SvgNumber(Item.Y1), " L", SvgNumber(Item.X2), " ",
              SvgNumber(Item.Y2), "\" stroke=\"", SvgColour(Pen), "\" stroke-width=\"", SvgNumber(Width), "\"", Extra,
              "/>\n");
}

Text SvgCylinder(const DrawItem& Item) {
  const Axis Own = AxisOf(Item);
  return Join("<rect x=\"0\" y=\"", SvgNumber(-Item.Size / 2), "\" width=\"", SvgNumber(Own.Length), "\" height=\"",
              SvgNumber(Item.Size), "\" transform=\"translate(", SvgNumber(Item.X1), " ", SvgNumber(Item.Y1),
              ") rotate(", SvgNumber(Own.Angle * 180 / std::numbers::pi), ")\" fill=\"url(#", SvgName("c", Item.Fill),
              ")\"/>\n");
}

Text SvgLabel(const DrawItem& Item) {
  const auto TextAs = [&](const Text& Paint) {
    return Join("<text x=\"", SvgNumber(Item.X1), "\" y=\"", SvgNumber(Item.Y1 + Item.Size * MiddleShare),
                "\" text-anchor=\"middle\" font-family=\"", PictureFont, "\" font-size=\"", SvgNumber(Item.Size), "\" ",
                Paint, ">", SvgEscaped(LabelOf(Item)), "</text>\n");
  };
  return TextAs(Join("fill=\"none\" stroke-linejoin=\"round\" stroke-width=\"", SvgNumber(HaloWidth), "\" stroke=\"",
                     SvgColour(Item.Edge), "\"")) +
         TextAs(Join("fill=\"", SvgColour(Item.Fill), "\""));
}

Text SvgItem(const DrawItem& Item) {
  switch (Item.Form) {
    case DrawForm::Disc:
      return SvgRound(Item, SvgColour(Item.Fill), Item.Edge != Item.Fill);
    case DrawForm::Sphere:
      return SvgRound(Item, Join("url(#", SvgName("s", Item.Fill), ")"), false);
    case DrawForm::Line:
      return (Item.Edge == Item.Fill ? Text() : SvgStroke(Item, Item.Edge, Item.Size + 2 * EdgeWidth, "")) +
             SvgStroke(Item, Item.Fill, Item.Size, "");
    case DrawForm::DashedLine:
      return SvgStroke(
          Item, Item.Edge, Item.Size,
          Join(" stroke-dasharray=\"", SvgNumber(Item.Size * DashShare), " ", SvgNumber(Item.Size * GapShare), "\""));
    case DrawForm::Cylinder:
      return SvgCylinder(Item);
    default:
      return SvgLabel(Item);
  }
}

void CairoStops(cairo_pattern_t* Pattern, std::initializer_list<std::pair<Double, Colour>> Stops) {
  for (const auto& [Offset, Value] : Stops) {
    cairo_pattern_add_color_stop_rgb(Pattern, Offset, PartOf(Value, 0), PartOf(Value, 8), PartOf(Value, 16));
  }
}

void FillWith(cairo_t* Context, cairo_pattern_t* Pattern) {
  cairo_set_source(Context, Pattern);
  cairo_fill(Context);
  cairo_pattern_destroy(Pattern);
}

void CairoRound(cairo_t* Context, const DrawItem& Item) {
  cairo_new_path(Context);
  cairo_arc(Context, Item.X1, Item.Y1, Item.Size, 0, 2 * std::numbers::pi);
  if (Item.Form == DrawForm::Sphere) {
    const Double Light = LightOffset * Item.Size;
    cairo_pattern_t* Pattern =
        cairo_pattern_create_radial(Item.X1 - Light, Item.Y1 - Light, 0, Item.X1, Item.Y1, Item.Size);
    CairoStops(Pattern, {{0, ShadeOf(Item.Fill, LightShade)}, {0.5, Item.Fill}, {1, ShadeOf(Item.Fill, RimShade)}});
    return FillWith(Context, Pattern);
  }
  SetSource(Context, Item.Fill);
  cairo_fill_preserve(Context);
  SetSource(Context, Item.Edge);
  cairo_set_line_width(Context, EdgeWidth);
  cairo_stroke(Context);
}

void CairoStroke(cairo_t* Context, const DrawItem& Item, Colour Pen, Double Width) {
  SetSource(Context, Pen);
  cairo_set_line_width(Context, Width);
  cairo_move_to(Context, Item.X1, Item.Y1);
  cairo_line_to(Context, Item.X2, Item.Y2);
  cairo_stroke(Context);
}

void CairoDashes(cairo_t* Context, const DrawItem& Item) {
  const Double Dashes[] = {Item.Size * DashShare, Item.Size * GapShare};
  cairo_set_dash(Context, Dashes, 2, 0);
  CairoStroke(Context, Item, Item.Edge, Item.Size);
  cairo_set_dash(Context, nullptr, 0, 0);
}

void CairoCylinder(cairo_t* Context, const DrawItem& Item) {
  const Axis Own = AxisOf(Item);
  const Double Half = Item.Size / 2;
  cairo_save(Context);
  cairo_translate(Context, Item.X1, Item.Y1);
  cairo_rotate(Context, Own.Angle);
  cairo_rectangle(Context, 0, -Half, Own.Length, Item.Size);
  cairo_pattern_t* Pattern = cairo_pattern_create_linear(0, -Half, 0, Half);
  CairoStops(
      Pattern,
      {{0, ShadeOf(Item.Fill, RimShade)}, {0.4, ShadeOf(Item.Fill, LightShade)}, {1, ShadeOf(Item.Fill, RimShade)}});
  FillWith(Context, Pattern);
  cairo_restore(Context);
}

void CairoLabel(cairo_t* Context, const DrawItem& Item) {
  const Text Value = PlainUtf8(LabelOf(Item));
  cairo_set_font_size(Context, Item.Size);
  cairo_text_extents_t Extents;
  cairo_text_extents(Context, Value.c_str(), &Extents);
  cairo_new_path(Context);
  cairo_move_to(Context, Item.X1 - Extents.x_advance / 2, Item.Y1 + Item.Size * MiddleShare);
  cairo_text_path(Context, Value.c_str());
  SetSource(Context, Item.Edge);
  cairo_set_line_width(Context, HaloWidth);
  cairo_stroke_preserve(Context);
  SetSource(Context, Item.Fill);
  cairo_fill(Context);
}

void CairoItem(cairo_t* Context, const DrawItem& Item) {
  switch (Item.Form) {
    case DrawForm::Disc:
    case DrawForm::Sphere:
      return CairoRound(Context, Item);
    case DrawForm::Line:
      if (Item.Edge != Item.Fill) CairoStroke(Context, Item, Item.Edge, Item.Size + 2 * EdgeWidth);
      return CairoStroke(Context, Item, Item.Fill, Item.Size);
    case DrawForm::DashedLine:
      return CairoDashes(Context, Item);
    case DrawForm::Cylinder:
      return CairoCylinder(Context, Item);
    default:
      return CairoLabel(Context, Item);
  }
}

}  // namespace

bool ShowsMolecule() {
  // Beside a spectrum it is the smaller part of the view.
  return IsSet(Main.MolRender1.Visible) && !IsSet(Main.Spectrum1.Visible) && !Main.MolRender1.Atoms.empty();
}

Text BuildMoleculeSvg() {
  const RenderScene Scene = PresentScene();
  Text Svg = SvgHead(Main.MolRender1, Scene.Background) + SvgGradients(Scene);
  for (const DrawItem& Item : Scene.Items) Svg += SvgItem(Item);
  return Svg + "</svg>\n";
}

void DrawMolecule(cairo_t* Context) {
  const RenderScene Scene = PresentScene();
  SetSource(Context, Scene.Background);
  cairo_paint(Context);
  cairo_set_line_cap(Context, CAIRO_LINE_CAP_BUTT);
  cairo_set_line_join(Context, CAIRO_LINE_JOIN_ROUND);
  cairo_select_font_face(Context, PictureFont, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  for (const DrawItem& Item : Scene.Items) CairoItem(Context, Item);
}

}  // namespace zelvanor::pictures
