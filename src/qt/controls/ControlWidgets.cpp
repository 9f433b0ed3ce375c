#include "qt/controls/ControlWidgets.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>

#include "platform/Form.h"
#include "qt/TextConversion.h"

namespace zelvanor {

namespace {

struct Binding {
  QObject* Shown = nullptr;
  ShowProperty Show;
};

std::unordered_map<const Control*, Binding>& Bindings() {
  static std::unordered_map<const Control*, Binding> Table;
  return Table;
}

struct MakerRow {
  ControlKind Kind;
  QWidget* (*Make)(Control&, QWidget*);
};

constexpr MakerRow Makers[] = {
    {ControlKind::CommandButton, MakeCommandButton},
    {ControlKind::CheckBox, MakeCheckBox},
    {ControlKind::OptionButton, MakeOptionButton},
    {ControlKind::TextField, MakeTextField},
    {ControlKind::Label, MakeLabel},
    {ControlKind::ListBox, MakeListBox},
    {ControlKind::ComboBox, MakeComboBox},
    {ControlKind::ScrollBar, MakeScrollBar},
    {ControlKind::SpinButton, MakeSpinButton},
    {ControlKind::PictureSurface, MakePictureSurface},
    {ControlKind::Grid, MakeGrid},
    {ControlKind::Chart, MakeChart},
    {ControlKind::RenderControl, MakeRenderControl},
    {ControlKind::ToolButton, MakeToolButton},
    {ControlKind::StatusLine, MakeStatusLine},
};

constexpr Property EveryProperty[] = {Property::Enabled, Property::Visible, Property::Caption, Property::Text,
                                      Property::Items,   Property::Range,   Property::Value,   Property::Checked,
                                      Property::Pressed, Property::Place,   Property::Picture, Property::Cells};

bool IsMainForm(const Form* Owner) { return Owner != nullptr && Owner->Name == MainFormName; }

void ShowOnWidget(const Control& Target, QWidget* Shown, Property What) {
  switch (What) {
    case Property::Enabled:
      return Shown->setEnabled(IsSet(Target.Enabled));
    case Property::Visible:
      return Shown->setVisible(IsSet(Target.Visible));
    case Property::Place:
      // The main window's controls have their places from the program, those of a dialog from its layout.
      if (IsMainForm(Target.Owner) && Target.Width > 0) {
        Shown->setGeometry(PixelsFromTwips(Target.Left), PixelsFromTwips(Target.Top), PixelsFromTwips(Target.Width),
                           PixelsFromTwips(Target.Height));
      }
      return;
    case Property::Focus:
      return Shown->setFocus();
    default:
      return;
  }
}

}  // namespace

void Bind(Control& Target, QObject* Shown, const ShowProperty& Show) {
  const Control* Key = &Target;
  Bindings()[Key] = {Shown, Show};
  QObject::connect(Shown, &QObject::destroyed, [Key](QObject* Gone) {
    const auto Entry = Bindings().find(Key);
    if (Entry != Bindings().end() && Entry->second.Shown == Gone) Bindings().erase(Entry);
  });
  for (const Property What : EveryProperty) Show(What);
}

void BindWidget(Control& Target, QWidget* Shown, const ShowProperty& Show) {
  Shown->setObjectName(ToQt(ControlName(Target)));
  if (!Target.AccessibleName.empty()) Shown->setAccessibleName(ToQt(Target.AccessibleName));
  Bind(Target, Shown, [&Target, Shown, Show](Property What) {
    ShowOnWidget(Target, Shown, What);
    if (Show) Show(What);
  });
}

QObject* ShownOf(const Control& Target) {
  const auto Entry = Bindings().find(&Target);
  return Entry == Bindings().end() ? nullptr : Entry->second.Shown;
}

QWidget* WidgetOf(const Control& Target) { return qobject_cast<QWidget*>(ShownOf(Target)); }

void ShowChange(Control& Target, Property What) {
  const auto Entry = Bindings().find(&Target);
  if (Entry == Bindings().end()) return;
  const ShowProperty Show = Entry->second.Show;  // a copy: showing may bind further controls
  Show(What);
}

QWidget* MakeWidget(Control& Target, QWidget* Parent) {
  const auto* Row =
      std::find_if(std::begin(Makers), std::end(Makers), [&](const MakerRow& R) { return R.Kind == Target.Kind; });
  return Row == std::end(Makers) ? nullptr : Row->Make(Target, Parent);
}

}  // namespace zelvanor
