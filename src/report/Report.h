#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Reports of the document's shifts and couplings. Each throws a Failure where there are none.

// The signals of the observed nucleus as a paper lists them, one line: "1H NMR (400 MHz) δ 3.64 (q, J = 7.0 Hz,
// 2H)...".
Text BuildPublicationText();

// The system with its shifts and couplings as NMReData 1.1 in an SD file, https://nmredata.org. At most 999 atoms.
Text BuildNmreData();

// A page of its own: the picture of the spectrum, the publication text, the tables. Work names a file with the ending
// svg that may be overwritten and is left behind no longer than it takes.
Text BuildReportPage(const Text& Work);

}  // namespace zelvanor
