#pragma once

namespace zelvanor {

// In a dark desktop theme the toolkit's own style draws the edges of boxes, fields and cells in almost the colour of
// the ground. This draws them so that they can be seen; light themes and the styles of desktops stay as they are. Once,
// after the application object.
void UseVisibleOutlines();

}  // namespace zelvanor
