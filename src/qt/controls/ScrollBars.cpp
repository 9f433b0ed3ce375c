#include <QKeyEvent>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"

namespace zelvanor {

namespace {

// A bar whose Min is above its Max falls from left to right; its widget counts from left to right in any case.
int Mirrored(const ScrollBar& Bar, int Value) { return Bar.Min > Bar.Max ? Bar.Min + Bar.Max - Value : Value; }

void ShowBar(const ScrollBar& Bar, QScrollBar* Shown) {
  const QSignalBlocker Quiet(Shown);
  const auto [Low, High] = std::minmax(Bar.Min, Bar.Max);
  Shown->setRange(Low, High);
  Shown->setSingleStep(std::max(Bar.SmallChange, 1));
  Shown->setPageStep(std::max(Bar.LargeChange, 1));
  Shown->setValue(Mirrored(Bar, Bar.Value));
}

// Qt's own bar takes the left arrow key for more.
class LevelBar : public QScrollBar {
 public:
  explicit LevelBar(QWidget* Parent) : QScrollBar(Qt::Horizontal, Parent) {}

 protected:
  void keyPressEvent(QKeyEvent* Key) override {
    if (Key->key() == Qt::Key_Left) return triggerAction(SliderSingleStepSub);
    if (Key->key() == Qt::Key_Right) return triggerAction(SliderSingleStepAdd);
    QScrollBar::keyPressEvent(Key);
  }
};

QToolButton* MakeArrow(QWidget* Parent, Qt::ArrowType Arrow, const QString& Name) {
  auto* Button = new QToolButton(Parent);
  Button->setArrowType(Arrow);
  Button->setAutoRepeat(true);
  Button->setAccessibleName(Name);
  Button->setFocusPolicy(Qt::TabFocus);
  Button->setFixedSize(22, 14);
  return Button;
}

}  // namespace

QWidget* MakeScrollBar(Control& Target, QWidget* Parent) {
  auto& Bar = static_cast<ScrollBar&>(Target);
  auto* Shown = new LevelBar(Parent);
  Shown->setFocusPolicy(Qt::TabFocus);
  Shown->setContextMenuPolicy(Qt::NoContextMenu);
  QObject::connect(Shown, &QScrollBar::valueChanged, Shown, [&Bar, Shown](int Value) {
    if (MayAct(Bar)) Dispatch([&] { SetValue(Bar, Mirrored(Bar, Value)); });
    ShowBar(Bar, Shown);
  });
  BindWidget(Bar, Shown, [&Bar, Shown](Property What) {
    if (What == Property::Range || What == Property::Value) ShowBar(Bar, Shown);
  });
  return Shown;
}

QWidget* MakeSpinButton(Control& Target, QWidget* Parent) {
  auto& Spin = static_cast<SpinButton&>(Target);
  auto* Shown = new QWidget(Parent);
  auto* Stack = new QVBoxLayout(Shown);
  Stack->setContentsMargins(0, 0, 0, 0);
  Stack->setSpacing(0);
  const QString What = Spin.AccessibleName.empty() ? QString() : ToQt(Spin.AccessibleName) + ": ";
  QToolButton* Up = MakeArrow(Shown, Qt::UpArrow, What + "up");
  QToolButton* Down = MakeArrow(Shown, Qt::DownArrow, What + "down");
  Stack->addWidget(Up);
  Stack->addWidget(Down);
  Shown->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  QObject::connect(Up, &QToolButton::clicked, Shown, [&Spin] { DispatchEvent(Spin, Spin.SpinUp); });
  QObject::connect(Down, &QToolButton::clicked, Shown, [&Spin] { DispatchEvent(Spin, Spin.SpinDown); });
  BindWidget(Spin, Shown);
  return Shown;
}

}  // namespace zelvanor
