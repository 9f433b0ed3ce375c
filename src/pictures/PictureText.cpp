#include "pictures/PictureText.h"

#include <algorithm>

#include "workspace/Helpers.h"

namespace zelvanor::pictures {

PictureSize SizeOf(const Control& Surface) {
  return {std::max(Surface.Width / TwipsPerPixelX, 1), std::max(Surface.Height / TwipsPerPixelY, 1)};
}

Text SvgColour(Colour Value) {
  return Join("rgb(", Long{Value & 255}, ",", Long{(Value >> 8) & 255}, ",", Long{(Value >> 16) & 255}, ")");
}

Text SvgEscaped(TextView Value) {
  Text Result;
  for (const char C : PlainUtf8(Value)) {
    if (C == '&') {
      Result += "&amp;";
    } else if (C == '<') {
      Result += "&lt;";
    } else {
      Result += C;
    }
  }
  return Result;
}

// The background's size in numbers: some readers don't know percentages.
Text SvgHead(const Control& Surface, Colour Background) {
  const auto [Width, Height] = SizeOf(Surface);
  return Join("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"",
              Long{Width}, "\" height=\"", Long{Height}, "\" viewBox=\"0 0 ", Long{Width}, " ", Long{Height},
              "\">\n<rect width=\"", Long{Width}, "\" height=\"", Long{Height}, "\" fill=\"", SvgColour(Background),
              "\"/>\n");
}

void SetSource(cairo_t* Context, Colour Value) {
  cairo_set_source_rgb(Context, PartOf(Value, 0), PartOf(Value, 8), PartOf(Value, 16));
}

}  // namespace zelvanor::pictures
