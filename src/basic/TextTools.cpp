#include "basic/TextTools.h"

#include <algorithm>

#include "basic/FixedText.h"

namespace zelvanor {

Text UpperCase(TextView Value) {
  Text Result(Value);
  std::transform(Result.begin(), Result.end(), Result.begin(), UpperChar);
  return Result;
}

bool EqualsIgnoringCase(TextView Left, TextView Right) {
  return std::equal(Left.begin(), Left.end(), Right.begin(), Right.end(),
                    [](char A, char B) { return UpperChar(A) == UpperChar(B); });
}

namespace {
TextView Trim(TextView Value, TextView Characters) {
  const std::size_t First = Value.find_first_not_of(Characters);
  if (First == TextView::npos) return {};
  return Value.substr(First, Value.find_last_not_of(Characters) - First + 1);
}
}  // namespace

TextView TrimBlanks(TextView Value) { return TrimLeftBlanks(Value.substr(0, UnpaddedLength(Value))); }

TextView TrimLeftBlanks(TextView Value) {
  const std::size_t First = Value.find_first_not_of(' ');
  return First == TextView::npos ? TextView() : Value.substr(First);
}

std::vector<Text> SplitAtBlanks(const Text& Line) {
  std::vector<Text> Words;
  std::size_t Place = 0;
  while ((Place = Line.find_first_not_of(' ', Place)) != Text::npos) {
    const std::size_t End = std::min(Line.find(' ', Place), Line.size());
    Words.push_back(Line.substr(Place, End - Place));
    Place = End;
  }
  return Words;
}

std::vector<TextView> SplitWords(TextView Line, TextView Between) {
  std::vector<TextView> Words;
  std::size_t Place = 0;
  while ((Place = Line.find_first_not_of(Between, Place)) != TextView::npos) {
    const std::size_t End = std::min(Line.find_first_of(Between, Place), Line.size());
    Words.push_back(Line.substr(Place, End - Place));
    Place = End;
  }
  return Words;
}

TextView TrimWhite(TextView Value) { return Trim(Value, TextSeparators); }

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

Text PlainUtf8(TextView Value) {
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

}  // namespace zelvanor
