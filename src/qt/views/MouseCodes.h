#pragma once

#include <Qt>

#include "platform/Form.h"
#include "platform/Picture.h"

namespace zelvanor {

// Buttons and keys of a mouse event as the program's handlers get them.

inline int ButtonCode(Qt::MouseButtons Buttons) {
  return (Buttons & Qt::LeftButton ? LeftButton : 0) | (Buttons & Qt::RightButton ? RightButton : 0) |
         (Buttons & Qt::MiddleButton ? MiddleButton : 0);
}

inline int ShiftCode(Qt::KeyboardModifiers Keys) {
  return (Keys & Qt::ShiftModifier ? ShiftKey : 0) | (Keys & Qt::ControlModifier ? CtrlKey : 0);
}

}  // namespace zelvanor
