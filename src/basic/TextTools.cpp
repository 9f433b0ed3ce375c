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

}  // namespace zelvanor
