#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Takes the host's current system in place of the document; also the last step of start-up.
void mnuFileGet_Click();

// The transfer: has the host copy its whole system, takes the text from the clipboard into HostTextLine and gives the
// user of the host the selection back. Needs an open conversation. Reports its failures; the Workspace is then as it
// was, but all atoms may be left selected in the host.
Flag GetSystemFromHost();

// The line feeds of a text, but for one in the very first place.
Long CountTextLines(TextView Value);

}  // namespace zelvanor
