#include "platform/Chart.h"

#include <utility>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "platform/Services.h"

namespace zelvanor {

namespace {

void Store(ChartControl& Chart, int Member, ChartValue Value) {
  if (Member == ChartAutoNext) Chart.Points.clear();
  if (Member == ChartNextValue) Chart.Points.push_back(Value);
  Chart.Members[Member] = std::move(Value);
  if (Member != ChartCommand) return;
  const int Command = MemberNumber(Chart, ChartCommand);
  if (Command == ChartDraw && Platform.ControlChanged) Platform.ControlChanged(Chart, Property::Picture);
  if (Command == ChartCopy && Platform.SetClipboardPicture) Platform.SetClipboardPicture(Chart);
}

}  // namespace

void WriteMember(ChartControl& Chart, int Member, TextView Value) { Store(Chart, Member, {Text(Value), true}); }
void WriteMember(ChartControl& Chart, int Member, Double Value) { Store(Chart, Member, {GeneralForm(Value), false}); }

void SetChartLabels(ChartControl& Chart, std::vector<Text> PointLabels, std::vector<Text> SetNames) {
  Chart.PointLabels = std::move(PointLabels);
  Chart.SetNames = std::move(SetNames);
}

int MemberNumber(const ChartControl& Chart, int Member) {
  const auto Entry = Chart.Members.find(Member);
  return Entry == Chart.Members.end() ? 0 : static_cast<int>(PrefixNumber(Entry->second.Words));
}

Text MemberText(const ChartControl& Chart, int Member) {
  const auto Entry = Chart.Members.find(Member);
  return Entry == Chart.Members.end() ? Text() : Entry->second.Words;
}

Double PointValue(const ChartControl& Chart, int Set, int Point) {
  const int Place = Set * MemberNumber(Chart, ChartNumPoints) + Point;
  if (Place < 0 || Place >= static_cast<int>(Chart.Points.size())) return 0.0;
  try {
    return StrictNumber(Chart.Points[static_cast<std::size_t>(Place)].Words);
  } catch (const Failure&) {
    return 0.0;
  }
}

}  // namespace zelvanor
