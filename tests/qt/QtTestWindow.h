#pragma once

#include <QMainWindow>
#include <vector>

#include "platform/Services.h"

namespace zelvanor::tests {

// The one main window of the tests, started up and shown, on an offscreen platform. Message boxes are answered with
// their first button and kept here.
QMainWindow& Window();
std::vector<MessageBox>& ShownBoxes();

// Serves events for some milliseconds.
void Wait(int Milliseconds);

// The main window takes the keys again after a dialog: no window manager sees to it offscreen.
inline void BringBackWindow() {
  Window().activateWindow();
  Wait(20);
}

// The child of the main window that shows a control.
template <class Widget>
Widget* Shown(const char* Name) {
  auto* Found = Window().findChild<Widget*>(Name);
  if (Found == nullptr) throw Failure(Text("No widget shows ") + Name);
  return Found;
}

}  // namespace zelvanor::tests
