#pragma once

namespace zelvanor {

// The host is reached over the session bus, and where the program accepts conversations they are answered from the
// window's event loop. After UseQtServices.
void UseHostLink();

}  // namespace zelvanor
