#include <algorithm>
#include <cmath>

#include "basic/NumberText.h"
#include "report/PageParts.h"
#include "report/Report.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

constexpr const char* PlusMinus = "\xC2\xB1";
constexpr const char* Minus = "\xE2\x88\x92";

// A number as it is printed, with the sign that typography has for it.
Text Figure(Double Value, TextView Pattern) {
  const Text Words = FormatNumber(Value, Pattern);
  return Words.starts_with("-") ? Minus + Words.substr(1) : Words;
}

bool IsDigit(char C) { return C >= '0' && C <= '9'; }

// "1H" and "C9H8O4" with raised and lowered digits.
Text NucleusHtml(const Text& Nucleus) {
  const std::size_t Digits = std::min(Nucleus.find_first_not_of("0123456789"), Nucleus.size());
  return Join("<sup>", Nucleus.substr(0, Digits), "</sup>", Nucleus.substr(Digits));
}
Text FormulaHtml(const Text& Formula) {
  Text Html;
  for (const char C : Formula) Html += IsDigit(C) ? Join("<sub>", Text(1, C), "</sub>") : Text(1, C);
  for (std::size_t At = 0; (At = Html.find("</sub><sub>", At)) != Text::npos;) Html.erase(At, 11);
  return Html;
}

// J in italics, as it is set in print.
Text PatternHtml(const Text& Words) {
  Text Html = PageText(Words);
  for (std::size_t At = 0; (At = Html.find("J = ", At)) != Text::npos; At += 11) Html.replace(At, 1, "<i>J</i>");
  return Html;
}

bool IsLetter(char C) { return UpperChar(C) >= 'A' && UpperChar(C) <= 'Z'; }

// The digits of the solvent, which stands between the first brackets, are lowered: "CDCl3", "DMSO-d6".
Text LowerSolvent(const Text& Html) {
  Text Result;
  const std::size_t End = std::min(Html.find(')'), Html.size());
  for (std::size_t K = 0; K < End; ++K) {
    const bool Index = K > 0 && IsDigit(Html[K]) && IsLetter(Html[K - 1]);
    Result += Index ? Join("<sub>", Text(1, Html[K]), "</sub>") : Text(1, Html[K]);
  }
  return Result + Html.substr(End);
}

Text PublicationHtml(const ReportContent& Of) {
  const Text Behind = Of.Publication.substr(std::min(Of.Nucleus.size(), Of.Publication.size()));
  return NucleusHtml(Of.Nucleus) + LowerSolvent(PatternHtml(Behind));
}

Text RowHead(const Text& Signals, const Text& Words) {
  if (Signals.empty()) return Join("<tr><th scope=\"row\">", PageText(Words), "</th>");
  return Join("<tr data-s=\"", Signals, "\"><th scope=\"row\"><button type=\"button\" aria-pressed=\"false\">",
              PageText(Words), "</button></th>");
}

Text ShiftTable(const ReportContent& Of) {
  Text Html = Join("<div class=\"scroll\"><table><thead><tr><th scope=\"col\" class=\"words\">Atoms</th>",
                   "<th scope=\"col\">\xCE\xB4 ", Of.IsMeasured ? "measured" : "calculated", "<br>(ppm)</th>");
  if (Of.AnyError) Html += "<th scope=\"col\">error<br>(ppm)</th>";
  if (Of.AnyMeasured) {
    Html += "<th scope=\"col\">\xCE\xB4 measured<br>(ppm)</th><th scope=\"col\">difference<br>(ppm)</th>";
  }
  Html +=
      "<th scope=\"col\">\xCF\x83<br>(ppm)</th><th scope=\"col\" class=\"words\">Multiplet</th></tr></thead><tbody>\n";
  for (std::size_t Place = 0; Place < Of.Rows.size(); ++Place) {
    const ReportRow& Row = Of.Rows[Place];
    Html += RowHead(SignalsOfRows(Of, {static_cast<int>(Place)}), Row.Names);
    Html += Join("<td>", Figure(Row.Ppm, "0.00"), "</td>");
    if (Of.AnyError) {
      Html +=
          Join("<td class=\"error\">", Row.Error > 0 ? PlusMinus + FormatNumber(Row.Error, "0.00") : Text(), "</td>");
    }
    if (Of.AnyMeasured) {
      Html += Join("<td>", Row.HasMeasured ? Figure(Row.Measured, "0.00") : Text(), "</td><td>",
                   Row.HasMeasured ? Figure(Row.Ppm - Row.Measured, "0.00") : Text(), "</td>");
    }
    Html += Join("<td>", Figure(Row.Shielding, "0.00"), "</td><td class=\"words\">", PatternHtml(Row.Pattern),
                 "</td></tr>\n");
  }
  return Html + "</tbody></table></div>\n";
}

Text CouplingTable(const ReportContent& Of) {
  if (Of.Couplings.empty()) return {};
  Text Html =
      "<section><h2>Couplings</h2>\n<div class=\"scroll\"><table><thead><tr><th scope=\"col\" "
      "class=\"words\">Atoms</th>"
      "<th scope=\"col\">Bonds</th><th scope=\"col\"><i>J</i><br>(Hz)</th></tr></thead><tbody>\n";
  for (const ReportCoupling& Each : Of.Couplings) {
    const auto NamesOf = [&](int Row) { return Of.Rows[static_cast<std::size_t>(Row)].Names; };
    Html += RowHead(SignalsOfRows(Of, {Each.First, Each.Second}),
                    Join(NamesOf(Each.First), " ", EnDash, " ", NamesOf(Each.Second)));
    Html += Join("<td>", Each.Bonds > 0 ? GeneralForm(Long{Each.Bonds}) : Text(), "</td><td>", Figure(Each.Hz, "0.00"),
                 "</td></tr>\n");
  }
  return Html + "</tbody></table></div></section>\n";
}

Text Views(const ReportContent& Of) {
  const Text Structure = StructureSvg(Of);
  const Text Spectrum = SpectrumSvg(Of);
  if (Structure.empty() && Spectrum.empty()) return {};
  Text Html = Join("<div class=\"views", Structure.empty() || Spectrum.empty() ? "" : " both", "\">\n");
  if (!Structure.empty()) Html += Join("<figure class=\"structure\">\n", Structure, "</figure>\n");
  if (!Spectrum.empty()) {
    Html += Join("<figure>\n", Spectrum, "<figcaption class=\"legend\">");
    if (!Of.Simulated.Points.empty()) Html += "<span><i></i>simulated</span>";
    if (!Of.Measured.Points.empty()) Html += "<span class=\"measured\"><i></i>measured</span>";
    Html +=
        "</figcaption>\n<div class=\"tools\" hidden><button type=\"button\" id=\"in\">Zoom in</button>"
        "<button type=\"button\" id=\"out\">Zoom out</button><button type=\"button\" id=\"reset\">Reset</button>"
        "<output id=\"told\" aria-live=\"polite\"></output></div>\n"
        "<p class=\"hint\" id=\"keys\">Zoom with the wheel or by dragging over a range; a double click shows all. With "
        "the keyboard: + and \xE2\x88\x92 zoom, the arrows move, 0 shows all.</p>\n</figure>\n";
  } else {
    Html += "<output id=\"told\" aria-live=\"polite\"></output>\n";
  }
  return Html + "</div>\n";
}

Text Facts(const ReportContent& Of) {
  Text Html = "<h2>How it was computed</h2>\n<dl>\n";
  for (const ReportFact& Each : Of.Facts) Html += Join("<dt>", Each.What, "</dt><dd>", PageText(Each.Value), "</dd>\n");
  return Html + "</dl>\n";
}

Text Subtitle(const ReportContent& Of) {
  Text Html =
      Join(Of.IsMeasured ? "Measured " : "Calculated ", NucleusHtml(Of.Nucleus), " spectrum at ", Of.MHz, " MHz");
  if (!Of.Formula.empty()) Html += Join(" \xC2\xB7 ", FormulaHtml(Of.Formula));
  return Html;
}

}  // namespace

Text BuildReportPage() {
  const ReportContent Of = GatherReport();
  return Join("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>", PageText(Of.Title),
              "</title>\n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
              "<link rel=\"icon\" href=\"data:,\">\n<style>\n",
              PageStyle, "</style>\n</head>\n<body>\n<main>\n<h1>", PageText(Of.Title), "</h1>\n<p class=\"sub\">",
              Subtitle(Of), "</p>\n", Views(Of),
              "<h2>Publication text</h2>\n<div class=\"publication\"><p id=\"line\" data-plain=\"",
              PageText(Of.Publication), "\">", PublicationHtml(Of),
              "</p><button type=\"button\" id=\"copy\" hidden>Copy</button></div>\n<div "
              "class=\"tables\">\n<section><h2>Shifts</h2>\n",
              ShiftTable(Of), "</section>\n", CouplingTable(Of), "</div>\n", Facts(Of),
              "</main>\n<script type=\"application/json\" id=\"data\">", PageData(Of), "</script>\n<script>\n",
              PageScript, "</script>\n</body>\n</html>\n");
}

}  // namespace zelvanor
