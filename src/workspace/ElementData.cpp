#include "workspace/ElementData.h"

#include <array>

#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

// By element number, the lone pair first.
constexpr std::array<Single, 104> CovalentRadii = {
    0.25F, 0.31F, 0.28F, 1.28F, 0.96F, 0.84F, 0.76F, 0.71F, 0.66F, 0.57F, 0.58F, 1.66F, 1.41F, 1.21F, 1.11F,
    1.07F, 1.05F, 1.02F, 1.06F, 2.03F, 1.76F, 1.70F, 1.60F, 1.53F, 1.39F, 1.39F, 1.32F, 1.26F, 1.24F, 1.32F,
    1.22F, 1.22F, 1.20F, 1.19F, 1.20F, 1.20F, 1.16F, 2.20F, 1.95F, 1.90F, 1.75F, 1.64F, 1.54F, 1.47F, 1.46F,
    1.42F, 1.39F, 1.45F, 1.44F, 1.42F, 1.39F, 1.39F, 1.38F, 1.39F, 1.40F, 2.44F, 2.15F, 2.07F, 2.04F, 2.03F,
    2.01F, 1.99F, 1.98F, 1.98F, 1.96F, 1.94F, 1.92F, 1.92F, 1.89F, 1.90F, 1.87F, 1.87F, 1.75F, 1.70F, 1.62F,
    1.51F, 1.44F, 1.41F, 1.36F, 1.36F, 1.32F, 1.45F, 1.46F, 1.48F, 1.40F, 1.50F, 1.50F, 2.60F, 2.21F, 2.15F,
    2.06F, 2.00F, 1.96F, 1.90F, 1.87F, 1.80F, 1.69F, 1.50F, 1.50F, 1.50F, 1.50F, 1.50F, 1.50F, 1.50F,
};
constexpr Single UnknownRadius = 1.5F;

struct ValenceRow {
  int AtomicNumber;
  int Coordination;  // at most
  int Valence;       // common
};

constexpr ValenceRow Valences[] = {
    {0, 1, 1},                                                               // lone pair
    {1, 1, 1},                                                               // H
    {2, 0, 0},  {5, 4, 3},  {6, 4, 4},  {7, 4, 3},  {8, 3, 2},  {9, 1, 1},   // He, B to F
    {10, 0, 0}, {14, 6, 4}, {15, 6, 3}, {16, 6, 2}, {17, 4, 1}, {18, 0, 0},  // Ne, Si to Ar
    {32, 6, 4}, {33, 6, 3}, {34, 6, 2}, {35, 4, 1},                          // Ge to Br
    {50, 6, 4}, {51, 6, 3}, {52, 6, 2}, {53, 7, 1},                          // Sn to I
};

const ValenceRow* FindValence(int AtomicNumber) {
  for (const ValenceRow& Row : Valences) {
    if (Row.AtomicNumber == AtomicNumber) return &Row;
  }
  return nullptr;
}

}  // namespace

Single CovalentRadius(int AtomicNumber) {
  const auto Place = static_cast<std::size_t>(AtomicNumber);
  return AtomicNumber >= 0 && Place < CovalentRadii.size() ? CovalentRadii[Place] : UnknownRadius;
}

int LargestCoordination(int AtomicNumber) {
  const ValenceRow* Row = FindValence(AtomicNumber);
  return Row != nullptr ? Row->Coordination : MaxCoordination;
}

int CommonValence(int AtomicNumber) {
  const ValenceRow* Row = FindValence(AtomicNumber);
  return Row != nullptr ? Row->Valence : 0;
}

}  // namespace zelvanor
