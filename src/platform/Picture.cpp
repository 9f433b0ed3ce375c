#include "platform/Picture.h"

#include <utility>

#include "platform/Services.h"

namespace zelvanor {

namespace {
void TellPicture(PictureSurface& Surface) {
  if (Platform.ControlChanged) Platform.ControlChanged(Surface, Property::Picture);
}
}  // namespace

DrawingContext GetDC(PictureSurface& Surface) { return {&Surface, Black, 0, 0}; }

void ReleaseDC(DrawingContext& Context) { TellPicture(*Context.Surface); }

Colour SelectPen(DrawingContext& Context, Colour Pen) { return std::exchange(Context.Pen, Pen); }

void MoveTo(DrawingContext& Context, int X, int Y) {
  Context.X = X;
  Context.Y = Y;
}

void LineTo(DrawingContext& Context, int X, int Y) {
  Context.Surface->Lines.push_back({Context.X, Context.Y, X, Y, Context.Pen});
  MoveTo(Context, X, Y);
}

void PrintAt(DrawingContext& Context, int XTwips, int YTwips, TextView Value, Colour Pen) {
  Context.Surface->Texts.push_back({XTwips / TwipsPerPixelX, YTwips / TwipsPerPixelY, Text(Value), Pen});
}

void PrintOverLines(DrawingContext& Context, int X, int Y, TextView Value, Colour Pen) {
  Context.Surface->Texts.push_back({X, Y, Text(Value), Pen, true});
}

void ClearPicture(PictureSurface& Surface) {
  Surface.Lines.clear();
  Surface.Texts.clear();
  TellPicture(Surface);
}

void SetBackColor(PictureSurface& Surface, Colour BackColor) {
  Surface.BackColor = BackColor;
  TellPicture(Surface);
}

}  // namespace zelvanor
