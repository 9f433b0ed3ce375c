#pragma once

namespace zelvanor {

// The rendering dialog: how atoms, bonds and labels of the molecule view are drawn. Connects its handlers; once, at
// start-up.
void BuildRenderForm();
void AddRenderFormVariables();

void mnuViewRender_Click();

}  // namespace zelvanor
