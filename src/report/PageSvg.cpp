#include <algorithm>
#include <cmath>

#include "basic/NumberText.h"
#include "report/PageParts.h"
#include "report/ReportDrawing.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr Double Unit = 44;  // pixels for a bond

Text Number(Double Value) { return FormatNumber(Value, "0.0#"); }
Text Pixels(Double Bonds) { return Number(Bonds * Unit); }

Text StrokeSvg(const DrawnStroke& Of) {
  if (Of.Kind == StrokeKind::Wedge) {
    Text Corners;
    for (const DrawnPoint& Corner : WedgeCorners(Of)) Corners += Join(Pixels(Corner.X), ",", Pixels(Corner.Y), " ");
    return Join("<polygon class=\"wedge\" points=\"", TrimBlanks(Corners), "\"/>\n");
  }
  Text Path;
  for (const DrawnStroke& Each : StrokeLines(Of)) {
    Path += Join("M", Pixels(Each.X1), " ", Pixels(Each.Y1), "L", Pixels(Each.X2), " ", Pixels(Each.Y2));
  }
  return Join("<path class=\"bond\" d=\"", Path, "\"/>\n");
}

Text SymbolSvg(const DrawnAtom& Of) {
  Text Svg;
  for (const SymbolPart& Part : SymbolParts(Of)) {
    Svg +=
        Join("<text class=\"symbol\" text-anchor=\"middle\" x=\"", Pixels(Part.X), "\" y=\"", Number(Part.Y * Unit + 5),
             "\"", Part.Small ? " style=\"font-size:10px\"" : "", ">", Part.Words, "</text>");
  }
  return Svg;
}

Text AtomSvg(const ReportContent& Of, const DrawnAtom& Atom, bool First) {
  std::vector<int> Rows;
  Text Told;
  for (std::size_t Row = 0; Row < Of.Rows.size(); ++Row) {
    const auto& Entries = Of.Rows[Row].Entries;
    const bool Here = std::any_of(Entries.begin(), Entries.end(), [&](int Entry) {
      return std::find(Atom.Entries.begin(), Atom.Entries.end(), Entry) != Atom.Entries.end();
    });
    if (!Here) continue;
    Rows.push_back(static_cast<int>(Row));
    Told += Join(Told.empty() ? "" : "; ", Of.Rows[Row].Names, ": ", FormatNumber(Of.Rows[Row].Ppm, "0.00"), " ppm");
  }
  const Text Signals = SignalsOfRows(Of, Rows);
  Text Svg = "<g class=\"atom\"";
  if (!Signals.empty()) {
    const Text Element = ElementSymbol(W.AtomicNumber[Atom.Atom]);
    Svg += Join(" data-s=\"", Signals, "\" role=\"button\" aria-pressed=\"false\" tabindex=\"", First ? "0" : "-1",
                "\" aria-label=\"", Element, W.AtomInMolecule[Atom.Atom], ". ", PageText(Told), "\"");
  }
  Svg += Join("><circle class=\"halo\" cx=\"", Pixels(Atom.X), "\" cy=\"", Pixels(Atom.Y), "\" r=\"",
              Number(Unit * 0.36), "\"/>", SymbolSvg(Atom));
  if (const Text Names = NameEntries(Atom.Entries); !Names.empty()) {
    const char* const Anchor = Atom.NumbersSide > 0 ? "start" : Atom.NumbersSide < 0 ? "end" : "middle";
    Svg += Join("<text class=\"numbers\" text-anchor=\"", Anchor, "\" x=\"", Pixels(Atom.NumbersX), "\" y=\"",
                Number(Atom.NumbersY * Unit + 3.5), "\">", Names, "</text>");
  }
  return Svg + "</g>\n";
}

}  // namespace

Text StructureSvg(const ReportContent& Of) {
  const Depiction& Drawn = Of.Structure;
  if (!(Drawn.Width > 0)) return {};
  Text Svg = Join("<svg viewBox=\"0 0 ", Pixels(Drawn.Width), " ", Pixels(Drawn.Height),
                  "\" style=\"max-width:", Pixels(Drawn.Width * 1.15), "px\" role=\"group\" aria-label=\"Structure of ",
                  PageText(Of.Title), "\">\n");
  Text Atoms;
  bool First = true;
  for (const DrawnAtom& Atom : Drawn.Atoms) {
    const Text Each = AtomSvg(Of, Atom, First);
    First = First && Each.find("tabindex") == Text::npos;
    Atoms += Each;
  }
  // The halos lie under the bonds, whose ends are pointed at through them.
  Text Bonds;
  for (const DrawnStroke& Stroke : Drawn.Strokes) Bonds += StrokeSvg(Stroke);
  return Svg + Join("<g style=\"pointer-events:none\" aria-hidden=\"true\">\n", Bonds, "</g>\n", Atoms, "</svg>\n");
}

Text SpectrumSvg(const ReportContent& Of) {
  if (Of.Simulated.Points.empty() && Of.Measured.Points.empty()) return {};
  constexpr int Width = 900;
  constexpr int Height = 320;
  const SpectrumDrawing Drawn = DrawSpectrumOf(Of, Width, Height);
  Text Svg = Join("<svg id=\"spectrum\" viewBox=\"0 0 ", Long{Width}, " ", Long{Height},
                  "\" tabindex=\"0\" role=\"group\" aria-roledescription=\"spectrum\" aria-describedby=\"keys\" "
                  "aria-label=\"",
                  Of.Nucleus, " spectrum from ", FormatNumber(Of.HighPpm, "0.0#"), " to ",
                  FormatNumber(Of.LowPpm, "0.0#"), " ppm, ", static_cast<Long>(Of.Signals.size()), " signals\">\n");
  for (const DrawnCurve& Curve : Drawn.Curves) {
    Svg += Join("<path class=\"curve", Curve.Measured ? " measured" : "", "\" d=\"M");
    for (const DrawnPoint& Point : Curve.Points) Svg += Join(Number(Point.X), " ", Number(Point.Y), " ");
    Svg += "\"/>\n";
  }
  for (const DrawnStroke& Line : Drawn.Axis) {
    Svg += Join("<path class=\"axis\" d=\"M", Number(Line.X1), " ", Number(Line.Y1), "L", Number(Line.X2), " ",
                Number(Line.Y2), "\"/>\n");
  }
  for (const DrawnWords& Words : Drawn.Ticks) {
    Svg +=
        Join("<text class=\"tick\" x=\"", Number(Words.X), "\" y=\"", Number(Words.Y), "\">", Words.Words, "</text>\n");
  }
  for (const DrawnWords& Words : Drawn.Names) {
    Svg +=
        Join("<text class=\"name\" x=\"", Number(Words.X), "\" y=\"", Number(Words.Y), "\">", Words.Words, "</text>\n");
  }
  return Svg + "</svg>\n";
}

}  // namespace zelvanor
