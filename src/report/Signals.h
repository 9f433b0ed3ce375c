#pragma once

#include <vector>

#include "measured/Multiplets.h"

namespace zelvanor {

// What reads as one signal of the observed nucleus: a multiplet, or where there are no couplings the shift of an atom,
// whose kind is then empty.
struct Signal {
  Multiplet Of;
  // Between them lie all but a hundredth at either end of its intensity, ppm.
  Double Low = 0;
  Double High = 0;
};

// The largest shift first.
std::vector<Signal> FindSignals();

// For each line of the spectrum the signal that has the largest part in it; -1 where nothing is known.
std::vector<int> FindSignalOfPeaks(const std::vector<Signal>& Signals);

// The atom of the molecule (0-based) that an NMR atom (0-based) is; -1 without a molecule.
int AtomOfEntry(int Entry);
// The name of NMR atoms in reports: "H14", "H14-16" with a dash, "2:H14" where there are several molecules.
Text NameEntries(const std::vector<int>& Entries);
// The shift that was measured and assigned to an NMR atom; false where there is none.
bool FindAssignedShift(int Entry, Double& Ppm);
// Whether the shifts of the observed nucleus are the assigned ones themselves, and not calculated.
bool AreShiftsMeasured();

inline constexpr const char* EnDash = "\xE2\x80\x93";

}  // namespace zelvanor
