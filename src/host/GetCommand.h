#pragma once

namespace zelvanor {

// Takes the host's current system in place of the document; also the last step of start-up.
void mnuFileGet_Click();

}  // namespace zelvanor
