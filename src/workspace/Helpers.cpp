#include "workspace/Helpers.h"

#include <algorithm>
#include <array>

#include "basic/Numbers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

LineWorkState LineWork;
std::function<void(TextView)> StatusSink;

namespace {

BoxAnswer ShowBox(BoxKind Kind, BoxButtons Buttons, Text Message) {
  return Platform.ShowBox({Kind, Buttons, ProgramTitle, std::move(Message)});
}

}  // namespace

Integer NextTokenStart(TextView Value, Integer From) {
  const std::size_t Place = Value.find_first_not_of(Separators, static_cast<std::size_t>(From - 1));
  return Place == TextView::npos ? Integer(0) : ToInteger(static_cast<Double>(Place) + 1);
}

Integer NextTokenEnd(TextView Value, Integer From) {
  const std::size_t Place = Value.find_first_of(Separators, static_cast<std::size_t>(From - 1));
  return ToInteger(static_cast<Double>(std::min(Place, Value.size())) + 1);
}

Integer Tokenize(TextView Value) {
  // Lines may be longer than NextTokenStart and NextTokenEnd can count. The array grows to its largest size once, so
  // that the texts in it are written over and not made anew for each line.
  Array<Text>& Tokens = LineWork.Tokens;
  Integer Count = 0;
  ForEachWord(Value, [&](TextView Word) {
    ++Count;
    if (Tokens.UpperBound() < Count + 1) Tokens.ReDimPreserve(2 * Count + 1);
    Tokens[Count].assign(Word);
  });
  if (Count == 0) return Count;
  // One element behind the last token: empty, but for a single token, behind which the second of the line before stays.
  Tokens.ReDimPreserve(Count + 1);
  if (Count > 1) Tokens[Count + 1].clear();
  return Count;
}

Flag BoolFromText(TextView Value) {
  constexpr std::array<const char*, 5> Words = {"Y", "YES", "TRUE", "T", "1"};
  return ToFlag(
      std::any_of(Words.begin(), Words.end(), [&](const char* Word) { return EqualsIgnoringCase(Word, Value); }));
}

Text TextFromBool(int Value) { return Value == True ? "Yes" : "No"; }

void ShowStatus(TextView Value) {
  if (StatusSink) StatusSink(" " + Text(Value));
}

void ShowWarning(TextView Message) { ShowBox(BoxKind::Warning, BoxButtons::Ok, "WARNING: " + Text(Message)); }
void ShowError(TextView Message) { ShowBox(BoxKind::Error, BoxButtons::Ok, "ERROR: " + Text(Message)); }
void ShowMessage(TextView Message) { ShowBox(BoxKind::Plain, BoxButtons::Ok, Text(Message)); }
BoxAnswer AskYesNo(TextView Message) { return ShowBox(BoxKind::Question, BoxButtons::YesNo, Text(Message)); }
BoxAnswer AskYesNoCancel(TextView Message) {
  return ShowBox(BoxKind::Question, BoxButtons::YesNoCancel, Text(Message));
}
BoxAnswer AskOkCancel(TextView Message) { return ShowBox(BoxKind::Question, BoxButtons::OkCancel, Text(Message)); }

void WarnOfFailure(const Failure& Problem) { ShowWarning(Problem.What + "."); }

void EndProgram() { throw ProgramEnded(); }

}  // namespace zelvanor
