#pragma once

#include <array>

#include "settings/SettingsState.h"

namespace zelvanor {

// The colour and the ball radius (angstrom) of an element in the molecule view.
struct ElementLook {
  Colour Color = 0;
  Single Radius = 0;
};
using ElementLooks = std::array<ElementLook, NumElementEntries>;

// The set "balls and sticks" holds covalent radii, and its balls are drawn at this share of them; the balls of the
// other sets are drawn as the file has them.
inline constexpr Single BallShare = 0.5F;

// From the current colour and radius sets; where nmr.ini has no section for one, the customary colours and the covalent
// radii, which the example nmr.ini holds too.
ElementLooks FindElementLooks();

}  // namespace zelvanor
