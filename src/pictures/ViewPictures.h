#pragma once

#include "basic/Types.h"

namespace zelvanor::pictures {

// The picture of what the main window's view shows, and that of the chart window. The ending of the path decides on the
// form: .svg, .png or .pdf. Both throw a Failure where there is nothing to show, the ending is another one or the file
// can't be written.
void WriteViewPicture(const Text& Path, Double Scale = 1.0);
void WriteChartPicture(const Text& Path);

}  // namespace zelvanor::pictures
