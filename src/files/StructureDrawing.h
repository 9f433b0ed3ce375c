#pragma once

#include "files/StructureSketch.h"
#include "platform/Picture.h"

namespace zelvanor {

// A molecule as chemists draw it, from the host text of the converter's flat form.

struct Drawing {
  Sketch Structure;
  Text Formula;
};

// Lines that it does not know are passed over.
Drawing ReadDrawing(TextView HostText);

// In the middle of the surface, as large as it reads well and fits; an empty drawing leaves the surface empty.
void DrawStructure(PictureSurface& Surface, const Sketch& Shown);

}  // namespace zelvanor
