#pragma once

#include "platform/Form.h"
#include "platform/Grid.h"

namespace zelvanor {

// The values dialog: the peak list of the spectrum, or the shielding tensors, as a table to read, plot and copy.
void BuildValuesForm();

// Its table.
GridControl& ValuesGrid();

void mnuViewValues_Click();

// Lays the peak list out in the table; false when it refused.
Flag FillSpectralValues();

// More peaks than this are not listed.
inline constexpr int MostListedPeaks = 5449;

}  // namespace zelvanor
