#pragma once

namespace zelvanor {

// Takes the atom table into the render control when it is another one than at the last time: elements, places and
// bonds, with the colours and radii of the current sets. A new system keeps the indices that are selected and comes up
// unturned and fitted. The control's coordinates are counted from the middle of the system, so that it turns about
// itself.
void TakeSystem();

}  // namespace zelvanor
