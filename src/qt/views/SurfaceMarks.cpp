#include "qt/views/SurfaceMarks.h"

#include <QFocusEvent>

namespace zelvanor {

namespace {

// Twice over, dark dashes on a light line.
template <class Draw>
void DrawTwice(QPainter& Painter, qreal Width, const Draw& DrawOnce) {
  Painter.setBrush(Qt::NoBrush);
  Painter.setPen(QPen(Qt::white, Width));
  DrawOnce();
  QPen Dashes(Qt::black, Width, Qt::CustomDashLine, Qt::FlatCap);
  Dashes.setDashPattern({2, 2});
  Painter.setPen(Dashes);
  DrawOnce();
}

}  // namespace

void PaintFocusFrame(QPainter& Painter, const QRect& Room) {
  constexpr qreal Width = 2;
  Painter.setRenderHint(QPainter::Antialiasing, false);
  DrawTwice(Painter, Width, [&] { Painter.drawRect(Room.adjusted(1, 1, -1, -1)); });
}

void KeyedSurface::focusInEvent(QFocusEvent* Focus) {
  ShowsFocus = Focus->reason() == Qt::TabFocusReason || Focus->reason() == Qt::BacktabFocusReason;
  update();
}

void KeyedSurface::focusOutEvent(QFocusEvent* /*Focus*/) {
  ShowsFocus = false;
  update();
}

void PaintLineMark(QPainter& Painter, int X, int Top) {
  constexpr qreal HalfWidth = 5;
  constexpr qreal Height = 8;
  const qreal Middle = X + 0.5;
  Painter.setRenderHint(QPainter::Antialiasing);
  Painter.setPen(QPen(Qt::black, 1));
  Painter.setBrush(Qt::white);
  Painter.drawPolygon(
      QPolygonF({{Middle, qreal(Top)}, {Middle + HalfWidth, Top + Height}, {Middle - HalfWidth, Top + Height}}));
}

void PaintAtomMarks(QPainter& Painter, const RenderScene& Scene, const std::vector<bool>& IsSelected) {
  constexpr qreal Distance = 4;
  constexpr qreal LeastRadius = 8;
  Painter.setRenderHint(QPainter::Antialiasing);
  for (const DrawItem& Item : Scene.Items) {
    const auto Atom = static_cast<std::size_t>(Item.Atom);
    const bool Round = Item.Form == DrawForm::Disc || Item.Form == DrawForm::Sphere;
    if ((!Round && Item.Form != DrawForm::Label) || Atom >= IsSelected.size() || !IsSelected[Atom]) continue;
    const qreal Radius = std::max(qreal{Item.Size} * (Round ? 1.0 : 0.5) + Distance, LeastRadius);
    DrawTwice(Painter, 1.5, [&] { Painter.drawEllipse(QPointF(Item.X1, Item.Y1), Radius, Radius); });
  }
}

void PaintAtomPointer(QPainter& Painter, const RenderScene& Scene, int Atom) {
  constexpr qreal Distance = 7;
  constexpr qreal LeastRadius = 12;
  Painter.setRenderHint(QPainter::Antialiasing);
  for (const DrawItem& Item : Scene.Items) {
    const bool Round = Item.Form == DrawForm::Disc || Item.Form == DrawForm::Sphere;
    if (Item.Atom != Atom || (!Round && Item.Form != DrawForm::Label)) continue;
    const qreal Radius = std::max(qreal{Item.Size} * (Round ? 1.0 : 0.5) + Distance, LeastRadius);
    const QRectF Frame(Item.X1 - Radius, Item.Y1 - Radius, 2 * Radius, 2 * Radius);
    return DrawTwice(Painter, 2, [&] { Painter.drawRect(Frame); });
  }
}

void PaintHint(QPainter& Painter, const QWidget& Of, const QRect& Room, const QString& Words) {
  constexpr int Margin = 12;
  Painter.setPen(Of.palette().color(QPalette::PlaceholderText));
  Painter.drawText(Room.adjusted(Margin, Margin, -Margin, -Margin), Qt::AlignCenter | Qt::TextWordWrap, Words);
}

}  // namespace zelvanor
