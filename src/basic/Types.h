#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

#include "basic/Failure.h"

namespace zelvanor {

using Long = std::int32_t;
using Single = float;
using Double = double;
using Text = std::string;
using TextView = std::string_view;

// 16 bits, -1 true, 0 false. A flag is set when it is -1 and clear when it is 0; no other value is tested for.
using Flag = std::int16_t;
inline constexpr Flag True = -1;
inline constexpr Flag False = 0;

constexpr Flag ToFlag(bool Value) { return Value ? True : False; }
constexpr bool IsSet(Flag Value) { return Value == True; }

// 16 bits signed with checked arithmetic: a result outside -32768..32767 throws Failure("Overflow").
// It reads as an int, so comparisons and indices are plain; sums and products with an int stay Integers and are
// checked (14 * n overflows from n = 2341 on). For arithmetic that may leave 16 bits convert to int or Long first.
class Integer {
 public:
  constexpr Integer() = default;
  constexpr Integer(int Value) : Stored(Check(Value)) {}  // NOLINT(google-explicit-constructor)
  constexpr operator int() const { return Stored; }       // NOLINT(google-explicit-constructor)

  constexpr Integer& operator+=(int Other) { return *this = Integer(CheckSum(std::int64_t{Stored} + Other)); }
  constexpr Integer& operator-=(int Other) { return *this = Integer(CheckSum(std::int64_t{Stored} - Other)); }
  constexpr Integer& operator++() { return *this += 1; }
  constexpr Integer& operator--() { return *this -= 1; }

 private:
  static constexpr std::int16_t Check(int Value) { return static_cast<std::int16_t>(CheckSum(Value)); }
  // Takes 64 bits, so that the check sees the true sum of an Integer and any int.
  static constexpr int CheckSum(std::int64_t Value) {
    if (Value < -32768 || Value > 32767) throw Failure(failures::Overflow);
    return static_cast<int>(Value);
  }

  std::int16_t Stored = 0;
};

namespace detail {
template <class T>
concept IntegerOperand = std::same_as<T, Integer> || std::same_as<T, int>;
template <class A, class B>
concept IntegerPair = IntegerOperand<A> && IntegerOperand<B> &&(std::same_as<A, Integer> || std::same_as<B, Integer>);
// Sums of two 32-bit operands in 64 bits, so that the check sees the true result.
constexpr Integer Narrow(std::int64_t Value) {
  if (Value < -32768 || Value > 32767) throw Failure(failures::Overflow);
  return {static_cast<int>(Value)};
}
}  // namespace detail

template <class A, class B>
requires detail::IntegerPair<A, B>
constexpr Integer operator+(A Left, B Right) { return detail::Narrow(std::int64_t{int(Left)} + int(Right)); }
template <class A, class B>
requires detail::IntegerPair<A, B>
constexpr Integer operator-(A Left, B Right) { return detail::Narrow(std::int64_t{int(Left)} - int(Right)); }
template <class A, class B>
requires detail::IntegerPair<A, B>
constexpr Integer operator*(A Left, B Right) { return detail::Narrow(std::int64_t{int(Left)} * int(Right)); }

}  // namespace zelvanor
