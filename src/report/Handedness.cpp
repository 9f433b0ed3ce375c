#include "report/Handedness.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>

#include "atomsets/Equivalence.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr int Carbon = 6;
constexpr std::size_t Ligands = 4;

std::vector<int> NeighboursOf(int Atom) {
  std::vector<int> All;
  All.reserve(static_cast<std::size_t>(W.AtomCoordination[Atom]));
  for (int K = 0; K < W.AtomCoordination[Atom]; ++K) All.push_back(W.AtomNeighbour(Atom, K));
  return All;
}

bool IsHydrogen(int Atom) { return W.AtomicNumber[Atom] == 1; }

// A carbon with four different neighbours by their surroundings, at most one of them hydrogen.
bool IsCentre(int Atom, const std::vector<int>& Classes) {
  if (W.AtomicNumber[Atom] != Carbon || W.AtomCoordination[Atom] != static_cast<int>(Ligands)) return false;
  std::set<int> Different;
  for (const int Other : NeighboursOf(Atom)) Different.insert(Classes[static_cast<std::size_t>(Other)]);
  return Different.size() == Ligands;
}

bool IsInRing(int First, int Second) {
  // Whether Second is reached from First without their bond.
  std::set<int> Seen = {First};
  std::vector<int> Open = {First};
  while (!Open.empty()) {
    const int Atom = Open.back();
    Open.pop_back();
    for (const int Other : NeighboursOf(Atom)) {
      if (Atom == First && Other == Second) continue;
      if (Other == Second) return true;
      if (Seen.insert(Other).second) Open.push_back(Other);
    }
  }
  return false;
}

// The neighbour whose bond is the least in the way: outside rings, no centre itself, at the end of a chain.
int ChooseNeighbour(int Atom, const std::vector<int>& Heavy, const std::vector<int>& Classes) {
  return *std::min_element(Heavy.begin(), Heavy.end(), [&](int A, int B) {
    const auto Rank = [&](int Other) {
      return std::array<int, 3>{IsInRing(Atom, Other) ? 1 : 0, IsCentre(Other, Classes) ? 1 : 0,
                                int(W.AtomCoordination[Other])};
    };
    return Rank(A) < Rank(B);
  });
}

// Six times the volume that three neighbours span with the centre, angstrom^3: above 0 where they turn to the left as
// seen with the fourth one behind.
Double VolumeAt(int Centre, const std::array<int, 3>& Of) {
  const auto ArmTo = [Centre](int Atom) {
    return std::array<Double, 3>{Double{W.AtomX[Atom]} - W.AtomX[Centre], Double{W.AtomY[Atom]} - W.AtomY[Centre],
                                 Double{W.AtomZ[Atom]} - W.AtomZ[Centre]};
  };
  const std::array<Double, 3> A = ArmTo(Of[0]);
  const std::array<Double, 3> B = ArmTo(Of[1]);
  const std::array<Double, 3> C = ArmTo(Of[2]);
  return A[0] * (B[1] * C[2] - B[2] * C[1]) - A[1] * (B[0] * C[2] - B[2] * C[0]) + A[2] * (B[0] * C[1] - B[1] * C[0]);
}

}  // namespace

std::map<std::pair<int, int>, bool> FindWedges(const std::vector<int>& Atoms, const std::vector<FlatPlace>& Places) {
  std::map<std::pair<int, int>, bool> Wedges;
  const std::vector<int> Classes = FindConstitutionalClasses();
  std::map<int, FlatPlace> PlaceOf;
  for (std::size_t K = 0; K < Atoms.size(); ++K) PlaceOf[Atoms[K]] = Places[K];
  for (const int Centre : Atoms) {
    if (!IsCentre(Centre, Classes)) continue;
    std::vector<int> Heavy = NeighboursOf(Centre);
    std::erase_if(Heavy, IsHydrogen);
    if (Heavy.size() < 3) continue;
    const int Drawn = ChooseNeighbour(Centre, Heavy, Classes);
    // Three that are seen: with a hydrogen behind them the drawn one among them, else the other three.
    if (Heavy.size() == Ligands) std::erase(Heavy, Drawn);
    constexpr Double LeastVolume = 0.5;
    const Double Volume = VolumeAt(Centre, {Heavy[0], Heavy[1], Heavy[2]});
    if (std::fabs(Volume) < LeastVolume) continue;
    const auto AngleOf = [&](int Other) {
      return std::atan2(PlaceOf[Other].Y - PlaceOf[Centre].Y, PlaceOf[Other].X - PlaceOf[Centre].X);
    };
    const Double A = AngleOf(Heavy[0]);
    const Double B = AngleOf(Heavy[1]);
    const Double C = AngleOf(Heavy[2]);
    const bool TurnsLeft = int{A < B} + int{B < C} + int{C < A} == 2;
    const bool LeftInSpace = (Volume > 0) == (std::find(Heavy.begin(), Heavy.end(), Drawn) != Heavy.end());
    Wedges[{Centre, Drawn}] = TurnsLeft == LeftInSpace;
  }
  return Wedges;
}

}  // namespace zelvanor
