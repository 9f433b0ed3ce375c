#pragma once

#include <QPainter>
#include <QRect>
#include <QWidget>

#include "platform/RenderScene.h"

namespace zelvanor {

// Marks that the window lays over the drawn surfaces, so that no meaning hangs on a colour alone. They are light and
// dark at once and stand out on every picture.

// Round a surface that has the keys.
void PaintFocusFrame(QPainter& Painter, const QRect& Room);

// A surface that has the frame while the keys came to it by the keyboard; a click needs no telling.
class KeyedSurface : public QWidget {
 public:
  using QWidget::QWidget;

 protected:
  void focusInEvent(QFocusEvent* Focus) override;
  void focusOutEvent(QFocusEvent* Focus) override;

  bool ShowsFocus = false;
};

// Below the stroke of a line at the top of the spectrum that is drawn in the selection colour.
void PaintLineMark(QPainter& Painter, int X, int Top);

// Round each selected atom of a molecule view.
void PaintAtomMarks(QPainter& Painter, const RenderScene& Scene, const std::vector<bool>& IsSelected);

// What an empty table, list or view has to say.
// The atom that the keys point at.
void PaintAtomPointer(QPainter& Painter, const RenderScene& Scene, int Atom);
void PaintHint(QPainter& Painter, const QWidget& Of, const QRect& Room, const QString& Words);

}  // namespace zelvanor
