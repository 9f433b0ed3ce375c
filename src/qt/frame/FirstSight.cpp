#include "qt/frame/FirstSight.h"

#include <QApplication>
#include <QEvent>
#include <QPalette>

#include "molecule/MoleculeView.h"
#include "qt/Dispatch.h"
#include "settings/Settings.h"
#include "settings/SettingsState.h"
#include "settings/frmPreference.h"
#include "shell/Frame.h"
#include "spectrum/SpectrumView.h"

namespace zelvanor {

namespace {

void TakeDesktopColours() {
  constexpr int Middle = 128;
  const bool Dark = QApplication::palette().color(QPalette::Base).lightness() < Middle;
  UseDesktopColours(Dark);
  UseDesktopBackground(Dark);
  RefreshView();
}

// The desktop may turn from light to dark while the program runs.
class PaletteFollower : public QObject {
 public:
  using QObject::QObject;
  bool eventFilter(QObject* /*Watched*/, QEvent* Event) override {
    if (Event->type() == QEvent::PaletteChange) Dispatch(TakeDesktopColours);
    return false;
  }
};

}  // namespace

void WantFirstSight() { Settings.FirstSight = true; }

void FollowDesktopColours(QWidget* Window) {
  // Preferences that are confirmed bring back their own colours, which may be none of the user's.
  Preferences.RefreshView = TakeDesktopColours;
  Preferences.GetMoleculeBackground = MoleculeBackground;  // not the desktop's
  Dispatch(TakeDesktopColours);
  Window->installEventFilter(new PaletteFollower(Window));
}

}  // namespace zelvanor
