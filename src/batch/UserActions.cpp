#include "batch/UserActions.h"

#include <algorithm>

#include "basic/TextTools.h"
#include "platform/Chart.h"
#include "platform/Grid.h"
#include "platform/Picture.h"
#include "shell/MainForm.h"

namespace zelvanor::batch {

namespace {

// Pixels that a script may name; in twips they fit an int with room to spare.
constexpr int LargestPlace = 32767;

// The form that takes the user's actions: the innermost open one.
const Form* ActiveForm() { return ModalForms().empty() ? &Main.frmNMR : ModalForms().back(); }

bool IsReachable(const Control& Target) {
  if (Target.Owner != ActiveForm() || !IsSet(Target.Enabled) || !IsSet(Target.Visible)) return false;
  if (Target.Kind != ControlKind::MenuItem) return true;
  const MenuItem* Above = static_cast<const MenuItem&>(Target).Parent;
  for (; Above != nullptr; Above = Above->Parent) {
    if (!IsSet(Above->Enabled) || !IsSet(Above->Visible)) return false;
  }
  return true;
}

// The control of the command's first word when it can be acted on; null after `refused`.
Control* FindReachable(const std::vector<Argument>& All) {
  Control& Target = NeedControl(All[1].Value);
  if (IsReachable(Target)) return &Target;
  PrintOut("refused " + All[1].Value);
  return nullptr;
}

[[noreturn]] void RefuseKind(const std::vector<Argument>& All) {
  throw ScriptStop{CannotCarryOut, All[0].Value + " does not work on " + All[1].Value};
}

template <class Kind>
Kind& NeedKind(Control& Target, ControlKind Is, const std::vector<Argument>& All) {
  if (Target.Kind != Is) RefuseKind(All);
  return static_cast<Kind&>(Target);
}

void Click(Control& Target) {
  switch (Target.Kind) {
    case ControlKind::MenuItem:
      return Fire(static_cast<MenuItem&>(Target).Click);
    case ControlKind::ToolButton:
      return Fire(static_cast<ToolButton&>(Target).Click);
    case ControlKind::CommandButton:
      return Fire(static_cast<CommandButton&>(Target).Click);
    case ControlKind::CheckBox: {
      auto& Box = static_cast<CheckBox&>(Target);
      return SetValue(Box, Box.Value == 0 ? 1 : 0);
    }
    case ControlKind::OptionButton:
      return SetValue(static_cast<OptionButton&>(Target), True);
    case ControlKind::Chart:
      return Fire(static_cast<ChartControl&>(Target).CopyGesture);
    default:
      return;
  }
}

bool CanBeClicked(ControlKind Kind) {
  switch (Kind) {
    case ControlKind::MenuItem:
    case ControlKind::ToolButton:
    case ControlKind::CommandButton:
    case ControlKind::CheckBox:
    case ControlKind::OptionButton:
    case ControlKind::Chart:
      return true;
    default:
      return false;
  }
}

// Presses the form's default button, as Enter does in a field.
void PressDefault(const Form& Owner) {
  for (Control* Item : Owner.Controls) {
    if (Item->Kind != ControlKind::CommandButton) continue;
    auto& Button = static_cast<CommandButton&>(*Item);
    if (Button.IsDefault && IsReachable(Button)) return Fire(Button.Click);
  }
}

void TypeKey(TextField& Field, char Key) {
  int KeyAscii = static_cast<unsigned char>(Key);
  if (Field.KeyPress) Field.KeyPress(KeyAscii);
  if (KeyAscii == '\r') return PressDefault(*Field.Owner);
  if (KeyAscii == 0 || IsSet(Field.ReadOnly)) return;
  Text Value = Field.Value;
  if (KeyAscii == '\b') {
    if (Value.empty()) return;
    Value.pop_back();
  } else {
    Value += static_cast<char>(KeyAscii);
  }
  SetText(Field, Value);
}

void TypeKeys(Control& Target, const Text& Keys) {
  for (const char Key : Keys) {
    if (Target.Kind == ControlKind::Grid) {
      PressGridKey(static_cast<GridControl&>(Target), static_cast<unsigned char>(Key));
    } else {
      TypeKey(static_cast<TextField&>(Target), Key);
    }
  }
}

// In a word without quotes the two key escapes stand as they are written.
Text KeysOf(const Argument& Word) {
  if (Word.WasQuoted) return Word.Value;
  Text Keys;
  for (std::size_t Place = 0; Place < Word.Value.size(); ++Place) {
    const TextView Pair = TextView(Word.Value).substr(Place, 2);
    if (Pair == "\\b" || Pair == "\\r") {
      Keys += Pair == "\\b" ? '\b' : '\r';
      ++Place;
    } else {
      Keys += Word.Value[Place];
    }
  }
  return Keys;
}

int ShiftState(const std::vector<Argument>& All, std::size_t From) {
  int Shift = 0;
  for (std::size_t Word = From; Word < All.size(); ++Word) {
    if (All[Word].Value == "shift") {
      Shift |= ShiftKey;
    } else if (All[Word].Value == "ctrl") {
      Shift |= CtrlKey;
    } else {
      throw ScriptStop{CannotCarryOut, "shift or ctrl, not " + All[Word].Value};
    }
  }
  return Shift;
}

}  // namespace

void ClickControl(const std::vector<Argument>& All) {
  Control* Target = FindReachable(All);
  if (Target == nullptr) return;
  if (!CanBeClicked(Target->Kind)) RefuseKind(All);
  Hands.Click(*Target);
}

void PressControl(const std::vector<Argument>& All) {
  if (Control* Target = FindReachable(All)) Hands.Press(NeedKind<ToolButton>(*Target, ControlKind::ToolButton, All));
}

void ReleaseControl(const std::vector<Argument>& All) {
  if (Control* Target = FindReachable(All)) Hands.Release(NeedKind<ToolButton>(*Target, ControlKind::ToolButton, All));
}

void TypeText(const std::vector<Argument>& All) {
  Control* Target = FindReachable(All);
  if (Target == nullptr) return;
  if (Target->Kind != ControlKind::Grid && Target->Kind != ControlKind::TextField) RefuseKind(All);
  Hands.Type(*Target, KeysOf(All[2]));
}

void PickGridCell(const std::vector<Argument>& All) {
  Control* Target = FindReachable(All);
  if (Target == nullptr) return;
  const int Row = NeedNumber(All, 2);
  const int Col = NeedNumber(All, 3);
  Hands.PickRange(NeedKind<GridControl>(*Target, ControlKind::Grid, All), Row, Col, Row, Col);
}

void PickGridRange(const std::vector<Argument>& All) {
  Control* Target = FindReachable(All);
  if (Target == nullptr) return;
  Hands.PickRange(NeedKind<GridControl>(*Target, ControlKind::Grid, All), NeedNumber(All, 2), NeedNumber(All, 3),
                  NeedNumber(All, 4), NeedNumber(All, 5));
}

void EnterText(const std::vector<Argument>& All) {
  Control* Target = FindReachable(All);
  if (Target == nullptr) return;
  auto& Field = NeedKind<TextField>(*Target, ControlKind::TextField, All);
  if (!IsSet(Field.ReadOnly)) Hands.Enter(Field, All[2].Value);
}

void ChooseEntry(const std::vector<Argument>& All) {
  Control* Target = FindReachable(All);
  if (Target == nullptr) return;
  const int Entry = NeedNumber(All, 2);
  const std::size_t NumItems = Target->Kind == ControlKind::ComboBox
                                   ? static_cast<ComboBox&>(*Target).Items.size()
                                   : NeedKind<ListBox>(*Target, ControlKind::ListBox, All).Items.size();
  if (Entry < 0 || Entry >= static_cast<int>(NumItems)) {
    throw ScriptStop{CannotCarryOut, "there is no such entry in " + All[1].Value};
  }
  Hands.Choose(*Target, Entry);
}

void SelectRows(const std::vector<Argument>& All) {
  Control* Target = FindReachable(All);
  if (Target == nullptr) return;
  auto& List = NeedKind<ListBox>(*Target, ControlKind::ListBox, All);
  if (!List.Multiple) RefuseKind(All);
  std::vector<bool> Rows(List.Items.size(), false);
  for (std::size_t Word = 2; Word < All.size(); ++Word) {
    const int Row = NeedNumber(All, Word);
    if (Row >= 0 && Row < static_cast<int>(Rows.size())) Rows[static_cast<std::size_t>(Row)] = true;
  }
  Hands.Select(List, std::move(Rows));
}

void ScrollBarTo(const std::vector<Argument>& All) {
  if (Control* Target = FindReachable(All)) {
    Hands.Scroll(NeedKind<ScrollBar>(*Target, ControlKind::ScrollBar, All), NeedNumber(All, 2));
  }
}

void Spin(const std::vector<Argument>& All) {
  Control* Target = FindReachable(All);
  if (Target == nullptr) return;
  auto& Button = NeedKind<SpinButton>(*Target, ControlKind::SpinButton, All);
  if (All[2].Value != "up" && All[2].Value != "down") throw ScriptStop{CannotCarryOut, "spin C up, or spin C down"};
  Hands.Spin(Button, All[2].Value == "up");
}

namespace {

bool IsForDragging(ControlKind Kind) {
  return Kind == ControlKind::PictureSurface || Kind == ControlKind::RenderControl || Kind == ControlKind::Chart;
}

// On a chart only a second press at the same place means something: it is a double click.
void MoveMouseOnChart(const ChartControl& Chart, const MouseMotion& Motion) {
  static MouseMotion Pressed;
  static const ChartControl* PressedOn = nullptr;
  if (Motion.Is == MouseMotion::Up) return;
  const bool Again = PressedOn == &Chart && Pressed.X == Motion.X && Pressed.Y == Motion.Y &&
                     Pressed.Button == Motion.Button && Pressed.Shift == Motion.Shift;
  PressedOn = Motion.Is == MouseMotion::Down && !Again ? &Chart : nullptr;
  Pressed = Motion;
  if (Motion.Is == MouseMotion::Down && Again) Fire(Chart.CopyGesture);
}

// The mouse of a picture surface and of the molecule view, whose own routines tell a click from a drag.
void MouseAt(Control& Target, const MouseMotion& Motion) {
  if (Target.Kind == ControlKind::Chart) return MoveMouseOnChart(static_cast<const ChartControl&>(Target), Motion);
  const auto X = static_cast<Single>(TwipsFromPixels(Motion.X));
  const auto Y = static_cast<Single>(TwipsFromPixels(Motion.Y));
  const auto Run = [&](const auto& Handler) {
    if (Handler) Handler(Motion.Button, Motion.Shift, X, Y);
  };
  const bool Down = Motion.Is == MouseMotion::Down;
  const bool Move = Motion.Is == MouseMotion::Move;
  if (Target.Kind == ControlKind::RenderControl) {
    auto& View = static_cast<RenderControl&>(Target);
    if (Down) return RenderMouseDown(View, Motion.Button, Motion.Shift, X, Y);
    if (Move) return RenderMouseMove(View, Motion.Button, Motion.Shift, X, Y);
    return RenderMouseUp(View, Motion.Button, Motion.Shift, X, Y);
  }
  const auto& Surface = static_cast<PictureSurface&>(Target);
  Run(Down ? Surface.MouseDown : Move ? Surface.MouseMove : Surface.MouseUp);
}

// A key that no KeyDown has taken may be a menu item's.
void PressMainKey(int KeyCode, int Shift) {
  if (Main.frmNMR.KeyDown) Main.frmNMR.KeyDown(KeyCode, Shift);
  if ((Shift & CtrlKey) == 0 || KeyCode < 'A' || KeyCode > 'Z') return;
  const Text Shortcut = Text((Shift & ShiftKey) != 0 ? "Ctrl+Shift+" : "Ctrl+") + static_cast<char>(KeyCode);
  for (Control* Item : Main.frmNMR.Controls) {
    if (Item->Kind != ControlKind::MenuItem || static_cast<MenuItem*>(Item)->Shortcut != Shortcut) continue;
    if (IsReachable(*Item)) Fire(static_cast<MenuItem*>(Item)->Click);
    return;
  }
}

// A dialog with keys of its own has them; Escape closes it.
void PressFormKey(Form& Active, int KeyCode, int Shift) {
  constexpr int Escape = 27;
  Active.KeyDown(KeyCode, Shift);
  if (KeyCode == Escape) CancelForm(Active);
}

}  // namespace

UserHands Hands = {
    .Click = Click,
    .Press = [](ToolButton& Button) { Fire(Button.MouseDown); },
    .Release = [](ToolButton& Button) { Fire(Button.MouseUp); },
    .Type = TypeKeys,
    .Enter = [](TextField& Field, const Text& Value) { SetText(Field, Value); },
    .Choose =
        [](Control& List, int Entry) {
          if (List.Kind == ControlKind::ComboBox) return SetListIndex(static_cast<ComboBox&>(List), Entry);
          SetListIndex(static_cast<ListBox&>(List), Entry);
        },
    .Select =
        [](ListBox& List, std::vector<bool> Rows) {
          SetSelection(List, std::move(Rows));
          Fire(List.Click);
        },
    .PickRange =
        [](GridControl& Grid, int FromRow, int FromCol, int ToRow, int ToCol) {
          Fire(Grid.MouseDown);
          PickRange(Grid, FromRow, FromCol, ToRow, ToCol);
        },
    .Scroll = [](ScrollBar& Bar, int Value) { SetValue(Bar, Value); },
    .Spin = [](SpinButton& Button, bool Up) { Fire(Up ? Button.SpinUp : Button.SpinDown); },
    .Mouse = MouseAt,
    .Key =
        [](Form& Active, int KeyCode, int Shift) {
          if (&Active == &Main.frmNMR) return PressMainKey(KeyCode, Shift);
          PressFormKey(Active, KeyCode, Shift);
        },
    .Resize =
        [](int Width, int Height) {
          Main.frmNMR.Width = TwipsFromPixels(Width);
          Main.frmNMR.Height = TwipsFromPixels(Height);
          if (State.Started) Fire(Main.frmNMR.Resize);
        },
    .Close = [] { UnloadForm(Main.frmNMR); },
};

void MoveMouse(const std::vector<Argument>& All) {
  Control* Target = FindReachable(All);
  if (Target == nullptr) return;
  if (!IsForDragging(Target->Kind)) RefuseKind(All);
  const Text& Action = All[2].Value;
  if (Action != "down" && Action != "move" && Action != "up") {
    throw ScriptStop{CannotCarryOut, "the mouse goes down, move or up, not " + Action};
  }
  MouseMotion Motion;
  Motion.Is = Action == "down" ? MouseMotion::Down : Action == "move" ? MouseMotion::Move : MouseMotion::Up;
  const std::size_t Place = Action == "move" ? 3 : 4;
  Motion.X = NeedNumberIn(All, Place, -LargestPlace, LargestPlace);
  Motion.Y = NeedNumberIn(All, Place + 1, -LargestPlace, LargestPlace);
  Motion.Shift = ShiftState(All, Place + 2);
  Motion.Button = Action == "move" ? State.MouseButton : NeedNumber(All, 3);
  if (Action != "move") State.MouseButton = Action == "down" ? Motion.Button : 0;
  Hands.Mouse(*Target, Motion);
}

void ClickAtom(const std::vector<Argument>& All) {
  RenderControl& View = Main.MolRender1;
  if (!IsReachable(View)) return PrintOut("refused MolRender1");
  const int Button = NeedNumber(All, 2);
  const int Shift = ShiftState(All, 3);
  if (All[1].Value == "none") {
    if (View.NoAtomClick) View.NoAtomClick(Button, Shift);
    return;
  }
  const int Atom = NeedNumber(All, 1);
  if (Atom < 0 || Atom >= GetAtomCount(View)) throw ScriptStop{CannotCarryOut, "there is no atom " + All[1].Value};
  if (View.AtomClick) View.AtomClick(Button, Shift, Atom);
}

void PressKey(const std::vector<Argument>& All) {
  const int KeyCode = NeedNumber(All, 1);
  const int Shift = ShiftState(All, 2);
  Form* Active = FindForm(ActiveForm()->Name);
  if (Active != &Main.frmNMR && !Active->KeyDown) return PrintOut("refused frmNMR");
  Hands.Key(*Active, KeyCode, Shift);
}

void ResizeWindow(const std::vector<Argument>& All) {
  // As large as a window can be, as a desktop would do it.
  Hands.Resize(std::clamp(NeedNumber(All, 1), 0, LargestPlace), std::clamp(NeedNumber(All, 2), 0, LargestPlace));
}

void CloseWindow(const std::vector<Argument>& /*All*/) { Hands.Close(); }

}  // namespace zelvanor::batch
