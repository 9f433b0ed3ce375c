#include "batch/UserActions.h"

#include <algorithm>

#include "basic/TextTools.h"
#include "platform/Chart.h"
#include "platform/Grid.h"
#include "platform/Picture.h"
#include "shell/MainForm.h"

namespace zelvanor::batch {

namespace {

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

void Click(Control& Target, const std::vector<Argument>& All) {
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
      RefuseKind(All);
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
  if (Control* Target = FindReachable(All)) Click(*Target, All);
}

void PressControl(const std::vector<Argument>& All) {
  if (Control* Target = FindReachable(All)) Fire(NeedKind<ToolButton>(*Target, ControlKind::ToolButton, All).MouseDown);
}

void ReleaseControl(const std::vector<Argument>& All) {
  if (Control* Target = FindReachable(All)) Fire(NeedKind<ToolButton>(*Target, ControlKind::ToolButton, All).MouseUp);
}

void TypeText(const std::vector<Argument>& All) {
  Control* Target = FindReachable(All);
  if (Target == nullptr) return;
  if (Target->Kind == ControlKind::Grid) {
    auto& Grid = static_cast<GridControl&>(*Target);
    for (const char Key : KeysOf(All[2])) PressGridKey(Grid, static_cast<unsigned char>(Key));
    return;
  }
  auto& Field = NeedKind<TextField>(*Target, ControlKind::TextField, All);
  for (const char Key : KeysOf(All[2])) TypeKey(Field, Key);
}

void PickGridCell(const std::vector<Argument>& All) {
  Control* Target = FindReachable(All);
  if (Target == nullptr) return;
  auto& Grid = NeedKind<GridControl>(*Target, ControlKind::Grid, All);
  Fire(Grid.MouseDown);
  PickCell(Grid, NeedNumber(All, 2), NeedNumber(All, 3));
}

void PickGridRange(const std::vector<Argument>& All) {
  Control* Target = FindReachable(All);
  if (Target == nullptr) return;
  auto& Grid = NeedKind<GridControl>(*Target, ControlKind::Grid, All);
  Fire(Grid.MouseDown);
  PickRange(Grid, NeedNumber(All, 2), NeedNumber(All, 3), NeedNumber(All, 4), NeedNumber(All, 5));
}

void EnterText(const std::vector<Argument>& All) {
  Control* Target = FindReachable(All);
  if (Target == nullptr) return;
  auto& Field = NeedKind<TextField>(*Target, ControlKind::TextField, All);
  if (!IsSet(Field.ReadOnly)) SetText(Field, All[2].Value);
}

void ChooseEntry(const std::vector<Argument>& All) {
  Control* Target = FindReachable(All);
  if (Target == nullptr) return;
  const int Entry = NeedNumber(All, 2);
  const auto Choose = [&](auto& List) {
    if (Entry < 0 || Entry >= static_cast<int>(List.Items.size())) {
      throw ScriptStop{CannotCarryOut, "there is no such entry in " + All[1].Value};
    }
    SetListIndex(List, Entry);
  };
  if (Target->Kind == ControlKind::ComboBox) return Choose(static_cast<ComboBox&>(*Target));
  Choose(NeedKind<ListBox>(*Target, ControlKind::ListBox, All));
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
  SetSelection(List, std::move(Rows));
  Fire(List.Click);
}

void ScrollBarTo(const std::vector<Argument>& All) {
  if (Control* Target = FindReachable(All)) {
    SetValue(NeedKind<ScrollBar>(*Target, ControlKind::ScrollBar, All), NeedNumber(All, 2));
  }
}

void Spin(const std::vector<Argument>& All) {
  Control* Target = FindReachable(All);
  if (Target == nullptr) return;
  const auto& Button = NeedKind<SpinButton>(*Target, ControlKind::SpinButton, All);
  if (All[2].Value != "up" && All[2].Value != "down") throw ScriptStop{CannotCarryOut, "spin C up, or spin C down"};
  Fire(All[2].Value == "up" ? Button.SpinUp : Button.SpinDown);
}

namespace {

// On a chart only a second press at the same place means something: it is a double click.
void MoveMouseOnChart(const ChartControl& Chart, const std::vector<Argument>& All) {
  static Text PressedAt;
  if (All[2].Value == "up") return;
  Text Place = ControlName(Chart);
  for (std::size_t Word = 3; Word < All.size(); ++Word) Place += " " + All[Word].Value;
  if (All[2].Value != "down") {
    PressedAt.clear();
  } else if (Place == PressedAt) {
    PressedAt.clear();
    Fire(Chart.CopyGesture);
  } else {
    PressedAt = Place;
  }
}

// The mouse of a picture surface and of the molecule view, whose own routines tell a click from a drag.
void MouseAt(Control& Target, const Text& Action, int Button, int Shift, Single X, Single Y) {
  const auto Run = [&](const auto& Handler) {
    if (Handler) Handler(Button, Shift, X, Y);
  };
  if (Target.Kind == ControlKind::RenderControl) {
    auto& View = static_cast<RenderControl&>(Target);
    if (Action == "down") return RenderMouseDown(View, Button, Shift, X, Y);
    if (Action == "move") return RenderMouseMove(View, Button, Shift, X, Y);
    return RenderMouseUp(View, Button, Shift, X, Y);
  }
  const auto& Surface = static_cast<PictureSurface&>(Target);
  Run(Action == "down" ? Surface.MouseDown : Action == "move" ? Surface.MouseMove : Surface.MouseUp);
}

}  // namespace

void MoveMouse(const std::vector<Argument>& All) {
  Control* Target = FindReachable(All);
  if (Target == nullptr) return;
  if (Target->Kind == ControlKind::Chart) return MoveMouseOnChart(static_cast<const ChartControl&>(*Target), All);
  if (Target->Kind != ControlKind::PictureSurface && Target->Kind != ControlKind::RenderControl) RefuseKind(All);
  const Text& Action = All[2].Value;
  if (Action != "down" && Action != "move" && Action != "up") {
    throw ScriptStop{CannotCarryOut, "the mouse goes down, move or up, not " + Action};
  }
  const std::size_t Place = Action == "move" ? 3 : 4;
  const auto X = static_cast<Single>(TwipsFromPixels(NeedNumber(All, Place)));
  const auto Y = static_cast<Single>(TwipsFromPixels(NeedNumber(All, Place + 1)));
  const int Shift = ShiftState(All, Place + 2);
  const int Button = Action == "move" ? State.MouseButton : NeedNumber(All, 3);
  if (Action != "move") State.MouseButton = Action == "down" ? Button : 0;
  MouseAt(*Target, Action, Button, Shift, X, Y);
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
  int KeyCode = NeedNumber(All, 1);
  const int Shift = ShiftState(All, 2);
  if (const Form* Active = ActiveForm(); Active != &Main.frmNMR) {
    // A dialog with keys of its own has them; Escape closes it.
    if (!Active->KeyDown) return PrintOut("refused frmNMR");
    Active->KeyDown(KeyCode, Shift);
    constexpr int Escape = 27;
    if (KeyCode == Escape) CancelForm(*FindForm(Active->Name));
    return;
  }
  if (Main.frmNMR.KeyDown) Main.frmNMR.KeyDown(KeyCode, Shift);
  if (Shift != CtrlKey || KeyCode < 'A' || KeyCode > 'Z') return;
  // A key that nobody has taken may be a menu item's.
  const Text Shortcut = Text("Ctrl+") + static_cast<char>(KeyCode);
  for (Control* Item : Main.frmNMR.Controls) {
    if (Item->Kind != ControlKind::MenuItem || static_cast<MenuItem*>(Item)->Shortcut != Shortcut) continue;
    if (IsReachable(*Item)) Fire(static_cast<MenuItem*>(Item)->Click);
    return;
  }
}

}  // namespace zelvanor::batch
