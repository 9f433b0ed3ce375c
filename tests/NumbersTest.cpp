#include <charconv>
#include <climits>
#include <cmath>
#include <limits>
#include <random>

#include "Support.h"
#include "basic/FixedText.h"
#include "basic/NumberText.h"
#include "basic/TextTools.h"

namespace zelvanor::test {
namespace {

constexpr Double Infinity = std::numeric_limits<Double>::infinity();

TEST(NumbersTest, IntegerArithmeticIsChecked) {
  struct Row {
    const char* What;
    std::function<Integer()> Compute;
    std::optional<int> Result;  // none: overflow
  };
  const Integer Top = 32767;
  const Integer Bottom = -32768;
  const Row Rows[] = {{"14 * 2340", [] { return 14 * Integer(2340); }, 32760},
                      {"14 * 2341", [] { return 14 * Integer(2341); }, {}},
                      {"14 * -2340", [] { return 14 * Integer(-2340); }, -32760},
                      {"14 * -2341", [] { return Integer(-2341) * 14; }, {}},
                      {"-2048 * 16", [] { return Integer(-2048) * Integer(16); }, -32768},
                      {"256 * 128", [] { return Integer(256) * Integer(128); }, {}},
                      {"32767 + 0", [=] { return Top + 0; }, 32767},
                      {"32767 + 1", [=] { return Top + 1; }, {}},
                      {"-32768 - 1", [=] { return Bottom - 1; }, {}},
                      {"-32768 + 65535", [=] { return Bottom + 65535; }, 32767},
                      {"0 - -32768", [=] { return 0 - Bottom; }, {}},
                      {"32767 * INT_MAX", [=] { return Top * INT_MAX; }, {}},
                      {"32767 + INT_MAX", [=] { return Top + INT_MAX; }, {}},
                      {"from 32768", [] { return Integer(32768); }, {}},
                      {"from -32769", [] { return Integer(-32769); }, {}},
                      {"++32767",
                       [=] {
                         auto N = Integer(Top);
                         return ++N;
                       },
                       {}},
                      {"--(-32768)",
                       [=] {
                         auto N = Integer(Bottom);
                         return --N;
                       },
                       {}},
                      {"1 += INT_MAX",
                       [=] {
                         auto N = Integer(1);
                         return N += INT_MAX;
                       },
                       {}},
                      {"-2 -= INT_MAX",
                       [=] {
                         auto N = Integer(-2);
                         return N -= INT_MAX;
                       },
                       {}},
                      {"5 += -7",
                       [=] {
                         auto N = Integer(5);
                         return N += -7;
                       },
                       -2}};
  for (const Row& R : Rows) {
    std::optional<int> Result;
    const Text Problem = FailureOf([&] { Result = int(R.Compute()); });
    EXPECT_EQ(Result, R.Result) << R.What;
    EXPECT_EQ(Problem, R.Result ? "no failure" : "Overflow") << R.What;
  }
}

struct NumberRow {
  Text Input;
  Double Prefix;
  std::optional<Double> Strict;  // none: not a number, or none that fits
  const char* Problem = "Type mismatch";
};

TEST(NumbersTest, PrefixAndStrictNumbers) {
  const Text Zeros(400, '0');
  const NumberRow Rows[] = {{"", 0, {}},
                            {" \t ", 0, {}},
                            {"12", 12, 12},
                            {"  \t-12.5\t ", -12.5, -12.5},
                            {"+3", 3, 3},
                            {"+-3", 0, {}},
                            {"- 3", 0, {}},
                            {".5", 0.5, 0.5},
                            {"5.", 5, 5},
                            {"-.5e1", -5, -5},
                            {".", 0, {}},
                            {"-", 0, {}},
                            {"1.5.3", 1.5, {}},
                            {"1,5", 1, {}},
                            {"12abc", 12, {}},
                            {"1 2", 1, {}},
                            {"1e3", 1000, 1000},
                            {"1E+03", 1000, 1000},
                            {"1.5d2", 150, 150},
                            {"1.5D-2", 0.015, 0.015},
                            {"1e", 1, {}},
                            {"1e+", 1, {}},
                            {"1ee2", 1, {}},
                            {"e5", 0, {}},
                            {"0x10", 0, {}},
                            {"inf", 0, {}},
                            {"nan", 0, {}},
                            {"1\0002", 1, 1},  // the literal ends at the zero byte
                            {"1e308", 1e308, 1e308},
                            {"1e309", Infinity, {}, "Overflow"},
                            {"-1e309", -Infinity, {}, "Overflow"},
                            {"1e-400", 0, 0},
                            {"4.9E-324", 4.9e-324, 4.9e-324},
                            {"0.1234567890123456789012345678901234567890", 0.12345678901234568, 0.12345678901234568},
                            {"1" + Zeros, Infinity, {}, "Overflow"},
                            {"0." + Zeros + "1", 0, 0},
                            {"1" + Zeros + "e-400", 1, 1},
                            {"0." + Zeros + "1e401", 1, 1},
                            {"0." + Zeros + "1e20", 0, 0},
                            {"1" + Zeros + "e-20", Infinity, {}, "Overflow"},
                            {Zeros + "7", 7, 7},
                            {"0e99999999999999999999", 0, 0},
                            {"1e99999999999999999999", Infinity, {}, "Overflow"},
                            {"1e-99999999999999999999", 0, 0}};
  for (const NumberRow& R : Rows) {
    EXPECT_EQ(PrefixNumber(R.Input), R.Prefix) << R.Input;
    std::optional<Double> Strict;
    const Text Problem = FailureOf([&] { Strict = StrictNumber(R.Input); });
    EXPECT_EQ(Strict, R.Strict) << R.Input;
    EXPECT_EQ(Problem, R.Strict ? "no failure" : R.Problem) << R.Input;
  }
  EXPECT_TRUE(std::signbit(PrefixNumber("-0")));
  EXPECT_EQ(FailureOf([] { StrictNumber(Text("1\0", 2)); }), "Type mismatch");
}

TEST(NumbersTest, PrefixIndices) {
  const std::pair<const char*, Long> Rows[] = {{"3 x", 3}, {"2.9", 2},         {"", 0},       {"2147483647", INT_MAX},
                                               {"-1", -1}, {"2147483648", -1}, {"1E+30", -1}, {"1E+999", -1}};
  for (const auto& [Input, Index] : Rows) EXPECT_EQ(PrefixIndex(Input), Index) << Input;
}

// Short decimals are read in a way of their own, which has to end at the nearest Double all the same.
TEST(NumbersTest, ShortDecimalsAreTheNearestDouble) {
  std::minstd_rand Random(11);
  for (int Round = 0; Round < 20000; ++Round) {
    Text Value;
    const std::size_t NumDigits = 1 + Random() % 17;
    for (std::size_t Digit = 0; Digit < NumDigits; ++Digit) Value += static_cast<char>('0' + Random() % 10);
    Value.insert(Random() % (NumDigits + 1), ".");
    Double Nearest = 0;
    ASSERT_EQ(std::from_chars(Value.data(), Value.data() + Value.size(), Nearest).ec, std::errc()) << Value;
    EXPECT_EQ(StrictNumber(Value), Nearest) << Value;
    EXPECT_EQ(StrictNumber("-" + Value), -Nearest) << Value;
    EXPECT_EQ(StrictNumber(" +" + Value), Nearest) << Value;
  }
}

// A text, and what it is as an Integer and as a Long.
TEST(NumbersTest, RoundingGoesToTheEvenNeighbourAndIsRangeChecked) {
  for (const Text& Row :
       Pieces("0.5 0 0|1.5 2 2|2.5 2 2|-0.5 0 0|-1.5 -2 -2|2.5000001 3 3|32767.4999 32767 32767|32767.5 Overflow "
              "32768|-32768.5 -32768 -32768|-32768.6 Overflow -32769|32766.5 32766 32766|2147483647.4 Overflow "
              "2147483647|2147483647.5 Overflow Overflow|-2147483648.5 Overflow -2147483648|-2147483649 Overflow "
              "Overflow|1e300 Overflow Overflow")) {
    const Texts Words = SplitAtBlanks(Row);
    const auto As = [](const std::function<Text()>& Convert) {
      Text Result;
      const Text Problem = FailureOf([&] { Result = Convert(); });
      return Result.empty() ? Problem : Result;
    };
    EXPECT_EQ(As([&] { return std::to_string(int(StrictInteger(Words[0]))); }), Words[1]) << Row;
    EXPECT_EQ(As([&] { return std::to_string(StrictLong(Words[0])); }), Words[2]) << Row;
  }
  EXPECT_EQ(FailureOf([] { ToInteger(std::nan("")); }), "Overflow");
  EXPECT_EQ(FailureOf([] { ToLong(-Infinity); }), "Overflow");
  EXPECT_EQ(StrictSingle("3.4028234E38"), std::numeric_limits<Single>::max());
  EXPECT_EQ(FailureOf([] { StrictSingle("3.5E38"); }), "Overflow");
  EXPECT_EQ(StrictSingle("1e-60"), 0.0F);
  EXPECT_EQ(StrictSingle("16777217"), 16777216.0F);
  EXPECT_EQ(FailureOf([] { Divide(1, 0); }), "Division by zero");
  EXPECT_EQ(FailureOf([] { Divide(0, -0.0); }), "Division by zero");
}

TEST(NumbersTest, GeneralForm) {
  for (const Text& Row :
       Pieces("0.0 0|-0.0 0|1.0 1|0.1 0.1|-0.1 -0.1|0.0001 0.0001|0.00012 0.00012|0.00001 1E-05|0.00009999 "
              "9.999E-05|0.33333334 0.3333333|0.6666667 0.6666667|123.45 123.45|1234567.0 1234567|9999999.0 "
              "9999999|1e7 1E+07|1.5e8 1.5E+08|-1.5e8 -1.5E+08|16777216.0 1.677722E+07|0.99999994 "
              "0.9999999|3.4028235E38 3.402823E+38|1.4E-45 1.401298E-45")) {
    EXPECT_EQ(GeneralForm(StrictSingle(SplitAtBlanks(Row)[0])), SplitAtBlanks(Row)[1]);
  }
  for (const Text& Row :
       Pieces("0.1 0.1|-0.0 0|12.3 12.3|0.10000000149011612 0.100000001490116|0.33333333333333333 "
              "0.333333333333333|0.0001 0.0001|0.00001 1E-05|0.30000000000000004 0.3|0.9999999999999996 "
              "1|999999999999999.0 999999999999999|1e15 1E+15|-1.25e100 -1.25E+100|5e-324 "
              "4.94065645841247E-324|1.7976931348623157E308 1.79769313486232E+308")) {
    EXPECT_EQ(GeneralForm(StrictNumber(SplitAtBlanks(Row)[0])), SplitAtBlanks(Row)[1]);
  }
  EXPECT_EQ(GeneralForm(Integer(-32768)), "-32768");
  EXPECT_EQ(GeneralForm(Long{INT_MIN}), "-2147483648");
  EXPECT_EQ(GeneralForm(True), "-1");

  EXPECT_EQ(PrintForm(Long{0}), " 0 ");
  EXPECT_EQ(PrintForm(Integer(-7)), "-7 ");
  EXPECT_EQ(PrintForm(0.25F) + PrintForm(-0.25F) + PrintForm(Long{3}), " 0.25 -0.25  3 ");
  EXPECT_EQ(PrintForm(-0.0F), " 0 ");
}

// Value, pattern and form; at 2.0005 there is a tie at the 15 significant digits, though the binary value lies below.
TEST(NumbersTest, Patterns) {
  for (const Text& Row :
       Pieces("0 #0.0## 0.0|-0.0 #0.0## 0.0|1 #0.0## 1.0|1.25 #0.0## 1.25|1.2345 #0.0## 1.235|-1.2345 #0.0## "
              "-1.235|0.0004 #0.0## 0.0|-0.0004 #0.0## 0.0|-0.0005 #0.0## -0.001|1234567.1 #0.0## 1234567.1|9.9995 "
              "#0.0## 10.0|0 0.000 0.000|2.0005 0.000 2.001|1.0005 0.000 1.001|0.0005 0.000 0.001|0.00049999999999999 "
              "0.000 0.000|999.9996 0.000 1000.000|-7 0.000 -7.000|1e20 0.000 100000000000000000000.000|0.1 0.00000 "
              "0.10000|0.100000001490116 0.00000 0.10000|0.000005 0.00000 0.00001|0.5 #0.000 0.500|-0.0001 #0.000 "
              "0.000|12345.6789 #0.000 12345.679|0.5 ######.000 .500|-0.5 ######.000 -.500|0 ######.000 .000|7.25 "
              "######.000 7.250|12345678.5 ######.000 12345678.500|2.25 0.0 2.3|2.35 0.0 2.4|-0.04 0.0 0.0|0.05 0.0 "
              "0.1|1e-320 0.0 0.0")) {
    const Texts Words = SplitAtBlanks(Row);
    EXPECT_EQ(FormatNumber(StrictNumber(Words[0]), Words[1]), Words[2]) << Row;
  }
}

TEST(NumbersTest, FixedTextPadsAndCuts) {
  FixedText<5> Name;
  EXPECT_EQ(Name.View(), "     ");
  EXPECT_EQ(Name.Trimmed(), "");
  Name = TextView("abcdefg");
  EXPECT_EQ(Name.View(), "abcde");
  Name = TextView(" x");
  EXPECT_EQ(Name.View(), " x   ");
  EXPECT_EQ(Name.Trimmed(), " x");
  EXPECT_EQ(Name, FixedText<5>(" x  "));
}

TEST(NumbersTest, ArraysAreCheckedAndKeepASpareElement) {
  constexpr const char* OutOfRange = "Subscript out of range";
  Array<Integer> Values;
  EXPECT_EQ(Values.UpperBound(), 0);
  Values.ReDim(3);
  Values[3] = 7;
  for (const int Index : {-1, 4, INT_MAX, INT_MIN}) {
    EXPECT_EQ(FailureOf([&] { Values[Index] = 1; }), OutOfRange) << Index;
  }
  Values.ReDimPreserve(5);
  EXPECT_EQ(Numbers(Values, 6), (std::vector<int>{0, 0, 0, 7, 0, 0}));
  Values.ReDimPreserve(3);
  Values.ReDimPreserve(4);
  EXPECT_EQ(Values[3], 7);
  Values.ReDim(4);
  EXPECT_EQ(Values[3], 0);
  EXPECT_EQ(FailureOf([&] { Values.ReDim(-1); }), OutOfRange);
  EXPECT_EQ(Values.UpperBound(), 4);

  Array2<Single> Matrix(2, 3);
  Matrix(2, 3) = 1.0F;
  EXPECT_EQ(Matrix.Row(2).back(), 1.0F);
  for (const std::pair<int, int>& Place : {std::pair{3, 0}, {0, 4}, {-1, 0}, {0, -1}}) {
    EXPECT_EQ(FailureOf([&] { Matrix(Place.first, Place.second) = 1; }), OutOfRange)
        << Place.first << ", " << Place.second;
  }
  Matrix.ReDim(2, 3);
  EXPECT_EQ(Matrix(2, 3), 0.0F);
}

}  // namespace
}  // namespace zelvanor::test
