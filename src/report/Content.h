#pragma once

#include <vector>

#include "report/Curves.h"
#include "report/Depiction.h"
#include "report/Signals.h"

namespace zelvanor {

// Everything that a report tells, for its forms to lay out.

// A row of the table of shifts: a signal, or an atom of an element that is not observed.
struct ReportRow {
  std::vector<int> Entries;  // NMR atoms
  Text Names;
  int Signal = -1;  // -1: none
  Double Ppm = 0;
  Double Error = 0;  // ppm; 0: unknown
  bool HasMeasured = false;
  Double Measured = 0;  // ppm
  Double Shielding = 0;
  Text Pattern;  // "dd, J = 8.0, 1.2 Hz"; empty where nothing is known
};

struct ReportCoupling {
  int First = 0;  // rows
  int Second = 0;
  Double Hz = 0;
  int Bonds = 0;  // between them; 0 where none lead from one to the other
};

// A line of "how it was computed".
struct ReportFact {
  Text What;
  Text Value;
};

struct ReportContent {
  Text Title;
  Text Nucleus;  // "1H"
  Long MHz = 0;
  bool IsMeasured = false;  // the shifts themselves were measured
  Text Formula;
  Text Publication;  // one line
  std::vector<Signal> Signals;
  std::vector<ReportRow> Rows;
  bool AnyError = false;  // of the rows
  bool AnyMeasured = false;
  std::vector<ReportCoupling> Couplings;
  Depiction Structure;
  Double HighPpm = 0;  // what the spectrum shows at first
  Double LowPpm = 0;
  ReportCurve Simulated;
  ReportCurve Measured;
  std::vector<ReportLine> Lines;
  std::vector<ReportFact> Facts;
};

// Throws a Failure where there are no shifts.
ReportContent GatherReport();

}  // namespace zelvanor
