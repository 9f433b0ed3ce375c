#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTableView>
#include <QTest>
#include <QToolButton>
#include <algorithm>

#include "WindowScript.h"
#include "batch/UserActions.h"
#include "platform/Picture.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/controls/KeyFilter.h"
#include "shell/MainForm.h"

namespace zelvanor::tests {

namespace {

using batch::MouseMotion;

// The widget of a control that a script acts on: one that the program shows has one.
template <class Widget>
Widget& WidgetFor(const Control& Target) {
  auto* Found = qobject_cast<Widget*>(ShownOf(Target));
  if (Found == nullptr) throw batch::ScriptStop{batch::CannotCarryOut, "no widget shows " + ControlName(Target)};
  return *Found;
}

Qt::MouseButton ButtonOf(int Code) {
  return Code == LeftButton    ? Qt::LeftButton
         : Code == RightButton ? Qt::RightButton
                               : (Code == MiddleButton ? Qt::MiddleButton : Qt::NoButton);
}

Qt::KeyboardModifiers KeysOf(int Shift) {
  Qt::KeyboardModifiers Keys;
  if (Shift & ShiftKey) Keys |= Qt::ShiftModifier;
  if (Shift & CtrlKey) Keys |= Qt::ControlModifier;
  return Keys;
}

void SendMouse(QWidget& To, QEvent::Type Kind, QPoint Place, Qt::MouseButton Button, Qt::MouseButtons Held,
               Qt::KeyboardModifiers Keys = {}) {
  QMouseEvent Mouse(Kind, Place, To.mapToGlobal(Place), Button, Held, Keys);
  QCoreApplication::sendEvent(&To, &Mouse);
}

void ClickMenu(MenuItem& Item) {
  auto& Action = WidgetFor<QAction>(Item);
  // A menu that opens is a click on its item.
  if (Action.menu() != nullptr) return Q_EMIT Action.menu()->aboutToShow();
  Action.trigger();
}

void Click(Control& Target) {
  switch (Target.Kind) {
    case ControlKind::MenuItem:
      return ClickMenu(static_cast<MenuItem&>(Target));
    case ControlKind::ToolButton:
      // Without the press and the release, for which scripts have commands of their own.
      QMetaObject::invokeMethod(&WidgetFor<QToolButton>(Target), "clicked", Q_ARG(bool, false));
      return;
    case ControlKind::Chart: {
      auto& Chart = WidgetFor<QWidget>(Target);
      return SendMouse(Chart, QEvent::MouseButtonDblClick, Chart.rect().center(), Qt::LeftButton, Qt::LeftButton);
    }
    default: {
      // On the mark of a check box or option button: what stands right of its caption takes no click.
      auto& Button = WidgetFor<QAbstractButton>(Target);
      constexpr int InTheMark = 8;
      QTest::mouseClick(&Button, Qt::LeftButton, {}, QPoint(InTheMark, Button.height() / 2));
    }
  }
}

void Press(ToolButton& Target) {
  auto& Button = WidgetFor<QToolButton>(Target);
  SendMouse(Button, QEvent::MouseButtonPress, Button.rect().center(), Qt::LeftButton, Qt::LeftButton);
}

// Away from the button, or the release would be a click.
void Release(ToolButton& Target) {
  auto& Button = WidgetFor<QToolButton>(Target);
  const QPoint Away(-50, -50);
  SendMouse(Button, QEvent::MouseMove, Away, Qt::NoButton, Qt::LeftButton);
  SendMouse(Button, QEvent::MouseButtonRelease, Away, Qt::LeftButton, Qt::NoButton);
}

void Type(Control& Target, const Text& Keys) {
  auto& Shown = WidgetFor<QWidget>(Target);
  Shown.setFocus();
  if (auto* Line = qobject_cast<QLineEdit*>(&Shown)) Line->end(false);
  for (const QChar Key : ToQt(Keys)) {
    auto Code = static_cast<Qt::Key>(Key.toUpper().unicode());
    if (Key == '\r') Code = Qt::Key_Return;
    if (Key == '\b') Code = Qt::Key_Backspace;
    QTest::sendKeyEvent(QTest::Click, &Shown, Code, QString(Key), Qt::NoModifier);
  }
}

void Enter(TextField& Target, const Text& Value) {
  auto& Line = WidgetFor<QLineEdit>(Target);
  Line.setFocus();
  Line.selectAll();
  Line.insert(ToQt(Value));
}

void Choose(Control& Target, int Entry) {
  if (Target.Kind == ControlKind::ComboBox) return WidgetFor<QComboBox>(Target).setCurrentIndex(Entry);
  auto& View = WidgetFor<QListView>(Target);
  const QModelIndex Row = View.model()->index(Entry, 0);
  View.scrollTo(Row);
  QTest::mouseClick(View.viewport(), Qt::LeftButton, {}, View.visualRect(Row).center());
}

// At once, as a drag over the rows does it: each click would be an event of its own.
void Select(ListBox& Target, const std::vector<bool>& Rows) {
  auto& View = WidgetFor<QListView>(Target);
  QItemSelection Wanted;
  for (std::size_t Row = 0; Row < Rows.size(); ++Row) {
    const QModelIndex Place = View.model()->index(static_cast<int>(Row), 0);
    if (Rows[Row]) Wanted.select(Place, Place);
  }
  View.selectionModel()->select(Wanted, QItemSelectionModel::ClearAndSelect);
}

void PickRangeByMouse(const GridControl& Target, int FromRow, int FromCol, int ToRow, int ToCol) {
  auto& View = WidgetFor<QTableView>(Target);
  const auto CellPlace = [&](int Row, int Col) {
    const QModelIndex Cell = View.model()->index(Row - Target.FixedRows, Col - Target.FixedCols);
    View.scrollTo(Cell);
    return View.visualRect(Cell).center();
  };
  QWidget& Body = *View.viewport();
  SendMouse(Body, QEvent::MouseButtonPress, CellPlace(FromRow, FromCol), Qt::LeftButton, Qt::LeftButton);
  const QPoint End = CellPlace(ToRow, ToCol);
  if (FromRow != ToRow || FromCol != ToCol) {
    SendMouse(Body, QEvent::MouseMove, End, Qt::NoButton, Qt::LeftButton);
  }
  SendMouse(Body, QEvent::MouseButtonRelease, End, Qt::LeftButton, Qt::NoButton);
}

void PickRange(GridControl& Target, int FromRow, int FromCol, int ToRow, int ToCol) {
  const bool InBody = std::min(FromRow, ToRow) >= Target.FixedRows && std::min(FromCol, ToCol) >= Target.FixedCols;
  const bool InGrid = std::max(FromRow, ToRow) < RowsOf(Target) && std::max(FromCol, ToCol) < ColsOf(Target);
  if (InBody && InGrid) return PickRangeByMouse(Target, FromRow, FromCol, ToRow, ToCol);
  // What reaches into the headers can't be dragged in the window; the widget still has to show it.
  Fire(Target.MouseDown);
  zelvanor::PickRange(Target, FromRow, FromCol, ToRow, ToCol);
}

void Scroll(ScrollBar& Target, int Value) {
  WidgetFor<QScrollBar>(Target).setValue(Target.Min > Target.Max ? Target.Min + Target.Max - Value : Value);
}

void Spin(SpinButton& Target, bool Up) {
  const auto Arrows = WidgetFor<QWidget>(Target).findChildren<QToolButton*>();
  const auto Wanted = std::find_if(Arrows.begin(), Arrows.end(), [Up](const QToolButton* Arrow) {
    return Arrow->arrowType() == (Up ? Qt::UpArrow : Qt::DownArrow);
  });
  if (Wanted != Arrows.end()) QTest::mouseClick(*Wanted, Qt::LeftButton);
}

void Mouse(Control& Target, const MouseMotion& Motion) {
  auto& Surface = WidgetFor<QWidget>(Target);
  const QPoint Place(Motion.X, Motion.Y);
  const Qt::MouseButton Button = ButtonOf(Motion.Button);
  const Qt::KeyboardModifiers Keys = KeysOf(Motion.Shift);
  static QPoint LastPress(-1, -1);
  static Qt::MouseButtons Held;
  if (Motion.Is == MouseMotion::Down) Held |= Button;
  if (Motion.Is == MouseMotion::Up) Held &= ~Qt::MouseButtons(Button);
  switch (Motion.Is) {
    case MouseMotion::Down: {
      // On a chart the second press at one place is a double click.
      const bool Again = Target.Kind == ControlKind::Chart && LastPress == Place;
      LastPress = Again ? QPoint(-1, -1) : Place;
      const auto Kind = Again ? QEvent::MouseButtonDblClick : QEvent::MouseButtonPress;
      return SendMouse(Surface, Kind, Place, Button, Held, Keys);
    }
    case MouseMotion::Move:
      LastPress = QPoint(-1, -1);
      return SendMouse(Surface, QEvent::MouseMove, Place, Qt::NoButton, Held, Keys);
    case MouseMotion::Up:
      return SendMouse(Surface, QEvent::MouseButtonRelease, Place, Button, Held, Keys);
  }
}

void Key(Form& Active, int KeyCode, int Shift) {
  constexpr int LastSpecial = Qt::Key_Direction_R;
  int Wanted = 0;
  for (int Candidate = Qt::Key_Space; Candidate <= LastSpecial && Wanted == 0; ++Candidate) {
    if (Candidate == Qt::Key_AsciiTilde + 1) Candidate = Qt::Key_Escape;
    if (KeyCodeOf(Candidate) == KeyCode) Wanted = Candidate;
  }
  QWidget& Window = WidgetFor<QWidget>(Active);
  QWidget* Focus = Window.focusWidget() != nullptr ? Window.focusWidget() : &Window;
  QTest::sendKeyEvent(QTest::Click, Focus, static_cast<Qt::Key>(Wanted), QString(), KeysOf(Shift));
}

// So that the work area below the menus has this size.
void Resize(int Width, int Height) {
  QMainWindow& Window = ScriptedWindow();
  Main.frmNMR.Width = TwipsFromPixels(Width);
  Main.frmNMR.Height = TwipsFromPixels(Height);
  const QWidget* Menus = Window.menuWidget();
  Window.resize(Width, Height + (Window.isVisible() ? Menus->height() : Menus->sizeHint().height()));
  SettleWidgets();
}

}  // namespace

void UseWidgetHands() {
  batch::Hands = {
      .Click = Click,
      .Press = Press,
      .Release = Release,
      .Type = Type,
      .Enter = Enter,
      .Choose = Choose,
      .Select = [](ListBox& List, const std::vector<bool>& Rows) { Select(List, Rows); },
      .PickRange = PickRange,
      .Scroll = Scroll,
      .Spin = Spin,
      .Mouse = Mouse,
      .Key = Key,
      .Resize = Resize,
      .Close = [] { ScriptedWindow().close(); },
  };
}

}  // namespace zelvanor::tests
