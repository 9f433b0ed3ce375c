#include "qt/frame/ViewFocus.h"

#include <QToolButton>

#include "qt/controls/ControlWidgets.h"
#include "shell/MainForm.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

struct KeyState {
  const QWidget* Holder = nullptr;  // before the event at hand
  const QWidget* View = nullptr;    // that was shown last
};

KeyState Keys;

const QWidget* Holder() {
  const QWidget* Window = WidgetOf(Main.frmNMR);
  return Window == nullptr ? nullptr : Window->focusWidget();
}

Control& ShownView() {
  switch (Workspace.ViewMode) {
    case ShieldingView:
    case CouplingView:
      return Main.ShieldTable;
    case SpectrumViewMode:
      return Main.Spectrum1;
    default:
      return Main.MolRender1;
  }
}

bool HaveWandered() {
  const QWidget* Present = Holder();
  if (Present == nullptr || Present->isHidden() || !Present->isEnabled()) return true;
  return Present != Keys.Holder && qobject_cast<const QToolButton*>(Present) != nullptr;
}

}  // namespace

void NoteKeyHolder() { Keys.Holder = Holder(); }

void KeepKeysOnView() {
  QWidget* View = WidgetOf(ShownView());
  if (View == nullptr || View->isHidden()) return;
  if (View != Keys.View || HaveWandered()) View->setFocus(Qt::TabFocusReason);
  Keys.View = View;
}

}  // namespace zelvanor
