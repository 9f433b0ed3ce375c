#pragma once

#include <string>

namespace nmrcalc {

// What stage 2 may take its time for, from nmr_spin.abp of the parameter directory:
//   key number        a row; ; starts a comment
struct SpinSettings {
  double ExactTime = 1.0;    // s; a part whose exact simulation is estimated to take no longer is not cut
  double Tolerance = 0.3;    // percent of the area that a cut may misplace, at a line width of 1 Hz
  double TimeBudget = 20.0;  // s by the clock, for the whole spectrum
};

// Keys that the file lacks have their defaults, and so has a directory without the file. Throws Failure with file, line
// and reason.
SpinSettings ReadSpinSettings(const std::string& Path);

}  // namespace nmrcalc
