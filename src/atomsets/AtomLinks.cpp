#include "atomsets/AtomLinks.h"

#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

std::vector<int> NeighboursOf(int Atom) {
  std::vector<int> All;
  for (int N = 0; N < W.AtomCoordination[Atom]; ++N) {
    const int Other = W.AtomNeighbour(Atom, N);
    if (Other >= 0 && Other < W.NumAtoms) All.push_back(Other);
  }
  return All;
}

}  // namespace

Links LinksOfAll() {
  Links All;
  for (int Atom = 0; Atom < W.NumAtoms; ++Atom) All.push_back(NeighboursOf(Atom));
  return All;
}

Vector Between(int From, int To) {
  return {Double{W.AtomX[To]} - Double{W.AtomX[From]}, Double{W.AtomY[To]} - Double{W.AtomY[From]},
          Double{W.AtomZ[To]} - Double{W.AtomZ[From]}};
}

Double Dot(const Vector& A, const Vector& B) { return A[0] * B[0] + A[1] * B[1] + A[2] * B[2]; }

}  // namespace zelvanor
