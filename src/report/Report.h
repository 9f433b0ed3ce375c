#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Reports of the document's shifts and couplings. Each throws a Failure where there are none.

// The signals of the observed nucleus as a paper lists them, one line: "1H NMR (400 MHz) δ 3.64 (q, J = 7.0 Hz,
// 2H)...". Multiplets without an order are ranges, those that overlap one.
Text BuildPublicationText();

// The system with its shifts and couplings as NMReData 1.1 in an SD file, https://nmredata.org. At most 999 atoms.
Text BuildNmreData();

// A page of its own in HTML: structure, spectrum, publication text, tables, and how it was computed.
Text BuildReportPage();

// Writes the report in the form that the ending of the path names: .html, .pdf, .txt (the publication text) or .sdf
// (NMReData). Throws a Failure.
void WriteReport(const Text& Path);

}  // namespace zelvanor
