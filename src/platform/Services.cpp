#include "platform/Services.h"

namespace zelvanor {

PlatformServices Platform;

}  // namespace zelvanor
