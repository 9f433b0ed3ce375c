#include "nmrcalc/spins/Weak.h"

#include <cmath>
#include <string>

#include "basic/Failure.h"

namespace nmrcalc {

namespace {

// Sums of the same couplings in another order differ by rounding alone.
constexpr double SameLine = 1e-8;  // Hz

void MergeCopies(const std::vector<Line>& Lines, const std::vector<Line>& Copies, std::vector<Line>& Target) {
  Target.clear();
  std::size_t Left = 0;
  std::size_t Right = 0;
  while (Left < Lines.size() || Right < Copies.size()) {
    const bool TakeLeft =
        Right == Copies.size() || (Left < Lines.size() && Lines[Left].Frequency <= Copies[Right].Frequency);
    const Line& Next = TakeLeft ? Lines[Left++] : Copies[Right++];
    if (!Target.empty() && Next.Frequency - Target.back().Frequency < SameLine) {
      Target.back().Intensity += Next.Intensity;
      Target.back().Count += Next.Count;
    } else {
      Target.push_back(Next);
    }
  }
}

// Splits sorted lines by one spin 1/2 with coupling J: a copy at -J/2 and one at +J/2.
void SplitByOneSpin(std::vector<Line>& Lines, double J, std::vector<Line>& Copies, std::vector<Line>& Target) {
  Copies = Lines;
  const double Half = 0.5 * std::fabs(J);
  for (Line& Item : Lines) Item.Frequency -= Half;
  for (Line& Item : Copies) Item.Frequency += Half;
  MergeCopies(Lines, Copies, Target);
  Lines.swap(Target);
}

[[noreturn]] void RefuseLines(const std::string& What, std::size_t Limit) {
  throw zelvanor::Failure(What + " has more than " + std::to_string(Limit) +
                          " lines even in first order; leave out the smallest couplings or select fewer atoms");
}

// Transitions of n equivalent spins 1/2 by themselves.
double CountOwnTransitions(int Degeneracy) {
  double Count = 0.0;
  for (int TwiceSpin = Degeneracy; TwiceSpin > 0; TwiceSpin -= 2)
    Count += Multiplicity(Degeneracy, TwiceSpin) * TwiceSpin;
  return Count;
}

}  // namespace

std::vector<std::vector<Line>> SimulateWeak(const SpectrumInput& Input, const SpinPart& Part) {
  std::vector<std::vector<Line>> All;
  std::size_t NumLines = 0;
  std::vector<Line> Copies;
  std::vector<Line> Target;
  for (const std::size_t Site : Part.Sites) {
    const SpinSite& Own = Input.Sites[Site];
    All.emplace_back();
    if (!Own.Observed) continue;
    std::vector<Line> Lines{
        {Own.Frequency, Own.Degeneracy * std::ldexp(1.0, Own.Degeneracy - 1), CountOwnTransitions(Own.Degeneracy)}};
    double Uncoupled = 1.0;
    for (const std::size_t Other : Part.Sites) {
      if (Other == Site) continue;
      const int Degeneracy = Input.Sites[Other].Degeneracy;
      if (Input.J(Site, Other) == 0.0) {
        Uncoupled *= std::ldexp(1.0, Degeneracy);
        continue;
      }
      for (int Spin = 0; Spin < Degeneracy; ++Spin) SplitByOneSpin(Lines, Input.J(Site, Other), Copies, Target);
      if (Lines.size() > LargestLineCount) RefuseLines("Site " + std::to_string(Site + 1), LargestLineCount);
    }
    for (Line& Item : Lines) {
      Item.Intensity *= Uncoupled;
      Item.Count *= Uncoupled;
    }
    NumLines += Lines.size();
    All.back() = std::move(Lines);
    if (NumLines > 4 * LargestLineCount)
      RefuseLines("The part of site " + std::to_string(Site + 1), 4 * LargestLineCount);
  }
  return All;
}

}  // namespace nmrcalc
