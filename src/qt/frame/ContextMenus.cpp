#include "qt/frame/ContextMenus.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QTimer>
#include <initializer_list>

#include "qt/Dispatch.h"
#include "qt/controls/ControlWidgets.h"
#include "shell/Frame.h"
#include "spectrum/SpectrumInteraction.h"

namespace zelvanor {

namespace {

using Items = std::initializer_list<const MenuItem*>;  // null for a line between

// What stands in the menu bar, as far as it is of use now.
void AddItems(QMenu& Menu, Items Wanted) {
  for (const MenuItem* Item : Wanted) {
    auto* Action = Item == nullptr ? nullptr : qobject_cast<QAction*>(ShownOf(*Item));
    if (Item == nullptr) Menu.addSeparator();
    if (Action != nullptr && Action->isVisible() && Action->isEnabled()) Menu.addAction(Action);
  }
}

void FillMenu(QMenu& Menu, const Control& Of) {
  const MainForm& M = Main;
  if (&Of == &M.ShieldTable) {
    return AddItems(Menu, {&M.mnuCopy, &M.mnuReplace, nullptr, &M.mnuViewValues, &M.mnuView2DBar, &M.mnuView3DBar,
                           nullptr, &M.mnuComputeSpectra, &M.mnuFileExport});
  }
  if (&Of == &M.Spectrum1) {
    return AddItems(Menu,
                    {&M.mnuLines, &M.mnuEnvelop, &M.mnuLinesAndEnvelop, nullptr, &M.mnuViewValues, &M.mnuViewLabels,
                     &M.mnuViewTree, &M.mnuViewPane, nullptr, &M.mnuSetupNMRSpect, &M.mnuCopy, &M.mnuFileExport});
  }
  if (Rooms.FitMolecule) {
    QObject::connect(Menu.addAction("&Fit to Window"), &QAction::triggered, &Menu, [] { Dispatch(Rooms.FitMolecule); });
  }
  AddItems(Menu,
           {&M.mnuViewRender, nullptr, &M.mnuSetupNMRParam, &M.mnuComputeAll, nullptr, &M.mnuCopy, &M.mnuFileExport});
}

// A click that shows the whole spectrum or unselects atoms does that alone.
bool IsRightClickFree(const Control& Of) {
  if (&Of == &Main.MolRender1) return Main.MouseMode != SelectMode && Main.NumSelectedAtoms == 0;
  return ShowsWhole();
}

// Beside the menu key itself, which keyboards of today may lack and Qt turns into an event of its own.
bool IsMenuKey(const QKeyEvent& Key) { return Key.key() == Qt::Key_F10 && Key.modifiers() == Qt::ShiftModifier; }

class MenuFilter : public QObject {
 public:
  MenuFilter(QWidget* Parent, const Control& Of) : QObject(Parent), Shown(Parent), Of(Of) {}

  bool eventFilter(QObject* /*Watched*/, QEvent* Event) override {
    const bool IsTable = &Of == &Main.ShieldTable;
    if (Event->type() == QEvent::KeyPress && IsMenuKey(*static_cast<QKeyEvent*>(Event))) {
      ShowSoon(Middle());
      return true;
    }
    if (Event->type() == QEvent::ContextMenu) {
      const auto* Asked = static_cast<QContextMenuEvent*>(Event);
      if (!IsTable && Asked->reason() != QContextMenuEvent::Keyboard) return false;
      ShowSoon(IsTable && Asked->reason() == QContextMenuEvent::Mouse ? Asked->globalPos() : Middle());
      return true;
    }
    if (!IsTable && (Event->type() == QEvent::MouseButtonPress || Event->type() == QEvent::MouseButtonRelease)) {
      FollowClick(*static_cast<QMouseEvent*>(Event));
    }
    return false;
  }

 private:
  QPoint Middle() const { return Shown->mapToGlobal(Shown->rect().center()); }

  void FollowClick(const QMouseEvent& Mouse) {
    if (Mouse.button() != Qt::RightButton) return;
    const QPoint Place = Mouse.globalPosition().toPoint();
    if (Mouse.type() == QEvent::MouseButtonPress) {
      Free = IsRightClickFree(Of);
      Pressed = Place;
    } else if (Free && (Place - Pressed).manhattanLength() < QApplication::startDragDistance()) {
      ShowSoon(Place);
    }
  }

  // What the event itself does comes first.
  void ShowSoon(QPoint Place) {
    QTimer::singleShot(0, Shown, [this, Place] {
      if (!MayAct(Of)) return;
      QMenu Menu;
      FillMenu(Menu, Of);
      if (!Menu.isEmpty()) Menu.exec(Place);
    });
  }

  QWidget* Shown;
  const Control& Of;
  QPoint Pressed;
  bool Free = false;
};

}  // namespace

void AddContextMenus() {
  for (const Control* Of :
       std::initializer_list<const Control*>{&Main.ShieldTable, &Main.MolRender1, &Main.Spectrum1}) {
    QWidget* Shown = WidgetOf(*Of);
    if (Shown == nullptr) continue;
    auto* Filter = new MenuFilter(Shown, *Of);
    Shown->installEventFilter(Filter);
    // A table's mouse goes to what lies within its frame.
    if (auto* Inner = Shown->findChild<QWidget*>("qt_scrollarea_viewport")) Inner->installEventFilter(Filter);
  }
}

}  // namespace zelvanor
