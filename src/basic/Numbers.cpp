#include "basic/Numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "basic/TextTools.h"

namespace zelvanor {

namespace {

bool IsDigit(char C) { return C >= '0' && C <= '9'; }

bool IsWhite(char C) { return C == ' ' || C == '\t'; }

TextView SkipWhite(TextView Value) {
  while (!Value.empty() && IsWhite(Value.front())) Value.remove_prefix(1);
  return Value;
}

// Most numbers of a file have a sign, digits and a point, and no more than 15 digits. These are read in one pass: the
// digits as a whole number and the power of ten are exact as Doubles, so their quotient is the nearest Double (W. D.
// Clinger, How to Read Floating Point Numbers Accurately, 1990).
bool ReadShortDecimal(TextView Value, Double& Result) {
  constexpr std::size_t MostDigits = 15;
  constexpr std::array<Double, MostDigits + 1> Powers = {1.0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                         1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  const char* Place = Value.data();
  const char* const End = Place + Value.size();
  const bool Negative = Place != End && *Place == '-';
  if (Place != End && (*Place == '-' || *Place == '+')) ++Place;
  const char* Point = End;
  if (End - Place > static_cast<std::ptrdiff_t>(MostDigits) + 1) return false;
  std::int64_t Digits = 0;
  std::size_t NumDigits = 0;
  for (; Place != End; ++Place) {
    if (IsDigit(*Place)) {
      Digits = Digits * 10 + (*Place - '0');
      ++NumDigits;
    } else if (*Place == '.' && Point == End) {
      Point = Place;
    } else {
      return false;
    }
  }
  if (NumDigits == 0 || NumDigits > MostDigits) return false;
  const auto Whole = static_cast<Double>(Digits);
  const Double Size = Point == End ? Whole : Whole / Powers[static_cast<std::size_t>(End - Point - 1)];
  Result = Negative ? -Size : Size;
  return true;
}

std::size_t CountDigits(TextView Value, std::size_t From) {
  std::size_t End = From;
  while (End < Value.size() && IsDigit(Value[End])) ++End;
  return End - From;
}

// Where the number at the head of Value ends; 0 when there is none. MarkPlace gets the exponent letter's place, or
// npos.
std::size_t ScanNumber(TextView Value, std::size_t& MarkPlace) {
  MarkPlace = TextView::npos;
  std::size_t End = !Value.empty() && (Value[0] == '+' || Value[0] == '-') ? 1 : 0;
  std::size_t Digits = CountDigits(Value, End);
  End += Digits;
  if (End < Value.size() && Value[End] == '.') {
    const std::size_t Decimals = CountDigits(Value, End + 1);
    Digits += Decimals;
    End += 1 + Decimals;
  }
  if (Digits == 0) return 0;
  if (End < Value.size() && TextView("eEdD").find(Value[End]) != TextView::npos) {
    std::size_t Behind = End + 1;
    if (Behind < Value.size() && (Value[Behind] == '+' || Value[Behind] == '-')) ++Behind;
    const std::size_t ExponentDigits = CountDigits(Value, Behind);
    if (ExponentDigits > 0) {
      MarkPlace = End;
      End = Behind + ExponentDigits;
    }
  }
  return End;
}

// Whether the power of ten of the first digit that counts is positive, for a number without sign and with e or E.
bool IsLarge(TextView Value) {
  const std::size_t Mark = std::min(Value.find_first_of("eE"), Value.size());
  const TextView Digits = Value.substr(0, Mark);
  const std::size_t Point = std::min(Digits.find('.'), Digits.size());
  const std::size_t First = std::min(Digits.find_first_of("123456789"), Digits.size());
  const auto Power = static_cast<std::int64_t>(Point) - static_cast<std::int64_t>(First);
  std::int64_t Exponent = 0;
  if (Mark < Value.size()) {
    TextView Text = Value.substr(Mark + 1);
    if (Text.starts_with('+')) Text.remove_prefix(1);
    const auto Outcome = std::from_chars(Text.data(), Text.data() + Text.size(), Exponent);
    if (Outcome.ec == std::errc::result_out_of_range) return !Text.starts_with('-');
  }
  return Power + Exponent > 0;
}

// The value of text that ScanNumber has accepted. from_chars takes no leading plus and no D, hence the two detours.
Double ConvertNumber(TextView Value, std::size_t MarkPlace) {
  Text Rewritten;
  if (MarkPlace != TextView::npos && UpperChar(Value[MarkPlace]) == 'D') {
    Rewritten = Value;
    Rewritten[MarkPlace] = 'e';
    Value = Rewritten;
  }
  const bool Negative = Value[0] == '-';
  if (Negative || Value[0] == '+') Value.remove_prefix(1);
  Double Result = 0.0;
  const auto Outcome = std::from_chars(Value.data(), Value.data() + Value.size(), Result);
  // from_chars does not say on which side the range was left.
  if (Outcome.ec == std::errc::result_out_of_range) {
    Result = IsLarge(Value) ? std::numeric_limits<Double>::infinity() : 0.0;
  }
  return Negative ? -Result : Result;
}

}  // namespace

Double PrefixNumber(TextView Value) {
  Value = SkipWhite(Value);
  std::size_t MarkPlace = 0;
  const std::size_t End = ScanNumber(Value, MarkPlace);
  return End == 0 ? 0.0 : ConvertNumber(Value.substr(0, End), MarkPlace);
}

Long PrefixIndex(TextView Value) {
  const Double Number = PrefixNumber(Value);
  return Number >= 0.0 && Number <= 2147483647.0 ? static_cast<Long>(Number) : -1;
}

Double StrictNumber(TextView Value) {
  Value = SkipWhite(Value);
  while (!Value.empty() && IsWhite(Value.back())) Value.remove_suffix(1);
  Double Short = 0.0;
  if (ReadShortDecimal(Value, Short)) return Short;
  std::size_t MarkPlace = 0;
  const std::size_t End = ScanNumber(Value, MarkPlace);
  if (End == 0 || End != Value.size()) throw Failure(failures::TypeMismatch);
  const Double Result = ConvertNumber(Value, MarkPlace);
  if (std::isinf(Result)) throw Failure(failures::Overflow);
  return Result;
}

Integer StrictInteger(TextView Value) { return ToInteger(StrictNumber(Value)); }
Long StrictLong(TextView Value) { return ToLong(StrictNumber(Value)); }
Single StrictSingle(TextView Value) { return ToSingle(StrictNumber(Value)); }

Double RoundEven(Double Value) { return std::nearbyint(Value); }

Integer ToInteger(Double Value) {
  const Double Rounded = RoundEven(Value);
  if (!(Rounded >= -32768.0 && Rounded <= 32767.0)) throw Failure(failures::Overflow);
  return {static_cast<int>(Rounded)};
}

Long ToLong(Double Value) {
  const Double Rounded = RoundEven(Value);
  if (!(Rounded >= -2147483648.0 && Rounded <= 2147483647.0)) throw Failure(failures::Overflow);
  return static_cast<Long>(Rounded);
}

Single ToSingle(Double Value) {
  const auto Result = static_cast<Single>(Value);
  if (!std::isfinite(Result)) throw Failure(failures::Overflow);
  return Result;
}

Double Divide(Double Left, Double Right) {
  if (Right == 0.0) throw Failure(failures::DivisionByZero);
  return Left / Right;
}

}  // namespace zelvanor
