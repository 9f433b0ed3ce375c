#include "qt/controls/KeyFilter.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <algorithm>
#include <iterator>
#include <utility>

#include "qt/Dispatch.h"
#include "shell/MainForm.h"
#include "shell/Progress.h"

namespace zelvanor {

namespace {

struct KeyRow {
  int Key;
  int Code;
};

constexpr KeyRow KeyRows[] = {
    {Qt::Key_Backspace, 8}, {Qt::Key_Tab, 9},    {Qt::Key_Return, 13}, {Qt::Key_Enter, 13},
    {Qt::Key_Escape, 27},   {Qt::Key_Space, 32}, {Qt::Key_PageUp, 33}, {Qt::Key_PageDown, 34},
    {Qt::Key_End, 35},      {Qt::Key_Home, 36},  {Qt::Key_Left, 37},   {Qt::Key_Up, 38},
    {Qt::Key_Right, 39},    {Qt::Key_Down, 40},  {Qt::Key_Insert, 45}, {Qt::Key_Delete, 46},
};

bool KeysPause(const Form& Target) { return &Target == &Main.frmNMR && CommandsPause(); }

// True when the form has taken the key.
bool OfferKey(const Form& Target, const QKeyEvent& Key) {
  if (&Target == &Main.frmNMR && Progress.Runs && Key.key() == Qt::Key_Escape) {
    AskCancel();
    return true;
  }
  int Code = KeyCodeOf(Key.key());
  if (Code == 0 || !Target.KeyDown || KeysPause(Target)) return false;
  const Qt::KeyboardModifiers Held = Key.modifiers();
  const int Shift = (Held & Qt::ShiftModifier ? ShiftKey : 0) | (Held & Qt::ControlModifier ? CtrlKey : 0);
  Dispatch([&] { Target.KeyDown(Code, Shift); });
  return Code == 0;
}

class KeyFilter : public QObject {
 public:
  KeyFilter(QWidget* Window, const Form& Target) : QObject(Window), Window(Window), Target(Target) {}

  // A key comes twice: first as a question whether it overrides a shortcut, then, unless it was one, as a press.
  bool eventFilter(QObject* Watched, QEvent* Event) override {
    if (Event->type() != QEvent::ShortcutOverride && Event->type() != QEvent::KeyPress) return false;
    if (!IsFirstReceiver(Watched)) return false;
    const auto* Key = static_cast<QKeyEvent*>(Event);
    if (Key->modifiers() & Qt::AltModifier) return false;
    if (Event->type() == QEvent::ShortcutOverride) {
      Taken = OfferKey(Target, *Key);
      Asked = true;
      if (Taken) Event->accept();
      return Taken;
    }
    if (!std::exchange(Asked, false)) Taken = OfferKey(Target, *Key);
    return Taken;
  }

 private:
  // Keys go up from the widget with the focus; menus have their own.
  bool IsFirstReceiver(const QObject* Watched) const {
    if (!Watched->isWidgetType() || static_cast<const QWidget*>(Watched)->window() != Window) return false;
    if (qobject_cast<const QMenuBar*>(Watched) != nullptr) return false;
    const QWidget* First = Window->focusWidget() == nullptr ? Window : Window->focusWidget();
    return Watched == First;
  }

  QWidget* Window;
  const Form& Target;
  bool Asked = false;
  bool Taken = false;
};

}  // namespace

int KeyCodeOf(int QtKey) {
  const bool IsCharacter = (QtKey >= Qt::Key_A && QtKey <= Qt::Key_Z) || (QtKey >= Qt::Key_0 && QtKey <= Qt::Key_9);
  if (IsCharacter) return QtKey;
  if (QtKey >= Qt::Key_F1 && QtKey <= Qt::Key_F12) return 112 + QtKey - Qt::Key_F1;
  const auto* Row =
      std::find_if(std::begin(KeyRows), std::end(KeyRows), [QtKey](const KeyRow& R) { return R.Key == QtKey; });
  return Row == std::end(KeyRows) ? 0 : Row->Code;
}

void InstallKeyFilter(QWidget* Window, Form& Target) {
  QCoreApplication::instance()->installEventFilter(new KeyFilter(Window, Target));
}

}  // namespace zelvanor
