// The measured spectrum in the document: its parameters as lines "key value", and its points as a DIFDUP table whose
// abscissae are the numbers of the points.

#include <algorithm>
#include <cmath>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "files/ExtraSections.h"
#include "measured/Integrals.h"
#include "measured/JcampTable.h"
#include "measured/MeasuredTrace.h"
#include "platform/TextFiles.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr const char* Begin = "MeasuredBegin";
constexpr const char* End = "MeasuredEnd";

struct TextLine {
  const char* Key;
  Text WorkspaceState::*Value;
};
constexpr TextLine TextLines[] = {{"title", &WorkspaceState::MeasuredTitle},
                                  {"nucleus", &WorkspaceState::MeasuredNucleus},
                                  {"solvent", &WorkspaceState::MeasuredSolvent}};

struct NumberLine {
  const char* Key;
  Double WorkspaceState::*Value;
};
constexpr NumberLine NumberLines[] = {{"frequency", &WorkspaceState::MeasuredMHz},
                                      {"first", &WorkspaceState::MeasuredFirst},
                                      {"last", &WorkspaceState::MeasuredLast},
                                      {"factor", &WorkspaceState::MeasuredFactor},
                                      {"nuclei", &WorkspaceState::IntegralTotal}};

constexpr const char* IntegralKey = "integral";

constexpr const char* PointsKey = "points";

void WriteSection(Integer FileNumber) {
  for (const TextLine& Line : TextLines) {
    if (!(W.*Line.Value).empty()) PrintLine(FileNumber, Join(Line.Key, " ", W.*Line.Value));
  }
  for (const NumberLine& Line : NumberLines) {
    if (W.*Line.Value != 0.0) PrintLine(FileNumber, Join(Line.Key, " ", W.*Line.Value));
  }
  for (Long Range = 0; Range < W.IntegralCount; ++Range) {
    PrintLine(FileNumber, Join(IntegralKey, " ", W.IntegralHigh[Range], " ", W.IntegralLow[Range]));
  }
  PrintLine(FileNumber, Join(PointsKey, " ", W.MeasuredCount));
  const std::span<const Long> Points = W.MeasuredPoint.Span();
  const Text Table = WriteJcampTable({Points.begin(), Points.begin() + W.MeasuredCount}, 0.0, 1.0);
  for (TextView Rest = Table; !Rest.empty();) {
    const std::size_t Feed = Rest.find('\n');
    PrintLine(FileNumber, Rest.substr(0, Feed));
    Rest.remove_prefix(Feed + 1);
  }
}

void TakeIntegral(TextView Value) {
  const std::size_t Blank = std::min(Value.find(' '), Value.size());
  const Double High = StrictNumber(Value.substr(0, Blank));
  const Double Low = StrictNumber(Value.substr(Blank));
  if (!(High > Low) || W.IntegralCount >= MostIntegrals)
    throw Failure("an integral of the measured spectrum is damaged");
  AppendIntegral(Low, High);
}

void TakeLine(TextView Line) {
  const std::size_t Blank = std::min(Line.find(' '), Line.size());
  const TextView Key = Line.substr(0, Blank);
  const TextView Value = TrimWhite(Line.substr(Blank));
  for (const TextLine& Each : TextLines) {
    if (Key == Each.Key) W.*Each.Value = Text(Value);
  }
  for (const NumberLine& Each : NumberLines) {
    if (Key == Each.Key) W.*Each.Value = StrictNumber(Value);
  }
  if (Key == IntegralKey) TakeIntegral(Value);
  // Other keys are those of later versions.
}

// The table, up to the end line; Told is how many points it is to have.
void ReadPoints(Integer FileNumber, Long Told) {
  Text Lines = "\n";  // in the place of the label
  for (;;) {
    const TextView Line = LineInput(FileNumber);
    if (Line.starts_with(End)) break;
    (Lines += Line) += '\n';
  }
  const JcampTable Table = ReadJcampTable(Lines, {0, 1, 1, true, 0});
  if (!Table.Warnings.empty()) throw Failure("the measured spectrum is damaged: " + Table.Warnings.front());
  if (Told < 2 || Table.Values.size() != static_cast<std::size_t>(Told)) {
    throw Failure("the measured spectrum is damaged: its points are not as many as it tells");
  }
  std::vector<Long> Points;
  Points.reserve(Table.Values.size());
  for (const Double Value : Table.Values) {
    if (!(std::fabs(Value) < 1 << 30)) throw Failure(failures::Overflow);
    Points.push_back(ToLong(Value));
  }
  W.MeasuredPoint.Assign(Points);
  W.MeasuredCount = Told;
}

bool IsSound() {
  return IsSoundAxis(W.MeasuredMHz, W.MeasuredFirst, W.MeasuredLast) && W.MeasuredFactor > 0 &&
         W.MeasuredFactor < 1.0e30 && W.IntegralTotal >= 0;
}

void ReadSection(Integer FileNumber) {
  ClearMeasured();
  try {
    for (;;) {
      const TextView Line = LineInput(FileNumber);
      if (Line.starts_with(End)) throw Failure("the measured spectrum has no points");
      if (Line.starts_with(PointsKey)) {
        ReadPoints(FileNumber, ToLong(PrefixNumber(Line.substr(TextView(PointsKey).size()))));
        break;
      }
      TakeLine(Line);
    }
    if (!IsSound()) throw Failure("the measured spectrum is damaged: its axis makes no sense");
  } catch (const Failure&) {
    ClearMeasured();
    throw;
  }
}

}  // namespace

void AddMeasuredSection() { AddExtraSection({Begin, End, HasMeasured, WriteSection, ReadSection}); }

}  // namespace zelvanor
