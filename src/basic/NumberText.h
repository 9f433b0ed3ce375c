#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Numbers to texts. Nothing here looks at the locale.

// General form: no padding, at most 7 significant digits for a Single and 15 for a Double, no trailing zeros;
// in exponent form (1E-05, 1.5E+08) below 1E-04 and from 1E+07 (Double: 1E+15) up.
Text GeneralForm(Long Value);
Text GeneralForm(Integer Value);
Text GeneralForm(Flag Value);
Text GeneralForm(Single Value);
Text GeneralForm(Double Value);

// Print form: the general form, one blank in front of a number that is not negative, one blank behind every number.
template <class Number>
Text PrintForm(Number Value) {
  return (Value < Number(0) ? "" : " ") + GeneralForm(Value) + " ";
}

// Appends the general form without making a Text of its own; the writers' inner loops go through these.
void AppendGeneralForm(Text& Target, Single Value);
void AppendGeneralForm(Text& Target, Long Value);

// A pattern such as "#0.0##": digits 0 before the point always stand, "#" only where needed; behind the point the
// zeros are the decimals that always stand and the "#" those that may. The value is taken at its 15 significant
// digits and a tie is rounded away from zero. A value that rounds to zero carries no sign.
Text FormatNumber(Double Value, TextView Pattern);

// The value as a Text, for messages that mix texts and numbers.
inline Text ToText(Integer Value) { return GeneralForm(Value); }
inline Text ToText(Long Value) { return GeneralForm(Value); }

}  // namespace zelvanor
