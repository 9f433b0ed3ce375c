#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "basic/Failure.h"

namespace nmrcalc {

// Text files as the backend reads them: whole, cut into lines, every complaint with file, line and reason.

struct TextFile {
  std::string Path;
  std::vector<std::string> Lines;  // without line ends; a carriage return before the line feed is dropped
};

// Reads the file whole. Throws Failure when it cannot be read or is larger than 256 MiB.
TextFile ReadTextFile(const std::string& Path);

// Throws Failure "PATH, line N: REASON". Line counts from 0 and is shown from 1.
[[noreturn]] void FailAtLine(const TextFile& File, std::size_t Line, const std::string& Reason);

// The line with this index from 0; throws Failure naming What when the file ends before it.
const std::string& TakeLine(const TextFile& File, std::size_t Line, const std::string& What);

// Reading position: the file and the index of the next line.
struct TextCursor {
  TextFile File{};
  std::size_t Line = 0;
};

// The tokens of a line, cut at blanks and tabs.
std::vector<std::string_view> SplitTokens(std::string_view Text);

// The next line, whole; that it is this keyword; its tokens, of which there have to be Count; its one number. What
// names the line in the Failure.
const std::string& NextLine(TextCursor& Place, const std::string& What);
void ReadKeyword(TextCursor& Place, const std::string& Keyword);
std::vector<std::string_view> ReadRow(TextCursor& Place, std::size_t Count, const std::string& What);
double ReadSingleNumber(TextCursor& Place, const std::string& What);

// A token as a finite number within -1E12..1E12, as a whole number within Lowest..Highest.
// Throw with file, line and the token.
double NumberAt(const TextFile& File, std::size_t Line, std::string_view Token, const std::string& What);
int WholeNumberAt(const TextFile& File, std::size_t Line, std::string_view Token, int Lowest, int Highest,
                  const std::string& What);

// The value with this many decimals (0 to 9), never in exponent form, whatever the locale.
std::string FixedNumber(double Value, int Decimals);
// The same, appended to a text.
void AppendFixedNumber(std::string& Target, double Value, int Decimals);

}  // namespace nmrcalc
