#include "files/Matching.h"

#include <deque>

namespace zelvanor {

namespace {

constexpr int None = -1;

std::size_t At(int Vertex) { return static_cast<std::size_t>(Vertex); }

void Touch(Matching& M, int Vertex) { M.Touched.push_back(Vertex); }

void ForgetSearch(Matching& M) {
  for (const int Vertex : M.Touched) {
    M.Parent[At(Vertex)] = None;
    M.Base[At(Vertex)] = Vertex;
    M.Outer[At(Vertex)] = false;
  }
  M.Touched.clear();
}

// Where the ways of two outer vertices to the root meet.
int FindMeeting(const Matching& M, int First, int Second) {
  std::vector<int> Way;
  for (int Vertex = First;;) {
    Vertex = M.Base[At(Vertex)];
    Way.push_back(Vertex);
    if (M.Mate[At(Vertex)] == None) break;
    Vertex = M.Parent[At(M.Mate[At(Vertex)])];
  }
  std::vector<bool> OnWay(M.Mate.size());
  for (const int Vertex : Way) OnWay[At(Vertex)] = true;
  for (int Vertex = Second;;) {
    Vertex = M.Base[At(Vertex)];
    if (OnWay[At(Vertex)]) return Vertex;
    Vertex = M.Parent[At(M.Mate[At(Vertex)])];
  }
}

void MarkWay(Matching& M, std::vector<bool>& InBlossom, int Vertex, int Meeting, int Child) {
  while (M.Base[At(Vertex)] != Meeting) {
    const int Mate = M.Mate[At(Vertex)];
    InBlossom[At(M.Base[At(Vertex)])] = InBlossom[At(M.Base[At(Mate)])] = true;
    M.Parent[At(Vertex)] = Child;
    Child = Mate;
    Vertex = M.Parent[At(Mate)];
  }
}

// An odd circle becomes one outer vertex.
void Contract(Matching& M, std::deque<int>& Queue, int First, int Second) {
  const int Meeting = FindMeeting(M, First, Second);
  std::vector<bool> InBlossom(M.Mate.size());
  MarkWay(M, InBlossom, First, Meeting, Second);
  MarkWay(M, InBlossom, Second, Meeting, First);
  for (const int Vertex : M.Touched) {
    if (!InBlossom[At(M.Base[At(Vertex)])]) continue;
    M.Base[At(Vertex)] = Meeting;
    if (M.Outer[At(Vertex)]) continue;
    M.Outer[At(Vertex)] = true;
    Queue.push_back(Vertex);
  }
}

// Mates change along the way from a vertex without mate to the root.
void ChangeAlong(Matching& M, int Vertex) {
  while (Vertex != None) {
    const int Partner = M.Parent[At(Vertex)];
    const int Former = M.Mate[At(Partner)];
    M.Mate[At(Vertex)] = Partner;
    M.Mate[At(Partner)] = Vertex;
    Vertex = Former;
  }
}

}  // namespace

void StartMatching(Matching& M, int NumVertices) {
  const std::size_t Count = At(NumVertices);
  M.Edges.assign(Count, {});
  M.Closed.assign(Count, false);
  M.Mate.assign(Count, None);
  M.Parent.assign(Count, None);
  M.Outer.assign(Count, false);
  M.Base.resize(Count);
  for (int Vertex = 0; Vertex < NumVertices; ++Vertex) M.Base[At(Vertex)] = Vertex;
  M.Touched.clear();
}

void AddEdge(Matching& M, int First, int Second) {
  M.Edges[At(First)].push_back(Second);
  M.Edges[At(Second)].push_back(First);
}

bool FindMate(Matching& M, int Root) {
  ForgetSearch(M);
  std::deque<int> Queue = {Root};
  Touch(M, Root);
  M.Outer[At(Root)] = true;
  while (!Queue.empty()) {
    const int Vertex = Queue.front();
    Queue.pop_front();
    for (const int Next : M.Edges[At(Vertex)]) {
      if (M.Closed[At(Next)] || M.Base[At(Vertex)] == M.Base[At(Next)] || M.Mate[At(Vertex)] == Next) continue;
      const int Mate = M.Mate[At(Next)];
      if (Next == Root || (Mate != None && M.Parent[At(Mate)] != None)) {
        Contract(M, Queue, Vertex, Next);
      } else if (M.Parent[At(Next)] == None) {
        M.Parent[At(Next)] = Vertex;
        Touch(M, Next);
        if (Mate == None) {
          ChangeAlong(M, Next);
          return true;
        }
        Touch(M, Mate);
        M.Outer[At(Mate)] = true;
        Queue.push_back(Mate);
      }
    }
  }
  return false;
}

void TakeMateFrom(Matching& M, int OuterVertex) {
  const int Former = M.Mate[At(OuterVertex)];
  M.Mate[At(OuterVertex)] = None;
  ChangeAlong(M, Former);
}

}  // namespace zelvanor
