#pragma once

#include <functional>
#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// The controls of the windows as the program sees them: plain data with event slots and no toolkit behind it.
// A front end shows them and calls the setters below when the user acts; the program calls the same setters.
// Places and sizes are in twips unless a field says pixels; a pixel is 15 twips in both directions.

inline constexpr int TwipsPerPixelX = 15;
inline constexpr int TwipsPerPixelY = 15;
constexpr int TwipsFromPixels(int Pixels) { return Pixels * TwipsPerPixelX; }

// A colour: red + 256 x green + 65536 x blue.
using Colour = Long;
constexpr Colour Rgb(int Red, int Green, int Blue) { return Red + 256 * Green + 65536 * Blue; }
inline constexpr Colour Black = 0;
inline constexpr Colour White = Rgb(255, 255, 255);

enum class ControlKind {
  MenuItem,
  ToolButton,
  CommandButton,
  CheckBox,
  OptionButton,
  TextField,
  Label,
  ListBox,
  ComboBox,
  ScrollBar,
  SpinButton,
  Grid,
  PictureSurface,
  Chart,
  RenderControl,
  StatusLine,
  Form,
};

// What a setter has changed; a front end updates that much of the widget.
enum class Property {
  Enabled,
  Visible,
  Caption,
  Text,
  Value,
  Range,
  Items,
  Checked,
  Pressed,
  Place,
  Picture,
  Cells,
  Focus,
  Default
};

struct Form;
using Event = std::function<void()>;

struct Control {
  Control(ControlKind Kind, Form* Owner, Text Name, int Index = -1);
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  ControlKind Kind;
  Form* Owner;  // null for a form itself
  Text Name;
  int Index;  // place in its control array, -1 outside one
  Flag Enabled = True;
  Flag Visible = True;
  Text Caption;         // "&" marks the access key, "&&" is an ampersand
  Text AccessibleName;  // where the caption does not say what the control is
  int Left = 0;
  int Top = 0;
  int Width = 0;
  int Height = 0;
};

struct MenuItem : Control {
  MenuItem(Form* Owner, Text Name) : Control(ControlKind::MenuItem, Owner, std::move(Name)) {}
  MenuItem* Parent = nullptr;  // null for a top menu
  Text Shortcut;               // as "Ctrl+N", empty for none
  Flag Checked = False;
  bool Separator = false;
  Event Click;
};

struct ToolButton : Control {
  ToolButton(Form* Owner, Text Name, int Index) : Control(ControlKind::ToolButton, Owner, std::move(Name), Index) {}
  Text Icon;  // base name of its drawing
  Text ToolTip;
  Flag Pressed = False;  // shown pressed: its view is the one shown, or its mouse mode the one in force
  Event Click;
  Event MouseDown;
  Event MouseUp;
};

struct CommandButton : Control {
  CommandButton(Form* Owner, Text Name, int Index = -1)
      : Control(ControlKind::CommandButton, Owner, std::move(Name), Index) {}
  bool IsDefault = false;  // Enter presses it
  bool IsCancel = false;   // Escape and the window's closing press it
  Event Click;
};

struct CheckBox : Control {
  CheckBox(Form* Owner, Text Name, int Index = -1) : Control(ControlKind::CheckBox, Owner, std::move(Name), Index) {}
  int Value = 0;  // 0 or 1
  Event Click;    // after every change of Value
};

// Of the option buttons with the same Group on a form at most one is set.
struct OptionButton : Control {
  OptionButton(Form* Owner, Text Name, int Index = -1)
      : Control(ControlKind::OptionButton, Owner, std::move(Name), Index) {}
  Text Group;
  Flag Value = False;
  Event Click;  // when it becomes set
};

struct TextField : Control {
  TextField(Form* Owner, Text Name, int Index = -1) : Control(ControlKind::TextField, Owner, std::move(Name), Index) {}
  Text Value;
  Flag ReadOnly = False;  // shows what the program sets; keys do nothing
  bool Wide = false;      // for words and paths: as wide as a line of them
  Event Change;
  std::function<void(int& KeyAscii)> KeyPress;  // may replace the key or take it away (0)
};

struct Label : Control {
  Label(Form* Owner, Text Name, int Index = -1) : Control(ControlKind::Label, Owner, std::move(Name), Index) {}
  bool Wraps = false;  // into the width that the rest of its form has
};

struct ListBox : Control {
  ListBox(Form* Owner, Text Name, bool Multiple = false)
      : Control(ControlKind::ListBox, Owner, std::move(Name)), Multiple(Multiple) {}
  bool Multiple;
  std::vector<Text> Items;
  std::vector<bool> Selected;  // beside Items, for multiple selection
  int ListIndex = -1;
  Text EmptyHint;  // what to do next, shown while there are no items
  Event Click;
  Event DoubleClick;
};

struct ComboBox : Control {
  ComboBox(Form* Owner, Text Name) : Control(ControlKind::ComboBox, Owner, std::move(Name)) {}
  std::vector<Text> Items;
  int ListIndex = -1;
  Event Click;
};

// Min may be above Max: then the value falls from the left end to the right one.
struct ScrollBar : Control {
  ScrollBar(Form* Owner, Text Name) : Control(ControlKind::ScrollBar, Owner, std::move(Name)) {}
  int Min = 0;
  int Max = 32767;
  int Value = 0;
  int SmallChange = 1;
  int LargeChange = 1;
  Event Change;
};

struct SpinButton : Control {
  SpinButton(Form* Owner, Text Name) : Control(ControlKind::SpinButton, Owner, std::move(Name)) {}
  Event SpinUp;
  Event SpinDown;
};

struct StatusLine : Control {
  StatusLine(Form* Owner, Text Name) : Control(ControlKind::StatusLine, Owner, std::move(Name)) {}
  Text Value;
};

void SetEnabled(Control& Target, Flag Enabled);
void SetVisible(Control& Target, Flag Visible);
void SetCaption(Control& Target, TextView Caption);
void SetPlace(Control& Target, int Left, int Top, int Width, int Height);
void SetChecked(MenuItem& Target, Flag Checked);
void SetPressed(ToolButton& Target, Flag Pressed);

// Each of these fires the control's event when the value changes.
void SetValue(CheckBox& Target, int Value);
void SetValue(OptionButton& Target, Flag Value);  // setting one clears the others of its group
void SetText(TextField& Target, TextView Value);
void SetListIndex(ListBox& Target, int Index);
void SetListIndex(ComboBox& Target, int Index);
void SetSelected(ListBox& Target, int Index, bool Selected);
// All rows at once, beside Items; for lists of thousands.
void SetSelection(ListBox& Target, std::vector<bool> Selected);
// A value outside the bar's range goes to the nearer end.
void SetValue(ScrollBar& Target, int Value);
// New ends; a value that falls outside them moves to the nearer one.
void SetRange(ScrollBar& Target, int Min, int Max);
void SetChanges(ScrollBar& Target, int SmallChange, int LargeChange);

void SetItems(ListBox& Target, std::vector<Text> Items);
void SetItems(ComboBox& Target, std::vector<Text> Items);
// Behind the rows that are there, whose selection stays.
void AppendItems(ListBox& Target, const std::vector<Text>& Items);
// The next key goes to this control.
void SetFocus(Control& Target);
void SetStatus(StatusLine& Target, TextView Value);

// A dialog's buttons: caption and handler; a name for screen readers where the caption says nothing.
void SetUpButton(CommandButton& Button, const char* Caption, Event Click, const char* AccessibleName = "");
// Enter presses this button and no other one of its form.
void SetDefault(CommandButton& Target);
// The pair that ends a dialog: OK, which Enter presses, and Cancel, which Escape and the window's closing press.
void SetUpOkAndCancel(CommandButton& Ok, const char* OkCaption, Event OkClick, CommandButton& Cancel,
                      Event CancelClick);

// Runs the event unless it is empty.
inline void Fire(const Event& Handler) {
  if (Handler) Handler();
}

}  // namespace zelvanor
