#include "qt/frame/DarkOutlines.h"

#include <QApplication>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleOption>

namespace zelvanor {

namespace {

constexpr int DarkLightness = 110;  // of the ground, out of 255
constexpr int OutlineAlpha = 130;   // of the text colour
constexpr int GridAlpha = 60;

bool IsDark(const QPalette& Palette) { return Palette.color(QPalette::Window).lightness() < DarkLightness; }

QColor Thinned(const QPalette& Palette, int Alpha) {
  const QColor Words = Palette.color(QPalette::WindowText);
  const QColor Ground = Palette.color(QPalette::Base);
  const auto Mixed = [Alpha](int Over, int Under) { return (Over * Alpha + Under * (255 - Alpha)) / 255; };
  return {Mixed(Words.red(), Ground.red()), Mixed(Words.green(), Ground.green()), Mixed(Words.blue(), Ground.blue())};
}

class OutlineStyle : public QProxyStyle {
 public:
  OutlineStyle() : QProxyStyle("fusion") {}

  void drawPrimitive(PrimitiveElement Element, const QStyleOption* Option, QPainter* Painter,
                     const QWidget* Of) const override {
    QProxyStyle::drawPrimitive(Element, Option, Painter, Of);
    const bool Round = Element == PE_IndicatorRadioButton;
    const bool Square = Element == PE_IndicatorCheckBox || Element == PE_FrameLineEdit;
    // A field with the keys has a bright edge already.
    const bool IsBright = Element == PE_FrameLineEdit && (Option->state & State_HasFocus);
    if ((!Round && !Square) || !IsDark(Option->palette) || IsBright) return;
    Painter->save();
    Painter->setRenderHint(QPainter::Antialiasing);
    Painter->setBrush(Qt::NoBrush);
    Painter->setPen(QPen(Thinned(Option->palette, OutlineAlpha), 1));
    const QRectF Edge = QRectF(Option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (Round) {
      Painter->drawEllipse(Edge);
    } else {
      constexpr qreal Corner = 2;
      Painter->drawRoundedRect(Edge, Corner, Corner);
    }
    Painter->restore();
  }

  int styleHint(StyleHint Hint, const QStyleOption* Option, const QWidget* Of, QStyleHintReturn* More) const override {
    if (Hint == SH_Table_GridLineColor && Option != nullptr && IsDark(Option->palette)) {
      return static_cast<int>(Thinned(Option->palette, GridAlpha).rgba());
    }
    return QProxyStyle::styleHint(Hint, Option, Of, More);
  }
};

}  // namespace

void UseVisibleOutlines() {
  if (QApplication::style()->name() == "fusion") QApplication::setStyle(new OutlineStyle);
}

}  // namespace zelvanor
