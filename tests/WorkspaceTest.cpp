#include "Support.h"
#include "platform/Variables.h"

namespace zelvanor::test {
namespace {

class WorkspaceTest : public ProgramTest {};

Texts TokensAfter(TextView Line, int& Count) {
  Count = Tokenize(Line);
  return FirstOf(LineWork.Tokens, LineWork.Tokens.UpperBound() + 1);
}

TEST_F(WorkspaceTest, TokensOfOneLineAfterAnother) {
  struct Row {
    const char* Line;
    int Count;
    Texts Tokens;  // index 0 is unused
  };
  // In this order: what is left of a former line is part of the result.
  const Row Rows[] = {{"  ", 0, {""}},
                      {"a b c", 3, {"", "a", "b", "c", ""}},
                      {"", 0, {"", "a", "b", "c", ""}},
                      {" \t ", 0, {"", "a", "b", "c", ""}},
                      {"x", 1, {"", "x", "b"}},
                      {"\ty \t z\t", 2, {"", "y", "z", ""}},
                      {"one", 1, {"", "one", "z"}},
                      {"p q r s", 4, {"", "p", "q", "r", "s", ""}}};
  for (const Row& R : Rows) {
    int Count = -1;
    EXPECT_EQ(TokensAfter(R.Line, Count), R.Tokens) << "'" << R.Line << "'";
    EXPECT_EQ(Count, R.Count) << "'" << R.Line << "'";
  }
  EXPECT_EQ(FailureOf([] { LineWork.Tokens[6] = ""; }), "Subscript out of range");
}

TEST_F(WorkspaceTest, ElementTable) {
  const std::pair<int, const char*> Known[] = {{0, "Lp"},  {1, "H"},   {2, "He"},  {6, "C"},   {11, "Na"}, {15, "P"},
                                               {17, "Cl"}, {19, "K"},  {26, "Fe"}, {35, "Br"}, {36, "Kr"}, {53, "I"},
                                               {54, "Xe"}, {57, "La"}, {71, "Lu"}, {74, "W"},  {79, "Au"}, {82, "Pb"},
                                               {86, "Rn"}, {92, "U"},  {103, "Lr"}};
  for (const auto& [Number, Symbol] : Known) {
    EXPECT_EQ(ElementSymbol(Number), Symbol);
    EXPECT_EQ(ElementNumber(Symbol), Number);
  }
  for (const int Number : {-1, 104, 128, 129, 32767}) EXPECT_EQ(ElementSymbol(Number), "??") << Number;
  for (int Number = 0; Number <= 103; ++Number) EXPECT_EQ(ElementNumber(UpperCase(ElementSymbol(Number))), Number);
  const std::pair<const char*, int> Words[] = {{"cl", 17}, {"CL", 17}, {"lp", 0},  {"??", 104}, {"", -1},
                                               {" C", -1}, {"C ", -1}, {"Xx", -1}, {"1", -1}};
  for (const auto& [Symbol, Number] : Words) EXPECT_EQ(ElementNumber(Symbol), Number) << "'" << Symbol << "'";
}

TEST_F(WorkspaceTest, BoxesAndStatusLine) {
  struct Row {
    std::function<void()> Show;
    BoxKind Kind;
    BoxButtons Buttons;
    const char* Message;
  };
  const Row Rows[] = {
      {[] { ShowWarning("a\"b."); }, BoxKind::Warning, BoxButtons::Ok, "WARNING: a\"b."},
      {[] { ShowError("c"); }, BoxKind::Error, BoxButtons::Ok, "ERROR: c"},
      {[] { AskYesNo("d?"); }, BoxKind::Question, BoxButtons::YesNo, "d?"},
      {[] { AskYesNoCancel("e?"); }, BoxKind::Question, BoxButtons::YesNoCancel, "e?"},
      {[] { WarnOfFailure(Failure("Disk full")); }, BoxKind::Warning, BoxButtons::Ok, "WARNING: Disk full."}};
  for (const Row& R : Rows) {
    R.Show();
    const MessageBox& Box = Shown().RawBoxes.back();
    EXPECT_EQ(Box.Message, R.Message);
    EXPECT_EQ(Box.Kind, R.Kind) << R.Message;
    EXPECT_EQ(Box.Buttons, R.Buttons) << R.Message;
    EXPECT_EQ(Box.Title, "Zelvanor") << R.Message;
  }
  for (const int Code : {6, 7, 2}) {
    Shown().Answers = {static_cast<BoxAnswer>(Code)};
    EXPECT_EQ(static_cast<int>(AskYesNoCancel("?")), Code);
  }
  ShowStatus("Reading.");
  ShowStatus("");
  EXPECT_EQ(Shown().Statuses, (Texts{" Reading.", " "}));
  EXPECT_TRUE(EndsProgram(EndProgram));
}

TEST_F(WorkspaceTest, NamesWithIndicesBeyondReason) {
  for (const char* Name : {"picToolbar(1E+30)", "picToolbar(-1)", "mnuFile(-1)", "picToolbar(99)"}) {
    EXPECT_EQ(FindControl(Name), nullptr) << Name;
  }
  EXPECT_EQ(FindControl("picToolbar(3)"), &Main.picToolbar[3]);
  const VariableAccess& Atoms = *Variables().Find("NMRAtom");
  Atoms.Write(5, 0, "7");
  EXPECT_EQ(Workspace.NMRAtom[5], 7) << "a short list grows";
  EXPECT_EQ(FailureOf([&] { Atoms.Write(2000000000, 0, "7"); }), "Subscript out of range");
  EXPECT_EQ(FailureOf([&] { Atoms.Write(-1, 0, "7"); }), "Subscript out of range");
}

}  // namespace
}  // namespace zelvanor::test
