#pragma once

#include <map>
#include <vector>

#include "platform/Controls.h"

namespace zelvanor {

// A value as it was written to a chart: a text, or a number.
struct ChartValue {
  Text Words;
  bool IsText = false;
};

// The chart's members by their dispatch numbers.
enum ChartMember {
  ChartAutoNext = 1,  // 1: each data value goes to the next point; writing it starts over at the first point
  ChartCommand = 7,   // 2 draws, 4 copies the picture to the clipboard
  ChartNextValue = 16,
  ChartStyle = 17,
  ChartTitle = 18,
  ChartKind = 19,       // 3 bars, 4 bars with depth
  ChartNumPoints = 30,  // in each data set
  ChartNumSets = 31,
};

inline constexpr int ChartDraw = 2;
inline constexpr int ChartCopy = 4;
inline constexpr int ChartBars = 3;
inline constexpr int ChartDeepBars = 4;

// A bar chart, fed through its members: kind, counts and title, then the values of set after set.
struct ChartControl : Control {
  ChartControl(Form* Owner, Text Name) : Control(ControlKind::Chart, Owner, std::move(Name)) {}

  std::map<int, ChartValue> Members;  // last value written to each
  std::vector<ChartValue> Points;     // data values in the order of writing
  std::vector<Text> PointLabels;      // below the bars of each point
  std::vector<Text> SetNames;         // in the legend
  Event CopyGesture;                  // a double click on the chart, or Ctrl+C
};

void WriteMember(ChartControl& Chart, int Member, TextView Value);
void WriteMember(ChartControl& Chart, int Member, Double Value);
inline void WriteMember(ChartControl& Chart, int Member, int Value) { WriteMember(Chart, Member, Double(Value)); }
void SetChartLabels(ChartControl& Chart, std::vector<Text> PointLabels, std::vector<Text> SetNames);

// The whole number last written to a member; 0 for none.
int MemberNumber(const ChartControl& Chart, int Member);
Text MemberText(const ChartControl& Chart, int Member);
// The value of a point; what is no number, or not there, is 0.
Double PointValue(const ChartControl& Chart, int Set, int Point);

}  // namespace zelvanor
