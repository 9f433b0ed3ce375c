#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// A compiled rule and its pieces.

struct CountRange {
  int Low = 0;
  int High = 0;
};

enum class ConditionKind { Bonds, Ring, Aromatic, Neighbours };

// A neighbour that a rule asks for: by the order of the bond (0 for any), and by elements or types (none for any).
struct NeighbourForm {
  int Order = 0;
  std::vector<int> Elements;
  std::vector<Text> Types;
};

struct Condition {
  bool Not = false;
  ConditionKind Kind = ConditionKind::Bonds;
  CountRange Count;  // of bonds, of neighbours, of atoms in the ring
  NeighbourForm Neighbour;
};

struct TypeRule {
  Text Type;
  std::vector<int> Elements;  // none for any
  std::vector<Condition> Conditions;
};

struct ForceFieldRules {
  Text Name;
  std::vector<Text> Types;
  std::vector<TypeRule> Rules;  // from special to general
};

// Reads one rule. Throws a Failure that says what is wrong with it.
TypeRule CompileRule(TextView Line, const ForceFieldRules& Field);

}  // namespace zelvanor
