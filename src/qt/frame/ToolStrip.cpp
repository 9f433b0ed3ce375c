#include "qt/frame/ToolStrip.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <QToolButton>

#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "shell/MainForm.h"

namespace zelvanor {

namespace {

constexpr int IconPixels = 20;
constexpr int ButtonWidth = 30;
constexpr int ButtonHeight = 28;
constexpr int GroupGap = 10;

// Space belongs to the molecule view, so Enter presses a button as well.
class StripButton : public QToolButton {
 public:
  using QToolButton::QToolButton;

 protected:
  void keyPressEvent(QKeyEvent* Key) override {
    if (Key->key() == Qt::Key_Return || Key->key() == Qt::Key_Enter) return click();
    QToolButton::keyPressEvent(Key);
  }
};

// The button's text, and the key of the menu item that does the same.
QString ToolTipOf(const ToolButton& Button) {
  const auto KeyOf = [&Button]() -> Text {
    switch (Button.Index) {
      case ToolNew:
        return Main.mnuFileNew.Shortcut;
      case ToolOpen:
        return Main.mnuFileOpen.Shortcut;
      case ToolSave:
        return Main.mnuFileSave.Shortcut;
      case ToolGet:
        return Main.mnuFileGet.Shortcut;
      default:
        return {};
    }
  };
  const QString Key = ToQt(KeyOf());
  return ToQt(Button.ToolTip) + (Key.isEmpty() ? QString() : " (" + Key + ")");
}

bool StartsGroup(int Index) { return Index == ToolMolecule || Index == ToolRotate; }

}  // namespace

QWidget* MakeToolButton(Control& Target, QWidget* Parent) {
  auto& Button = static_cast<ToolButton&>(Target);
  auto* Shown = new StripButton(Parent);
  Shown->setIcon(QIcon(":/icons/" + ToQt(Button.Icon) + ".svg"));
  Shown->setIconSize({IconPixels, IconPixels});
  Shown->setFixedSize(ButtonWidth, ButtonHeight);
  Shown->setAutoRaise(true);
  Shown->setCheckable(true);
  Shown->setFocusPolicy(Qt::TabFocus);
  Shown->setToolTip(ToolTipOf(Button));
  const auto ShowPressed = [&Button, Shown] {
    const QSignalBlocker Quiet(Shown);
    Shown->setChecked(IsSet(Button.Pressed));
  };
  QObject::connect(Shown, &QToolButton::pressed, Shown, [&Button] { DispatchEvent(Button, Button.MouseDown); });
  QObject::connect(Shown, &QToolButton::released, Shown, [&Button] { DispatchEvent(Button, Button.MouseUp); });
  QObject::connect(Shown, &QToolButton::clicked, Shown, [&Button, ShowPressed] {
    DispatchEvent(Button, Button.Click);
    ShowPressed();  // pressed in is what the program says, not what a click does
  });
  BindWidget(Button, Shown, [ShowPressed](Property What) {
    if (What == Property::Pressed) ShowPressed();
  });
  return Shown;
}

QWidget* MakeToolStrip(QWidget* Parent) {
  auto* Strip = new QWidget(Parent);
  Strip->setAccessibleName("Toolbar");
  auto* Row = new QHBoxLayout(Strip);
  Row->setContentsMargins(4, 1, 4, 1);
  Row->setSpacing(1);
  for (ToolButton& Button : Main.picToolbar) {
    if (StartsGroup(Button.Index)) Row->addSpacing(GroupGap);
    Row->addWidget(MakeWidget(Button, Strip));
  }
  Row->addStretch();
  return Strip;
}

}  // namespace zelvanor
