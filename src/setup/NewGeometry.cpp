#include "setup/NewGeometry.h"

#include <array>
#include <cmath>
#include <vector>

#include "basic/Numbers.h"
#include "basic/TextTools.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

using Place = std::array<Double, 3>;

constexpr std::size_t FirstCoordinate = 7;  // among the words of an atom line, from 0

std::vector<Place> ReadPlaces(const Text& Coordinates) {
  std::vector<Place> Places;
  std::size_t Line = 0;
  for (std::size_t Start = 0; Start < Coordinates.size(); ++Line) {
    const std::size_t End = std::min(Coordinates.find('\n', Start), Coordinates.size());
    const std::vector<Text> Words = SplitAtBlanks(Coordinates.substr(Start, End - Start));
    Start = End + 1;
    if (Line < 2) continue;
    if (Words.size() != 3) throw Failure("three coordinates are expected");
    Places.push_back({StrictNumber(Words[0]), StrictNumber(Words[1]), StrictNumber(Words[2])});
  }
  return Places;
}

Place CentreOf(const std::vector<Place>& Places) {
  Place Sum{};
  for (const Place& Item : Places) {
    for (std::size_t Axis = 0; Axis < 3; ++Axis) Sum[Axis] += Item[Axis] / static_cast<Double>(Places.size());
  }
  return Sum;
}

// The atom line with its words and the new coordinates, one blank between them.
Text NewAtomLine(TextView Line, const Place& New) {
  std::vector<Text> Words = SplitAtBlanks(Text(Line));
  Text Result;
  for (std::size_t Word = 0; Word < Words.size(); ++Word) {
    const bool Coordinate = Word >= FirstCoordinate && Word < FirstCoordinate + 3;
    Result +=
        Join(Word > 0 ? " " : "", Coordinate ? FormatNumber(New[Word - FirstCoordinate], "0.00000") : Words[Word]);
  }
  return Result;
}

void StorePlaces(const std::vector<Place>& Places) {
  std::size_t Atom = 0;
  for (int Line = 0; Line < W.HostTextLineCount; ++Line) {
    const TextView Stored = TrimBlanks(W.HostTextLine[Line].View());
    if (!Stored.starts_with("atom ") || Atom >= Places.size()) continue;
    const Text New = NewAtomLine(Stored, Places[Atom++]);
    W.HostTextLine[Line] = TextView(New);
  }
  for (int Index = 0; Index < W.NumAtoms; ++Index) {
    const Place& New = Places[static_cast<std::size_t>(Index)];
    W.AtomX[Index] = ToSingle(New[0]);
    W.AtomY[Index] = ToSingle(New[1]);
    W.AtomZ[Index] = ToSingle(New[2]);
  }
}

}  // namespace

bool TakeGeometry(const Text& Coordinates, Double& Moved) {
  std::vector<Place> New;
  try {
    New = ReadPlaces(Coordinates);
  } catch (const Failure&) {
    return false;
  }
  if (New.empty() || New.size() != static_cast<std::size_t>(int(W.NumAtoms))) return false;
  std::vector<Place> Old;
  Old.reserve(New.size());
  for (int Atom = 0; Atom < W.NumAtoms; ++Atom) Old.push_back({W.AtomX[Atom], W.AtomY[Atom], W.AtomZ[Atom]});
  const Place From = CentreOf(New);
  const Place To = CentreOf(Old);
  Moved = 0;
  for (std::size_t Atom = 0; Atom < New.size(); ++Atom) {
    Double Square = 0;
    for (std::size_t Axis = 0; Axis < 3; ++Axis) {
      New[Atom][Axis] += To[Axis] - From[Axis];
      Square += (New[Atom][Axis] - Old[Atom][Axis]) * (New[Atom][Axis] - Old[Atom][Axis]);
    }
    Moved = std::max(Moved, std::sqrt(Square));
  }
  StorePlaces(New);
  W.DocumentDirty = True;
  W.ParamResultsStale = W.SpectResultsStale = True;
  return true;
}

}  // namespace zelvanor
