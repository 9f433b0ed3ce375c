#include <cmath>
#include <random>

#include "Support.h"
#include "settings/SettingsState.h"
#include "spectrum/Envelope.h"
#include "spectrum/SpectrumDrawing.h"
#include "spectrum/SpectrumInteraction.h"
#include "spectrum/SpectrumScale.h"

namespace zelvanor {

bool operator==(const PictureLine& A, const PictureLine& B) {
  return A.X1 == B.X1 && A.Y1 == B.Y1 && A.X2 == B.X2 && A.Y2 == B.Y2 && A.Pen == B.Pen;
}
void PrintTo(const PictureLine& Line, std::ostream* Stream) {
  *Stream << "(" << Line.X1 << "," << Line.Y1 << ")-(" << Line.X2 << "," << Line.Y2 << ") pen " << Line.Pen;
}

namespace test {
namespace {

WorkspaceState& W = Workspace;
SpectrumViewState& V = SpectrumView;

constexpr Colour LinePen = 101;
constexpr Colour SelectionPen = 102;
constexpr Colour EnvelopePen = 103;

using Peaks = std::vector<std::pair<double, double>>;

class SpectrumTest : public ProgramTest {
 protected:
  // A surface of 500 x 400 pixels at 100 MHz.
  SpectrumTest() {
    Resize(500, 400);
    W.NMRFrequency = 100;
    W.SpectrumSpan = 1000000;
    V.GraphClr = LinePen;
    V.SelectionClr = SelectionPen;
    V.EnvelopClr = EnvelopePen;
  }

  static void Resize(int Width, int Height) {
    Main.Spectrum1.Width = TwipsFromPixels(Width);
    Main.Spectrum1.Height = TwipsFromPixels(Height);
    Main.frmNMR.Width = Main.Spectrum1.Width;
    Main.frmNMR.Height = Main.Spectrum1.Height + TwipsFromPixels(70);  // status line, toolbar and both bars
    TakeViewSize();
  }

  // Takes a list as a computation delivers it, and shows it.
  static void Show(const Peaks& List) {
    SetPeaks(List);
    TransferVBX();
    W.ViewMode = SpectrumViewMode;
    RefreshView();
  }

  // The view's own list, already negated, in a window.
  static void Use(const Peaks& List, double Low, double High) {
    SetPeaks(List);
    V.ViewPeakCount = V.ListPeakCount = W.PeakCount;
    V.ViewLow = Low;
    V.ViewHigh = High;
    V.SpectrometerMHz = 100;
  }
};

TEST_F(SpectrumTest, LimitsAndCentre) {
  struct Row {
    Peaks List;
    double Low;
    double High;
    double Centre;
  };
  const Row Rows[] = {{{{-400, 1}}, -420, -380, -400},
                      {{{-100, 1}, {-300, 1}}, -500, 100, -200},
                      {{{0, 1}, {-100, 1}}, -120, -80, -50},
                      {{{0, 1}}, -20, 20, 0},
                      {{{-1, 1}, {-1.5, 1}}, -21.5, 19, -1.25},
                      {{{-1, 1}, {-2, 1}}, -3, 0, -1.5},
                      {{{50, 1}, {0, 0}, {-50, 1}, {20, 1}}, -150, 150, 5}};
  for (const Row& R : Rows) {
    Use(R.List, 0, 0);
    NewFrequencyLimits();
    FindCenterFrequency();
    EXPECT_EQ(V.FullLow, R.Low) << testing::PrintToString(R.List);
    EXPECT_EQ(V.FullHigh, R.High) << testing::PrintToString(R.List);
    EXPECT_EQ(V.CenterFrequency, R.Centre) << testing::PrintToString(R.List);
  }
  V.ViewPeakCount = 0;
  NewFrequencyLimits();
  EXPECT_EQ(V.FullLow, -20);
  EXPECT_EQ(FailureOf(FindCenterFrequency), "Division by zero");
}

TEST_F(SpectrumTest, NormalizeCutsTheTail) {
  struct Row {
    std::vector<double> Frequencies;
    Long Count;
  };
  const Row Rows[] = {
      {{10, 20, 30000, 5}, 2}, {{5}, 1},        {{10, 20}, 2},         {{10, 10000}, 2}, {{10, 10010}, 1},
      {{-10, 20000}, 1},       {{0, 10001}, 1}, {{0, -10001}, 1},      {{0, 10000}, 2},  {{0.0001, 5}, 2},
      {{0.0002, 5}, 1},        {{5, 0, 0}, 3},  {{5, 0, 20000, 1}, 2}, {{}, 0}};
  W.SpectrumSpan = 10000;
  for (const Row& R : Rows) {
    Peaks List;
    for (const double Frequency : R.Frequencies) List.emplace_back(Frequency, 1.0);
    SetPeaks(List);
    Normalize();
    EXPECT_EQ(W.PeakCount, R.Count) << testing::PrintToString(R.Frequencies);
    EXPECT_EQ(V.ViewPeakCount, R.Count);
    EXPECT_EQ(V.ListPeakCount, R.Count);
  }
}

TEST_F(SpectrumTest, TallestLineInTheWindow) {
  struct Row {
    Peaks List;
    double Tallest;
  };
  const Row Rows[] = {{{{-100, 1}, {-200, 0.5}}, 1.0},  // an outer line that comes first sets the bar at 1
                      {{{-200, 0.5}, {-100, 1}}, 0.5},
                      {{{-100, 9}, {-200, 2}}, 2},
                      {{{-200, 0.5}, {-100, 9}, {-220, 3}}, 3},
                      {{{-100, 5}}, 1},
                      {{{-150, 3}}, 3},
                      {{{-250, 4}}, 4},
                      {{{-250.001, 4}}, 1},
                      {{{-200, 0.25}, {-200, 0.25}}, 0.25},
                      {{{-200, -1}}, 1}};
  for (const Row& R : Rows) {
    Use(R.List, -250, -150);
    NewMaxIntensity();
    EXPECT_DOUBLE_EQ(V.MaxIntensity, 1.2 * R.Tallest) << testing::PrintToString(R.List);
    EXPECT_DOUBLE_EQ(V.VerticalScale, 400 / (1.2 * R.Tallest)) << testing::PrintToString(R.List);
  }
  V.VerticalScale = 7;
  V.ViewPeakCount = 0;
  EXPECT_EQ(FailureOf(NewMaxIntensity), "Division by zero");
  EXPECT_EQ(V.VerticalScale, 7);
}

TEST_F(SpectrumTest, EnvelopeLeavesFarPeaksOut) {
  Resize(10, 400);
  Use({{-139, 1}, {-140, 1}, {-200, 1}, {-250, 1}, {-251, 1}, {-200, 1}}, -200, -190);
  V.CurrentLineWidth = 2;
  ComputeLineWidths(false);
  EXPECT_EQ(FirstOf(V.PeakWork2, 6), (std::vector<Single>{0, 1, 1, 1, 0, 0}));
  EXPECT_NEAR(V.EnvelopeSamples[0], 1.0 / 3601 + 1 + 1.0 / 2501, 1e-12);
  EXPECT_EQ(V.EnvelopeScale, 0) << "no scale was asked for";

  V.ViewLow = 1000;
  V.ViewHigh = 1010;
  V.DisplayMode = EnvelopeOnly;
  ComputeLineWidths(true);
  EXPECT_DOUBLE_EQ(V.EnvelopeScale, 1e20) << "there is nothing to scale by";
  V.CurrentLineWidth = 0;
  V.ViewLow = -200;
  V.ViewHigh = -190;
  V.UseGaussian = True;
  ComputeLineWidths(true);
  ExpectValues("PeakWork1(2)=0 EnvelopeSamples(0)=0");
  V.UseGaussian = False;
  ComputeLineWidths(true);
  EXPECT_EQ(V.PeakWork2[2], 5e-21F);
  EXPECT_NEAR(V.EnvelopeSamples[0], 2e20, 1e16);
}

// The plain loop that the fast sums stand for.
std::vector<double> PlainSum(const std::vector<Single>& F, const std::vector<Single>& Work1,
                             const std::vector<Single>& Work2, double Start, double Step, std::size_t Count,
                             bool Gaussian) {
  std::vector<double> Samples;
  double X = Start;
  for (std::size_t Column = 0; Column < Count; ++Column, X += Step) {
    double Sum = 0;
    for (std::size_t Peak = 0; Peak < F.size(); ++Peak) {
      const double D = X - F[Peak];
      if (!Gaussian) {
        Sum += Work2[Peak] / (Work1[Peak] + D * D);
      } else {
        const double A = Work1[Peak] * D * D;
        Sum += Work2[Peak] * (A < 60 ? std::exp(-A) : 8.8e-27);
      }
    }
    Samples.push_back(Sum);
  }
  return Samples;
}

TEST_F(SpectrumTest, FastSumsAreThePlainOnes) {
  struct Row {
    std::size_t NumPeaks;
    std::size_t Columns;
    double Width;  // Hz, in a window of 1000 Hz
  };
  std::mt19937 Random(20240);
  std::uniform_real_distribution<Single> Place(-600.0F, 600.0F);
  std::uniform_real_distribution<Single> Height(0.001F, 2.0F);
  for (const Row& R : {Row{0, 5, 1}, Row{1, 1, 1}, Row{3, 7, 0.01}, Row{5, 9, 100}, Row{1003, 1282, 0.5},
                       Row{1000, 777, 20}, Row{250, 640, 400}, Row{6, 16, 1e-18}}) {
    std::vector<Single> F;
    std::vector<Single> Intensity;
    for (std::size_t Peak = 0; Peak < R.NumPeaks; ++Peak) {
      F.push_back(Peak % 7 == 2 ? F.back() : Place(Random));  // some coincide
      Intensity.push_back(Height(Random));
    }
    for (const bool Gaussian : {false, true}) {
      const double Factor = Gaussian ? 2 / R.Width : R.Width / 2;
      const std::vector<Single> Work1(F.size(), static_cast<Single>(Factor * Factor));
      std::vector<Single> Work2;
      for (const Single I : Intensity) Work2.push_back(static_cast<Single>(Factor * I));
      // A column falls on a peak exactly.
      const double Start = F.empty() ? -500 : double{F[0]};
      const double Step = 1000.0 / static_cast<double>(R.Columns);
      std::vector<double> Samples(R.Columns, -1);
      (Gaussian ? SumGaussians : SumLorentzians)({F, Work1, Work2}, Start, Step, Samples);
      const std::vector<double> Plain = PlainSum(F, Work1, Work2, Start, Step, R.Columns, Gaussian);
      const double Largest = *std::max_element(Plain.begin(), Plain.end());
      double Worst = 0;
      for (std::size_t Column = 0; Column < R.Columns; ++Column) {
        Worst = std::max(Worst, std::fabs(Samples[Column] - Plain[Column]));
      }
      EXPECT_LE(Worst, 1e-12 * Largest) << R.NumPeaks << " peaks, " << R.Columns << " columns, width " << R.Width
                                        << (Gaussian ? ", Gaussian" : ", Lorentzian");
    }
  }
}

std::vector<PictureLine> LinesOf(Colour Pen) {
  std::vector<PictureLine> Result;
  for (const PictureLine& Line : Main.Spectrum1.Lines) {
    if (Line.Pen == Pen) Result.push_back(Line);
  }
  return Result;
}

TEST_F(SpectrumTest, DrawsAxisTicksAndLines) {
  Show({{100, 1}, {300, 2}});
  const std::vector<PictureLine> Axis = LinesOf(White);
  ASSERT_EQ(Axis.size(), 61U) << "the axis and a tick each 0.1 ppm from -5 to 0.9";
  EXPECT_EQ(Axis[0], (PictureLine{0, 380, 500, 380, White}));
  for (int Tick = 0; Tick < 60; ++Tick) {
    const int X = static_cast<int>(std::nearbyint(Tick * 10 * 500.0 / 600));
    EXPECT_EQ(Axis[static_cast<std::size_t>(Tick) + 1], (PictureLine{X, Tick % 10 == 0 ? 374 : 377, X, 380, White}))
        << Tick;
  }
  Texts Labels;
  for (const PictureText& Label : Main.Spectrum1.Texts) {
    Labels.push_back(Label.Value);
    EXPECT_EQ(Label.Y, 380);
    EXPECT_EQ(Label.Pen, White);
  }
  EXPECT_EQ(Labels, (Texts{"5.000", "4.000", "3.000", "2.000", "1.000", "0.000"}));
  EXPECT_EQ(Main.Spectrum1.Texts[1].X, 83 - 15);
  EXPECT_EQ(LinesOf(LinePen), (std::vector<PictureLine>{{167, 0, 167, 20, LinePen}, {167, 370, 167, 37, LinePen}}));
  EXPECT_EQ(LinesOf(SelectionPen),
            (std::vector<PictureLine>{{333, 0, 333, 20, SelectionPen}, {333, 370, 333, 203, SelectionPen}}));

  V.VerticalScale = 1000;
  DrawSpectra();
  EXPECT_EQ(LinesOf(LinePen)[1], (PictureLine{167, 370, 167, 0, LinePen}));
  EXPECT_EQ(LinesOf(SelectionPen)[1], (PictureLine{333, 370, 333, -630, SelectionPen}))
      << "the selected line is not cut";
  V.VerticalScale = 185;
  DrawSpectra();
  EXPECT_EQ(LinesOf(LinePen)[1], (PictureLine{167, 370, 167, 0, LinePen})) << "just as high as the room";

  V.DisplayMode = EnvelopeOnly;
  V.SelectedPeak = -1;
  DrawSpectra();
  EXPECT_EQ(LinesOf(LinePen), (std::vector<PictureLine>{{333, 0, 333, 20, LinePen}, {167, 0, 167, 20, LinePen}}));
  EXPECT_EQ(LinesOf(EnvelopePen).size(), 0U) << "no width has been set";
  V.CurrentLineWidth = 2;
  DrawSpectra();
  EXPECT_FALSE(LinesOf(EnvelopePen).empty());
  V.DisplayMode = LinesOnly;
  SetMonochrome(1);
  DrawSpectra();
  EXPECT_EQ(LinesOf(Black).size(), Main.Spectrum1.Lines.size());
  EXPECT_EQ(Main.Spectrum1.Texts[0].Pen, Black);
  W.PeakFrequency[1] = 0;
  W.PeakIntensity[1] = 0;
  V.SelectedPeak = 1;
  DrawSpectra();
  EXPECT_EQ(Main.Spectrum1.Lines.size(), 63U) << "an empty peak that is selected is not drawn";
}

TEST_F(SpectrumTest, TickSteps) {
  struct Row {
    double Range;  // ppm, from 0
    int Ticks;
    Texts Labels;
  };
  const Row Rows[] = {
      {10, 9, {}},
      {9.9, 98, {"-1.000", "-2.000", "-3.000", "-4.000", "-5.000", "-6.000", "-7.000", "-8.000", "-9.000"}},
      {0.005, 4, {}},
      {0.015, 14, {"-0.010"}},
      {100000, 9, {}},
      {250, 24, {"-100.000", "-200.000"}}};
  for (const Row& R : Rows) {
    Use({}, 0, R.Range * 100);
    DrawSpectra();
    EXPECT_EQ(static_cast<int>(LinesOf(White).size()) - 1, R.Ticks) << R.Range;
    Texts Labels;
    for (const PictureText& Label : Main.Spectrum1.Texts) Labels.push_back(Label.Value);
    EXPECT_EQ(Labels, R.Labels) << R.Range;
  }
  // The window has several labels, side by side, whatever it shows.
  Settings.FirstSight = true;
  for (const double Range : {0.0004, 0.003, 0.02, 0.5, 9.0, 10.0, 12.0, 55.0, 99.0, 250.0, 100000.0}) {
    Use({}, -Range * 10, Range * 90);
    DrawSpectra();
    EXPECT_GE(Main.Spectrum1.Texts.size(), 1 + 3U) << Range;
    EXPECT_LE(Main.Spectrum1.Texts.size(), 1 + 10U) << Range;
  }
  Settings.FirstSight = false;
  V.SpectrometerMHz = 0;
  DrawSpectra();
  EXPECT_LE(Main.Spectrum1.Lines.size(), 1U);
}

TEST_F(SpectrumTest, EnvelopeIsCutAtTheTop) {
  struct Row {
    std::vector<double> Samples;
    std::vector<PictureLine> Lines;
  };
  const Colour P = EnvelopePen;
  const Row Rows[] = {
      {{0, 10, 70, 71, 80, 20}, {{0, 69, 1, 60, P}, {1, 60, 2, 0, P}, {4, 0, 5, 50, P}}},
      {{80, 10, 0.4, 0.6, 1.5, 2.5},
       {{0, 0, 1, 60, P}, {1, 60, 2, 69, P}, {2, 69, 3, 69, P}, {3, 69, 4, 68, P}, {4, 68, 5, 68, P}}},
      {{5, 5, 200, 5, 200, 200}, {{0, 65, 1, 65, P}, {1, 65, 2, 0, P}, {2, 0, 3, 65, P}, {3, 65, 4, 0, P}}}};
  Resize(6, 100);
  V.DisplayMode = EnvelopeOnly;
  V.EnvelopeScale = 1;
  for (const Row& R : Rows) {
    std::copy(R.Samples.begin(), R.Samples.end(), V.EnvelopeSamples.begin());
    ClearPicture(Main.Spectrum1);
    DrawingContext Context = GetDC(Main.Spectrum1);
    SelectPen(Context, 55);
    DrawWithLineWidths(Context);
    EXPECT_EQ(Main.Spectrum1.Lines, R.Lines) << testing::PrintToString(R.Samples);
    EXPECT_EQ(Context.Pen, 55) << "the former pen is back";
  }
}

void Press(int Button, double XPixels) { Spectrum1_MouseDown(Button, 0, static_cast<Single>(XPixels * 15), 30); }
void Release(double XPixels) { Spectrum1_MouseUp(LeftButton, 0, static_cast<Single>(XPixels * 15), 30); }
void Click(double XPixels) {
  Press(LeftButton, XPixels);
  Release(XPixels);
}

TEST_F(SpectrumTest, LineWidthBar) {
  struct Row {
    const char* What;
    bool Multiple;
    Long Picked;
    std::vector<Single> Widths;  // of three peaks, the last one outside the loaded window
  };
  const Row Rows[] = {{"all", false, 1, {30, 30, 30}},
                      {"the picked one", true, 1, {0.5F, 30, 0.5F}},
                      {"none picked: those of the window", true, -1, {30, 30, 0.5F}},
                      {"a pick out of the list", true, 3, {30, 30, 0.5F}}};
  for (const Row& R : Rows) {
    Show({{100, 1}, {300, 2}, {900, 1}});
    V.LoadedLow = -500;
    V.LoadedHigh = V.ViewHigh = 100;
    V.ViewLow = -500;
    SetChecked(Main.mnuMultipleLineWidths, ToFlag(R.Multiple));
    V.PickedPeak = R.Picked;
    Main.HScroll2.Value = 50;
    SetValue(Main.HScroll2, 10);
    EXPECT_EQ(V.CurrentLineWidth, 30.0F) << R.What;
    EXPECT_EQ(FirstOf(W.PeakLineWidth, 3), R.Widths) << R.What;
    EXPECT_EQ(V.Linewidth, 30) << R.What;
    EXPECT_EQ(Shown().Statuses.back().starts_with(" Shift="), R.Picked == 1) << R.What;
  }
  V.LineWidthBarLive = False;
  W.AbsLineWidth = True;
  SetValue(Main.HScroll2, 77);
  ExpectValues("CurrentLineWidth=77 Linewidth=30");
}

TEST_F(SpectrumTest, LineWidthBarFollowsTheSettings) {
  struct Row {
    Flag Absolute;
    double Least;
    double Most;
    int Min;
    int Max;
    int Large;
    int Small;
    int Value;
  };
  for (const Row& R : {Row{0, 0, 0, 0, 100, 10, 1, 10}, Row{-1, 0, 10, 0, 1000, 50, 5, 12},
                       Row{-1, 0.5, 4.5, 50, 450, 20, 2, 50}, Row{-1, 5, 5, 0, 300, 15, 2, 12}}) {
    ResetProgram();
    Resize(500, 400);
    W.NMRFrequency = 100;
    W.SpectrumSpan = 1000000;
    W.AbsLineWidth = R.Absolute;
    W.MinAbsLineWidth = static_cast<Single>(R.Least);
    W.MaxAbsLineWidth = static_cast<Single>(R.Most);
    V.Linewidth = 12;
    Show({{100, 1}, {300, 2}});
    const ScrollBar& Bar = Main.HScroll2;
    EXPECT_EQ((std::vector{Bar.Min, Bar.Max, Bar.LargeChange, Bar.SmallChange, Bar.Value}),
              (std::vector{R.Min, R.Max, R.Large, R.Small, R.Value}))
        << R.Least << ".." << R.Most;
    ExpectValues("LineWidthBarLive=-1 PeakLineWidth(0)=0.5");
  }
}

// Whatever the hand does on an empty or very wide surface, no failure leaves the handlers.
TEST_F(SpectrumTest, FirstSightShowsTheNarrowestEnvelopeThatCanBeSeen) {
  StartAtFirstSight();
  W.AbsLineWidth = True;
  Show({{3000, 1}, {1000, 1}});
  EXPECT_NEAR(V.CurrentLineWidth, 1.5 * GetHighLow() / 500, 1e-3);
  EXPECT_EQ(V.DisplayMode, LinesAndEnvelope);
  Show({{100, 1}, {90, 1}});
  EXPECT_EQ(V.CurrentLineWidth, 1.0F);
  SetValue(Main.HScroll2, 7);
  Show({{3000, 1}, {1000, 1}});
  EXPECT_EQ(V.CurrentLineWidth, 7.0F) << "the user's";
  SetChecked(Main.mnuLinesAndEnvelop, False);

  Settings.PrefGraphColor = Rgb(0, 255, 0);
  Settings.PrefEnvelopColor = White;
  Settings.PrefSelectionColor = Rgb(255, 0, 255);
  UseDesktopColours(false);
  EXPECT_EQ(Main.Spectrum1.BackColor, White);
  SetBackColor(Main.Spectrum1, Black);
  Settings.PrefGraphColor = LinePen;
  UseDesktopColours(false);
  EXPECT_EQ(Main.Spectrum1.BackColor, Black) << "a colour of the user's stays";
}

TEST_F(SpectrumTest, HandlersKeepTheirFailures) {
  struct Gesture {
    const char* What;
    std::function<void()> Make;
  };
  const Gesture Gestures[] = {
      {"click", [] { Click(10); }},
      {"drag", [] { Press(LeftButton, 400), Spectrum1_MouseMove(LeftButton, 0, 3000, 60), Release(200); }},
      {"press far out", [] { Press(LeftButton, 2300); }},
      {"move far out", [] { V.BandActive = True, Spectrum1_MouseMove(LeftButton, 0, 40000, 60); }},
      {"release far out", [] { V.BandActive = True, Release(-2300); }},
      {"right button", [] { Press(RightButton, 10); }},
      {"pan bar", [] { SetValue(Main.HScroll1, Main.HScroll1.Value + 7); }},
      {"width bar", [] { SetValue(Main.HScroll2, Main.HScroll2.Value + 7); }},
      {"display", [] { mnuEnvelop_Click(), mnuGaussian_Click(), mnuLines_Click(); }},
      {"resize", [] { Fire(Main.frmNMR.Resize); }}};
  struct State {
    const char* What;
    std::function<void()> Bring;
  };
  const State States[] = {{"no spectrum", [] {}},
                          {"a spectrum",
                           [] {
                             Show({{100, 1}, {300, 2}});
                           }},
                          {"no spectrometer frequency",
                           [] {
                             Show({{100, 1}, {300, 2}}), W.NMRFrequency = 0;
                           }},
                          {"the list is gone",
                           [] {
                             Show({{100, 1}, {300, 2}}), ClearSpectrum();
                           }},
                          {"the list is shorter", [] {
                             Show({{100, 1}, {300, 2}, {400, 1}}), SetPeaks({{1, 1}});
                           }}};
  for (const State& S : States) {
    for (const Gesture& G : Gestures) {
      ResetProgram();
      Resize(500, 400);
      W.NMRFrequency = 100;
      S.Bring();
      EXPECT_EQ(FailureOf(G.Make), "no failure") << G.What << " with " << S.What;
    }
  }
}

}  // namespace
}  // namespace test
}  // namespace zelvanor
