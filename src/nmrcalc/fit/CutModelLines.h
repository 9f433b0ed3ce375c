#pragma once

#include <vector>

#include "nmrcalc/fit/ModelLines.h"

namespace nmrcalc {

// Adds the lines of a part that is cut into clusters of this level, and their changes by differences. A cluster stands
// by itself, so a direction costs only those that its sites belong to or act on.
void AddCutPart(const SpectrumInput& System, const LinePart& Part, const std::vector<LineDirection>& Directions,
                int Level, const LineAxis& Axis, LineNodes& Target);

}  // namespace nmrcalc
