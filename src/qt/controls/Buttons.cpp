#include <QButtonGroup>
#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>

#include "platform/Form.h"
#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"

namespace zelvanor {

namespace {

bool HasDefaultButton(const Form* Owner) {
  if (Owner == nullptr) return false;
  for (const Control* Item : Owner->Controls) {
    if (Item->Kind == ControlKind::CommandButton && static_cast<const CommandButton*>(Item)->IsDefault) return true;
  }
  return false;
}

// Buttons of one group are one stop of the tab key and answer the arrow keys together.
QButtonGroup* GroupOf(const OptionButton& Target, QWidget* Parent) {
  const QString Name = "group " + ToQt(Target.Group);
  QWidget* Window = Parent->window();
  auto* Group = Window->findChild<QButtonGroup*>(Name, Qt::FindDirectChildrenOnly);
  if (Group == nullptr) {
    Group = new QButtonGroup(Window);
    Group->setObjectName(Name);
  }
  return Group;
}

// An exclusive group refuses to be left without a set button, which the program may well want.
void ShowOption(QRadioButton* Shown, bool Set) {
  const QSignalBlocker Quiet(Shown);
  QButtonGroup* Group = Shown->group();
  Group->setExclusive(false);
  Shown->setChecked(Set);
  Group->setExclusive(true);
}

void ShowCaption(QAbstractButton* Shown, const Control& Target) { Shown->setText(ToQtLines(Target.Caption)); }

}  // namespace

QWidget* MakeCommandButton(Control& Target, QWidget* Parent) {
  auto& Button = static_cast<CommandButton&>(Target);
  auto* Shown = new QPushButton(Parent);
  // With a default button, Enter presses the button that has the focus, else the default one.
  Shown->setAutoDefault(HasDefaultButton(Button.Owner));
  Shown->setDefault(Button.IsDefault);
  QObject::connect(Shown, &QPushButton::clicked, Shown, [&Button] { DispatchEvent(Button, Button.Click); });
  BindWidget(Button, Shown, [&Button, Shown](Property What) {
    if (What == Property::Caption) ShowCaption(Shown, Button);
    if (What == Property::Default) Shown->setDefault(Button.IsDefault);
  });
  return Shown;
}

QWidget* MakeCheckBox(Control& Target, QWidget* Parent) {
  auto& Box = static_cast<CheckBox&>(Target);
  auto* Shown = new QCheckBox(Parent);
  const auto ShowValue = [&Box, Shown] {
    const QSignalBlocker Quiet(Shown);
    Shown->setChecked(Box.Value != 0);
  };
  QObject::connect(Shown, &QCheckBox::toggled, Shown, [&Box, ShowValue](bool Checked) {
    if (MayAct(Box)) Dispatch([&] { SetValue(Box, Checked ? 1 : 0); });
    ShowValue();
  });
  BindWidget(Box, Shown, [&Box, Shown, ShowValue](Property What) {
    if (What == Property::Caption) ShowCaption(Shown, Box);
    if (What == Property::Value) ShowValue();
  });
  return Shown;
}

QWidget* MakeOptionButton(Control& Target, QWidget* Parent) {
  auto& Button = static_cast<OptionButton&>(Target);
  auto* Shown = new QRadioButton(Parent);
  GroupOf(Button, Parent)->addButton(Shown);
  QObject::connect(Shown, &QRadioButton::toggled, Shown, [&Button](bool Checked) {
    if (!Checked) return;  // the one that goes out follows from the one that comes in
    if (MayAct(Button)) Dispatch([&] { SetValue(Button, True); });
    for (Control* Item : Button.Owner->Controls) {
      if (Item->Kind == ControlKind::OptionButton) ShowChange(*Item, Property::Value);
    }
  });
  BindWidget(Button, Shown, [&Button, Shown](Property What) {
    if (What == Property::Caption) ShowCaption(Shown, Button);
    if (What == Property::Value) ShowOption(Shown, IsSet(Button.Value));
  });
  return Shown;
}

}  // namespace zelvanor
