#pragma once

#include <QWidget>

namespace zelvanor {

// The window has the views come up at their best: before the program starts, and once it has.
void WantFirstSight();
void FollowDesktopColours(QWidget* Window);

}  // namespace zelvanor
