#include "nmrcalc/fit/FitInput.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>

#include "nmrcalc/input/InputText.h"

namespace nmrcalc {

namespace {

constexpr int MostParameters = 400;
constexpr int MostWindows = 100;
constexpr int MostPoints = 1 << 19;
constexpr double SmallestWidth = 0.01;  // Hz
constexpr double LargestHz = 1e6;       // of widths, couplings and the whole axis

struct KindRow {
  const char* Name;
  FitKind Kind;
};
constexpr std::array<KindRow, 6> Kinds = {{{"shift", FitKind::Shift},
                                           {"coupling", FitKind::Coupling},
                                           {"width", FitKind::Width},
                                           {"gauss", FitKind::Gauss},
                                           {"scale", FitKind::Scale},
                                           {"offset", FitKind::Offset}}};

[[noreturn]] void FailBefore(const TextCursor& Place, const std::string& Reason) {
  FailAtLine(Place.File, Place.Line - 1, Reason);
}

std::size_t SiteAt(const TextCursor& Place, std::string_view Token, std::size_t NumSites) {
  return static_cast<std::size_t>(
             WholeNumberAt(Place.File, Place.Line - 1, Token, 1, static_cast<int>(NumSites), "a site")) -
         1;
}

void ReadTargets(const TextCursor& Place, const std::vector<std::string_view>& Words, std::size_t NumSites,
                 FitParameter& Parameter) {
  constexpr std::size_t FirstTarget = 5;
  for (std::size_t K = FirstTarget; K < Words.size(); ++K) {
    if (Parameter.Kind == FitKind::Shift) {
      Parameter.Sites.push_back(SiteAt(Place, Words[K], NumSites));
      continue;
    }
    const std::size_t Dash = Words[K].find('-');
    if (Dash == std::string_view::npos) FailBefore(Place, "a coupling should name its sites as 1-2");
    const std::size_t First = SiteAt(Place, Words[K].substr(0, Dash), NumSites);
    const std::size_t Second = SiteAt(Place, Words[K].substr(Dash + 1), NumSites);
    if (First == Second) FailBefore(Place, "a coupling should be of two sites");
    Parameter.Pairs.emplace_back(std::min(First, Second), std::max(First, Second));
  }
  const bool NeedsTargets = Parameter.Kind == FitKind::Shift || Parameter.Kind == FitKind::Coupling;
  if (NeedsTargets && Words.size() == FirstTarget) FailBefore(Place, "the parameter names no site");
  if (!NeedsTargets && Words.size() > FirstTarget) FailBefore(Place, "this parameter has no sites");
}

FitParameter ReadParameter(TextCursor& Place, std::size_t NumSites) {
  const auto Words = SplitTokens(NextLine(Place, "a parameter"));
  constexpr std::size_t FewestWords = 5;
  if (Words.size() < FewestWords) FailBefore(Place, "a parameter should be: kind, start, low, high, free or fixed");
  const auto* const Row =
      std::find_if(Kinds.begin(), Kinds.end(), [&](const KindRow& Each) { return Each.Name == Words[0]; });
  if (Row == Kinds.end()) FailBefore(Place, "there is no parameter of the kind " + std::string(Words[0]));
  FitParameter Parameter{.Kind = Row->Kind};
  std::size_t Word = 1;
  for (double* Value : {&Parameter.Start, &Parameter.Low, &Parameter.High}) {
    *Value = NumberAt(Place.File, Place.Line - 1, Words[Word++], "a value of a parameter");
  }
  if (Words[Word] != "free" && Words[Word] != "fixed") FailBefore(Place, "a parameter should be free or fixed");
  Parameter.IsFree = Words[Word] == "free";
  if (!(Parameter.Low <= Parameter.Start && Parameter.Start <= Parameter.High)) {
    FailBefore(Place, "the start of a parameter should lie within its bounds");
  }
  if (Parameter.IsFree && !(Parameter.Low < Parameter.High))
    FailBefore(Place, "the bounds of a free parameter are one");
  const bool IsWidth = Parameter.Kind == FitKind::Width || Parameter.Kind == FitKind::Gauss;
  if (IsWidth && (Parameter.Low < (Parameter.Kind == FitKind::Width ? SmallestWidth : 0.0))) {
    FailBefore(Place, "a line width is too small");
  }
  if ((IsWidth || Parameter.Kind == FitKind::Coupling) &&
      std::max(std::fabs(Parameter.Low), std::fabs(Parameter.High)) > LargestHz) {
    FailBefore(Place, "a bound is out of range");
  }
  ReadTargets(Place, Words, NumSites, Parameter);
  return Parameter;
}

// No place has two parameters, and what the line shape needs is there once.
void CheckParameters(const TextCursor& Place, std::vector<FitParameter>& Parameters) {
  std::set<std::size_t> Sites;
  std::set<std::pair<std::size_t, std::size_t>> Pairs;
  std::set<FitKind> Shape;
  for (const FitParameter& Each : Parameters) {
    for (const std::size_t Site : Each.Sites) {
      if (!Sites.insert(Site).second) FailBefore(Place, "site " + std::to_string(Site + 1) + " has two shifts");
    }
    for (const auto& Pair : Each.Pairs) {
      if (!Pairs.insert(Pair).second) {
        FailBefore(Place, "the sites " + std::to_string(Pair.first + 1) + "-" + std::to_string(Pair.second + 1) +
                              " have two couplings");
      }
    }
    const bool IsShape = Each.Kind != FitKind::Shift && Each.Kind != FitKind::Coupling;
    if (IsShape && !Shape.insert(Each.Kind).second) {
      FailBefore(Place, std::string("there are two parameters of the kind ") + NameOfKind(Each.Kind));
    }
  }
  if (!Shape.contains(FitKind::Gauss)) {
    Parameters.push_back({.Kind = FitKind::Gauss, .IsFree = false});
    Shape.insert(FitKind::Gauss);
  }
  for (const KindRow& Row : Kinds) {
    const bool IsShape = Row.Kind != FitKind::Shift && Row.Kind != FitKind::Coupling;
    if (IsShape && !Shape.contains(Row.Kind)) FailBefore(Place, std::string("there is no parameter ") + Row.Name);
  }
}

int ReadCount(TextCursor& Place, int Lowest, int Highest, const std::string& What) {
  const std::string_view Token = ReadRow(Place, 1, What)[0];
  return WholeNumberAt(Place.File, Place.Line - 1, Token, Lowest, Highest, What);
}

void ReadPoints(TextCursor& Place, FitInput& Input) {
  ReadKeyword(Place, "MEASURED");
  const auto Head = ReadRow(Place, 3, "the number of points and their first and last frequencies");
  const int NumPoints =
      WholeNumberAt(Place.File, Place.Line - 1, Head[0], 2, MostPoints, "the number of measured points");
  Input.FirstHz = NumberAt(Place.File, Place.Line - 1, Head[1], "a frequency");
  const double LastHz = NumberAt(Place.File, Place.Line - 1, Head[2], "a frequency");
  if (!(LastHz > Input.FirstHz && LastHz - Input.FirstHz <= LargestHz)) {
    FailBefore(Place, "the measured points should stand by rising frequency, within 1 MHz");
  }
  Input.StepHz = (LastHz - Input.FirstHz) / (NumPoints - 1);
  for (int Point = 0; Point < NumPoints; ++Point) Input.Points.push_back(ReadSingleNumber(Place, "a measured point"));
}

}  // namespace

const char* NameOfKind(FitKind Kind) {
  return std::find_if(Kinds.begin(), Kinds.end(), [&](const KindRow& Each) { return Each.Kind == Kind; })->Name;
}

FitInput ReadFitInput(const std::string& Path) {
  TextCursor Place{.File = ReadTextFile(Path)};
  FitInput Input{.System = ReadSpectrumLines(Place)};
  ReadKeyword(Place, "PARAMETERS");
  const int NumParameters = ReadCount(Place, 1, MostParameters, "the number of parameters");
  for (int K = 0; K < NumParameters; ++K) {
    Input.Parameters.push_back(ReadParameter(Place, Input.System.Sites.size()));
  }
  CheckParameters(Place, Input.Parameters);
  ReadKeyword(Place, "BROADENING");
  Input.Broadening = ReadSingleNumber(Place, "the first broadening");
  if (Input.Broadening < 0.0 || Input.Broadening > LargestHz) FailBefore(Place, "the first broadening is out of range");
  ReadKeyword(Place, "WINDOWS");
  const int NumWindows = ReadCount(Place, 1, MostWindows, "the number of windows");
  std::vector<std::pair<double, double>> Windows;
  for (int K = 0; K < NumWindows; ++K) {
    const auto Row = ReadRow(Place, 2, "a window");
    const double A = NumberAt(Place.File, Place.Line - 1, Row[0], "a frequency");
    const double B = NumberAt(Place.File, Place.Line - 1, Row[1], "a frequency");
    Windows.emplace_back(std::min(A, B), std::max(A, B));
  }
  ReadPoints(Place, Input);
  for (std::size_t Point = 0; Point < Input.Points.size(); ++Point) {
    const double Hz = Input.FirstHz + double(Point) * Input.StepHz;
    Input.Counts.push_back(std::any_of(Windows.begin(), Windows.end(),
                                       [&](const auto& Window) { return Window.first <= Hz && Hz <= Window.second; }));
  }
  return Input;
}

SpectrumInput SystemWith(const FitInput& Input, const std::vector<double>& Values) {
  SpectrumInput System = Input.System;
  const std::size_t NumSites = System.Sites.size();
  for (std::size_t K = 0; K < Values.size(); ++K) {
    for (const std::size_t Site : Input.Parameters[K].Sites) {
      System.Sites[Site].Shift = Values[K];
      System.Sites[Site].Frequency = Values[K] * System.Field;
    }
    for (const auto& [First, Second] : Input.Parameters[K].Pairs) {
      System.Coupling[First * NumSites + Second] = System.Coupling[Second * NumSites + First] = Values[K];
    }
  }
  return System;
}

}  // namespace nmrcalc
