#include "nmrcalc/input/InputText.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>

#include "basic/Numbers.h"
#include "basic/TextTools.h"

namespace nmrcalc {

namespace {

constexpr std::size_t LargestFile = std::size_t{256} << 20;
constexpr double LargestNumber = 1e12;

struct FileCloser {
  void operator()(std::FILE* File) const { std::fclose(File); }
};

[[noreturn]] void FailToRead(const std::string& Path, int Code) {
  throw zelvanor::Failure("Could not read " + Path + ": " + zelvanor::FailureTextFromErrno(Code));
}

std::string ReadBytes(const std::string& Path) {
  errno = 0;
  // Without waiting for the writer of a pipe, which is no file to read.
  const int Descriptor = open(Path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (Descriptor < 0) FailToRead(Path, errno);
  struct stat Status {};
  const std::unique_ptr<std::FILE, FileCloser> File(fdopen(Descriptor, "rb"));
  if (!File || fstat(Descriptor, &Status) != 0) FailToRead(Path, errno);
  if (!S_ISREG(Status.st_mode)) FailToRead(Path, EISDIR);
  std::string Bytes;
  std::array<char, 65536> Buffer{};
  while (const std::size_t Count = std::fread(Buffer.data(), 1, Buffer.size(), File.get())) {
    Bytes.append(Buffer.data(), Count);
    if (Bytes.size() > LargestFile) throw zelvanor::Failure("The file " + Path + " is larger than 256 MiB");
  }
  if (std::ferror(File.get())) FailToRead(Path, errno);
  return Bytes;
}

// What a message shows of a token that may be long or binary.
std::string Quoted(std::string_view Token) {
  std::string Shown = "\"";
  for (const char C : Token.substr(0, 40)) Shown += (C >= ' ' && C != '\x7f') ? C : '?';
  return Shown + (Token.size() > 40 ? "...\"" : "\"");
}

}  // namespace

TextFile ReadTextFile(const std::string& Path) {
  const std::string Bytes = ReadBytes(Path);
  TextFile File{.Path = Path, .Lines = {}};
  for (std::size_t Start = 0; Start < Bytes.size();) {
    const std::size_t End = std::min(Bytes.find('\n', Start), Bytes.size());
    std::size_t Length = End - Start;
    if (Length > 0 && Bytes[Start + Length - 1] == '\r') --Length;
    File.Lines.push_back(Bytes.substr(Start, Length));
    Start = End + 1;
  }
  return File;
}

void FailAtLine(const TextFile& File, std::size_t Line, const std::string& Reason) {
  throw zelvanor::Failure(File.Path + ", line " + std::to_string(Line + 1) + ": " + Reason);
}

const std::string& TakeLine(const TextFile& File, std::size_t Line, const std::string& What) {
  if (Line >= File.Lines.size()) FailAtLine(File, Line, "the file ends where " + What + " should stand");
  return File.Lines[Line];
}

std::vector<std::string_view> SplitTokens(std::string_view Text) {
  return zelvanor::SplitWords(Text, zelvanor::LineSeparators);
}

double NumberAt(const TextFile& File, std::size_t Line, std::string_view Token, const std::string& What) {
  double Value = 0.0;
  try {
    Value = zelvanor::StrictNumber(Token);
  } catch (const zelvanor::Failure&) {
    FailAtLine(File, Line, What + " should be a number, but is " + Quoted(Token));
  }
  if (!(std::fabs(Value) <= LargestNumber)) FailAtLine(File, Line, What + " is out of range: " + Quoted(Token));
  return Value;
}

int WholeNumberAt(const TextFile& File, std::size_t Line, std::string_view Token, int Lowest, int Highest,
                  const std::string& What) {
  const double Value = NumberAt(File, Line, Token, What);
  if (Value != std::floor(Value)) FailAtLine(File, Line, What + " should be a whole number, but is " + Quoted(Token));
  if (Value < Lowest || Value > Highest) {
    FailAtLine(File, Line,
               What + " should lie in " + std::to_string(Lowest) + " to " + std::to_string(Highest) + ", but is " +
                   Quoted(Token));
  }
  return static_cast<int>(Value);
}

void AppendFixedNumber(std::string& Target, double Value, int Decimals) {
  constexpr std::array<double, 10> Powers = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
  constexpr double LargestExact = 9007199254740992.0;  // 2^53
  std::array<char, 400> Buffer;                        // the longest Double has 309 digits in front of the point
  char* const Start = Buffer.data();
  const double Magnitude = std::fabs(Value);
  const double Scaled = Magnitude * Powers.at(static_cast<std::size_t>(Decimals));
  if (!(Scaled < LargestExact)) {
    Target.append(Start, std::to_chars(Start, Start + Buffer.size(), Value, std::chars_format::fixed, Decimals).ptr);
    return;
  }
  // Tens of thousands of lines are written; whole numbers take a tenth of the time.
  const auto Whole = static_cast<std::uint64_t>(std::llround(Scaled));
  const char* End = std::to_chars(Start, Start + Buffer.size(), Whole).ptr;
  const std::string_view Digits(Start, static_cast<std::size_t>(End - Start));
  const auto NumDecimals = static_cast<std::size_t>(Decimals);
  if (Value < 0.0 && Whole > 0) Target += '-';
  if (Digits.size() <= NumDecimals) {
    Target += NumDecimals > 0 ? "0." : "0";
    Target.append(NumDecimals - Digits.size(), '0');
    if (NumDecimals > 0) Target += Digits;
    return;
  }
  Target += Digits.substr(0, Digits.size() - NumDecimals);
  if (NumDecimals > 0) (Target += '.') += Digits.substr(Digits.size() - NumDecimals);
}

std::string FixedNumber(double Value, int Decimals) {
  std::string Result;
  AppendFixedNumber(Result, Value, Decimals);
  return Result;
}

const std::string& NextLine(TextCursor& Place, const std::string& What) {
  const std::string& Text = TakeLine(Place.File, Place.Line, What);
  ++Place.Line;
  return Text;
}

void ReadKeyword(TextCursor& Place, const std::string& Keyword) {
  const std::string& Text = NextLine(Place, "the line " + Keyword);
  if (!zelvanor::EqualsIgnoringCase(zelvanor::TrimWhite(Text), Keyword)) {
    FailAtLine(Place.File, Place.Line - 1, "the line should read " + Keyword);
  }
}

std::vector<std::string_view> ReadRow(TextCursor& Place, std::size_t Count, const std::string& What) {
  std::vector<std::string_view> Tokens = SplitTokens(NextLine(Place, What));
  if (Tokens.size() != Count) {
    FailAtLine(
        Place.File, Place.Line - 1,
        std::to_string(Count) + " values are needed for " + What + ", but there are " + std::to_string(Tokens.size()));
  }
  return Tokens;
}

double ReadSingleNumber(TextCursor& Place, const std::string& What) {
  const std::string_view Token = ReadRow(Place, 1, What)[0];
  return NumberAt(Place.File, Place.Line - 1, Token, What);
}

}  // namespace nmrcalc
