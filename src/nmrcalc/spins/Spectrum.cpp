#include "nmrcalc/spins/Spectrum.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <optional>

#include "basic/Failure.h"
#include "nmrcalc/input/InputText.h"
#include "nmrcalc/spins/BinnedLines.h"
#include "nmrcalc/spins/Cut.h"
#include "nmrcalc/spins/Exact.h"
#include "nmrcalc/spins/Groups.h"
#include "nmrcalc/spins/LinearAlgebra.h"
#include "nmrcalc/spins/SpinSystem.h"
#include "nmrcalc/spins/Weak.h"
#include "nmrcalc/spins/Workers.h"

namespace nmrcalc {

namespace {

constexpr double Mebibyte = 1024.0 * 1024.0;
constexpr double LargestDegeneracyShown = 2147483647.0;  // readers hold it in 32 bits
constexpr double LargestWeakPart = 900;                  // spins; beyond, intensities leave double precision
constexpr double LargestChoiceCount = 100000.0;          // of total spins in a part
constexpr double EndShare = 0.03;                        // of the time budget, for joining and writing the lines
constexpr double LeastTime = 0.1;                        // s, for what is estimated to be quick
constexpr double OriginShare = 0.1;                      // of the minimal intensity

std::string Count(double Value) { return FixedNumber(Value, 0); }

// A part with what is known of it before any work.
struct PlannedPart {
  SpinPart Part{};
  std::vector<SpinSystem> Systems{};  // empty where the exact answer is out of reach
  ExactCost Cost{};
  double ExactSeconds = 0.0;  // estimated; infinite where it is out of reach
};

struct RunState {
  const SpectrumInput& Input;  // grouped
  const SpinSettings& Settings;
  double FreeBytes = 0.0;
  RunClock::time_point Start{};
  Log& Report;
  double NucleusIntensity = 0.0;  // of the result
  double ErrorSum = 0.0;          // estimated error times spins
  double SpinSum = 0.0;
  std::size_t SmallestCluster = std::numeric_limits<std::size_t>::max();
  std::size_t LargestCluster = 0;
  std::size_t NumCut = 0;
};

// Operations that one core does in a second, large blocks as the bulk of them, measured on a small one.
double MeasureSpeed() {
  constexpr std::size_t Size = 200;
  constexpr double LargeToSmall = 3.2;  // measured: 3.5 times as fast with blocks of 924 states, 4.2 with 3432
  std::vector<double> Matrix(Size * Size);
  for (std::size_t K = 0; K < Size; ++K) {
    Matrix[K * Size + K] = double(K % 17);
    for (std::size_t Other = 0; Other < K; ++Other) {
      Matrix[K * Size + Other] = Matrix[Other * Size + K] = 1.0 / double(1 + (K * 7 + Other * Other) % 31);
    }
  }
  std::vector<double> Energies;
  const auto Start = RunClock::now();
  DiagonalizeSymmetric(Matrix, Size, Energies);
  const double Seconds = std::chrono::duration<double>(RunClock::now() - Start).count();
  return LargeToSmall * 5.0 * double(Size * Size * Size) / std::max(Seconds, 1e-6);
}

double ChoiceCount(const SpectrumInput& Input, const SpinPart& Part) {
  double Choices = 1.0;
  for (const std::size_t Site : Part.Sites) Choices *= int{Input.Sites[Site].Degeneracy / 2 + 1};
  return Choices;
}

// By how much it takes longer to tell where the lines come from: not at all where only strong transitions are asked
// for, and up to four times as long where shifts are so near that all of them are as strong as the mean.
double CostOfOrigins(const PlannedPart& Plan, double MinimalIntensity) {
  constexpr double OfMany = 1.5;
  const double Mean =
      Plan.Part.NumSpins * std::ldexp(1.0, Plan.Part.NumSpins - 1) / std::max(1.0, Plan.Cost.Transitions);
  return OriginShare * MinimalIntensity < Mean ? OfMany : 1.0;
}

PlannedPart PlanPart(const SpectrumInput& Input, SpinPart Part, double FreeBytes) {
  PlannedPart Plan{.Part = std::move(Part), .ExactSeconds = std::numeric_limits<double>::infinity()};
  const auto Fits = [FreeBytes](const ExactCost& Cost) {
    return Cost.LargestBlock <= double(LargestMatrix) && Cost.Bytes <= FreeBytes;
  };
  if (!Fits(EstimateExactCost({LargestSystem(Input, Plan.Part)}))) return Plan;
  if (ChoiceCount(Input, Plan.Part) > LargestChoiceCount) return Plan;
  std::vector<SpinSystem> Systems = ReducePart(Input, Plan.Part);
  Plan.Cost = EstimateExactCost(Systems);
  if (!Fits(Plan.Cost)) return Plan;
  Plan.Systems = std::move(Systems);
  constexpr double UsualSpeed = 4e10;     // operations a second
  constexpr double WorthMeasuring = 0.2;  // s
  Plan.ExactSeconds = Plan.Cost.Operations / UsualSpeed;
  if (Plan.ExactSeconds > WorthMeasuring) {
    static const double Speed = MeasureSpeed();
    Plan.ExactSeconds =
        CostOfOrigins(Plan, Input.MinimalIntensity) * Plan.Cost.Operations / Speed / double(NumUsableCores());
  }
  return Plan;
}

// The lines of a part, on the scale of its own first-order line or, where it is cut, with CutNucleusIntensity.
struct PartLines {
  std::vector<Line> Lines{};
  LineOrigins Origins{};
  int NumSpins = 0;
  bool IsCut = false;
};

// Nothing when it is not done by the deadline.
std::optional<std::vector<Line>> SimulatePartExactly(RunState& Run, const PlannedPart& Plan,
                                                     RunClock::time_point Deadline, LineOrigins& Origins) {
  AddToLog(Run.Report, 1,
           "  exact: " + std::to_string(Plan.Systems.size()) + " total-spin systems, largest block " +
               Count(Plan.Cost.LargestBlock) + " states, " + FixedNumber(Plan.Cost.Bytes / Mebibyte, 1) +
               " MiB, about " + FixedNumber(Plan.ExactSeconds, 2) + " s");
  if (Plan.ExactSeconds > 1.0) WriteLog(Run.Report);  // so that one can see what it is busy with
  const double Minimal = Run.Input.MinimalIntensity;
  ExactLimits Limits{.Bytes = Run.FreeBytes, .MinimalIntensity = Minimal, .Deadline = Deadline};
  Limits.FaintestIntensity = std::clamp(1e-6 * Minimal, FaintestTransition, 1e-7);
  Limits.FaintestOrigin = std::max(OriginShare * Minimal, Limits.FaintestIntensity);
  double NearestFar = 0.0;
  for (const SpinSite& Site : Run.Input.Sites) {
    if (Site.Observed) continue;
    NearestFar = NearestFar > 0.0 ? std::min(NearestFar, std::fabs(Site.Frequency)) : std::fabs(Site.Frequency);
  }
  Limits.FarFrequency = 0.5 * NearestFar;
  return SimulateExact(Plan.Systems, Limits, Origins);
}

// Keeps the lists of the sites, as where the lines come from.
void KeepLists(const SpinPart& Part, std::vector<std::vector<Line>> SiteLines, LineOrigins& Origins) {
  for (std::size_t K = 0; K < SiteLines.size(); ++K) {
    Origins.Lists.push_back({.Site = Part.Sites[K], .Lines = std::move(SiteLines[K])});
  }
}

std::vector<Line> JoinLists(const std::vector<OwnLines>& Lists) {
  std::size_t NumLines = 0;
  for (const OwnLines& Own : Lists) NumLines += Own.Lines.size();
  std::vector<Line> All;
  All.reserve(NumLines);
  for (const OwnLines& Own : Lists) All.insert(All.end(), Own.Lines.begin(), Own.Lines.end());
  return All;
}

// The same in bins. Hundreds of sites have millions of lines together, which would take seconds to sort.
std::vector<Line> JoinInBins(const std::vector<OwnLines>& Lists) {
  BinnedLines Bins;
  std::vector<Line> FarLines;
  for (const OwnLines& Own : Lists) {
    for (const Line& Item : Own.Lines) {
      if (!AddLine(Bins, Item.Frequency, Item.Intensity, Item.Count)) FarLines.push_back(Item);
    }
  }
  std::vector<Line> All = ReadLines(Bins, 0.0);
  All.insert(All.end(), FarLines.begin(), FarLines.end());
  return All;
}

double SpinsObserved(const SpectrumInput& Input, const SpinPart& Part) {
  double Sum = 0.0;
  for (const std::size_t Site : Part.Sites) Sum += Input.Sites[Site].Observed ? Input.Sites[Site].Degeneracy : 0;
  return Sum;
}

RunClock::time_point After(double Seconds) {
  return RunClock::now() + std::chrono::duration_cast<RunClock::duration>(std::chrono::duration<double>(Seconds));
}

// The part in clusters where the exact answer takes too long; else nothing. Time is shared with the parts that are
// still to come.
std::optional<CutResult> ChooseSimulation(RunState& Run, const PlannedPart& Plan, double Share, PartLines& Result) {
  const double Used = std::chrono::duration<double>(RunClock::now() - Run.Start).count();
  const double Left = Share * std::max(0.0, (1.0 - EndShare) * Run.Settings.TimeBudget - Used);
  const RunClock::time_point Deadline = After(Left);
  const auto TakeExact = [&](RunClock::time_point Until) {
    auto Lines = SimulatePartExactly(Run, Plan, Until, Result.Origins);
    if (!Lines) AddToLog(Run.Report, 1, "  given up: it would take longer than the time budget");
    if (Lines) Result.Lines = std::move(*Lines);
    return Lines.has_value();
  };
  const bool IsQuick = Plan.ExactSeconds <= std::min(Run.Settings.ExactTime, Run.Settings.TimeBudget);
  const bool ExactFits = !IsQuick && Plan.ExactSeconds < Left;
  // A machine that is busy may take longer than was estimated.
  if (IsQuick && TakeExact(After(std::max(Run.Settings.TimeBudget, LeastTime)))) return std::nullopt;
  CutLimits Limits{.Tolerance = 0.01 * Run.Settings.Tolerance, .Deadline = Deadline, .Bytes = Run.FreeBytes};
  if (ExactFits) Limits.ExactSeconds = Plan.ExactSeconds;
  CutResult Cut = SimulateCut(Run.Input, Plan.Part, Limits);
  if (ExactFits && Cut.Error > Limits.Tolerance) {
    if (TakeExact(Deadline)) return std::nullopt;
    Limits.ExactSeconds = 0.0;  // clusters have stopped growing for it
    CutResult Grown = SimulateCut(Run.Input, Plan.Part, Limits);
    if (Grown.Error < Cut.Error) Cut = std::move(Grown);
  }
  return Cut;
}

void TellCut(RunState& Run, const PlannedPart& Plan, const CutResult& Cut) {
  const double NumSpins = SpinsObserved(Run.Input, Plan.Part);
  Run.ErrorSum += Cut.Error * NumSpins;
  Run.SmallestCluster = std::min(Run.SmallestCluster, Cut.SmallestCluster);
  Run.LargestCluster = std::max(Run.LargestCluster, Cut.LargestCluster);
  ++Run.NumCut;
  AddToLog(Run.Report, 0,
           "Part of " + std::to_string(Plan.Part.NumSpins) + " spins cut into " + std::to_string(Cut.NumClusters) +
               " clusters of " + std::to_string(Cut.SmallestCluster) + " to " + std::to_string(Cut.LargestCluster) +
               " spins, estimated error " + FixedNumber(100.0 * Cut.Error, 3) +
               " percent of the area at 1 Hz line width");
}

PartLines SimulatePart(RunState& Run, const PlannedPart& Plan, double Share) {
  PartLines Result{.NumSpins = Plan.Part.NumSpins};
  AddToLog(Run.Report, 1,
           "part of " + std::to_string(Plan.Part.NumSpins) + " spins in " + std::to_string(Plan.Part.Sites.size()) +
               " sites, first site " + std::to_string(Plan.Part.Sites[0] + 1));
  if (Run.Input.WeakCoupling) {
    KeepLists(Plan.Part, SimulateWeak(Run.Input, Plan.Part), Result.Origins);
    Result.Lines = JoinLists(Result.Origins.Lists);
  } else if (auto Cut = ChooseSimulation(Run, Plan, Share, Result)) {
    TellCut(Run, Plan, *Cut);
    Result.IsCut = true;
    KeepLists(Plan.Part, std::move(Cut->SiteLines), Result.Origins);
    Result.Lines = JoinInBins(Result.Origins.Lists);
  }
  Run.SpinSum += SpinsObserved(Run.Input, Plan.Part);
  return Result;
}

void ScaleLines(PartLines& Part, double Scale) {
  for (Line& Item : Part.Lines) Item.Intensity *= Scale;
  ScaleOrigins(Part.Origins, Scale);
}

// Negative lines of a cut spectrum that met no stronger one go, and what they hold is taken from all others.
void DropNegativeLines(std::vector<Line>& Lines) {
  double Positive = 0.0;
  double Sum = 0.0;
  for (const Line& Item : Lines) {
    Sum += Item.Intensity;
    Positive += std::max(0.0, Item.Intensity);
  }
  std::erase_if(Lines, [](const Line& Item) { return Item.Intensity < 0.0; });
  for (Line& Item : Lines) Item.Intensity *= Sum / Positive;
}

// Merges, drops what is faint, and brings the part to the scale of the result.
void FinishPart(RunState& Run, PartLines& Part) {
  const double Minimal = std::max(Run.Input.MinimalIntensity, FaintestTransition);
  if (Part.IsCut) {
    SortAndMerge(Part.Lines, BinWidth);
    MergeFaintLines(Part.Lines, Minimal);
    DropNegativeLines(Part.Lines);
    DropFaintLines(Part.Lines, Minimal);
    ScaleLines(Part, Run.NucleusIntensity / CutNucleusIntensity);
  } else {
    const double Scale = std::ldexp(Run.NucleusIntensity, 1 - Part.NumSpins);
    if (Part.NumSpins > LargestPart) ScaleLines(Part, Scale);
    SortAndMerge(Part.Lines, MergeWidth);
    DropFaintLines(Part.Lines, Minimal);
    if (Part.NumSpins <= LargestPart) ScaleLines(Part, Scale);
  }
  AddToLog(Run.Report, 1, "  " + std::to_string(Part.Lines.size()) + " lines");
}

std::string DescribeMethod(const RunState& Run, bool IsRescaled) {
  std::string Text = "NMR spectrum by ";
  if (Run.NumCut > 0) {
    Text += "simulation in clusters of " + std::to_string(Run.SmallestCluster) + " to " +
            std::to_string(Run.LargestCluster) + " spins";
  } else {
    Text += Run.Input.WeakCoupling ? "first-order (weak coupling) simulation" : "exact simulation";
  }
  Text += " of the isotropic spin Hamiltonian";
  if (Run.NumCut > 0) {
    Text += "; estimated error " + FixedNumber(100.0 * Run.ErrorSum / Run.SpinSum, 3) +
            " percent of the area at 1 Hz line width";
  }
  if (IsRescaled) Text += "; the intensities of a nucleus add up to " + Count(CutNucleusIntensity);
  return Text;
}

std::vector<PlannedPart> PlanParts(const SpectrumInput& Input, double FreeBytes) {
  std::vector<PlannedPart> Plans;
  for (SpinPart& Part : FindParts(Input)) {
    if (!Part.HasObserved) continue;
    if (Input.WeakCoupling) {
      if (Part.NumSpins > LargestWeakPart) {
        throw zelvanor::Failure("The spin system is too large: a part of " + std::to_string(Part.NumSpins) +
                                " coupled spins, and the limit of the weak coupling approximation is " +
                                Count(LargestWeakPart) + ". Select fewer atoms or remove small couplings");
      }
      Plans.push_back({.Part = std::move(Part)});
    } else {
      Plans.push_back(PlanPart(Input, std::move(Part), FreeBytes));
    }
  }
  if (Plans.empty()) {
    throw zelvanor::Failure("There is no observed nucleus: all chemical shifts are out of range");
  }
  return Plans;
}

}  // namespace

Spectrum SimulateSpectrum(const SpectrumInput& Input, const SpinSettings& Settings, double FreeBytes, Log& Report) {
  GroupedInput Grouped{.Input = Input};
  if (Input.WeakCoupling) {
    for (std::size_t Site = 0; Site < Input.Sites.size(); ++Site) Grouped.Members.push_back({Site});
  } else {
    Grouped = GroupEquivalentSites(Input);
    if (Grouped.Members.size() < Input.Sites.size()) {
      AddToLog(Report, 1, "equivalent sites taken together: " + std::to_string(Grouped.Members.size()) + " are left");
    }
  }
  RunState Run{
      .Input = Grouped.Input, .Settings = Settings, .FreeBytes = FreeBytes, .Start = RunClock::now(), .Report = Report};
  const std::vector<PlannedPart> Plans = PlanParts(Grouped.Input, FreeBytes);
  double Ahead = 0.0;  // spins of the parts to come that may be cut
  int LargestSpins = 0;
  for (const PlannedPart& Plan : Plans) {
    if (Plan.ExactSeconds > Settings.ExactTime) Ahead += Plan.Part.NumSpins;
    LargestSpins = std::max(LargestSpins, Plan.Part.NumSpins);
  }
  std::vector<PartLines> Parts;
  for (const PlannedPart& Plan : Plans) {
    const double Share = Ahead > 0.0 ? std::min(1.0, Plan.Part.NumSpins / Ahead) : 1.0;
    Parts.push_back(SimulatePart(Run, Plan, Share));
    if (Plan.ExactSeconds > Settings.ExactTime) Ahead -= Plan.Part.NumSpins;
  }
  const bool IsRescaled = Run.NumCut > 0 || LargestSpins > LargestPart;
  Run.NucleusIntensity = IsRescaled ? CutNucleusIntensity : std::ldexp(1.0, LargestSpins - 1);
  Spectrum Result{.Method = DescribeMethod(Run, IsRescaled),
                  .Error = Run.NumCut > 0 ? Run.ErrorSum / Run.SpinSum : 0.0,
                  .OriginReach = Run.NumCut > 0 ? MergeReach : 2.0 * MergeWidth,
                  .Members = std::move(Grouped.Members)};
  for (PartLines& Part : Parts) {
    FinishPart(Run, Part);
    Result.Lines.insert(Result.Lines.end(), Part.Lines.begin(), Part.Lines.end());
    AddOriginsOf(Result.Origins, std::move(Part.Origins));
  }
  if (Result.Lines.empty()) {
    throw zelvanor::Failure("No line of the spectrum reaches the minimal intensity " +
                            FixedNumber(Input.MinimalIntensity, 5) + "; lower it");
  }
  SortAndMerge(Result.Lines, MergeWidth);
  AddToLog(Report, 0, "Done: " + Result.Method);
  return Result;
}

std::string FormatSpectrum(const Spectrum& Result) {
  std::string Text =
      Result.Method + "\n" + std::to_string(Result.Lines.size()) + "\nFREQUENCY INTENSITY DEGENERACY LINEWIDTH\n";
  constexpr std::size_t UsualLength = 48;
  Text.reserve(Text.size() + UsualLength * Result.Lines.size());
  const std::string Width = " " + FixedNumber(NaturalLineWidth, 3) + "\n";
  for (const Line& Item : Result.Lines) {
    AppendFixedNumber(Text, Item.Frequency, 8);
    Text += ' ';
    AppendFixedNumber(Text, Item.Intensity, 9);
    Text += ' ';
    AppendFixedNumber(Text, std::min(Item.Count, LargestDegeneracyShown), 0);
    Text += Width;
  }
  return Text;
}

std::string FormatSpectrumMap(const SpectrumInput& Input, const Spectrum& Result) {
  std::vector<int> Degeneracies;
  for (const SpinSite& Site : Input.Sites) Degeneracies.push_back(Site.Degeneracy);
  return FormatMap(Result.Lines, Result.Origins, Result.OriginReach, Result.Members, Degeneracies);
}

}  // namespace nmrcalc
