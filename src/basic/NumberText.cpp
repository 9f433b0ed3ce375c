#include "basic/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace zelvanor {

namespace {

// Value = 0.d1 d2 d3... x 10^(Exponent + 1), that is d1.d2d3... x 10^Exponent, without trailing zeros.
struct DecimalDigits {
  std::array<char, 20> Digits{};
  int Count = 0;
  int Exponent = 0;
};

template <class Number>
DecimalDigits SplitDigits(Number Value, int Significant) {
  std::array<char, 40> Buffer{};
  const auto Outcome = std::to_chars(Buffer.data(), Buffer.data() + Buffer.size(), std::fabs(Value),
                                     std::chars_format::scientific, Significant - 1);
  DecimalDigits Result;
  const char* Mark =
      static_cast<const char*>(std::memchr(Buffer.data(), 'e', static_cast<std::size_t>(Outcome.ptr - Buffer.data())));
  for (const char* Place = Buffer.data(); Place != Mark; ++Place) {
    if (*Place != '.') Result.Digits[static_cast<std::size_t>(Result.Count++)] = *Place;
  }
  while (Result.Count > 1 && Result.Digits[static_cast<std::size_t>(Result.Count - 1)] == '0') --Result.Count;
  ++Mark;
  if (*Mark == '+') ++Mark;  // from_chars takes no plus
  std::from_chars(Mark, Outcome.ptr, Result.Exponent);
  return Result;
}

// Writes a value that is finite and not zero. LargestExponent is the first exponent written in exponent form.
template <class Number>
void AppendGeneral(Text& Target, Number Value, int Significant, int LargestExponent) {
  if (!std::isfinite(Value)) {
    Target += std::isnan(Value) ? "NaN" : Value < 0 ? "-INF" : "INF";
    return;
  }
  if (Value == 0) {
    Target += '0';
    return;
  }
  const DecimalDigits Parts = SplitDigits(Value, Significant);
  const TextView Digits(Parts.Digits.data(), static_cast<std::size_t>(Parts.Count));
  if (Value < 0) Target += '-';
  if (Parts.Exponent < -4 || Parts.Exponent >= LargestExponent) {
    Target += Digits[0];
    if (Digits.size() > 1) Target.append(1, '.').append(Digits.substr(1));
    const int Magnitude = std::abs(Parts.Exponent);
    Target += Parts.Exponent < 0 ? "E-" : "E+";
    if (Magnitude < 10) Target += '0';
    std::array<char, 8> Buffer{};
    Target.append(Buffer.data(), std::to_chars(Buffer.data(), Buffer.data() + Buffer.size(), Magnitude).ptr);
  } else if (Parts.Exponent < 0) {
    Target.append("0.").append(static_cast<std::size_t>(-Parts.Exponent - 1), '0').append(Digits);
  } else {
    const auto Whole = static_cast<std::size_t>(Parts.Exponent) + 1;
    if (Digits.size() <= Whole) {
      Target.append(Digits).append(Whole - Digits.size(), '0');
    } else {
      Target.append(Digits.substr(0, Whole)).append(1, '.').append(Digits.substr(Whole));
    }
  }
}

constexpr int SingleDigits = 7;
constexpr int DoubleDigits = 15;

// Digits as a number with a fixed count of decimals, rounded half away from zero; Whole and Decimals get the texts.
void RoundDecimals(const DecimalDigits& Parts, int NumDecimals, Text& Whole, Text& Decimals) {
  // A leading zero takes the carry.
  const int Before = std::max(Parts.Exponent + 1, 0);
  Text All(1, '0');
  for (int Place = 0; Place < Before + NumDecimals; ++Place) {
    const int Digit = Place - (Before - Parts.Exponent - 1);
    All += Digit >= 0 && Digit < Parts.Count ? Parts.Digits[static_cast<std::size_t>(Digit)] : '0';
  }
  const int Next = Parts.Exponent + 1 + NumDecimals;
  if (Next >= 0 && Next < Parts.Count && Parts.Digits[static_cast<std::size_t>(Next)] >= '5') {
    std::size_t Place = All.size() - 1;
    while (All[Place] == '9') All[Place--] = '0';
    ++All[Place];
  }
  Whole = All.substr(0, static_cast<std::size_t>(Before) + 1);
  Whole.erase(0, Whole.find_first_not_of('0'));
  Decimals = All.substr(static_cast<std::size_t>(Before) + 1);
}

}  // namespace

Text GeneralForm(Long Value) {
  Text Result;
  AppendGeneralForm(Result, Value);
  return Result;
}

Text GeneralForm(Integer Value) { return GeneralForm(Long{int(Value)}); }
Text GeneralForm(Flag Value) { return GeneralForm(Long{Value}); }

Text GeneralForm(Single Value) {
  Text Result;
  AppendGeneralForm(Result, Value);
  return Result;
}

Text GeneralForm(Double Value) {
  Text Result;
  AppendGeneral(Result, Value, DoubleDigits, 15);
  return Result;
}

void AppendGeneralForm(Text& Target, Single Value) { AppendGeneral(Target, Value, SingleDigits, 7); }

void AppendGeneralForm(Text& Target, Long Value) {
  std::array<char, 16> Buffer{};
  Target.append(Buffer.data(), std::to_chars(Buffer.data(), Buffer.data() + Buffer.size(), Value).ptr);
}

Text FormatNumber(Double Value, TextView Pattern) {
  if (!std::isfinite(Value)) return GeneralForm(Value);
  const std::size_t Point = Pattern.find('.');
  const TextView Decimals = Pattern.substr(Point + 1);
  const std::size_t LeastDecimals = Decimals.find('#') == TextView::npos ? Decimals.size() : Decimals.find('#');
  const bool WholeAlways = Pattern.substr(0, Point).find('0') != TextView::npos;

  Text Whole;
  Text Fraction;
  if (Value == 0.0) {
    Fraction.assign(Decimals.size(), '0');
  } else {
    RoundDecimals(SplitDigits(Value, DoubleDigits), static_cast<int>(Decimals.size()), Whole, Fraction);
  }
  const bool Zero = Whole.empty() && Fraction.find_first_not_of('0') == Text::npos;
  while (Fraction.size() > LeastDecimals && Fraction.back() == '0') Fraction.pop_back();
  if (Whole.empty() && WholeAlways) Whole = "0";
  return (Value < 0 && !Zero ? "-" : "") + Whole + "." + Fraction;
}

}  // namespace zelvanor
