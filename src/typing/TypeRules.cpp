#include "typing/TypeRules.h"

#include <algorithm>
#include <map>

#include "basic/TextTools.h"
#include "files/ZMatrixImport.h"
#include "platform/TextFiles.h"
#include "typing/RuleForm.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

struct RuleSet {
  std::vector<ForceFieldRules> Fields;
  Text Current;
};

struct RuleSets {
  std::map<Htrc, RuleSet> Sets;
  Htrc LastHandle = 0;
  Text CompileError;
  Text TypingError;
};

RuleSets& All() {
  static RuleSets Instance;
  return Instance;
}

RuleSet* FindRules(Htrc Rules) {
  const auto Entry = All().Sets.find(Rules);
  return Entry == All().Sets.end() ? nullptr : &Entry->second;
}

ForceFieldRules* FindField(RuleSet* Set, TextView Name) {
  if (Set == nullptr) return nullptr;
  const auto Field = std::find_if(Set->Fields.begin(), Set->Fields.end(),
                                  [&](const ForceFieldRules& F) { return EqualsIgnoringCase(F.Name, Name); });
  return Field == Set->Fields.end() ? nullptr : &*Field;
}

// Text for a buffer of so many characters with its end mark.
Text ForBuffer(const Text& Value, std::size_t Size) { return Value.substr(0, Size == 0 ? 0 : Size - 1); }

// The rules of all force fields in a file, before they are taken over.
struct Compilation {
  std::vector<ForceFieldRules> Fields;
  ForceFieldRules* Field = nullptr;  // that the lines belong to
  Text Errors;
};

void CompileLine(Compilation& Work, TextView Line) {
  constexpr TextView FieldWord = "forcefield";
  Line = TrimWhite(Line.substr(0, Line.find(';')));
  if (Line.empty()) return;
  if (Line.starts_with(FieldWord) && Line.find_first_of(Separators) == FieldWord.size()) {
    const TextView Name = TrimWhite(Line.substr(FieldWord.size()));
    Work.Field = nullptr;
    for (ForceFieldRules& Known : Work.Fields) {
      if (EqualsIgnoringCase(Known.Name, Name)) Work.Field = &Known;
    }
    if (Work.Field == nullptr) throw Failure(Join("there is no force field ", Quoted(Name)));
    return;
  }
  if (Work.Field == nullptr) throw Failure("the rule stands behind no force field");
  Work.Field->Rules.push_back(CompileRule(Line, *Work.Field));
}

// An atom as the rules see it.
struct AtomView {
  unsigned RingSizes = 0;  // bit n: a member of a ring of n atoms
  bool Aromatic = false;
};

struct SystemView {
  BondGraph Graph;
  std::vector<AtomView> Atoms;
  std::vector<Text> Types;  // as far as they are known
};

SystemView LookAt(const BondGraph& Given) {
  SystemView View;
  View.Graph = Given;
  FindAromaticRings(View.Graph);
  View.Atoms.resize(View.Graph.AtomicNumbers.size());
  View.Types.resize(View.Atoms.size());
  for (const auto& Ring : FindRings(View.Graph)) {
    for (std::size_t Place = 0; Place < Ring.size(); ++Place) {
      View.Atoms[static_cast<std::size_t>(Ring[Place])].RingSizes |= 1U << Ring.size();
      const int Next = Ring[(Place + 1) % Ring.size()];
      for (const auto& Link : View.Graph.At(Ring[Place])) {
        if (Link.Other != Next || Link.Order != AromaticOrder) continue;
        View.Atoms[static_cast<std::size_t>(Ring[Place])].Aromatic = true;
        View.Atoms[static_cast<std::size_t>(Next)].Aromatic = true;
      }
    }
  }
  return View;
}

template <class T>
bool Holds(const std::vector<T>& Values, const T& Value) {
  return std::find(Values.begin(), Values.end(), Value) != Values.end();
}

bool IsInside(int Value, const CountRange& Range) { return Value >= Range.Low && Value <= Range.High; }

bool FitsNeighbour(const SystemView& View, const BondGraph::Link& Link, const NeighbourForm& Form) {
  if (Form.Order != 0 && Link.Order != Form.Order) return false;
  if (!Form.Elements.empty() && !Holds(Form.Elements, View.Graph.Element(Link.Other))) return false;
  return Form.Types.empty() || Holds(Form.Types, View.Types[static_cast<std::size_t>(Link.Other)]);
}

bool FitsCondition(const SystemView& View, int Atom, const Condition& Wanted) {
  constexpr int LargestRingSize = 8;
  const auto& Links = View.Graph.At(Atom);
  const AtomView& Own = View.Atoms[static_cast<std::size_t>(Atom)];
  switch (Wanted.Kind) {
    case ConditionKind::Bonds:
      return IsInside(static_cast<int>(Links.size()), Wanted.Count);
    case ConditionKind::Aromatic:
      return Own.Aromatic;
    case ConditionKind::Ring:
      for (int Size = 3; Size <= LargestRingSize; ++Size) {
        if ((Own.RingSizes >> Size & 1U) != 0 && IsInside(Size, Wanted.Count)) return true;
      }
      return false;
    default:
      return IsInside(static_cast<int>(std::count_if(
                          Links.begin(), Links.end(),
                          [&](const BondGraph::Link& Link) { return FitsNeighbour(View, Link, Wanted.Neighbour); })),
                      Wanted.Count);
  }
}

bool FitsRule(const SystemView& View, int Atom, const TypeRule& Rule) {
  if (!Rule.Elements.empty() && !Holds(Rule.Elements, View.Graph.Element(Atom))) return false;
  return std::all_of(Rule.Conditions.begin(), Rule.Conditions.end(),
                     [&](const Condition& Wanted) { return FitsCondition(View, Atom, Wanted) != Wanted.Not; });
}

// The type of the first rule that fits, empty for none.
Text FindType(const SystemView& View, int Atom, const ForceFieldRules& Field) {
  for (const TypeRule& Rule : Field.Rules) {
    if (FitsRule(View, Atom, Rule)) return Rule.Type;
  }
  return {};
}

// Rules may ask for the types of neighbours, so all atoms are typed again until nothing changes. Returns an atom whose
// type does not come to rest, or -1.
int TypeAll(SystemView& View, const ForceFieldRules& Field) {
  constexpr int LargestRoundCount = 32;
  int Changed = -1;
  for (int Round = 0; Round < LargestRoundCount; ++Round) {
    Changed = -1;
    std::vector<Text> Types(View.Types.size());
    for (int Atom = 0; Atom < View.Graph.Count(); ++Atom) {
      const auto Place = static_cast<std::size_t>(Atom);
      Types[Place] = FindType(View, Atom, Field);
      if (Changed < 0 && Types[Place] != View.Types[Place]) Changed = Atom;
    }
    View.Types = std::move(Types);
    if (Changed < 0) break;
  }
  return Changed;
}

Text NameAtom(const SystemView& View, int Atom) {
  return Join("atom ", Long{Atom + 1}, " (", ElementSymbol(View.Graph.Element(Atom)), ")");
}

}  // namespace

Htrc HtrcCreate() {
  All().Sets[++All().LastHandle];
  return All().LastHandle;
}

void DestroyHtrc(Htrc Rules) { All().Sets.erase(Rules); }

Flag FAddForceFieldHtrcLsz(Htrc Rules, TextView Name) {
  RuleSet* Set = FindRules(Rules);
  if (Set == nullptr || Name.empty() || FindField(Set, Name) != nullptr) return False;
  Set->Fields.push_back({Text(Name), {}, {}});
  return True;
}

Flag FAddAtomTypeHtrcLsz(Htrc Rules, TextView Type) {
  RuleSet* Set = FindRules(Rules);
  if (Set == nullptr || Set->Fields.empty() || Type.empty()) return False;
  Set->Fields.back().Types.emplace_back(Type.substr(0, TypeNameLength));
  return True;
}

Flag FSetForceFieldHtrcLsz(Htrc Rules, TextView Name) {
  RuleSet* Set = FindRules(Rules);
  if (FindField(Set, Name) == nullptr) return False;
  Set->Current = Name;
  return True;
}

Flag FCompileHtrcLsz(Htrc Rules, const Text& Path) {
  RuleSet* Set = FindRules(Rules);
  All().CompileError.clear();
  if (Set == nullptr) return False;
  Compilation Work;
  Work.Fields = Set->Fields;
  for (ForceFieldRules& Field : Work.Fields) Field.Rules.clear();
  try {
    LineWork.FileNumber = FreeFile();
    OpenForInput(Path, LineWork.FileNumber);
    constexpr std::size_t EnoughErrors = 10000;  // what is told is cut long before
    for (int Line = 1; !AtEnd(LineWork.FileNumber) && Work.Errors.size() < EnoughErrors; ++Line) {
      try {
        CompileLine(Work, LineInput(LineWork.FileNumber));
      } catch (const Failure& Problem) {
        Work.Errors += Join(Work.Errors.empty() ? "" : "; ", "line ", Long{Line}, ": ", Problem.What);
      }
    }
  } catch (const Failure& Problem) {
    Work.Errors = Problem.What;
  }
  CloseFileQuietly(LineWork.FileNumber);
  All().CompileError = Work.Errors;
  if (!Work.Errors.empty()) return False;
  Set->Fields = std::move(Work.Fields);
  return True;
}

Text FTyperuleErrorLszCb(std::size_t Size) { return ForBuffer(All().CompileError, Size); }

Flag FCalcTypesFromRules(Htrc Rules, TextView ForceField, Htr Tree, Id System) {
  Text& Error = All().TypingError;
  Error.clear();
  RuleSet* Set = FindRules(Rules);
  const ForceFieldRules* Field = FindField(Set, ForceField);
  if (Field == nullptr) {
    Error =
        Set == nullptr ? Text("There are no type rules") : Join("There are no rules for the force field ", ForceField);
    return False;
  }
  std::vector<Id> Nodes;
  SystemView View = LookAt(GraphFromTree(Tree, System, Nodes));
  if (const int Restless = TypeAll(View, *Field); Restless >= 0) {
    Error = Join("The type rules find no lasting type for ", NameAtom(View, Restless));
    return False;
  }
  for (int Atom = 0; Atom < View.Graph.Count(); ++Atom) {
    const Text& Type = View.Types[static_cast<std::size_t>(Atom)];
    if (Type.empty() && Error.empty()) Error = Join("No type rule fits ", NameAtom(View, Atom));
    SetAtomTypeHtrId(Tree, Nodes[static_cast<std::size_t>(Atom)], Type.empty() ? Text(UnknownAtomType) : Type);
  }
  return ToFlag(Error.empty());
}

Text CbTyperuleErrorLszCb(std::size_t Size) { return ForBuffer(All().TypingError, Size); }

}  // namespace zelvanor
