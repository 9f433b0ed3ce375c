#pragma once

namespace zelvanor {

// Fills the slots of Platform, those of the window system and those that are the same everywhere. Once, after the
// application object exists and before BuildProgram.
void UseQtServices();

}  // namespace zelvanor
