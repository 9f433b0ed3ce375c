#pragma once

#include <utility>
#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// What is fitted to the measured spectrum, and what has come out of it.

enum FitKind { FitShift = 0, FitCoupling = 1, FitWidth = 2, FitScale = 3, FitOffset = 4 };

// A parameter. Where it stands for several sites or pairs they are tied: they keep one value.
struct FitRow {
  int Kind = FitShift;
  std::vector<int> Sites{};                  // of a shift, from 1 as in the input of stage 2
  std::vector<std::pair<int, int>> Pairs{};  // of a coupling
  Double Start = 0;                          // ppm; Hz for couplings and the width
  Double Low = 0;
  Double High = 0;
  bool Free = true;
  // Of the last fit.
  Double Value = 0;
  Double Error = 0;  // standard error; 0: fixed, below 0: the spectrum does not tell the value
  int Partner = 0;   // the row with which it goes together most, from 0
  Double Correlation = 0;
  bool AtBound = false;
};

// What accepting has put into a table: the shielding of an NMR atom, or the coupling of two.
struct TakenValue {
  int First = 0;
  int Second = -1;  // -1: a shielding
  Single Value = 0;
};

struct FitState {
  std::vector<FitRow> Rows;
  std::vector<std::pair<Double, Double>> Windows;  // ppm, high and low
  Double Broadening = 0;                           // ppm, of the first comparison
  bool Done = false;                               // the results are those of the rows
  bool Converged = false;
  Double R = 0;  // correlation of the fitted with the measured spectrum
  Double Noise = 0;
  // The fitted spectrum in units of the measured points, from point First on; of the spectrum with these ends.
  std::vector<Double> Simulated;
  Long First = 0;
  Double MeasuredFirst = 0;
  Long MeasuredCount = 0;
  std::vector<TakenValue> Taken;  // empty until the fit is accepted
};
extern FitState Fit;

// What is to be free; the rest is fixed where it stands.
struct FitChoice {
  bool Shifts = true;
  bool Couplings = true;
  bool Width = true;
  std::vector<int> Atoms{};                          // numbers of NMR atoms; empty: all in the windows
  std::vector<std::pair<Double, Double>> Windows{};  // ppm; empty: what the view shows, or all around the signals
};

// Why there can be no fit now; empty where there can.
Text WhyNoFit();
// Makes the rows and windows from the tables. Throws a Failure that tells what is missing.
void PlanFit(const FitChoice& Choice);

// "shift of 1-5(H), 1-6(H)", for the user.
Text NameOfFitRow(const FitRow& Row);

// The input of stage 3 from the rows, and its output into them. Throw a Failure.
void WriteFitInput(const Text& Path);
void ReadFitResults(const Text& Path);

// Puts fitted shifts and couplings into the tables; shifts by way of the reference shieldings. What the spectrum does
// not tell stays as it is.
void TakeFitIntoTables();
// Whether the tables still hold what was taken: not after undoing it, nor in another document.
bool HasTakenValues();

}  // namespace zelvanor
