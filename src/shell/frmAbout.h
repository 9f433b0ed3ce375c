#pragma once

namespace zelvanor {

// The About box. Connects its handlers; once, at start-up.
void BuildAboutForm();

}  // namespace zelvanor
