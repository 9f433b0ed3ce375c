#pragma once

#include "report/Content.h"

namespace zelvanor {

// Pieces of the report page.

extern const char* const PageStyle;   // page.css
extern const char* const PageScript;  // page.js

// Any bytes as text of a page: UTF-8, with what is markup escaped, quotation marks too.
Text PageText(TextView Value);

// The structure as an SVG element whose atoms carry the places of their signals; empty where there is none.
Text StructureSvg(const ReportContent& Of);
// The spectrum as it stands before the script draws its own; empty where there is none.
Text SpectrumSvg(const ReportContent& Of);
// What the script works with, as JSON that may stand in a script element.
Text PageData(const ReportContent& Of);

// "H14-16: 2.39 ppm, s": what a signal is read out as.
Text TellSignal(const ReportContent& Of, std::size_t Signal);
// The places of the rows' signals, as in "0 3"; empty where a row has none.
Text SignalsOfRows(const ReportContent& Of, const std::vector<int>& Rows);

}  // namespace zelvanor
