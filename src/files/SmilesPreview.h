#pragma once

#include "platform/Controls.h"
#include "platform/Picture.h"

namespace zelvanor {

// The structure of a SMILES while it is being typed. The converter draws it in a process of its own, so that typing
// never waits.

struct SmilesPreview {
  PictureSurface* Picture = nullptr;
  Label* Said = nullptr;  // the formula, or what is wrong
};

// Draws a moment later, unless another SMILES comes first; nothing for an empty one.
void PreviewSmiles(const SmilesPreview& Where, const Text& Smiles);
// What was drawn last, for another size of the picture.
void RedrawPreview(const SmilesPreview& Where);
// Gives up what is under way.
void EndPreview();

}  // namespace zelvanor
