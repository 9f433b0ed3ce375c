#include "measured/MeasuredDrawing.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "basic/Numbers.h"
#include "measured/Integrals.h"
#include "measured/MeasuredTrace.h"
#include "measured/MeasuredView.h"
#include "measured/Multiplets.h"
#include "shell/Frame.h"
#include "spectrum/SpectrumScale.h"
#include "spectrum/SpectrumView.h"
#include "tables/AtomLabels.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;
SpectrumViewState& V = SpectrumView;

// As in the drawing of the lines: the foot of spectra above the bottom, the share of the height that markers have.
constexpr int FootRow = 30;
constexpr int MarkerShare = 20;
constexpr Double Headroom = 1.2;
constexpr int RowHeight = 13;  // of a line of words
// Between the markers' feet and the words below: a front end marks the picked line there.
constexpr int MarkRoom = 12;

bool IsDark(Colour Value) {
  constexpr int Half = 3 * 128;
  return (Value & 255) + (Value >> 8 & 255) + (Value >> 16 & 255) < Half;
}

// Stands out from the lines and the envelope on black, on white, and in grey where there is no colour.
Colour MeasuredColour() {
  if (V.Monochrome != 0) return Rgb(112, 112, 112);
  return IsDark(Main.Spectrum1.BackColor) ? Rgb(255, 160, 64) : Rgb(176, 64, 0);
}
Colour WordsColour() { return IsDark(Main.Spectrum1.BackColor) ? Rgb(200, 200, 200) : Rgb(64, 64, 64); }
Colour MarkColour() { return V.Monochrome != 0 ? Black : V.SelectionClr; }

// Broken columns; shifts that are far out stay finite.
Double ColumnOf(Double Ppm) { return ColumnOfFrequency(-Ppm * V.SpectrometerMHz); }

int PresentArrangement() { return HasMeasured() && IsSet(W.SpectraAvailable) ? int(MeasuredView.Arrangement) : 0; }

TraceFrame PlaceTrace() {
  TraceFrame Frame;
  Frame.Width = V.ViewWidth;
  Frame.First = ColumnOf(MeasuredPpmAt(0));
  Frame.Step = ColumnOf(MeasuredPpmAt(1)) - Frame.First;
  const int Room = V.ViewHeight - FootRow;
  const bool Halved = PresentArrangement() != OverlayArrangement;
  Frame.Foot = Halved ? Room - Room / 2 : Room;
  Frame.Bottom = PresentArrangement() == MirrorArrangement ? Room : Frame.Foot;
  Frame.Top = PresentArrangement() == MirrorArrangement ? Frame.Foot : 0;
  return Frame;
}

// The points in the window, and one on each side.
std::pair<std::size_t, std::size_t> FindShown(std::size_t Count, const TraceFrame& Frame) {
  const auto PointAt = [&](Double Column) {
    return std::clamp((Column - Frame.First) / Frame.Step, 0.0, static_cast<Double>(Count));
  };
  const auto First = static_cast<std::size_t>(std::max(std::floor(PointAt(0)) - 1.0, 0.0));
  const auto End =
      static_cast<std::size_t>(std::min(std::ceil(PointAt(Frame.Width)) + 1.0, static_cast<Double>(Count)));
  return {First, End};
}

// Pixels for a point of 1.
Double ScaleTrace(std::span<const Long> Shown, const TraceFrame& Frame) {
  if (Shown.empty()) return 0;
  const Double Share = PresentArrangement() == OverlayArrangement ? 1.0 : 0.5;
  const Double Own = MeasuredView.Scale;
  if (IsSet(MeasuredView.EqualArea) && IsSet(W.SpectraAvailable)) {
    const Double Measured = std::accumulate(Shown.begin(), Shown.end(), 0.0) * Frame.Step;
    const auto Columns = static_cast<std::size_t>(EnvelopeColumns());
    const Double Simulated = std::accumulate(V.EnvelopeSamples.begin(),
                                             V.EnvelopeSamples.begin() + static_cast<std::ptrdiff_t>(Columns), 0.0) *
                             V.EnvelopeScale * Share;
    if (Measured > 0 && Simulated > 0) return Own * Simulated / Measured;
  }
  const Long Largest = *std::max_element(Shown.begin(), Shown.end());
  return Largest > 0 ? Own * Share * int(V.ViewHeight) / Headroom / Largest : 0.0;
}

std::span<const Long> MeasuredPoints() {
  return W.MeasuredPoint.Span().first(static_cast<std::size_t>(W.MeasuredCount));
}

void DrawMeasured(DrawingContext& Context) {
  const std::span<const Long> Points = MeasuredPoints();
  const TraceFrame Frame = PlaceMeasuredTrace();
  if (!(Frame.Step > 0)) return;
  SelectPen(Context, MeasuredColour());
  DrawTrace(Context, Points, Frame);
  DrawIntegrals(Context, MeasuredColour(), V.ViewHeight, V.ViewWidth, ColumnOf);
}

// Where Width columns meet the fewest lines between two rows; of equal places the one farthest to the right.
int FindFreePlace(const PictureSurface& Surface, int Width, int Top, int Bottom) {
  const int Whole = V.ViewWidth;
  if (Whole <= Width) return 0;
  std::vector<int> Met(static_cast<std::size_t>(Whole) + 1);  // columns that are met, left of each column
  for (const PictureLine& Line : Surface.Lines) {
    if (std::max(Line.Y1, Line.Y2) < Top || std::min(Line.Y1, Line.Y2) > Bottom) continue;
    const int Last = std::min(std::max(Line.X1, Line.X2), Whole - 1);
    for (int X = std::max(std::min(Line.X1, Line.X2), 0); X <= Last; ++X) Met[static_cast<std::size_t>(X) + 1] = 1;
  }
  std::partial_sum(Met.begin(), Met.end(), Met.begin());
  const auto MetFrom = [&](int X) {
    const auto First = Met.begin() + X;
    return First[Width] - *First;
  };
  int Best = Whole - Width;
  for (int X = Best; X >= 0; --X) {
    if (MetFrom(X) < MetFrom(Best)) Best = X;
  }
  return Best;
}

void DrawLegend(DrawingContext& Context) {
  struct Entry {
    Text Words;
    Colour Pen;
  };
  std::vector<Entry> Entries;
  if (IsSet(W.SpectraAvailable)) {
    const Colour Line = V.DisplayMode == LinesOnly ? V.GraphClr : V.EnvelopClr;
    Entries.push_back({"simulated", V.Monochrome != 0 ? Black : Line});
  }
  constexpr std::size_t LongestTitle = 30;
  const Text Title = W.MeasuredTitle.substr(0, LongestTitle);
  Entries.push_back({Join("measured", Title.empty() ? "" : ": ", Title), MeasuredColour()});
  constexpr int Stroke = 16;
  int Longest = 0;
  for (const Entry& Each : Entries) Longest = std::max(Longest, TextPixels(Each.Words));
  int Row = V.ViewHeight / MarkerShare + MarkRoom;
  const int X =
      FindFreePlace(*Context.Surface, Longest + 2 * Stroke, Row, Row + static_cast<int>(Entries.size()) * RowHeight);
  for (const Entry& Each : Entries) {
    SelectPen(Context, Each.Pen);
    MoveTo(Context, X, Row + RowHeight / 2);
    LineTo(Context, X + Stroke, Row + RowHeight / 2);
    PrintOverLines(Context, X + Stroke + 4, Row, Each.Words, Each.Pen);
    Row += RowHeight;
  }
}

// Words at their signals, in few rows: more would cover the spectrum. What finds no room is counted.
void DrawLabels(DrawingContext& Context, const std::vector<Multiplet>& Multiplets) {
  constexpr std::size_t MostRows = 4;
  std::vector<int> FreeFrom(MostRows);
  Long LeftOut = 0;
  const int Top = V.ViewHeight / MarkerShare + MarkRoom + (HasMeasured() ? 2 * RowHeight : 0);
  const Colour Pen = WordsColour();
  const auto Print = [&](int X, std::size_t Row, TextView Words) {
    PrintOverLines(Context, X, Top + static_cast<int>(Row) * RowHeight, Words, Pen);
  };
  for (const Multiplet& Each : Multiplets) {
    const Double Column = ColumnOf(Each.Ppm);
    if (Column < 0 || Column >= V.ViewWidth) continue;
    const Text Words = Join(MultipletAtoms(Each), "  ", MultipletWords(Each));
    const int Width = TextPixels(Words);
    const int X = std::clamp(static_cast<int>(Column) - Width / 2, 0, std::max(int(V.ViewWidth) - Width, 0));
    std::size_t Row = 0;
    while (Row < MostRows && FreeFrom[Row] > X) ++Row;
    if (Row == MostRows) {
      ++LeftOut;
      continue;
    }
    FreeFrom[Row] = X + Width + RowHeight;
    Print(X, Row, Words);
  }
  if (LeftOut > 0)
    Print(RowHeight, MostRows, Join("Zoom in for ", LeftOut, LeftOut == 1 ? " more label" : " more labels"));
}

// From the middle of the multiplet down, a level for each kind of coupling.
void DrawTree(DrawingContext& Context, const Multiplet& Of) {
  constexpr int LevelHeight = 16;
  int Row = V.ViewHeight / 3;
  SelectPen(Context, MarkColour());
  const auto ColumnAt = [&](Double OffsetHz) {
    constexpr Double Farthest = 32000.0;
    return ToLong(std::clamp(ColumnOf(Of.Ppm + OffsetHz / W.NMRFrequency), -Farthest, Farthest));
  };
  const auto Upright = [&](int X, int From, int To) {
    MoveTo(Context, X, From);
    LineTo(Context, X, To);
  };
  Upright(ColumnAt(0), Row - LevelHeight, Row);
  for (std::size_t Level = 0; Level < Of.Splittings.size(); ++Level) {
    const std::vector<Double> Before = SplitFirstOrder(Of, Level);
    const std::vector<Double> After = SplitFirstOrder(Of, Level + 1);
    if (After.size() <= Before.size()) break;
    const std::size_t Branches = After.size() / Before.size();
    for (std::size_t Branch = 0; Branch < After.size(); ++Branch) {
      MoveTo(Context, ColumnAt(Before[Branch / Branches]), Row);
      LineTo(Context, ColumnAt(After[Branch]), Row + LevelHeight);
      Upright(ColumnAt(After[Branch]), Row + LevelHeight, Row + 2 * LevelHeight);
    }
    Row += 2 * LevelHeight;
    const Text Words = Join(FormatNumber(Of.Splittings[Level].Hz, "0.0"), " Hz");
    PrintOverLines(Context, ColumnAt(After.front()) + RowHeight, Row - RowHeight, Words, WordsColour());
  }
}

// Lines of the atom that is pointed at: a second stroke below the marker.
void DrawMarks(DrawingContext& Context) {
  constexpr int LeastShare = 10;  // percent
  constexpr int Reach = 10;       // pixels
  SelectPen(Context, MarkColour());
  const int Row = V.ViewHeight / MarkerShare + 1;
  for (Long Peak = 0, Entry = 0; Peak < std::min(W.PeakCount, W.PeakSiteLines); ++Peak) {
    bool Marked = false;
    for (; Entry < W.PeakSiteEnd[Peak]; ++Entry) {
      const auto& Sites = MeasuredView.Marked;
      Marked = Marked || (W.PeakSiteShare[Entry] >= LeastShare &&
                          std::find(Sites.begin(), Sites.end(), int(W.PeakSite[Entry])) != Sites.end());
    }
    if (!Marked) continue;
    const int X = FGetPeakRX(W.PeakFrequency[Peak]);
    if (X < 0 || X >= V.ViewWidth) continue;
    MoveTo(Context, X - 2, Row);
    LineTo(Context, X + 2, Row);
    MoveTo(Context, X, Row);
    LineTo(Context, X, Row + Reach);
  }
}

}  // namespace

void DrawTrace(DrawingContext& Context, std::span<const Long> Points, const TraceFrame& Frame) {
  const auto [First, End] = FindShown(Points.size(), Frame);
  const auto RowOf = [&](Double Value) {
    return static_cast<int>(
        std::lround(std::clamp(Frame.Foot - Value * Frame.Scale, Double(Frame.Top), Double(Frame.Bottom))));
  };
  const auto ColumnAt = [&](std::size_t Point) {
    return static_cast<int>(std::floor(Frame.First + static_cast<Double>(Point) * Frame.Step));
  };
  bool Begun = false;
  const auto Go = [&](int X, int Y) {
    if (Begun) {
      LineTo(Context, X, Y);
    } else {
      MoveTo(Context, X, Y);
    }
    Begun = true;
  };
  for (std::size_t Point = First; Point < End;) {
    const int Column = ColumnAt(Point);
    Long Least = Points[Point];
    Long Most = Points[Point];
    const Long Entered = Points[Point];
    Long Left = Entered;
    // The end of the column is found once: its points are then compared alone.
    std::size_t Next = Point + 1;
    if (Frame.Step < 1.0) {
      const Double Border = (Column + 1 - Frame.First) / Frame.Step;
      Next = std::clamp(static_cast<std::size_t>(std::max(std::ceil(Border), 0.0)), Point + 1, End);
      for (std::size_t Each = Point + 1; Each < Next; ++Each) {
        Least = std::min(Least, Points[Each]);
        Most = std::max(Most, Points[Each]);
      }
      Left = Points[Next - 1];
    }
    Go(Column, RowOf(Entered));
    if (Least != Most) {
      const bool RisesFirst = Left < Entered;
      Go(Column, RowOf(RisesFirst ? Most : Least));
      Go(Column, RowOf(RisesFirst ? Least : Most));
      Go(Column, RowOf(Left));
    }
    Point = Next;
  }
}

TraceFrame PlaceMeasuredTrace() {
  const std::span<const Long> Points = MeasuredPoints();
  TraceFrame Frame = PlaceTrace();
  if (!(Frame.Step > 0)) return {.Step = 0};
  const auto [First, End] = FindShown(Points.size(), Frame);
  if (First >= End) return {.Step = 0};
  Frame.Scale = ScaleTrace(Points.subspan(First, End - First), Frame);
  if (PresentArrangement() == MirrorArrangement) Frame.Scale = -Frame.Scale;
  return Frame;
}

void ShareSurface() {
  const int Room = V.ViewHeight - FootRow;
  V.HeightShare = PresentArrangement() == OverlayArrangement ? 1.0 : 0.5;
  V.FootLift = PresentArrangement() == MirrorArrangement ? Room / 2 : 0;
}

void WidenToMeasured(Double& Low, Double& High) {
  if (!HasMeasured()) return;
  const Double Scale = Divide(V.SpectrometerMHz, W.MeasuredMHz);
  Low = std::min(Low, -W.MeasuredFirst * Scale);
  High = std::max(High, -W.MeasuredLast * Scale);
}

void DrawAdditions(DrawingContext& Context) {
  if (HasMeasured()) {
    IgnoreFailure([&] { DrawMeasured(Context); });
    DrawLegend(Context);
  }
  if (!IsSet(W.SpectraAvailable)) return;
  const bool Labels = IsSet(Main.mnuViewLabels.Checked);
  const bool Tree = IsSet(Main.mnuViewTree.Checked) && MeasuredView.Picked > 0;
  IgnoreFailure([&] {
    if (!MeasuredView.Marked.empty()) DrawMarks(Context);
    if (!Labels && !Tree) return;
    const std::vector<Multiplet> Multiplets = FindMultiplets();
    if (Labels) DrawLabels(Context, Multiplets);
    for (const Multiplet& Each : Multiplets) {
      if (Tree && Each.Site == MeasuredView.Picked) DrawTree(Context, Each);
    }
  });
}

}  // namespace zelvanor
