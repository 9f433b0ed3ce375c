#include "qt/controls/Pointer.h"

#include <QCursor>
#include <QGuiApplication>

namespace zelvanor {

namespace {
MousePointer Shown = MousePointer::Default;
}  // namespace

void ShowPointer(MousePointer Pointer) {
  if (Pointer == Shown) return;
  Shown = Pointer;
  if (Pointer == MousePointer::Hourglass) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QGuiApplication::restoreOverrideCursor();
  }
}

PlainPointer::PlainPointer() : Former(Shown) { ShowPointer(MousePointer::Default); }
PlainPointer::~PlainPointer() { ShowPointer(Former); }

}  // namespace zelvanor
