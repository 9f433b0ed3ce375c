#include "qt/frame/MenuBar.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <map>
#include <set>
#include <vector>

#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "shell/Frame.h"
#include "shell/MainForm.h"

namespace zelvanor {

namespace {

struct MenuParts {
  QMenuBar* Bar = nullptr;
  std::set<const MenuItem*> Parents;  // items with a menu of their own
  std::map<const MenuItem*, QMenu*> Menus;
};

void ShowItem(const MenuItem& Item, QAction* Action, Property What) {
  switch (What) {
    case Property::Enabled:
      return Action->setEnabled(IsSet(Item.Enabled));
    case Property::Visible:
      return Action->setVisible(IsSet(Item.Visible));
    case Property::Caption:
      return Action->setText(Item.Separator ? QString() : ToQt(Item.Caption));
    case Property::Checked:
      // Only an item with its mark set looks like one: the others are plain commands.
      Action->setCheckable(IsSet(Item.Checked));
      return Action->setChecked(IsSet(Item.Checked));
    default:
      return;
  }
}

void PointAt(const MenuItem& Item) {
  Dispatch([&Item] { SubClass1_MenuSelect(0, Item.Caption); });
}

QAction* AddAction(const MenuParts& Parts, MenuItem& Item) {
  QMenu* Above = Parts.Menus.at(Item.Parent);
  auto* Action = new QAction(Above);
  Action->setSeparator(Item.Separator);
  if (!Item.Shortcut.empty()) Action->setShortcut(QKeySequence::fromString(ToQt(Item.Shortcut)));
  QObject::connect(Action, &QAction::triggered, Action, [&Item, Action] {
    DispatchEvent(Item, Item.Click);
    ShowItem(Item, Action, Property::Checked);  // Qt has turned the mark over
  });
  Above->addAction(Action);
  return Action;
}

QAction* AddMenu(MenuParts& Parts, MenuItem& Item) {
  QWidget* Above = Item.Parent == nullptr ? static_cast<QWidget*>(Parts.Bar) : Parts.Menus.at(Item.Parent);
  auto* Menu = new QMenu(Above);
  Parts.Menus[&Item] = Menu;
  QObject::connect(Menu, &QMenu::aboutToShow, Menu, [&Item] { DispatchEvent(Item, Item.Click); });
  Above->addAction(Menu->menuAction());
  return Menu->menuAction();
}

}  // namespace

void BuildMenus(QMenuBar* Bar) {
  MenuParts Parts{Bar, {}, {}};
  std::vector<MenuItem*> Items;
  for (Control* Each : Main.frmNMR.Controls) {
    if (Each->Kind == ControlKind::MenuItem) Items.push_back(static_cast<MenuItem*>(Each));
  }
  for (const MenuItem* Item : Items) Parts.Parents.insert(Item->Parent);
  for (MenuItem* Item : Items) {
    const bool HasMenu = Item->Parent == nullptr || Parts.Parents.count(Item) > 0;
    QAction* Action = HasMenu ? AddMenu(Parts, *Item) : AddAction(Parts, *Item);
    Action->setObjectName(ToQt(Item->Name));
    Action->setMenuRole(QAction::NoRole);
    QObject::connect(Action, &QAction::hovered, Action, [Item] { PointAt(*Item); });
    Bind(*Item, Action, [Item, Action](Property What) { ShowItem(*Item, Action, What); });
  }
}

}  // namespace zelvanor
