#pragma once

#include <cairo.h>

#include "basic/Types.h"

namespace zelvanor::pictures {

// Whether the main window shows a molecule.
bool ShowsMolecule();
// What the molecule view shows, as SVG of its own and drawn with cairo in pixels.
Text BuildMoleculeSvg();
void DrawMolecule(cairo_t* Context);

}  // namespace zelvanor::pictures
