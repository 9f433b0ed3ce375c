#include "nmrcalc/spins/Spectrum.h"

#include <algorithm>
#include <cmath>

#include "basic/Failure.h"
#include "nmrcalc/input/InputText.h"
#include "nmrcalc/spins/Exact.h"
#include "nmrcalc/spins/LinearAlgebra.h"
#include "nmrcalc/spins/SpinSystem.h"
#include "nmrcalc/spins/Weak.h"

namespace nmrcalc {

namespace {

constexpr double Mebibyte = 1024.0 * 1024.0;
constexpr double OperationsPerSecond = 4e10;             // one core with a tuned library
constexpr double LargestDegeneracyShown = 2147483647.0;  // readers hold it in 32 bits

std::string Count(double Value) { return FixedNumber(Value, 0); }

[[noreturn]] void RefusePart(const SpinPart& Part, const std::string& Reason) {
  throw zelvanor::Failure("The spin system is too large: a part of " + std::to_string(Part.NumSpins) +
                          " coupled spins in " + std::to_string(Part.Sites.size()) + " sites " + Reason +
                          ". Use the weak coupling approximation or select fewer atoms");
}

void CheckPartSize(const SpinPart& Part) {
  if (Part.NumSpins <= LargestPart) return;
  throw zelvanor::Failure("The spin system is too large: a part of " + std::to_string(Part.NumSpins) +
                          " coupled spins in " + std::to_string(Part.Sites.size()) + " sites, and the limit is " +
                          std::to_string(LargestPart) + ". Select fewer atoms or remove small couplings");
}

void CheckCost(const SpinPart& Part, const ExactCost& Cost, double FreeBytes) {
  if (Cost.LargestBlock > double(LargestMatrix) || !std::isfinite(Cost.Bytes)) {
    RefusePart(Part, "has a largest block of " + Count(Cost.LargestBlock) + " states, beyond the " +
                         std::to_string(LargestMatrix) + " that can be diagonalised");
  }
  if (Cost.Bytes <= FreeBytes) return;
  RefusePart(Part, "has a largest block of " + Count(Cost.LargestBlock) + " states and needs " +
                       Count(std::ceil(Cost.Bytes / Mebibyte)) + " MiB, of which " + Count(FreeBytes / Mebibyte) +
                       " MiB are free");
}

std::vector<Line> SimulatePartExactly(const SpectrumInput& Input, const SpinPart& Part, double FreeBytes, Log& Report) {
  CheckCost(Part, EstimateExactCost({LargestSystem(Input, Part)}), FreeBytes);
  const std::vector<SpinSystem> Systems = ReducePart(Input, Part);
  const ExactCost Cost = EstimateExactCost(Systems);
  AddToLog(Report, 1,
           "  exact: " + std::to_string(Systems.size()) + " total-spin systems, largest block " +
               Count(Cost.LargestBlock) + " states, " + FixedNumber(Cost.Bytes / Mebibyte, 1) + " MiB, about " +
               FixedNumber(Cost.Operations / OperationsPerSecond, 2) + " s on one core");
  CheckCost(Part, Cost, FreeBytes);
  if (Cost.Operations > OperationsPerSecond) WriteLog(Report);  // so that one can see what it is busy with
  ExactLimits Limits{.Bytes = FreeBytes, .MinimalIntensity = Input.MinimalIntensity};
  Limits.FaintestIntensity = std::clamp(1e-6 * Input.MinimalIntensity, FaintestTransition, 1e-7);
  double NearestFar = 0.0;
  for (const SpinSite& Site : Input.Sites) {
    if (Site.Observed) continue;
    NearestFar = NearestFar > 0.0 ? std::min(NearestFar, std::fabs(Site.Frequency)) : std::fabs(Site.Frequency);
  }
  Limits.FarFrequency = 0.5 * NearestFar;
  return SimulateExact(Systems, Limits);
}

}  // namespace

std::vector<Line> SimulateSpectrum(const SpectrumInput& Input, double FreeBytes, Log& Report) {
  std::vector<SpinPart> Parts = FindParts(Input);
  std::erase_if(Parts, [](const SpinPart& Part) { return !Part.HasObserved; });
  if (Parts.empty()) {
    throw zelvanor::Failure("There is no observed nucleus: all chemical shifts are out of range");
  }
  int LargestSpins = 0;
  for (const SpinPart& Part : Parts) {
    CheckPartSize(Part);
    LargestSpins = std::max(LargestSpins, Part.NumSpins);
  }
  std::vector<Line> Spectrum;
  for (const SpinPart& Part : Parts) {
    AddToLog(Report, 1,
             "part of " + std::to_string(Part.NumSpins) + " spins in " + std::to_string(Part.Sites.size()) +
                 " sites, first site " + std::to_string(Part.Sites[0] + 1));
    std::vector<Line> Lines =
        Input.WeakCoupling ? SimulateWeak(Input, Part) : SimulatePartExactly(Input, Part, FreeBytes, Report);
    SortAndMerge(Lines, MergeWidth);
    DropFaintLines(Lines, std::max(Input.MinimalIntensity, FaintestTransition));
    AddToLog(Report, 1, "  " + std::to_string(Lines.size()) + " lines");
    const double Scale = std::ldexp(1.0, LargestSpins - Part.NumSpins);
    for (Line& Item : Lines) Item.Intensity *= Scale;
    Spectrum.insert(Spectrum.end(), Lines.begin(), Lines.end());
  }
  if (Spectrum.empty()) {
    throw zelvanor::Failure("No line of the spectrum reaches the minimal intensity " +
                            FixedNumber(Input.MinimalIntensity, 5) + "; lower it");
  }
  SortAndMerge(Spectrum, MergeWidth);
  return Spectrum;
}

std::string FormatSpectrum(const SpectrumInput& Input, const std::vector<Line>& Lines) {
  std::string Text = std::string("NMR spectrum by ") +
                     (Input.WeakCoupling ? "first-order (weak coupling) simulation" : "exact simulation") +
                     " of the isotropic spin Hamiltonian\n" + std::to_string(Lines.size()) +
                     "\nFREQUENCY INTENSITY DEGENERACY LINEWIDTH\n";
  constexpr std::size_t UsualLength = 48;
  Text.reserve(Text.size() + UsualLength * Lines.size());
  const std::string Width = " " + FixedNumber(NaturalLineWidth, 3) + "\n";
  for (const Line& Item : Lines) {
    AppendFixedNumber(Text, Item.Frequency, 8);
    Text += ' ';
    AppendFixedNumber(Text, Item.Intensity, 9);
    Text += ' ';
    AppendFixedNumber(Text, std::min(Item.Count, LargestDegeneracyShown), 0);
    Text += Width;
  }
  return Text;
}

}  // namespace nmrcalc
