#pragma once

#include <functional>
#include <vector>

#include "batch/Batch.h"
#include "platform/Grid.h"

namespace zelvanor::batch {

// The mouse on a surface: a button goes down or up, or the pointer moves with Button held down (0 for none). In pixels
// from the surface's top left corner.
struct MouseMotion {
  enum Kind { Down, Move, Up };

  Kind Is = Down;
  int Button = 0;
  int X = 0;
  int Y = 0;
  int Shift = 0;
};

// The user's hand on a control that may be acted on. Those here go straight to the program's controls; a front end with
// widgets puts its own in their place.
struct UserHands {
  std::function<void(Control& Target)> Click;
  std::function<void(ToolButton& Button)> Press;
  std::function<void(ToolButton& Button)> Release;
  std::function<void(Control& FieldOrGrid, const Text& Keys)> Type;
  std::function<void(TextField& Field, const Text& Value)> Enter;
  std::function<void(Control& List, int Entry)> Choose;
  std::function<void(ListBox& List, std::vector<bool> Rows)> Select;
  std::function<void(GridControl& Grid, int FromRow, int FromCol, int ToRow, int ToCol)> PickRange;
  std::function<void(ScrollBar& Bar, int Value)> Scroll;
  std::function<void(SpinButton& Button, bool Up)> Spin;
  std::function<void(Control& Surface, const MouseMotion& Motion)> Mouse;
  std::function<void(Form& Active, int KeyCode, int Shift)> Key;
  std::function<void(int Width, int Height)> Resize;  // the main window's inner size, in pixels
  std::function<void()> Close;                        // the main window
};

extern UserHands Hands;

// What the user does to controls. An action on a control that is disabled, hidden or behind an open modal form prints
// `refused NAME` and nothing happens.
void ClickControl(const std::vector<Argument>& All);
void PressControl(const std::vector<Argument>& All);
void ReleaseControl(const std::vector<Argument>& All);
void TypeText(const std::vector<Argument>& All);
void EnterText(const std::vector<Argument>& All);
void ChooseEntry(const std::vector<Argument>& All);
void PickGridCell(const std::vector<Argument>& All);
void PickGridRange(const std::vector<Argument>& All);
void SelectRows(const std::vector<Argument>& All);
void ScrollBarTo(const std::vector<Argument>& All);
void Spin(const std::vector<Argument>& All);
void MoveMouse(const std::vector<Argument>& All);
void ClickAtom(const std::vector<Argument>& All);
void PressKey(const std::vector<Argument>& All);
void ResizeWindow(const std::vector<Argument>& All);
void CloseWindow(const std::vector<Argument>& All);

// A whole number among the words of a command.
int NeedNumber(const std::vector<Argument>& All, std::size_t Place);
// The same within limits, both included.
int NeedNumberIn(const std::vector<Argument>& All, std::size_t Place, int Low, int High);

}  // namespace zelvanor::batch
