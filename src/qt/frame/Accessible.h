#pragma once

#include <QAccessible>
#include <QWidget>
#include <functional>

namespace zelvanor {

// What a screen reader is told of a widget that draws itself. The name is the widget's accessible name.
struct SpokenState {
  QAccessible::Role Role = QAccessible::Graphic;
  std::function<QString()> Description;  // what is to be seen, and what the keys do
  std::function<QString()> Value;        // what the last action gave; may be empty
};

// For the life of the widget.
void SpeakFor(QWidget* Shown, SpokenState State);

// Says the value again after it has changed.
void SpeakChange(QWidget* Shown);

}  // namespace zelvanor
