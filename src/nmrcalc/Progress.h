#pragma once

#include <string>

namespace nmrcalc {

// What the run is busy with, for whoever waits: the file nmrprogress.out in the work directory, one line
//   STAGE STEP STEPS SECONDS TEXT
// STEPS 0 when nobody knows, SECONDS since the start of the run with one decimal. The file is written beside its place
// and renamed, ten times a second at most, and gone at the end of the run. May be called from any thread. What cannot
// be written is not told: progress never disturbs a run.

// Until then reports go nowhere.
void StartProgress(const std::string& WorkDirectory, int Stage);
void ReportProgress(long Step, long Steps, const std::string& Text);
void EndProgress();

}  // namespace nmrcalc
