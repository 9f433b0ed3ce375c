#include "pictures/PictureText.h"

#include <algorithm>

#include "workspace/Helpers.h"

namespace zelvanor::pictures {

PictureSize SizeOf(const Control& Surface) {
  return {std::max(Surface.Width / TwipsPerPixelX, 1), std::max(Surface.Height / TwipsPerPixelY, 1)};
}

namespace {

// The length of the UTF-8 sequence at the head of Value, 0 for none: no overlong forms, no surrogates.
std::size_t SequenceLength(TextView Value) {
  const auto Byte = [&](std::size_t Place) {
    return Place < Value.size() ? static_cast<unsigned char>(Value[Place]) : 0U;
  };
  const unsigned Lead = Byte(0);
  if (Lead < 0x80) return 1;
  const std::size_t Length = Lead >= 0xC2 && Lead < 0xE0   ? 2
                             : (Lead & 0xF0) == 0xE0       ? 3
                             : Lead >= 0xF0 && Lead < 0xF5 ? 4
                                                           : 0;
  for (std::size_t Place = 1; Place < Length; ++Place) {
    if ((Byte(Place) & 0xC0) != 0x80) return 0;
  }
  const unsigned Second = Byte(1);
  const bool Outside = (Lead == 0xE0 && Second < 0xA0) || (Lead == 0xED && Second >= 0xA0) ||
                       (Lead == 0xF0 && Second < 0x90) || (Lead == 0xF4 && Second >= 0x90) ||
                       (Lead == 0xEF && Second == 0xBF && Byte(2) >= 0xBE);
  return Outside ? 0 : Length;
}

bool IsUtf8(TextView Value) {
  while (!Value.empty()) {
    const std::size_t Length = SequenceLength(Value);
    if (Length == 0) return false;
    Value.remove_prefix(Length);
  }
  return true;
}

}  // namespace

Text PictureWords(TextView Value) {
  const bool Whole = IsUtf8(Value);
  Text Result;
  for (const char C : Value) {
    const auto Byte = static_cast<unsigned char>(C);
    if (Byte < 0x20 || Byte == 0x7F) {
      Result += ' ';
    } else if (Byte < 0x80 || Whole) {
      Result += C;
    } else {
      Result += static_cast<char>(0xC0 | Byte >> 6);
      Result += static_cast<char>(0x80 | (Byte & 0x3F));
    }
  }
  return Result;
}

Text SvgColour(Colour Value) {
  return Join("rgb(", Long{Value & 255}, ",", Long{(Value >> 8) & 255}, ",", Long{(Value >> 16) & 255}, ")");
}

Text SvgEscaped(TextView Value) {
  Text Result;
  for (const char C : PictureWords(Value)) {
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
