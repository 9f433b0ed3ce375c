#pragma once

#include "platform/Controls.h"

namespace zelvanor {

// How a form's controls stand together; a front end lays the form out from it, no dialog has layout code of its own.
struct Arrangement {
  enum class Shape { Item, Row, Column, Group, Stretch };

  Shape Is = Shape::Stretch;
  Control* Item = nullptr;         // of an Item
  Text Title;                      // of a Group
  std::vector<Arrangement> Parts;  // of a Row, Column or Group (a group's parts stand in a column)
};

inline Arrangement ItemOf(Control& Item) { return {Arrangement::Shape::Item, &Item, {}, {}}; }
inline Arrangement RowOf(std::vector<Arrangement> Parts) {
  return {Arrangement::Shape::Row, nullptr, {}, std::move(Parts)};
}
inline Arrangement ColumnOf(std::vector<Arrangement> Parts) {
  return {Arrangement::Shape::Column, nullptr, {}, std::move(Parts)};
}
inline Arrangement GroupOf(Text Title, std::vector<Arrangement> Parts) {
  return {Arrangement::Shape::Group, nullptr, std::move(Title), std::move(Parts)};
}
inline Arrangement StretchOf() { return {}; }

// A window. Caption is its title, Width and Height its inner size in twips. A secondary window is hidden, not
// destroyed.
struct Form : Control {
  explicit Form(Text Name);

  std::vector<Control*> Controls;  // in tab order
  Arrangement Layout;
  int HelpContext = 0;
  bool Loaded = false;
  Event Load;      // once, before it is shown for the first time
  Event Open;      // each time it is shown, before Activate
  Event Activate;  // each time it is shown, and when a modal form over it has gone
  Event Resize;
  std::function<void(Flag& Cancel)> QueryUnload;
  Event Unload;
  std::function<void(int& KeyCode, int Shift)> KeyDown;  // sees every key first; 0 takes the key away
};

// Shift state of key and mouse events.
inline constexpr int ShiftKey = 1;
inline constexpr int CtrlKey = 2;

// Shows a form modally and returns when it has been hidden.
void ShowModal(Form& Target);
void HideForm(Form& Target);
// The open modal forms, the outermost first: the last one takes the user's actions.
const std::vector<Form*>& ModalForms();
// Presses the form's cancel button, as the window's closing does; hides a form without one.
void CancelForm(Form& Target);

// Unloads: asks QueryUnload, and unless it cancels runs Unload. False when it was cancelled.
bool UnloadForm(Form& Target);

// Every form of the program, in the order of their making.
const std::vector<Form*>& AllForms();
Form* FindForm(TextView Name);

// A control by the name that scripts use: "mnuFileOpen" or "HScroll1" of the main form, "frmSelect.List1" of another,
// "picToolbar(4)" in a control array, "frmNMR" for a form itself. Null when there is none.
Control* FindControl(TextView Name);
// The name back again.
Text ControlName(const Control& Target);

inline constexpr const char* MainFormName = "frmNMR";

}  // namespace zelvanor
