#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Drags and the wheel on MolRender1, by MouseMode; positions in twips.
void MolRender1_MouseDown(int Button, int Shift, Single X, Single Y);
void MolRender1_MouseMove(int Button, int Shift, Single X, Single Y);
void MolRender1_MouseUp(int Button, int Shift, Single X, Single Y);
void MolRender1_MouseWheel(Double Notches);

}  // namespace zelvanor
