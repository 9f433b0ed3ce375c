#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// The envelope of the whole peak list on a grid of its own: Count samples from Start on, Step Hz apart, in the view's
// sign; Width in Hz, the shape as the view has it. Peaks far outside the grid take part as well.
std::vector<Double> BuildEnvelope(Double Start, Double Step, std::size_t Count, Double Width);

// The line width of the view, Hz; 1 where none has been set.
Double EnvelopeWidth();

}  // namespace zelvanor
