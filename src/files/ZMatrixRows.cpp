#include "files/ZMatrixRows.h"

#include <algorithm>
#include <cmath>

#include "basic/Numbers.h"
#include "basic/TextTools.h"
#include "platform/TextFiles.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

using Words = std::vector<TextView>;

// Numbers of elements and beyond: 99 is the dummy, those behind it stand for charges and translations of a crystal.
constexpr int DummyNumber = 99;
constexpr int BeyondNumbers = 109;
constexpr int HeaderLines = 3;
// A bond angle below this one (degrees) folds the atom onto the molecule: the value is a coordinate.
constexpr Double SmallestAngle = 10.0;
constexpr Double LargestValue = 1e6;  // angstrom, degrees

Words SplitRow(TextView Line) { return SplitWords(Line, " \t,"); }

bool IsComment(TextView Line) { return TrimWhite(Line).starts_with('*'); }

bool HasWord(TextView Line, TextView Wanted) {
  const Words All = SplitRow(Line);
  return std::any_of(All.begin(), All.end(), [&](TextView Word) { return Word == Wanted; });
}

bool IsLetter(char C) { return UpperChar(C) >= 'A' && UpperChar(C) <= 'Z'; }
bool IsDigit(char C) { return C >= '0' && C <= '9'; }

// A row of element 0 ends the matrix.
bool IsEnd(TextView Word) { return IsDigit(Word[0]) && PrefixNumber(Word) < 1.0; }

// The element of a row's first word: a symbol or a number, with an isotope or a label behind it.
int ElementOfWord(TextView Word, int Line) {
  if (IsDigit(Word[0])) {
    // An isotope stands behind its element: 13C is no number.
    const std::size_t Behind = Word.find_first_not_of("0123456789.");
    if (Behind != TextView::npos && IsLetter(Word[Behind])) ThrowAtLine(Line, Join(Quoted(Word), " is no element"));
    const Double Number = std::floor(PrefixNumber(Word));
    if (Number >= BeyondNumbers) ThrowAtLine(Line, Join("there is no element ", Word));
    const int Element = static_cast<int>(Number);
    return Element >= DummyNumber ? DummyAtom : Element;
  }
  const auto End = std::find_if_not(Word.begin(), Word.end(), IsLetter);
  const Text Symbol = UpperCase(TextView(Word.begin(), End));
  for (const char* Dummy : {"XX", "X", "TV"}) {
    if (Symbol == Dummy) return DummyAtom;
  }
  for (const char* Charge : {"+", "++", "-", "--"}) {
    if (Word == Charge) return DummyAtom;
  }
  if (Symbol == "D" || Symbol == "T") return 1;
  const int Element = Symbol.empty() ? -1 : int(ElementNumber(Symbol));
  if (Element < 0) ThrowAtLine(Line, Join(Quoted(Word), " is no element"));
  return Element;
}

bool IsWhole(TextView Word) { return Word.find_first_not_of("+-0123456789") == TextView::npos; }

bool IsFlag(TextView Word) {
  constexpr const char* Flags[] = {"0", "1", "-1", "+0", "+1"};
  return std::any_of(std::begin(Flags), std::end(Flags), [&](const char* Known) { return Word == Known; });
}

Double ValueOf(TextView Word, int Line) {
  Double Value = 0;
  try {
    Value = StrictNumber(Word);
  } catch (const Failure&) {
    ThrowAtLine(Line, Join(Quoted(Word), " is no number"));
  }
  if (std::fabs(Value) > LargestValue) ThrowAtLine(Line, Join(Quoted(Word), " is too large"));
  return Value;
}

int ReferenceOf(TextView Word, int Line) {
  if (!IsWhole(Word)) ThrowAtLine(Line, Join(Quoted(Word), " is no number of an atom"));
  return static_cast<int>(ValueOf(Word, Line));
}

// The words of a row behind its element, told apart. Rows may leave out flags, references and the charge at the end.
struct RowParts {
  Words Values;
  Words Flags;
  Words References;
};

// Whether the numbers of a row stand without the optimisation flags between them. Three numbers are a place, unless the
// second or third row gives a reference or an angle in its short form.
bool LacksFlags(const Words& All, int Row) {
  const std::size_t Count = All.size();
  if (Count == 6 || Count == 7) return !IsFlag(All[1]);
  if (Count != 3) return false;
  if (!IsFlag(All[1])) return true;
  if (Row == 2) return All[2] != "1";
  return Row != 3 || std::fabs(PrefixNumber(All[2])) < SmallestAngle;
}

RowParts TakeApart(const Words& All, int Row) {
  RowParts Parts;
  std::size_t Place = 0;
  const std::size_t Count = All.size();
  if (LacksFlags(All, Row)) {
    for (; Place < 3; ++Place) Parts.Values.push_back(All[Place]);
  } else {
    // The short forms of the second and third row end with their one or two references behind as many pairs.
    const bool Short = (Row == 2 && Count == 3 && All[2] == "1") ||
                       (Row == 3 && Count == 6 && IsWhole(All[4]) && IsWhole(All[5]) &&
                        std::minmax({All[4], All[5]}) == std::pair<TextView, TextView>("1", "2"));
    const std::size_t Pairs = Short ? static_cast<std::size_t>(Row) - 1 : 3;
    for (std::size_t Pair = 0; Pair < Pairs && Place < Count; ++Pair) {
      Parts.Values.push_back(All[Place++]);
      if (Place < Count) Parts.Flags.push_back(All[Place++]);
    }
  }
  // A single number behind the values is the charge when it can't be a reference.
  if (Count == Place + 1 && !IsWhole(All[Place])) return Parts;
  for (std::size_t N = 0; N < 3 && Place < Count; ++N, ++Place) {
    if (Row <= 3 && N + 1 >= static_cast<std::size_t>(Row) && !IsWhole(All[Place])) break;
    Parts.References.push_back(All[Place]);
  }
  return Parts;
}

ZMatrixRow ReadRow(const Words& All, int Line, int Row) {
  ZMatrixRow Result;
  Result.Line = Line;
  Result.AtomicNumber = ElementOfWord(All[0], Line);
  const RowParts Parts = TakeApart(Words(All.begin() + 1, All.end()), Row);
  Result.NumValues = static_cast<int>(Parts.Values.size());
  for (std::size_t N = 0; N < Parts.Values.size(); ++N) Result.Values[N] = ValueOf(Parts.Values[N], Line);
  for (const TextView Flag : Parts.Flags) {
    if (!IsFlag(Flag)) ThrowAtLine(Line, Join("the optimisation flag ", Quoted(Flag), " is none of 0, 1 and -1"));
  }
  for (std::size_t N = 0; N < Parts.References.size(); ++N) {
    Result.References[N] = ReferenceOf(Parts.References[N], Line);
  }
  return Result;
}

bool HasReferences(const ZMatrixRow& Row) { return Row.References != std::array<int, 3>{}; }

// Whether a first, second or third row without references holds coordinates. The first two are the same either way
// unless they leave the frame of the Z-matrix.
bool HoldsPlace(const ZMatrixRows& Rows, std::size_t Row) {
  const auto& [First, Second, Third] = Rows[Row].Values;
  if (Row == 0) return First != 0 || Second != 0 || Third != 0;
  if (HoldsPlace(Rows, Row - 1)) return true;
  if (Row == 1) return Second != 0 || Third != 0 || First <= 0;
  return First <= 0 || std::fabs(Second) < SmallestAngle || Second < 0 || Second > 180.0;
}

// A row far behind that has lost its references is told from coordinates by its angles.
void CheckPlainRow(const ZMatrixRow& Row, bool AmongInternal) {
  const bool Angles = std::fabs(Row.Values[1]) >= SmallestAngle || std::fabs(Row.Values[2]) >= SmallestAngle;
  if (Row.NumValues < 3 || (AmongInternal && Angles)) ThrowAtLine(Row.Line, "the row is not complete");
}

// Rows without references hold coordinates; the first three may leave their references out.
void TellKinds(ZMatrixRows& Rows) {
  const bool Internal = std::any_of(Rows.begin(), Rows.end(), HasReferences);
  const bool AllPlain = !Internal && Rows.size() > 3;
  for (std::size_t Row = 0; Row < Rows.size(); ++Row) {
    ZMatrixRow& This = Rows[Row];
    if (HasReferences(This)) continue;
    if (Row > 2) CheckPlainRow(This, Internal);
    This.Cartesian = Row > 2 || Row == 0 || (AllPlain && This.NumValues == 3) || HoldsPlace(Rows, Row);
  }
  if (Rows.size() > 1 && !Rows[1].Cartesian) Rows[1].References = {1, 0, 0};
  if (Rows.size() > 2 && !Rows[2].Cartesian && !HasReferences(Rows[2])) Rows[2].References = {2, 1, 0};
}

void CheckReferences(const ZMatrixRow& Row, int Number) {
  const int Needed = Row.Cartesian ? 0 : std::min(Number - 1, 3);
  for (int N = 0; N < Needed; ++N) {
    const int Reference = Row.References[static_cast<std::size_t>(N)];
    if (Reference < 1 || Reference >= Number) {
      ThrowAtLine(Row.Line, Join("row ", Long{Number}, " can't be placed from row ", Long{Reference}));
    }
    for (int Former = 0; Former < N; ++Former) {
      if (Row.References[static_cast<std::size_t>(Former)] != Reference) continue;
      ThrowAtLine(Row.Line, Join("row ", Long{Reference}, " is named twice"));
    }
  }
}

bool AsksForSymmetry(TextView Line) {
  const Words All = SplitRow(Line);
  return std::any_of(All.begin(), All.end(), [](TextView Word) { return UpperCase(Word).starts_with("SYMM"); });
}

// Rows behind the matrix put values of some of its rows into others.
void RefuseSymmetryData(Integer FileNumber, int Line) {
  while (!AtEnd(FileNumber)) {
    const TextView Content = TrimWhite(LineInput(FileNumber));
    ++Line;
    if (IsComment(Content)) continue;
    if (!Content.empty() && IsDigit(Content[0])) {
      ThrowAtLine(Line, "symmetry data can't be applied: give every row its own values, without SYMMETRY");
    }
    return;
  }
}

// Passes the lines of keywords and titles. A keyword line that ends in "+" is followed by one more, and one with "&" by
// one that takes the place of a title. Returns the number of lines.
int PassHeader(Integer FileNumber, bool& Symmetry) {
  int Lines = 0;
  bool Keywords = true;
  for (int Left = HeaderLines; Left > 0 && !AtEnd(FileNumber);) {
    const TextView Line = LineInput(FileNumber);
    ++Lines;
    if (IsComment(Line)) continue;
    Symmetry = Symmetry || (Keywords && AsksForSymmetry(Line));
    const bool More = Keywords && HasWord(Line, "+");
    Keywords = More || (Keywords && HasWord(Line, "&"));
    if (!More) --Left;
  }
  return Lines;
}

}  // namespace

void ThrowAtLine(int Line, const Text& What) { throw Failure(What, Line); }

ZMatrixRows ReadZMatrixRows(const Text& Path) {
  constexpr int MostRows = 32767;  // an Integer counts them
  LineWork.FileNumber = FreeFile();
  OpenForInput(Path, LineWork.FileNumber);
  ZMatrixRows Rows;
  try {
    bool Symmetry = false;
    int Line = PassHeader(LineWork.FileNumber, Symmetry);
    while (!AtEnd(LineWork.FileNumber)) {
      const TextView Content = LineInput(LineWork.FileNumber);
      ++Line;
      if (IsComment(Content)) continue;
      const Words All = SplitRow(TrimWhite(Content));
      if (All.empty() || IsEnd(All[0])) break;
      if (Rows.size() == MostRows) ThrowAtLine(Line, Join("there are more than ", Long{MostRows}, " rows"));
      Rows.push_back(ReadRow(All, Line, static_cast<int>(Rows.size()) + 1));
    }
    if (Symmetry) RefuseSymmetryData(LineWork.FileNumber, Line);
    TellKinds(Rows);
    for (std::size_t Row = 0; Row < Rows.size(); ++Row) CheckReferences(Rows[Row], static_cast<int>(Row) + 1);
  } catch (const Failure&) {
    CloseFileQuietly(LineWork.FileNumber);
    throw;
  }
  CloseFile(LineWork.FileNumber);
  return Rows;
}

}  // namespace zelvanor
