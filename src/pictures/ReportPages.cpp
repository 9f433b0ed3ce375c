#include "pictures/ReportPages.h"

#include <cairo-pdf.h>

#include <algorithm>

#include "basic/NumberText.h"
#include "pictures/PictureFile.h"
#include "pictures/PictureText.h"
#include "platform/TextFiles.h"
#include "report/Content.h"
#include "report/ReportDrawing.h"
#include "workspace/Helpers.h"

namespace zelvanor::pictures {

namespace {

// Points.
constexpr Double PageWidth = 595.28;
constexpr Double PageHeight = 841.89;
constexpr Double Margin = 54;
constexpr Double TextWidth = PageWidth - 2 * Margin;
constexpr Double Bottom = PageHeight - Margin;
constexpr Double BodySize = 9.5;
constexpr Double LineHeight = 13.5;

constexpr Colour Ink = 0;
constexpr Colour Soft = Rgb(90, 90, 90);
constexpr Colour Rule = Rgb(200, 200, 200);
constexpr Colour Accent = Rgb(10, 72, 145);
constexpr Colour MeasuredPen = Rgb(173, 66, 0);

enum class Align { Left, Middle, Right };

// The pages as they are filled from above.
struct Paper {
  cairo_t* Context = nullptr;
  Text Title;
  Double Y = Margin;
  int Page = 1;
};

void SetFont(const Paper& On, Double Size, bool Bold = false, const char* Face = PictureFont) {
  cairo_select_font_face(On.Context, Face, CAIRO_FONT_SLANT_NORMAL,
                         Bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(On.Context, Size);
}

Double WidthOf(const Paper& On, const Text& Words) {
  cairo_text_extents_t Size;
  cairo_text_extents(On.Context, Words.c_str(), &Size);
  return Size.x_advance;
}

void Show(const Paper& On, Double X, Double Y, const Text& Words, Colour Pen = Ink, Align How = Align::Left) {
  const Text Plain = PlainUtf8(Words);
  const Double Before = How == Align::Left ? 0 : WidthOf(On, Plain) * (How == Align::Middle ? 0.5 : 1.0);
  SetSource(On.Context, Pen);
  cairo_move_to(On.Context, X - Before, Y);
  cairo_show_text(On.Context, Plain.c_str());
}

void DrawRule(const Paper& On, Double Y, Double Thickness = 0.5) {
  SetSource(On.Context, Rule);
  cairo_set_line_width(On.Context, Thickness);
  cairo_move_to(On.Context, Margin, Y);
  cairo_line_to(On.Context, PageWidth - Margin, Y);
  cairo_stroke(On.Context);
}

void EndPage(Paper& On) {
  constexpr Double FootSize = 8;
  SetFont(On, FootSize);
  Show(On, PageWidth - Margin, PageHeight - Margin / 2, GeneralForm(Long{On.Page}), Soft, Align::Right);
  Show(On, Margin, PageHeight - Margin / 2, On.Title, Soft);
  cairo_show_page(On.Context);
  ++On.Page;
  On.Y = Margin;
}

void NeedRoom(Paper& On, Double Height) {
  if (On.Y + Height > Bottom && On.Y > Margin) EndPage(On);
}

// The lines that the words take in this font.
std::vector<Text> Wrap(const Paper& On, const Text& Words, Double Width) {
  std::vector<Text> Lines;
  Text Line;
  for (const Text& Word : SplitAtBlanks(PlainUtf8(Words))) {
    const Text Longer = Line.empty() ? Word : Join(Line, " ", Word);
    if (!Line.empty() && WidthOf(On, Longer) > Width) {
      Lines.push_back(Line);
      Line = Word;
    } else {
      Line = Longer;
    }
  }
  if (!Line.empty()) Lines.push_back(Line);
  return Lines;
}

void WriteParagraph(Paper& On, const Text& Words, Double X, Double Width, Double Step = LineHeight) {
  for (const Text& Line : Wrap(On, Words, Width)) {
    On.Y += Step;
    Show(On, X, On.Y, Line);
  }
}

void WriteHeading(Paper& On, const char* Words, Double Following) {
  constexpr Double Size = 12;
  constexpr Double Above = 30;
  NeedRoom(On, Above + Following);
  On.Y += On.Y > Margin ? Above : Size;
  SetFont(On, Size, true);
  Show(On, Margin, On.Y, Words);
  On.Y += 5;
}

void WriteTitle(Paper& On, const ReportContent& Of) {
  constexpr Double Size = 18;
  SetFont(On, Size, true);
  constexpr Double TitleStep = 22;
  WriteParagraph(On, Of.Title, Margin, TextWidth, TitleStep);
  SetFont(On, BodySize);
  On.Y += LineHeight + 3;
  Show(On, Margin, On.Y,
       Join(Of.IsMeasured ? "Measured " : "Calculated ", Of.Nucleus, " spectrum at ", Of.MHz, " MHz",
            Of.Formula.empty() ? Text() : Join(" \xC2\xB7 ", Of.Formula)),
       Soft);
  On.Y += LineHeight;
}

void DrawStructure(Paper& On, const ReportContent& Of) {
  const Depiction& Drawn = Of.Structure;
  if (!(Drawn.Width > 0)) return;
  constexpr Double LargestUnit = 34;  // points for a bond
  constexpr Double MostHeight = 230;
  const Double Unit = std::min({LargestUnit, TextWidth / Drawn.Width, MostHeight / Drawn.Height});
  NeedRoom(On, Drawn.Height * Unit);
  const Double Left = Margin + (TextWidth - Drawn.Width * Unit) / 2;
  const auto X = [&](Double Value) { return Left + Value * Unit; };
  const auto Y = [&](Double Value) { return On.Y + Value * Unit; };
  cairo_set_line_cap(On.Context, CAIRO_LINE_CAP_ROUND);
  SetSource(On.Context, Ink);
  cairo_set_line_width(On.Context, Unit * 0.036);
  for (const DrawnStroke& Stroke : Drawn.Strokes) {
    cairo_new_path(On.Context);
    if (Stroke.Kind == StrokeKind::Wedge) {
      for (const DrawnPoint& Corner : WedgeCorners(Stroke)) cairo_line_to(On.Context, X(Corner.X), Y(Corner.Y));
      cairo_close_path(On.Context);
      cairo_fill(On.Context);
      continue;
    }
    for (const DrawnStroke& Line : StrokeLines(Stroke)) {
      cairo_move_to(On.Context, X(Line.X1), Y(Line.Y1));
      cairo_line_to(On.Context, X(Line.X2), Y(Line.Y2));
    }
    cairo_stroke(On.Context);
  }
  for (const DrawnAtom& Atom : Drawn.Atoms) {
    for (const SymbolPart& Part : SymbolParts(Atom)) {
      SetFont(On, Unit * (Part.Small ? 0.23 : 0.34));
      Show(On, X(Part.X), Y(Part.Y + 0.115), Part.Words, Ink, Align::Middle);
    }
    SetFont(On, Unit * 0.24);
    Show(On, X(Atom.NumbersX), Y(Atom.NumbersY + 0.08), NameEntries(Atom.Entries), Accent,
         Atom.NumbersSide > 0   ? Align::Left
         : Atom.NumbersSide < 0 ? Align::Right
                                : Align::Middle);
  }
  On.Y += Drawn.Height * Unit + 6;
}

void DrawSpectrum(Paper& On, const ReportContent& Of) {
  if (Of.Simulated.Points.empty() && Of.Measured.Points.empty()) return;
  constexpr Double Scale = 0.75;  // points for a pixel
  constexpr Double Height = 200;
  NeedRoom(On, Height);
  const SpectrumDrawing Drawn = DrawSpectrumOf(Of, TextWidth / Scale, Height / Scale);
  cairo_save(On.Context);
  cairo_translate(On.Context, Margin, On.Y);
  cairo_scale(On.Context, Scale, Scale);
  cairo_set_line_join(On.Context, CAIRO_LINE_JOIN_ROUND);
  for (const DrawnCurve& Curve : Drawn.Curves) {
    SetSource(On.Context, Curve.Measured ? MeasuredPen : Ink);
    cairo_new_path(On.Context);  // a text leaves its end behind as a point
    cairo_set_line_width(On.Context, 0.9);
    for (const DrawnPoint& Point : Curve.Points) cairo_line_to(On.Context, Point.X, Point.Y);
    cairo_stroke(On.Context);
  }
  SetSource(On.Context, Soft);
  for (const DrawnStroke& Line : Drawn.Axis) {
    cairo_move_to(On.Context, Line.X1, Line.Y1);
    cairo_line_to(On.Context, Line.X2, Line.Y2);
  }
  cairo_stroke(On.Context);
  constexpr Double Size = 11;
  SetFont(On, Size);
  for (const DrawnWords& Words : Drawn.Ticks) Show(On, Words.X, Words.Y, Words.Words, Soft, Align::Middle);
  for (const DrawnWords& Words : Drawn.Names) Show(On, Words.X, Words.Y, Words.Words, Ink, Align::Middle);
  cairo_restore(On.Context);
  On.Y += Height;
  if (Of.Measured.Points.empty() || Of.Simulated.Points.empty()) return;
  SetFont(On, BodySize);
  On.Y += LineHeight;
  Show(On, Margin, On.Y, "Simulated: black. Measured: coloured.", Soft);
}

struct Column {
  const char* Caption;
  Double Edge;  // right one, or for words the left one; points from the margin
  bool Words = false;
};

void WriteRow(const Paper& On, const std::vector<Column>& Columns, const std::vector<Text>& Cells, Colour Pen) {
  for (std::size_t K = 0; K < Columns.size(); ++K) {
    Show(On, Margin + Columns[K].Edge, On.Y, Cells[K], Pen, Columns[K].Words ? Align::Left : Align::Right);
  }
}

void WriteTable(Paper& On, const std::vector<Column>& Columns, const std::vector<std::vector<Text>>& Rows) {
  std::vector<Text> Captions;
  Captions.reserve(Columns.size());
  for (const Column& Each : Columns) Captions.emplace_back(Each.Caption);
  const auto Head = [&] {
    SetFont(On, BodySize, true);
    On.Y += LineHeight;
    WriteRow(On, Columns, Captions, Soft);
    DrawRule(On, On.Y + 4, 0.8);
    On.Y += 4;
    SetFont(On, BodySize);
  };
  Head();
  for (const std::vector<Text>& Cells : Rows) {
    if (On.Y + LineHeight > Bottom) {
      EndPage(On);
      Head();
    }
    On.Y += LineHeight;
    WriteRow(On, Columns, Cells, Ink);
  }
}

Text Figure(Double Value) {
  const Text Words = FormatNumber(Value, "0.00");
  return Words.starts_with("-") ? "\xE2\x88\x92" + Words.substr(1) : Words;
}

void WriteShifts(Paper& On, const ReportContent& Of) {
  constexpr Double Following = 3 * LineHeight;
  WriteHeading(On, "Shifts", Following);
  const char* const Shift = Of.IsMeasured ? "\xCE\xB4 meas. (ppm)" : "\xCE\xB4 calc. (ppm)";
  std::vector<Column> Columns = {{"Atoms", 0, true}, {Shift, 128}};
  if (Of.AnyError) Columns.push_back({"error", 168});
  if (Of.AnyMeasured) {
    Columns.push_back({"measured", 228});
    Columns.push_back({"difference", 288});
  }
  const Double Last = Columns.back().Edge;
  Columns.push_back({"\xCF\x83 (ppm)", Last + 52});
  Columns.push_back({"Multiplet", Last + 64, true});
  std::vector<std::vector<Text>> Rows;
  for (const ReportRow& Row : Of.Rows) {
    std::vector<Text> Cells = {Row.Names, Figure(Row.Ppm)};
    if (Of.AnyError) Cells.push_back(Row.Error > 0 ? "\xC2\xB1" + FormatNumber(Row.Error, "0.00") : Text());
    if (Of.AnyMeasured) {
      Cells.push_back(Row.HasMeasured ? Figure(Row.Measured) : Text());
      Cells.push_back(Row.HasMeasured ? Figure(Row.Ppm - Row.Measured) : Text());
    }
    Cells.push_back(Figure(Row.Shielding));
    Cells.push_back(Row.Pattern);
    Rows.push_back(std::move(Cells));
  }
  WriteTable(On, Columns, Rows);
}

void WriteCouplings(Paper& On, const ReportContent& Of) {
  if (Of.Couplings.empty()) return;
  WriteHeading(On, "Couplings", 3 * LineHeight);
  std::vector<std::vector<Text>> Rows;
  for (const ReportCoupling& Each : Of.Couplings) {
    const auto NamesOf = [&](int Row) { return Of.Rows[static_cast<std::size_t>(Row)].Names; };
    Rows.push_back({Join(NamesOf(Each.First), " ", EnDash, " ", NamesOf(Each.Second)),
                    Each.Bonds > 0 ? GeneralForm(Long{Each.Bonds}) : Text(), Figure(Each.Hz)});
  }
  WriteTable(On, {{"Atoms", 0, true}, {"bonds", 190}, {"J (Hz)", 245}}, Rows);
}

void WriteFacts(Paper& On, const ReportContent& Of) {
  WriteHeading(On, "How it was computed", 3 * LineHeight);
  constexpr Double Indent = 130;
  SetFont(On, BodySize);
  for (const ReportFact& Each : Of.Facts) {
    NeedRoom(On, 3 * LineHeight);
    SetFont(On, BodySize);
    Show(On, Margin, On.Y + LineHeight, Each.What, Soft);
    WriteParagraph(On, Each.Value, Margin + Indent, TextWidth - Indent);
    On.Y += 2;
  }
}

void DrawPages(cairo_surface_t* Target, const ReportContent& Of) {
  const Text Title = PlainUtf8(Of.Title);
  cairo_pdf_surface_set_metadata(Target, CAIRO_PDF_METADATA_TITLE, Title.c_str());
  cairo_pdf_surface_set_metadata(Target, CAIRO_PDF_METADATA_CREATOR, ProgramTitle);
  Paper On{cairo_create(Target), Title};
  WriteTitle(On, Of);
  DrawStructure(On, Of);
  DrawSpectrum(On, Of);
  WriteHeading(On, "Publication text", 4 * LineHeight);
  SetFont(On, BodySize + 0.5, false, "serif");
  WriteParagraph(On, Of.Publication, Margin, TextWidth);
  WriteShifts(On, Of);
  WriteCouplings(On, Of);
  WriteFacts(On, Of);
  EndPage(On);
  cairo_destroy(On.Context);
}

}  // namespace

void WriteReportPages(const Text& Path) {
  const ReportContent Of = GatherReport();
  const Text Content = BuildPdf(PageWidth, PageHeight, [&Of](cairo_surface_t* Target) { DrawPages(Target, Of); });
  if (Content.empty()) throw Failure("can't write " + Path);
  WriteWholeFile(Path, Content);
}

}  // namespace zelvanor::pictures
