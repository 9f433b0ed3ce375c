#pragma once

#include "basic/Types.h"

namespace zelvanor {

// The curves as files for other programs: JCAMP-DX with a table in DIFDUP form, or values separated by commas with a
// header line. Each throws a Failure where there is no such curve.
Text BuildMeasuredJcamp();
Text BuildMeasuredCsv();
// The simulated envelope over its whole range, with ten points to a line width.
Text BuildEnvelopeJcamp();
Text BuildEnvelopeCsv();

}  // namespace zelvanor
