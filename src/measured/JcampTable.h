#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// What a table (X++(Y..Y)) of a JCAMP-DX file is read by.
struct JcampTableForm {
  Double FirstX = 0;   // in the units of the axis; HasX false: unknown
  Double DeltaX = 0;   // 0: unknown
  Double XFactor = 1;  // of the abscissae that begin the lines
  bool HasX = false;
  int FirstLine = 1;  // of the file, for messages
};

struct JcampTable {
  std::vector<Double> Values;  // as written: without the factor of the ordinate
  Double FirstX = 0;           // of the first line, times XFactor
  std::vector<Text> Warnings;
};

// Reads a table in any of the forms AFFN, PAC, SQZ, DIF and DUP, mixed as they may be. The check value that begins a
// line behind differences, and the abscissae, are compared with what was expected: what differs becomes a warning with
// its line, and the file's value stands. Throws a Failure for what is no number at all and for too many points.
JcampTable ReadJcampTable(TextView Lines, const JcampTableForm& Form);

// Pairs of abscissa and ordinate, (XY..XY), separated by blanks, commas or semicolons. Throws a Failure.
std::vector<std::pair<Double, Double>> ReadJcampPairs(TextView Lines);

// The whole table in DIFDUP form, its lines at most 80 characters long: the place of the first point, and the step. No
// value may reach 2^30 in magnitude, so that differences are Longs.
Text WriteJcampTable(const std::vector<Long>& Values, Double FirstX, Double DeltaX);

}  // namespace zelvanor
