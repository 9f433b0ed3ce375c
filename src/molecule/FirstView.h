#pragma once

#include "molecule/ViewTransform.h"

namespace zelvanor {

// How a system is best seen at first: its longest axis from left to right, the next one up, and then tilted as little
// as it takes that atoms do not hide one another. A rotation without magnification or shift.
ViewMatrix FindFirstView(const RenderControl& Control);

}  // namespace zelvanor
