#include "molecule/FirstView.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace zelvanor {

namespace {

using Square = std::array<ViewVector, 3>;

// Beyond this many atoms some hide others in every direction, and comparing all pairs takes its time.
constexpr std::size_t MostTilted = 400;
constexpr Double TiltStep = 10;  // degrees
constexpr int MostTilts = 3;     // to either side
// A degree of tilt counts as much as this share of an angstrom of overlap: the longest axes stay nearly in the plane.
constexpr Double TiltCost = 0.004;

Square FindSpread(const std::vector<RenderAtom>& Atoms) {
  ViewVector Middle{};
  for (const RenderAtom& Atom : Atoms) {
    const ViewVector Place{Atom.X, Atom.Y, Atom.Z};
    for (std::size_t C = 0; C < 3; ++C) Middle[C] += Place[C] / static_cast<Double>(Atoms.size());
  }
  Square Spread{};
  for (const RenderAtom& Atom : Atoms) {
    const ViewVector Arm{Atom.X - Middle[0], Atom.Y - Middle[1], Atom.Z - Middle[2]};
    for (std::size_t R = 0; R < 3; ++R) {
      for (std::size_t C = 0; C < 3; ++C) Spread[R][C] += Arm[R] * Arm[C];
    }
  }
  return Spread;
}

// Turns the plane of axes P and Q so that the spread has no part between them (Jacobi). Axes are columns.
void TurnOut(Square& Spread, Square& Axes, std::size_t P, std::size_t Q) {
  if (Spread[P][Q] == 0) return;
  const Double Angle = 0.5 * std::atan2(2 * Spread[P][Q], Spread[Q][Q] - Spread[P][P]);
  const Double S = std::sin(Angle);
  const Double C = std::cos(Angle);
  const auto Turn = [&](Double& AtP, Double& AtQ) {
    const Double Former = AtP;
    AtP = C * Former - S * AtQ;
    AtQ = S * Former + C * AtQ;
  };
  for (ViewVector& Row : Spread) Turn(Row[P], Row[Q]);
  for (std::size_t K = 0; K < 3; ++K) Turn(Spread[P][K], Spread[Q][K]);
  for (ViewVector& Row : Axes) Turn(Row[P], Row[Q]);
}

// Columns are the axes of the system, the longest first, right-handed.
Square FindAxes(Square Spread) {
  constexpr int Sweeps = 12;
  Square Axes{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  for (int Sweep = 0; Sweep < Sweeps; ++Sweep) {
    TurnOut(Spread, Axes, 0, 1);
    TurnOut(Spread, Axes, 0, 2);
    TurnOut(Spread, Axes, 1, 2);
  }
  std::array<std::size_t, 3> Order{0, 1, 2};
  std::stable_sort(Order.begin(), Order.end(), [&](auto A, auto B) { return Spread[A][A] > Spread[B][B]; });
  Square Sorted{};
  for (std::size_t R = 0; R < 3; ++R) {
    for (std::size_t C = 0; C < 3; ++C) Sorted[R][C] = Axes[R][Order[C]];
  }
  const ViewVector A{Sorted[0][0], Sorted[1][0], Sorted[2][0]};
  const ViewVector B{Sorted[0][1], Sorted[1][1], Sorted[2][1]};
  Sorted[0][2] = A[1] * B[2] - A[2] * B[1];
  Sorted[1][2] = A[2] * B[0] - A[0] * B[2];
  Sorted[2][2] = A[0] * B[1] - A[1] * B[0];
  return Sorted;
}

// By how much atoms lie over one another on the screen, in angstrom, summed over the pairs.
Double FindOverlap(const std::vector<RenderAtom>& Atoms, const ViewMatrix& M) {
  std::vector<std::array<Double, 2>> Places;
  Places.reserve(Atoms.size());
  for (const RenderAtom& Atom : Atoms) {
    ViewVector Place{Atom.X, Atom.Y, Atom.Z};
    TransformPoint(Place, M);
    Places.push_back({Place[0], Place[1]});
  }
  Double Overlap = 0;
  for (std::size_t A = 0; A < Atoms.size(); ++A) {
    for (std::size_t B = 0; B < A; ++B) {
      const Double Apart = std::hypot(Places[A][0] - Places[B][0], Places[A][1] - Places[B][1]);
      Overlap += std::max(0.0, Double{Atoms[A].Radius} + Double{Atoms[B].Radius} - Apart);
    }
  }
  return Overlap;
}

}  // namespace

ViewMatrix FindFirstView(const RenderControl& Control) {
  const Square Axes = FindAxes(FindSpread(Control.Atoms));
  const ViewMatrix Flat{{Axes[0], Axes[1], Axes[2], {0, 0, 0}}};
  if (Control.Atoms.size() > MostTilted) return Flat;
  ViewMatrix Best = Flat;
  Double Least = std::numeric_limits<Double>::max();
  for (int AboutX = -MostTilts; AboutX <= MostTilts; ++AboutX) {
    for (int AboutY = -MostTilts; AboutY <= MostTilts; ++AboutY) {
      ViewMatrix Tilted = Flat;
      RotateAxis(DegreesToRadians(AboutX * TiltStep), 0, Tilted);
      RotateAxis(DegreesToRadians(AboutY * TiltStep), 1, Tilted);
      const Double Tilt = TiltStep * std::hypot(AboutX, AboutY);
      const Double Cost = FindOverlap(Control.Atoms, Tilted) + TiltCost * Tilt;
      if (Cost >= Least) continue;
      Least = Cost;
      Best = Tilted;
    }
  }
  return Best;
}

}  // namespace zelvanor
