#pragma once

#include "basic/Array.h"
#include "basic/Elements.h"
#include "basic/NumberText.h"
#include "basic/TextTools.h"
#include "basic/Types.h"
#include "platform/Services.h"

namespace zelvanor {

// The small services that nearly every room uses.

inline constexpr const char* ProgramTitle = "Zelvanor";
inline constexpr const char* ProgramVersion = "8.0";

inline Integer MaxInteger(Integer A, Integer B) { return A > B ? A : B; }
inline Integer MinInteger(Integer A, Integer B) { return A < B ? A : B; }

// What readers and writers work with: one file is open at a time, and one line is split.
struct LineWorkState {
  Integer FileNumber;  // of the open file
  Array<Text> Tokens;  // of the last Tokenize, from index 1
  Integer TokenCount;  // where a reader keeps it
};
extern LineWorkState LineWork;

// The 1-based place of the first character at From or behind it that is neither blank nor tab; 0 when there is none.
Integer NextTokenStart(TextView Value, Integer From);
// The 1-based place of the first blank or tab at From or behind it, or the text's length + 1.
Integer NextTokenEnd(TextView Value, Integer From);
// Splits at blanks and tabs into LineWork.Tokens, from index 1, and returns the number of tokens. A text without
// tokens leaves Tokens as they were: callers test the count.
Integer Tokenize(TextView Value);

// Y, YES, TRUE, T and 1 in any case are true, every other text is false.
Flag BoolFromText(TextView Value);
// "Yes" for -1, "No" for every other value.
Text TextFromBool(int Value);

// Joins texts and whole numbers into one message.
template <class... Pieces>
Text Join(const Pieces&... All) {
  Text Result;
  const auto Append = [&Result](const auto& Piece) {
    if constexpr (std::is_convertible_v<decltype(Piece), TextView>) {
      Result += TextView(Piece);
    } else {
      Result += GeneralForm(Piece);
    }
  };
  (Append(All), ...);
  return Result;
}
inline Text Quoted(TextView Value) { return "\"" + Text(Value) + "\""; }

// Puts a text into the status line, behind a blank.
void ShowStatus(TextView Value);
void ShowWarning(TextView Message);
void ShowError(TextView Message);
// A plain box with an OK button.
void ShowMessage(TextView Message);
BoxAnswer AskYesNo(TextView Message);
BoxAnswer AskYesNoCancel(TextView Message);
BoxAnswer AskOkCancel(TextView Message);

// The warning for a failure that a routine meets at its end.
void WarnOfFailure(const Failure& Problem);

// Ends the process: leaves every routine up to the front end.
[[noreturn]] void EndProgram();

// Takes a text for the status line to where it is shown; the command frame fills it.
extern std::function<void(TextView)> StatusSink;

}  // namespace zelvanor
