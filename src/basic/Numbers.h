#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Texts to numbers, and numbers to the narrower types. Nothing here looks at the locale.

// Prefix number: the longest leading text that reads as a decimal number (sign, digits, point, exponent with E or D);
// blanks and tabs in front are passed over. No number gives 0. Never fails: too large a number gives an infinity.
Double PrefixNumber(TextView Value);
// The whole part of the prefix number as an index; -1 where it is negative or beyond a Long.
Long PrefixIndex(TextView Value);

// Strict number: the whole text, blanks and tabs at its ends aside, must be a number.
// Throws "Type mismatch" for anything else and "Overflow" beyond a Double.
Double StrictNumber(TextView Value);
Integer StrictInteger(TextView Value);
Long StrictLong(TextView Value);
Single StrictSingle(TextView Value);

// Nearest whole number, a tie going to the even neighbour.
Double RoundEven(Double Value);

// Conversions with rounding and range check; each throws "Overflow" outside its type (and for no number at all).
Integer ToInteger(Double Value);
Long ToLong(Double Value);
Single ToSingle(Double Value);

// Left / Right; throws "Division by zero" where Right is 0.
Double Divide(Double Left, Double Right);

}  // namespace zelvanor
