#include <algorithm>
#include <cmath>

#include "backend/SpectInput.h"
#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "basic/TextTools.h"
#include "fit/FitPlan.h"
#include "measured/MeasuredTrace.h"
#include "platform/TextFiles.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr Double FileLargest = 1000.0;  // the largest measured point of the file
constexpr const char* Kinds[] = {"shift", "coupling", "width", "scale", "offset"};

// The measured points of the windows, and what the file divides them by.
struct PointRange {
  Long First = 0;  // with the largest shift
  Long End = 0;
  Double Unit = 1.0;
};

PointRange FindPoints() {
  Double High = -1.0e9;
  Double Low = 1.0e9;
  for (const auto& [WindowHigh, WindowLow] : Fit.Windows) {
    High = std::max(High, WindowHigh);
    Low = std::min(Low, WindowLow);
  }
  const Double Last = W.MeasuredCount - 1.0;
  PointRange Range;
  Range.First = ToLong(std::clamp(std::ceil(MeasuredPointAt(High)), 0.0, Last + 1.0));
  Range.End = ToLong(std::clamp(std::floor(MeasuredPointAt(Low)), -1.0, Last)) + 1;
  constexpr Long Fewest = 2;
  if (Range.End - Range.First < Fewest) throw Failure("the window holds no measured point");
  Double Largest = 0;
  for (Long Point = Range.First; Point < Range.End; ++Point) {
    Largest = std::max(Largest, std::fabs(MeasuredIntensityAt(Point)));
  }
  if (!(Largest > 0)) throw Failure("the measured spectrum is zero in the window");
  Range.Unit = Largest / FileLargest;
  return Range;
}

PointRange Written;

Text SystemLines(const std::vector<SpinSite>& Sites) {
  Text Numbers, Degeneracies, Shifts, Rows;
  for (const SpinSite& Each : Sites) {
    Numbers += Join(W.NMRAtomicNumber[Each.Atom], " ");
    Degeneracies += Join(Long{Each.Degeneracy}, " ");
    Shifts += GeneralForm(Each.Shift) + " ";
    for (const SpinSite& Other : Sites) Rows += GeneralForm(Double{W.Coupling(Each.Atom, Other.Atom)}) + " ";
    Rows += "\n";
  }
  return Join(W.ParamDescription, "\n", static_cast<Long>(Sites.size()), "\n", Numbers, Degeneracies, "\nFIELD\n",
              GeneralForm(W.MeasuredMHz), "\nSHIELDING\n", Shifts, "\nCOUPLING\n", Rows,
              "MINIMALINTENSITY\n0\nWEAKCOUPLINGAPPROXIMATION\n0\n");
}

Text RowLine(const FitRow& Row) {
  Text Line = Join(Kinds[Row.Kind], " ", GeneralForm(Row.Start), " ", GeneralForm(Row.Low), " ", GeneralForm(Row.High),
                   Row.Free ? " free" : " fixed");
  for (const int Site : Row.Sites) Line += Join(" ", Long{Site});
  for (const auto& [A, B] : Row.Pairs) Line += Join(" ", Long{A}, "-", Long{B});
  return Line + "\n";
}

}  // namespace

void WriteFitInput(const Text& Path) {
  if (std::none_of(Fit.Rows.begin(), Fit.Rows.end(),
                   [](const FitRow& Row) { return Row.Free && Row.Kind < FitScale; })) {
    throw Failure("no shift, coupling or width is free: there is nothing to fit");
  }
  Written = FindPoints();
  const Double MHz = W.MeasuredMHz;
  Text Content = SystemLines(FindSpinSites());
  Content += Join("PARAMETERS\n", static_cast<Long>(Fit.Rows.size()), "\n");
  for (const FitRow& Row : Fit.Rows) Content += RowLine(Row);
  Content += Join("BROADENING\n", GeneralForm(Fit.Broadening * MHz), "\nWINDOWS\n",
                  static_cast<Long>(Fit.Windows.size()), "\n");
  for (const auto& [High, Low] : Fit.Windows) Content += GeneralForm(Low * MHz) + " " + GeneralForm(High * MHz) + "\n";
  Content += Join("MEASURED\n", Written.End - Written.First, " ", GeneralForm(MeasuredPpmAt(Written.End - 1.0) * MHz),
                  " ", GeneralForm(MeasuredPpmAt(Written.First) * MHz), "\n");
  for (Long Point = Written.End - 1; Point >= Written.First; --Point) {
    Content += FormatNumber(MeasuredIntensityAt(Point) / Written.Unit, "0.00000") + "\n";
  }
  WriteWholeFile(Path, Content);
}

namespace {

struct ResultLines {
  Text Content;
  std::size_t Place = 0;
};

// The words of the next line, of which the first is Head where that is not empty.
std::vector<Text> NextWords(ResultLines& Lines, TextView Head, std::size_t Count) {
  const std::size_t End = Lines.Content.find('\n', Lines.Place);
  if (End == Text::npos) throw Failure("the result of the fit breaks off");
  std::vector<Text> Words = SplitAtBlanks(Lines.Content.substr(Lines.Place, End - Lines.Place));
  Lines.Place = End + 1;
  if (Words.size() != Count || (!Head.empty() && Words[0] != Head))
    throw Failure("the result of the fit makes no sense");
  return Words;
}

}  // namespace

void ReadFitResults(const Text& Path) {
  ResultLines Lines{.Content = ReadWholeFile(Path)};
  const std::size_t End = Lines.Content.find('\n');
  const Text Head = Lines.Content.substr(0, End);
  constexpr TextView ErrorMark = "ERRMSG: ";
  if (Head.starts_with(ErrorMark)) throw Failure(Head.substr(ErrorMark.size(), Head.size() - ErrorMark.size() - 1));
  if (Head.empty()) throw Failure("the backend has given no result");
  Lines.Place = End + 1;
  Fit.R = StrictNumber(NextWords(Lines, "R", 2)[1]);
  Fit.Noise = StrictNumber(NextWords(Lines, "NOISE", 2)[1]) * Written.Unit;
  NextWords(Lines, "STEPS", 2);
  Fit.Converged = NextWords(Lines, "CONVERGED", 2)[1] == "1";
  const Long NumValues = StrictLong(NextWords(Lines, "VALUES", 2)[1]);
  if (NumValues < static_cast<Long>(Fit.Rows.size())) throw Failure("the result of the fit is not of this fit");
  for (Long K = 0; K < NumValues; ++K) {
    const std::vector<Text> Words = NextWords(Lines, "", 6);
    if (K >= static_cast<Long>(Fit.Rows.size())) continue;  // of the shape, which has no row
    FitRow& Row = Fit.Rows[static_cast<std::size_t>(K)];
    Row.Value = StrictNumber(Words[1]);
    Row.Error = StrictNumber(Words[2]);
    if (Row.Error > Row.High - Row.Low) Row.Error = -1;  // wider than its bounds: nothing is told
    Row.Partner = std::clamp(StrictLong(Words[3]) - 1, Long{0}, static_cast<Long>(Fit.Rows.size()) - 1);
    Row.Correlation = StrictNumber(Words[4]);
    Row.AtBound = Words[5] == "1";
  }
  const Long NumPoints = StrictLong(NextWords(Lines, "SIMULATED", 2)[1]);
  if (NumPoints != Written.End - Written.First) throw Failure("the result of the fit is not of this spectrum");
  Fit.Simulated.assign(static_cast<std::size_t>(NumPoints), 0.0);
  for (std::size_t Point = Fit.Simulated.size(); Point > 0; --Point) {
    Fit.Simulated[Point - 1] = Divide(StrictNumber(NextWords(Lines, "", 1)[0]) * Written.Unit, W.MeasuredFactor);
  }
  Fit.First = Written.First;
  Fit.MeasuredFirst = W.MeasuredFirst;
  Fit.MeasuredCount = W.MeasuredCount;
  Fit.Done = true;
}

}  // namespace zelvanor
