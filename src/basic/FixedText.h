#pragma once

#include <algorithm>
#include <array>
#include <cstring>

#include "basic/Types.h"

namespace zelvanor {

// The length of a text without the blanks that pad it at the right, eight at a time: stored lines are mostly padding.
inline std::size_t UnpaddedLength(TextView Value) {
  constexpr std::uint64_t EightBlanks = 0x2020202020202020U;
  std::size_t Length = Value.size();
  while (Length >= sizeof(std::uint64_t)) {
    std::uint64_t Last = 0;
    std::memcpy(&Last, Value.data() + Length - sizeof Last, sizeof Last);
    if (Last != EightBlanks) break;
    Length -= sizeof Last;
  }
  while (Length > 0 && Value[Length - 1] == ' ') --Length;
  return Length;
}

// Text*N: always N characters, padded at the right with blanks on assignment and cut at N. Starts blank.
template <std::size_t N>
class FixedText {
 public:
  FixedText() { Stored.fill(' '); }
  FixedText(TextView Value) { Assign(Value); }     // NOLINT(google-explicit-constructor)
  FixedText(const char* Value) { Assign(Value); }  // NOLINT(google-explicit-constructor)
  FixedText& operator=(TextView Value) {
    Assign(Value);
    return *this;
  }

  // All N characters, padding included.
  TextView View() const { return {Stored.data(), N}; }
  // Without the blanks that pad it at the right.
  TextView Trimmed() const { return View().substr(0, UnpaddedLength(View())); }

  friend bool operator==(const FixedText&, const FixedText&) = default;

 private:
  void Assign(TextView Value) {
    const std::size_t Length = std::min(Value.size(), N);
    std::copy_n(Value.begin(), Length, Stored.begin());
    std::fill(Stored.begin() + static_cast<std::ptrdiff_t>(Length), Stored.end(), ' ');
  }

  std::array<char, N> Stored;
};

}  // namespace zelvanor
