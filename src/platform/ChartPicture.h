#pragma once

#include <vector>

#include "platform/Chart.h"

namespace zelvanor {

struct ChartPoint {
  Double X = 0;
  Double Y = 0;
};

// A filled polygon with a thin edge, or with Filled off the line through its corners, one pixel wide.
struct ChartShape {
  std::vector<ChartPoint> Corners;
  Colour Fill = 0;
  Colour Edge = 0;
  bool Filled = true;
};

enum class ChartAlign { Left, Centre, Right };

// A text of one line. X, Y is the place on its middle line at which it begins, is centred or ends. An upright one reads
// from below to above.
struct ChartText {
  Double X = 0;
  Double Y = 0;
  Text Words;
  ChartAlign Align = ChartAlign::Left;
  int Pixels = 12;  // size of the font
  bool Bold = false;
  bool Upright = false;
};

// What a chart looks like, in pixels from its top left corner, for a front end to draw in this order on white: the
// shapes, then the texts in black.
struct ChartPicture {
  int Width = 0;
  int Height = 0;
  std::vector<ChartShape> Shapes;
  std::vector<ChartText> Texts;
};

// Of the font's size: how far the base line of a text lies below its middle line.
inline constexpr Double ChartBaseShare = 0.35;

ChartPicture DrawChart(const ChartControl& Chart, int Width, int Height);

}  // namespace zelvanor
