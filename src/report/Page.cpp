#include <cmath>
#include <cstdio>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "platform/TextFiles.h"
#include "report/Report.h"
#include "shell/Frame.h"
#include "spectrum/PeakLists.h"
#include "tables/AtomLabels.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr Double LeastCoupling = 0.05;  // Hz

constexpr const char* Style =
    "body{font-family:sans-serif;max-width:62em;margin:2em auto;padding:0 1em}"
    "table{border-collapse:collapse;margin:1em 0}td,th{border:1px solid #999;padding:.2em .6em;text-align:right}"
    "svg{width:100%;height:auto;border:1px solid #ccc}";

Text Escaped(TextView Value) {
  Text Result;
  for (const char C : Value) {
    switch (C) {
      case '&':
        Result += "&amp;";
        break;
      case '<':
        Result += "&lt;";
        break;
      case '>':
        Result += "&gt;";
        break;
      default:
        Result += C;
    }
  }
  return Result;
}

// The picture of the spectrum; the view is afterwards what it was.
Text SpectrumPicture(const Text& Work) {
  if (!IsSet(W.SpectraAvailable) || !Platform.WriteViewPicture) return {};
  const auto View = W.ViewMode;
  if (View != SpectrumViewMode) EnterSpectrumView();
  Text Picture;
  try {
    Platform.WriteViewPicture(Work, 1.0);
    Picture = ReadWholeFile(Work);
  } catch (const Failure&) {
    Picture.clear();
  }
  std::remove(Work.c_str());
  if (View != SpectrumViewMode) {
    W.ViewMode = View;
    RefreshView();
  }
  const std::size_t Start = Picture.find("<svg");  // an XML declaration has no place within a page
  return Start == Text::npos ? Text() : Picture.substr(Start);
}

Text ShiftTable() {
  Text Rows = "<table><tr><th>Atom<th>Shift (ppm)<th>Error (ppm)<th>Shielding (ppm)\n";
  for (int Entry = 0; Entry < W.NumNMRAtoms; ++Entry) {
    const bool Known = Entry <= W.ShieldingError.UpperBound() && W.ShieldingError[Entry] > 0;
    Rows += Join("<tr><td>", Escaped(AtomLabel(Entry)), "<td>", FormatNumber(W.ChemicalShift[Entry], "0.00"), "<td>",
                 Known ? FormatNumber(W.ShieldingError[Entry], "0.00") : Text(), "<td>",
                 FormatNumber(W.Shielding[Entry], "0.00"), "\n");
  }
  return Rows + "</table>\n";
}

Text CouplingTable() {
  Text Rows;
  for (int First = 0; IsSet(W.CouplingAvailable) && First < W.NumNMRAtoms; ++First) {
    for (int Second = First + 1; Second < W.NumNMRAtoms; ++Second) {
      const Double Hz = W.Coupling(First, Second);
      if (std::fabs(Hz) < LeastCoupling) continue;
      Rows += Join("<tr><td>", Escaped(AtomLabel(First)), "<td>", Escaped(AtomLabel(Second)), "<td>",
                   FormatNumber(Hz, "0.00"), "\n");
    }
  }
  if (Rows.empty()) return {};
  return Join("<h2>Couplings</h2>\n<table><tr><th>Atom<th>Atom<th>J (Hz)\n", Rows, "</table>\n");
}

}  // namespace

Text BuildReportPage(const Text& Work) {
  const Text Line = BuildPublicationText();
  const Text Title = Escaped(W.DocumentTitle.empty() ? Text(ProgramTitle) : W.DocumentTitle);
  return Join("<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>", Title, "</title><style>",
              Style, "</style></head><body>\n<h1>", Title, "</h1>\n<p>Calculated ", ObservedNucleus(), " spectrum at ",
              W.NMRFrequency, " MHz, ", W.NumAtoms, " atoms.</p>\n", SpectrumPicture(Work), "\n<p>", Escaped(Line),
              "</p>\n<h2>Shifts</h2>\n", ShiftTable(), CouplingTable(), "</body></html>\n");
}

}  // namespace zelvanor
