#include "measured/JcampTable.h"

#include <algorithm>
#include <cmath>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "basic/TextTools.h"
#include "measured/JcampRecords.h"
#include "measured/MeasuredSpectrum.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

// Pseudo-digits: the first digit of a number with its sign, and what kind of number it begins.
enum class Token { Number, Difference, Repeat, Missing, Separator, Unknown };

constexpr TextView PositiveSqueezed = "@ABCDEFGHI";
constexpr TextView NegativeSqueezed = "@abcdefghi";
constexpr TextView PositiveDifference = "%JKLMNOPQR";
constexpr TextView NegativeDifference = "%jklmnopqr";
constexpr TextView Repeats = " STUVWXYZs";

bool IsDigit(char C) { return C >= '0' && C <= '9'; }

// The length of a plain number at the start of Rest: sign, digits, point, and an exponent, which has a sign of its own
// ("E" alone is a squeezed digit).
std::size_t PlainLength(TextView Rest) {
  std::size_t Length = !Rest.empty() && (Rest[0] == '+' || Rest[0] == '-') ? 1 : 0;
  while (Length < Rest.size() && (IsDigit(Rest[Length]) || Rest[Length] == '.')) ++Length;
  if (Length + 2 < Rest.size() && (Rest[Length] == 'E' || Rest[Length] == 'e') &&
      (Rest[Length + 1] == '+' || Rest[Length + 1] == '-') && IsDigit(Rest[Length + 2])) {
    Length += 3;
    while (Length < Rest.size() && IsDigit(Rest[Length])) ++Length;
  }
  return Length;
}

// One item of a line, taken off its front.
struct Item {
  Token Kind = Token::Separator;
  Double Value = 0;
};

// The number whose first digit is Digit; the others follow behind the pseudo-digit.
Double TakeDigits(TextView& Rest, std::size_t Digit, bool Negative) {
  Double Value = static_cast<Double>(Digit);
  std::size_t Length = 1;
  for (; Length < Rest.size() && IsDigit(Rest[Length]); ++Length) Value = Value * 10.0 + (Rest[Length] - '0');
  if (Length < Rest.size() && Rest[Length] == '.') {
    Double Place = 0.1;
    for (++Length; Length < Rest.size() && IsDigit(Rest[Length]); ++Length, Place *= 0.1) {
      Value += Place * (Rest[Length] - '0');
    }
  }
  Rest.remove_prefix(Length);
  return Negative ? -Value : Value;
}

Item TakeItem(TextView& Rest) {
  const char C = Rest.front();
  if (C == ' ' || C == '\t' || C == ',' || C == ';') {
    Rest.remove_prefix(1);
    return {};
  }
  if (C == '?') {
    Rest.remove_prefix(1);
    return {Token::Missing, 0};
  }
  if (IsDigit(C) || C == '+' || C == '-' || C == '.') {
    const std::size_t Length = PlainLength(Rest);
    const Double Value = PrefixNumber(Rest.substr(0, Length));
    Rest.remove_prefix(std::max<std::size_t>(Length, 1));
    return {Token::Number, Value};
  }
  struct Alphabet {
    TextView Letters;
    Token Kind;
    bool Negative;
  };
  for (const Alphabet& Each :
       {Alphabet{PositiveSqueezed, Token::Number, false}, Alphabet{NegativeSqueezed, Token::Number, true},
        Alphabet{PositiveDifference, Token::Difference, false}, Alphabet{NegativeDifference, Token::Difference, true},
        Alphabet{Repeats, Token::Repeat, false}}) {
    const std::size_t Digit = Each.Letters.find(C);
    if (Digit != TextView::npos) return {Each.Kind, TakeDigits(Rest, Digit, Each.Negative)};
  }
  return {Token::Unknown, 0};
}

// A table being read.
struct TableState {
  JcampTable Table;
  const JcampTableForm& Form;
  int Line = 0;             // of the file
  Double Difference = 0;    // the last one
  bool LastWasDif = false;  // the last point came from a difference
  bool CheckPending = false;
  int CheckFaults = 0;
  int PlaceFaults = 0;
  int FirstCheckFault = 0;
  int FirstPlaceFault = 0;
};

void Append(TableState& State, Double Value) {
  if (State.Table.Values.size() >= MostMeasuredPoints) throw Failure("the table has too many points");
  State.Table.Values.push_back(Value);
}

void TakeRepeat(TableState& State, Double Count) {
  if (State.Table.Values.empty()) throw Failure(Join("nothing to repeat in line ", Long{State.Line}));
  if (!(Count <= MostMeasuredPoints)) throw Failure("the table has too many points");
  // The count includes the point that stands there already.
  for (int Time = 1; Time < static_cast<int>(Count); ++Time) {
    Append(State, State.Table.Values.back() + (State.LastWasDif ? State.Difference : 0.0));
  }
}

void TakeOrdinate(TableState& State, const Item& Read) {
  std::vector<Double>& Values = State.Table.Values;
  switch (Read.Kind) {
    case Token::Number:
      if (State.CheckPending) {
        if (std::fabs(Read.Value - Values.back()) > 0.5) {
          if (State.CheckFaults++ == 0) State.FirstCheckFault = State.Line;
          Values.back() = Read.Value;  // differences go on from what the file says
        }
      } else {
        Append(State, Read.Value);
      }
      State.LastWasDif = false;
      break;
    case Token::Difference:
      if (Values.empty()) throw Failure(Join("a difference without a value before it in line ", Long{State.Line}));
      State.Difference = Read.Value;
      Append(State, Values.back() + Read.Value);
      State.LastWasDif = true;
      break;
    case Token::Repeat:
      TakeRepeat(State, Read.Value);
      break;
    case Token::Missing:
      Append(State, Values.empty() ? 0.0 : Values.back());
      State.LastWasDif = false;
      break;
    default:
      throw Failure(Join("line ", Long{State.Line}, " is no line of a table"));
  }
  State.CheckPending = false;
}

// How exactly an abscissa is written: one of its last digit.
Double UnitOfLastDigit(TextView Written) {
  const std::size_t Point = Written.find('.');
  if (Point == TextView::npos) return 1.0;
  Double Unit = 1.0;
  for (std::size_t Place = Point + 1; Place < Written.size() && IsDigit(Written[Place]); ++Place) Unit *= 0.1;
  return Unit;
}

void TakeAbscissa(TableState& State, TextView Written) {
  const JcampTableForm& Form = State.Form;
  const Double X = PrefixNumber(Written) * Form.XFactor;
  if (State.Table.Values.empty()) {
    State.Table.FirstX = X;
    return;
  }
  if (Form.DeltaX == 0.0) return;
  const Double First = Form.HasX ? Form.FirstX : State.Table.FirstX;
  const Double Point = static_cast<Double>(State.Table.Values.size()) - (State.CheckPending ? 1.0 : 0.0);
  // Abscissae are often cut to whole numbers; both they and the place of a check value may be one off.
  const Double Allowed = 1.001 * std::fabs(UnitOfLastDigit(Written) * Form.XFactor) + 1.5 * std::fabs(Form.DeltaX);
  if (!(std::fabs(First + Point * Form.DeltaX - X) <= Allowed) && State.PlaceFaults++ == 0) {
    State.FirstPlaceFault = State.Line;
  }
}

void TakeLine(TableState& State, TextView Line) {
  Line = TrimWhite(Line);
  if (Line.empty()) return;
  const std::size_t Length = PlainLength(Line);
  if (Length == 0) throw Failure(Join("line ", Long{State.Line}, " is no line of a table"));
  State.CheckPending = State.LastWasDif;
  TakeAbscissa(State, Line.substr(0, Length));
  Line.remove_prefix(Length);
  while (!Line.empty()) {
    const Item Read = TakeItem(Line);
    if (Read.Kind != Token::Separator) TakeOrdinate(State, Read);
  }
}

}  // namespace

JcampTable ReadJcampTable(TextView Lines, const JcampTableForm& Form) {
  TableState State{{}, Form};
  TextView Rest = Lines;
  TakeJcampLine(Rest);  // of the label, which says the form
  for (State.Line = Form.FirstLine + 1; !Rest.empty(); ++State.Line) TakeLine(State, TakeJcampLine(Rest));
  const auto Warn = [&](int Count, int First, const char* What) {
    if (Count > 0) State.Table.Warnings.push_back(Join(Long{Count}, What, Long{First}, ")"));
  };
  Warn(State.CheckFaults, State.FirstCheckFault, " check values of the table differ (the first in line ");
  Warn(State.PlaceFaults, State.FirstPlaceFault, " lines of the table are not where they say (the first is line ");
  return State.Table;
}

std::vector<std::pair<Double, Double>> ReadJcampPairs(TextView Lines) {
  std::vector<std::pair<Double, Double>> Pairs;
  std::vector<Double> Numbers;
  TextView Rest = Lines;
  TakeJcampLine(Rest);
  while (!Rest.empty()) {
    TextView Line = TakeJcampLine(Rest);
    while (!Line.empty()) {
      if (Line.front() == '(' || Line.front() == ')' || Line.front() == '\r') {
        Line.remove_prefix(1);
        continue;
      }
      const Item Read = TakeItem(Line);
      if (Read.Kind == Token::Separator) continue;
      if (Read.Kind != Token::Number) throw Failure("a list of points holds something else");
      Numbers.push_back(Read.Value);
      if (Numbers.size() > 2 * static_cast<std::size_t>(MostMeasuredPoints)) {
        throw Failure("the table has too many points");
      }
    }
  }
  for (std::size_t Place = 0; Place + 1 < Numbers.size(); Place += 2) {
    Pairs.emplace_back(Numbers[Place], Numbers[Place + 1]);
  }
  return Pairs;
}

namespace {

constexpr std::size_t LongestLine = 80;

Text WithPseudoDigit(Long Value, TextView Positive, TextView Negative) {
  Text Digits = GeneralForm(Value < 0 ? -Value : Value);
  Digits[0] = (Value < 0 ? Negative : Positive)[static_cast<std::size_t>(Digits[0] - '0')];
  return Digits;
}

}  // namespace

Text WriteJcampTable(const std::vector<Long>& Values, Double FirstX, Double DeltaX) {
  const std::size_t Count = Values.size();
  const auto DifferenceAt = [&](std::size_t Point) { return Values[Point] - Values[Point - 1]; };
  Text Table;
  for (std::size_t Point = 0; Point < Count;) {
    // A line behind the first begins with the last point of the one before it: the check value.
    const std::size_t First = Point == 0 ? 0 : Point - 1;
    Text Line = FormatNumber(FirstX + static_cast<Double>(First) * DeltaX, "0.0###");
    Line += WithPseudoDigit(Values[First], PositiveSqueezed, NegativeSqueezed);
    Point = First + 1;
    while (Point < Count) {
      Long Run = 1;
      while (Point + static_cast<std::size_t>(Run) < Count &&
             DifferenceAt(Point + static_cast<std::size_t>(Run)) == DifferenceAt(Point))
        ++Run;
      Text Next = WithPseudoDigit(DifferenceAt(Point), PositiveDifference, NegativeDifference);
      if (Run > 1) {
        Text Times = GeneralForm(Run);
        Times[0] = Repeats[static_cast<std::size_t>(Times[0] - '0')];
        Next += Times;
      }
      if (Line.size() + Next.size() > LongestLine) break;
      Line += Next;
      Point += static_cast<std::size_t>(Run);
    }
    Table += Line + '\n';
  }
  // The last line repeats its last point, so that the end of the table is checked as well.
  if (Count > 1) {
    Table += FormatNumber(FirstX + static_cast<Double>(Count - 1) * DeltaX, "0.0###") +
             WithPseudoDigit(Values[Count - 1], PositiveSqueezed, NegativeSqueezed) + '\n';
  }
  return Table;
}

}  // namespace zelvanor
