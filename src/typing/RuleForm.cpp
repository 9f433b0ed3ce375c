#include "typing/RuleForm.h"

#include <algorithm>
#include <climits>

#include "basic/Numbers.h"
#include "basic/TextTools.h"
#include "files/MoleculeTree.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

using Words = std::vector<TextView>;

constexpr int LargestCount = 99;

struct BondMark {
  char Mark;
  int Order;  // 0 for any
};
constexpr BondMark BondMarks[] = {
    {'-', SingleOrder}, {'=', DoubleOrder}, {'#', TripleOrder}, {':', AromaticOrder}, {'~', NoOrder},
};

Words SplitAt(TextView Value, TextView Marks) {
  Words Result;
  for (std::size_t From = 0;;) {
    const std::size_t End = std::min(Value.find_first_of(Marks, From), Value.size());
    Result.push_back(TrimWhite(Value.substr(From, End - From)));
    if (End == Value.size()) return Result;
    From = End + 1;
  }
}

bool IsDigit(char C) { return C >= '0' && C <= '9'; }

int CountOf(TextView Word) {
  const bool Digits = !Word.empty() && std::all_of(Word.begin(), Word.end(), IsDigit);
  const Double Value = Digits ? PrefixNumber(Word) : -1;
  if (Value < 0 || Value > LargestCount) throw Failure(Join(Quoted(Word), " is no count"));
  return static_cast<int>(Value);
}

// "3", "2-4" or "2+".
CountRange RangeOf(TextView Word) {
  if (Word.ends_with('+')) return {CountOf(Word.substr(0, Word.size() - 1)), INT_MAX};
  const std::size_t Dash = Word.find('-');
  if (Dash == TextView::npos) return {CountOf(Word), CountOf(Word)};
  const CountRange Range = {CountOf(Word.substr(0, Dash)), CountOf(Word.substr(Dash + 1))};
  if (Range.Low > Range.High) throw Failure(Join("the range ", Quoted(Word), " is empty"));
  return Range;
}

std::vector<int> ElementsOf(TextView Word) {
  std::vector<int> Elements;
  if (Word == "*") return Elements;
  for (const TextView Symbol : SplitAt(Word, "/")) {
    const Integer Element = ElementNumber(Symbol);
    if (Element < 0 || Symbol == "??") throw Failure(Join(Quoted(Symbol), " is no element"));
    Elements.push_back(Element);
  }
  return Elements;
}

Text KnownType(TextView Type, const ForceFieldRules& Field) {
  if (std::find(Field.Types.begin(), Field.Types.end(), Type) == Field.Types.end()) {
    throw Failure(Join("the force field ", Field.Name, " has no type ", Quoted(Type)));
  }
  return Text(Type);
}

// "=O", "-C/N", "~*", "-[CA/CB]".
NeighbourForm NeighbourOf(TextView Word, const ForceFieldRules& Field) {
  NeighbourForm Form;
  const auto Mark = std::find_if(std::begin(BondMarks), std::end(BondMarks),
                                 [&](const BondMark& Known) { return !Word.empty() && Known.Mark == Word[0]; });
  if (Mark == std::end(BondMarks)) throw Failure(Join(Quoted(Word), " is no condition"));
  Form.Order = Mark->Order;
  const TextView Atom = Word.substr(1);
  if (Atom.starts_with('[') && Atom.ends_with(']')) {
    for (const TextView Type : SplitAt(Atom.substr(1, Atom.size() - 2), "/")) {
      Form.Types.push_back(KnownType(Type, Field));
    }
  } else {
    Form.Elements = ElementsOf(Atom);
  }
  return Form;
}

Condition CompileCondition(TextView Phrase, const ForceFieldRules& Field) {
  Words All = SplitWords(Phrase);
  Condition Result;
  if (!All.empty() && All[0] == "no") {
    Result.Not = true;
    All.erase(All.begin());
  }
  if (All.empty()) throw Failure("a condition is empty");
  std::size_t Used = 1;
  if (All[0] == "aromatic") {
    Result.Kind = ConditionKind::Aromatic;
  } else if (All[0] == "ring") {
    Result.Kind = ConditionKind::Ring;
    Result.Count = {0, INT_MAX};
    if (All.size() > 1) Result.Count = RangeOf(All[Used++]);
  } else if (All[0] == "bonds") {
    if (All.size() < 2) throw Failure("\"bonds\" needs a number");
    Result.Count = RangeOf(All[Used++]);
  } else {
    Result.Kind = ConditionKind::Neighbours;
    Result.Count = {1, INT_MAX};
    if (IsDigit(All[0][0])) {
      Result.Count = RangeOf(All[0]);
      if (All.size() < 2) throw Failure(Join("a neighbour is missing behind ", Quoted(All[0])));
      ++Used;
    }
    Result.Neighbour = NeighbourOf(All[Used - 1], Field);
  }
  if (Used < All.size()) throw Failure(Join(Quoted(All[Used]), " is too much; conditions are separated by commas"));
  return Result;
}

}  // namespace

TypeRule CompileRule(TextView Line, const ForceFieldRules& Field) {
  const Words Head = SplitWords(Line);
  if (Head.size() < 2) throw Failure("a rule needs a type and an element");
  TypeRule Rule;
  Rule.Type = KnownType(Head[0], Field);
  Rule.Elements = ElementsOf(Head[1]);
  const auto Behind = static_cast<std::size_t>(Head[1].data() + Head[1].size() - Line.data());
  const TextView Conditions = TrimWhite(Line.substr(Behind));
  if (Conditions.empty()) return Rule;
  for (const TextView Phrase : SplitAt(Conditions, ",")) Rule.Conditions.push_back(CompileCondition(Phrase, Field));
  return Rule;
}

}  // namespace zelvanor
