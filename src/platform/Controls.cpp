#include "platform/Controls.h"

#include <algorithm>

#include "platform/Form.h"
#include "platform/Services.h"

namespace zelvanor {

Control::Control(ControlKind Kind, Form* Owner, Text Name, int Index)
    : Kind(Kind), Owner(Owner), Name(std::move(Name)), Index(Index) {
  if (Owner != nullptr) Owner->Controls.push_back(this);
}

namespace {

void Tell(Control& Target, Property What) {
  if (Platform.ControlChanged) Platform.ControlChanged(Target, What);
}

// Stores a value and tells the front end; false when nothing has changed.
template <class Field, class Value>
bool Store(Control& Target, Field& Stored, const Value& New, Property What) {
  if (Stored == New) return false;
  Stored = New;
  Tell(Target, What);
  return true;
}

template <class List>
void StoreItems(List& Target, std::vector<Text>&& Items) {
  Target.Items = std::move(Items);
  Target.ListIndex = -1;
  Tell(Target, Property::Items);
}

}  // namespace

void SetEnabled(Control& Target, Flag Enabled) { Store(Target, Target.Enabled, Enabled, Property::Enabled); }
void SetVisible(Control& Target, Flag Visible) { Store(Target, Target.Visible, Visible, Property::Visible); }
void SetCaption(Control& Target, TextView Caption) { Store(Target, Target.Caption, Caption, Property::Caption); }
void SetChecked(MenuItem& Target, Flag Checked) { Store(Target, Target.Checked, Checked, Property::Checked); }
void SetPressed(ToolButton& Target, Flag Pressed) { Store(Target, Target.Pressed, Pressed, Property::Pressed); }

void SetPlace(Control& Target, int Left, int Top, int Width, int Height) {
  if (Target.Left == Left && Target.Top == Top && Target.Width == Width && Target.Height == Height) return;
  Target.Left = Left;
  Target.Top = Top;
  Target.Width = Width;
  Target.Height = Height;
  Tell(Target, Property::Place);
}

void SetValue(CheckBox& Target, int Value) {
  if (Store(Target, Target.Value, Value, Property::Value)) Fire(Target.Click);
}

void SetValue(OptionButton& Target, Flag Value) {
  if (IsSet(Value) && Target.Owner != nullptr) {
    for (Control* Other : Target.Owner->Controls) {
      if (Other == &Target || Other->Kind != ControlKind::OptionButton) continue;
      auto& Button = static_cast<OptionButton&>(*Other);
      if (Button.Group == Target.Group) Store(Button, Button.Value, False, Property::Value);
    }
  }
  if (Store(Target, Target.Value, Value, Property::Value) && IsSet(Value)) Fire(Target.Click);
}

void SetText(TextField& Target, TextView Value) {
  if (Store(Target, Target.Value, Value, Property::Text)) Fire(Target.Change);
}

void SetListIndex(ListBox& Target, int Index) {
  if (Store(Target, Target.ListIndex, Index, Property::Value)) Fire(Target.Click);
}

void SetListIndex(ComboBox& Target, int Index) {
  if (Store(Target, Target.ListIndex, Index, Property::Value)) Fire(Target.Click);
}

void SetSelected(ListBox& Target, int Index, bool Selected) {
  if (Index < 0 || Index >= static_cast<int>(Target.Items.size())) throw Failure(failures::Subscript);
  Target.Selected[static_cast<std::size_t>(Index)] = Selected;
  Tell(Target, Property::Value);
}

void SetSelection(ListBox& Target, std::vector<bool> Selected) {
  if (Selected.size() != Target.Items.size()) throw Failure(failures::Subscript);
  Target.Selected = std::move(Selected);
  Tell(Target, Property::Value);
}

void SetValue(ScrollBar& Target, int Value) {
  const auto [Low, High] = std::minmax(Target.Min, Target.Max);
  if (Store(Target, Target.Value, std::clamp(Value, Low, High), Property::Value)) Fire(Target.Change);
}

void SetRange(ScrollBar& Target, int Min, int Max) {
  if (Target.Min != Min || Target.Max != Max) {
    Target.Min = Min;
    Target.Max = Max;
    Tell(Target, Property::Range);
  }
  SetValue(Target, Target.Value);
}

void SetChanges(ScrollBar& Target, int SmallChange, int LargeChange) {
  Target.SmallChange = SmallChange;
  Target.LargeChange = LargeChange;
  Tell(Target, Property::Range);
}

void SetItems(ListBox& Target, std::vector<Text> Items) {
  Target.Selected.assign(Items.size(), false);
  StoreItems(Target, std::move(Items));
}

void SetItems(ComboBox& Target, std::vector<Text> Items) { StoreItems(Target, std::move(Items)); }

void AppendItems(ListBox& Target, const std::vector<Text>& Items) {
  Target.Items.insert(Target.Items.end(), Items.begin(), Items.end());
  Target.Selected.resize(Target.Items.size(), false);
  Tell(Target, Property::Items);
}

void SetFocus(Control& Target) { Tell(Target, Property::Focus); }

void SetStatus(StatusLine& Target, TextView Value) {
  // Told even when the text is the same: a hint that is set again is shown again.
  Target.Value = Value;
  Tell(Target, Property::Text);
}

void SetUpButton(CommandButton& Button, const char* Caption, Event Click, const char* AccessibleName) {
  Button.Caption = Caption;
  Button.Click = std::move(Click);
  Button.AccessibleName = AccessibleName;
}

void SetDefault(CommandButton& Target) {
  for (Control* Item : Target.Owner->Controls) {
    if (Item->Kind != ControlKind::CommandButton) continue;
    auto& Button = static_cast<CommandButton&>(*Item);
    Store(Button, Button.IsDefault, Item == &Target, Property::Default);
  }
}

void SetUpOkAndCancel(CommandButton& Ok, const char* OkCaption, Event OkClick, CommandButton& Cancel,
                      Event CancelClick) {
  SetUpButton(Ok, OkCaption, std::move(OkClick));
  Ok.IsDefault = true;
  SetUpButton(Cancel, "&Cancel", std::move(CancelClick));
  Cancel.IsCancel = true;
}

}  // namespace zelvanor
