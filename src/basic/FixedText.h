#pragma once

#include <algorithm>
#include <array>

#include "basic/Types.h"

namespace zelvanor {

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
  TextView Trimmed() const {
    TextView Whole = View();
    const std::size_t Last = Whole.find_last_not_of(' ');
    return Last == TextView::npos ? TextView() : Whole.substr(0, Last + 1);
  }

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
