#pragma once

#include <vector>

namespace zelvanor {

// A largest set of edges of a graph of which no two meet, by alternating paths (J. Edmonds, Can. J. Math. 17 (1965)
// 449). Vertices count from 0.
struct Matching {
  std::vector<std::vector<int>> Edges;  // of each vertex
  std::vector<bool> Closed;             // vertices that are not to be used yet
  std::vector<int> Mate;                // -1 for none

  // Of the last search.
  std::vector<int> Parent, Base, Touched;
  std::vector<bool> Outer;
};

void StartMatching(Matching& M, int NumVertices);
void AddEdge(Matching& M, int First, int Second);

// Finds the root a mate, changing others where needed; false when there is none, and nothing has changed.
bool FindMate(Matching& M, int Root);
// After a search that found none: gives the root a mate at the cost of an outer vertex, which loses its own.
void TakeMateFrom(Matching& M, int OuterVertex);

}  // namespace zelvanor
