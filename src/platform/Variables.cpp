#include "platform/Variables.h"

namespace zelvanor {

VariableTable& Variables() {
  static VariableTable Table;
  return Table;
}

}  // namespace zelvanor
