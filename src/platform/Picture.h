#pragma once

#include "platform/Controls.h"

namespace zelvanor {

struct PictureLine {
  int X1 = 0;
  int Y1 = 0;
  int X2 = 0;
  int Y2 = 0;
  Colour Pen = 0;
};

// A text hangs from its position: X, Y is its top left corner.
struct PictureText {
  int X = 0;
  int Y = 0;
  Text Value;
  Colour Pen = 0;
  bool Rimmed = false;  // by the surface's colour, so that it is read in front of lines
};

// A rectangle that a drag stretches, in pixels. A front end draws it over the picture after each mouse event.
struct RubberBand {
  bool Shown = false;
  bool Filled = false;  // a filled stripe of the surface's whole height, not an outline
  int X1 = 0;
  int Y1 = 0;
  int X2 = 0;
  int Y2 = 0;
};

// A surface that records what is drawn on it, in pixels from its top left corner; a front end replays the record on
// the screen and into files. Mouse positions come in twips.
struct PictureSurface : Control {
  PictureSurface(Form* Owner, Text Name) : Control(ControlKind::PictureSurface, Owner, std::move(Name)) {}

  using MouseEvent = std::function<void(int Button, int Shift, Single X, Single Y)>;

  Colour BackColor = Black;
  std::vector<PictureLine> Lines;
  std::vector<PictureText> Texts;
  RubberBand Band;
  Text Description;  // what is read out of the picture, for those who hear it
  Event Resized;     // of a dialog's surface: its layout has given it another size
  MouseEvent MouseDown;
  MouseEvent MouseMove;
  MouseEvent MouseUp;
  std::function<void(Double Notches, int Shift)> MouseWheel;  // away from the user is positive
};

// Button codes of mouse events.
inline constexpr int LeftButton = 1;
inline constexpr int RightButton = 2;
inline constexpr int MiddleButton = 4;

// Drawing goes through a context: the pen selected and the point reached. Pens are solid and one pixel wide.
struct DrawingContext {
  PictureSurface* Surface = nullptr;
  Colour Pen = Black;
  int X = 0;
  int Y = 0;
};

DrawingContext GetDC(PictureSurface& Surface);
// Ends the drawing: the front end shows what was recorded.
void ReleaseDC(DrawingContext& Context);
// Returns the pen selected before.
Colour SelectPen(DrawingContext& Context, Colour Pen);
void MoveTo(DrawingContext& Context, int X, int Y);
void LineTo(DrawingContext& Context, int X, int Y);
// A text at a position in twips of the surface.
void PrintAt(DrawingContext& Context, int XTwips, int YTwips, TextView Value, Colour Pen);
// The same in front of lines, at a position in pixels.
void PrintOverLines(DrawingContext& Context, int X, int Y, TextView Value, Colour Pen);

void ClearPicture(PictureSurface& Surface);
void SetBackColor(PictureSurface& Surface, Colour BackColor);

// The font of surfaces: a plain face of this pixel size, in which a digit is at most DigitPixels wide.
inline constexpr int SurfaceFontPixels = 11;
inline constexpr int DigitPixels = 7;
inline constexpr int RimPixels = 1;  // around a rimmed text
inline int TextPixels(TextView Value) { return static_cast<int>(Value.size()) * DigitPixels; }

}  // namespace zelvanor
