#include "platform/ChartPicture.h"

#include <algorithm>
#include <cmath>

#include "basic/NumberText.h"
#include "basic/Numbers.h"

namespace zelvanor {

namespace {

// Pixels.
constexpr int FontPixels = 12;
constexpr int TitlePixels = 16;
constexpr int LineHeight = 16;
constexpr int Margin = 12;
constexpr int TickLength = 5;
constexpr int LegendBox = 10;
constexpr int LongestLabel = 130;

// More bars than these can't be told apart; of those that fall together the longest is drawn.
constexpr int MostSets = 60;
constexpr int MostPoints = 600;

constexpr Colour GridColour = Rgb(214, 214, 214);
constexpr Colour WallColour = Rgb(246, 246, 246);
constexpr Colour SideWallColour = Rgb(232, 232, 232);
constexpr Colour AxisColour = Rgb(64, 64, 64);

// Told apart by people who see colours differently, and in a grey print.
constexpr Colour SetColours[] = {Rgb(0, 114, 178),  Rgb(230, 159, 0),   Rgb(0, 158, 115),  Rgb(213, 94, 0),
                                 Rgb(86, 180, 233), Rgb(204, 121, 167), Rgb(240, 228, 66), Rgb(110, 110, 110)};

// Factor below 1 goes towards black, above 1 towards white.
Colour Shaded(Colour Base, Double Factor) {
  constexpr Double Full = 255.0;
  const auto Part = [&](int Shift) {
    const Double Value = (Base >> Shift) & 255;
    const Double New = Factor <= 1.0 ? Value * Factor : Full - (Full - Value) * (2.0 - Factor);
    return static_cast<int>(std::clamp(New, 0.0, Full));
  };
  return Rgb(Part(0), Part(8), Part(16));
}

Colour ColourOfSet(int Set) {
  constexpr int Count = static_cast<int>(std::size(SetColours));
  constexpr Double Rounds[] = {1.0, 0.65, 1.5};
  return Shaded(SetColours[Set % Count], Rounds[(Set / Count) % 3]);
}

Double TextWidth(TextView Words, int Pixels) {
  constexpr Double WidestShare = 0.6;
  return static_cast<Double>(Words.size()) * Pixels * WidestShare;
}

Text Shortened(const Text& Words) {
  const auto Most = static_cast<std::size_t>(LongestLabel / TextWidth("x", FontPixels));
  return Words.size() <= Most ? Words : Words.substr(0, Most - 3) + "...";
}

// The chart's values, thinned out where there are too many.
struct ChartData {
  int NumSets = 0;
  int NumPoints = 0;
  std::vector<Double> Values;  // by sets
  std::vector<Text> PointLabels;
  std::vector<Text> SetNames;
  Double Value(int Set, int Point) const {
    return Values[static_cast<std::size_t>(Set) * static_cast<std::size_t>(NumPoints) +
                  static_cast<std::size_t>(Point)];
  }
};

Text LabelAt(const std::vector<Text>& Labels, int Place) {
  return Place < static_cast<int>(Labels.size()) ? Shortened(Labels[static_cast<std::size_t>(Place)]) : Text();
}

ChartData TakeData(const ChartControl& Chart) {
  const int NumSets = std::max(MemberNumber(Chart, ChartNumSets), 0);
  const int NumPoints = std::max(MemberNumber(Chart, ChartNumPoints), 0);
  ChartData Data;
  Data.NumSets = std::min(NumSets, MostSets);
  Data.NumPoints = std::min(NumPoints, MostPoints);
  Data.Values.resize(static_cast<std::size_t>(Data.NumSets) * static_cast<std::size_t>(Data.NumPoints));
  if (Data.Values.empty()) return Data;
  for (int Set = 0; Set < NumSets; ++Set) {
    const int ShownSet = static_cast<int>(std::int64_t{Set} * Data.NumSets / NumSets);
    for (int Point = 0; Point < NumPoints; ++Point) {
      const int ShownPoint = static_cast<int>(std::int64_t{Point} * Data.NumPoints / NumPoints);
      Double& Shown = Data.Values[static_cast<std::size_t>(ShownSet) * static_cast<std::size_t>(Data.NumPoints) +
                                  static_cast<std::size_t>(ShownPoint)];
      const Double Value = PointValue(Chart, Set, Point);
      if (std::fabs(Value) > std::fabs(Shown)) Shown = Value;
    }
  }
  for (int Set = 0; Set < Data.NumSets; ++Set) {
    Data.SetNames.push_back(LabelAt(Chart.SetNames, static_cast<int>(std::int64_t{Set} * NumSets / Data.NumSets)));
  }
  for (int Point = 0; Point < Data.NumPoints; ++Point) {
    const auto Place = static_cast<int>(std::int64_t{Point} * NumPoints / Data.NumPoints);
    Data.PointLabels.push_back(LabelAt(Chart.PointLabels, Place));
  }
  return Data;
}

// An axis with steps of 1, 2 or 5 that holds zero and all values.
struct Axis {
  Double Low = 0;
  Double High = 1;
  Double Step = 1;
};

Axis ChooseAxis(const ChartData& Data, Double Height) {
  constexpr Double LeastTickDistance = 45.0;
  Double Low = 0;
  Double High = 0;
  for (const Double Value : Data.Values) {
    Low = std::min(Low, Value);
    High = std::max(High, Value);
  }
  if (High == Low) High = 1;
  const Double Rough = (High - Low) / std::max(Height / LeastTickDistance, 2.0);
  const Double Power = std::pow(10.0, std::floor(std::log10(Rough)));
  const Double Share = Rough / Power;
  const Double Step = Power * (Share <= 1.0 ? 1.0 : Share <= 2.0 ? 2.0 : Share <= 5.0 ? 5.0 : 10.0);
  return {std::floor(Low / Step) * Step, std::ceil(High / Step) * Step, Step};
}

std::vector<Double> TicksOf(const Axis& Scale) {
  std::vector<Double> Ticks;
  const auto Last = static_cast<int>(std::lround((Scale.High - Scale.Low) / Scale.Step));
  const Double First = std::round(Scale.Low / Scale.Step);
  for (int Tick = 0; Tick <= Last; ++Tick) Ticks.push_back((First + Tick) * Scale.Step);
  return Ticks;
}

Text TickText(Double Value) { return GeneralForm(static_cast<Single>(Value)); }

struct Canvas {
  ChartPicture Picture;
  ChartData Data;
  Axis Scale;
  // The front plane of the bars.
  Double Left = 0;
  Double Top = 0;
  Double Right = 0;
  Double Bottom = 0;
  // How far the back plane lies to the right and above; 0 for flat bars.
  Double DepthX = 0;
  Double DepthY = 0;
  bool UprightLabels = false;

  Double RowOf(Double Value) const { return Bottom - (Value - Scale.Low) / (Scale.High - Scale.Low) * (Bottom - Top); }
  Double GroupWidth() const { return (Right - Left) / std::max(Data.NumPoints, 1); }
};

void AddPolygon(Canvas& To, std::vector<ChartPoint> Corners, Colour Fill, Colour Edge) {
  To.Picture.Shapes.push_back({std::move(Corners), Fill, Edge, true});
}

void AddLine(Canvas& To, std::vector<ChartPoint> Corners, Colour Pen) {
  To.Picture.Shapes.push_back({std::move(Corners), Pen, Pen, false});
}

Double LongestOf(const std::vector<Text>& Words) {
  Double Longest = 0;
  for (const Text& Word : Words) Longest = std::max(Longest, TextWidth(Word, FontPixels));
  return Longest;
}

void Measure(Canvas& To, const ChartControl& Chart, int Width, int Height) {
  constexpr Double DeepestPixels = 18.0;
  constexpr Double DepthRise = 0.6;
  const bool HasTitle = !MemberText(Chart, ChartTitle).empty();
  To.Picture.Width = Width;
  To.Picture.Height = Height;
  To.Top = Margin + (HasTitle ? TitlePixels + Margin : 0);
  const Double Legend = LongestOf(To.Data.SetNames) + LegendBox + 3.0 * Margin;
  To.Right = std::max(Width - Legend, Width * 0.4);
  const Double LabelWidth = LongestOf(To.Data.PointLabels);
  To.Scale = ChooseAxis(To.Data, Height - To.Top - LineHeight);
  Double TickWidth = 0;
  for (const Double Tick : TicksOf(To.Scale)) TickWidth = std::max(TickWidth, TextWidth(TickText(Tick), FontPixels));
  To.Left = Margin + TickWidth + TickLength + 3;
  To.UprightLabels = LabelWidth > To.GroupWidth() - 4;
  To.Bottom = Height - Margin - (To.UprightLabels ? LabelWidth : Double(LineHeight)) - TickLength;
  if (MemberNumber(Chart, ChartKind) == ChartDeepBars) {
    To.DepthX = std::clamp(To.GroupWidth() / 3.0, 4.0, DeepestPixels);
    To.DepthY = To.DepthX * DepthRise;
    To.Right -= To.DepthX;
    To.Top += To.DepthY;
  }
  To.Bottom = std::max(To.Bottom, To.Top + 20);
  To.Right = std::max(To.Right, To.Left + 20);
}

void DrawWalls(Canvas& To) {
  const auto [DX, DY] = std::pair(To.DepthX, To.DepthY);
  AddPolygon(To,
             {{To.Left + DX, To.Top - DY},
              {To.Right + DX, To.Top - DY},
              {To.Right + DX, To.Bottom - DY},
              {To.Left + DX, To.Bottom - DY}},
             WallColour, GridColour);
  if (DX == 0) return;
  AddPolygon(To, {{To.Left, To.Top}, {To.Left + DX, To.Top - DY}, {To.Left + DX, To.Bottom - DY}, {To.Left, To.Bottom}},
             SideWallColour, GridColour);
  AddPolygon(
      To,
      {{To.Left, To.Bottom}, {To.Left + DX, To.Bottom - DY}, {To.Right + DX, To.Bottom - DY}, {To.Right, To.Bottom}},
      SideWallColour, GridColour);
}

void DrawValueAxis(Canvas& To) {
  for (const Double Tick : TicksOf(To.Scale)) {
    const Double Y = To.RowOf(Tick);
    AddLine(To, {{To.Left, Y}, {To.Left + To.DepthX, Y - To.DepthY}, {To.Right + To.DepthX, Y - To.DepthY}},
            GridColour);
    AddLine(To, {{To.Left - TickLength, Y}, {To.Left, Y}}, AxisColour);
    To.Picture.Texts.push_back({To.Left - TickLength - 3, Y, TickText(Tick), ChartAlign::Right});
  }
  AddLine(To, {{To.Left, To.Top}, {To.Left, To.Bottom}}, AxisColour);
}

void DrawBar(Canvas& To, Double X1, Double X2, Double Value, Colour Fill) {
  const Double Zero = To.RowOf(0);
  const Double End = To.RowOf(Value);
  const Double Y1 = std::min(Zero, End);
  const Double Y2 = std::max(Zero, End);
  // Bars that are narrower than their edges would be all edge.
  const Colour Edge = X2 - X1 > 4 ? Shaded(Fill, 0.55) : Fill;
  if (To.DepthX > 0) {
    const Double DX = std::min(To.DepthX, std::max((X2 - X1) * 0.7, 2.0));
    const Double DY = DX * To.DepthY / To.DepthX;
    AddPolygon(To, {{X2, Y1}, {X2 + DX, Y1 - DY}, {X2 + DX, Y2 - DY}, {X2, Y2}}, Shaded(Fill, 0.7), Edge);
    AddPolygon(To, {{X1, Y1}, {X1 + DX, Y1 - DY}, {X2 + DX, Y1 - DY}, {X2, Y1}}, Shaded(Fill, 1.35), Edge);
  }
  AddPolygon(To, {{X1, Y1}, {X2, Y1}, {X2, Y2}, {X1, Y2}}, Fill, Edge);
}

// Set beside set in the group of each point, from left to right, so that a deep bar is covered by the one in front.
void DrawBars(Canvas& To) {
  constexpr Double BarShare = 0.78;
  const Double Group = To.GroupWidth();
  const Double Width = Group * BarShare / std::max(To.Data.NumSets, 1);
  for (int Point = 0; Point < To.Data.NumPoints; ++Point) {
    Double X = To.Left + Group * Point + Group * (1.0 - BarShare) / 2.0;
    for (int Set = 0; Set < To.Data.NumSets; ++Set, X += Width) {
      DrawBar(To, X, X + Width, To.Data.Value(Set, Point), ColourOfSet(Set));
    }
  }
  AddLine(To, {{To.Left, To.RowOf(0)}, {To.Right, To.RowOf(0)}}, AxisColour);
}

// Every label, or where they are too close every second, third and so on.
void DrawPointLabels(Canvas& To) {
  const Double Group = To.GroupWidth();
  const int Every = std::max(1, static_cast<int>(std::ceil(To.UprightLabels ? LineHeight / Group : 1.0)));
  for (int Point = 0; Point < To.Data.NumPoints; Point += Every) {
    const Text& Label = To.Data.PointLabels[static_cast<std::size_t>(Point)];
    const Double X = To.Left + Group * (Point + 0.5);
    if (To.UprightLabels) {
      To.Picture.Texts.push_back({X, To.Bottom + TickLength, Label, ChartAlign::Right, FontPixels, false, true});
    } else {
      To.Picture.Texts.push_back({X, To.Bottom + TickLength + LineHeight / 2.0, Label, ChartAlign::Centre});
    }
  }
}

void DrawLegend(Canvas& To) {
  const Double X = To.Right + To.DepthX + Margin;
  Double Y = To.Top - To.DepthY + LineHeight / 2.0;
  const int Room = std::max(2, static_cast<int>((To.Picture.Height - Y) / LineHeight));
  const bool All = To.Data.NumSets <= Room;
  const int Shown = All ? To.Data.NumSets : Room - 1;
  for (int Set = 0; Set < Shown; ++Set, Y += LineHeight) {
    constexpr Double Half = LegendBox / 2.0;
    const Colour Fill = ColourOfSet(Set);
    AddPolygon(To, {{X, Y - Half}, {X + LegendBox, Y - Half}, {X + LegendBox, Y + Half}, {X, Y + Half}}, Fill,
               Shaded(Fill, 0.55));
    To.Picture.Texts.push_back({X + LegendBox + 5, Y, To.Data.SetNames[static_cast<std::size_t>(Set)]});
  }
  if (!All) {
    To.Picture.Texts.push_back({X, Y, "and " + GeneralForm(Long{To.Data.NumSets - Shown}) + " more"});
  }
}

}  // namespace

ChartPicture DrawChart(const ChartControl& Chart, int Width, int Height) {
  Canvas To;
  To.Data = TakeData(Chart);
  Measure(To, Chart, std::max(Width, 1), std::max(Height, 1));
  DrawWalls(To);
  DrawValueAxis(To);
  DrawBars(To);
  DrawPointLabels(To);
  DrawLegend(To);
  const Text Title = MemberText(Chart, ChartTitle);
  if (!Title.empty()) {
    To.Picture.Texts.push_back(
        {(To.Left + To.Right) / 2.0, Margin + TitlePixels / 2.0, Title, ChartAlign::Centre, TitlePixels, true, false});
  }
  return std::move(To.Picture);
}

}  // namespace zelvanor
