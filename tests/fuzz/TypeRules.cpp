// The files of the atom typing: the rules, and the types that they may give.

#include <cstdio>

#include "files/ZMatrixImport.h"
#include "fuzz/Harness.h"
#include "fuzz/Targets.h"
#include "settings/SettingsState.h"
#include "typing/AtomTyping.h"
#include "workspace/Workspace.h"

namespace zelvanor::fuzz {

namespace {

constexpr const char* RuleFile = "nmrtype.rul";
constexpr const char* TypeFile = "nmrtype.txt";

// Types the atoms of an example by the input and a file that fits it. Whether the rules could be compiled.
bool TypeExample(TextView Name, TextView Input, TextView OtherName) {
  static const Text Types = ReadBack(SourceFile("data/nmrtype.txt"));
  static const Text Rules = ReadBack(SourceFile("data/nmrtype.rul"));
  ResetProgram();
  WriteInput(OtherName, OtherName == RuleFile ? Rules : Types);
  const Text Path = WriteInput(Name, Input);
  OpenAsUser(SourceFile("examples/acetic-acid.zmt"));
  PrepareTypeRules(TypingTime::Shutdown);
  Settings.NMRParmPath = Folder();
  mnuEditCalculateTypes_Click();
  const bool Taken = AtomTyping.TypeRuleHandle != 0;
  if (Taken) Demand(TypeFileMatches(), "the types are not those that the rules were compiled for");
  CompareTypeFile(Path);
  CheckPromises();
  for (int Atom = 0; Atom < Workspace.NumAtoms; ++Atom) {
    Demand(!Taken || !Workspace.AtomType[Atom].Trimmed().empty(), "an atom has no type");
  }
  LookAround();
  PrepareTypeRules(TypingTime::Shutdown);
  return Taken;
}

bool ReadRules(TextView Input) { return TypeExample(RuleFile, Input, TypeFile); }
bool ReadTypes(TextView Input) {
  // Another force field's file may be anything that has a heading.
  WriteInput("ambertype.txt", Input);
  const bool Taken = TypeExample(TypeFile, Input, RuleFile);
  std::remove(PathOf("ambertype.txt").c_str());
  return Taken;
}

}  // namespace

const Target TypeRulesTarget = {"TypeRules", ReadRules};
const Target TypeFileTarget = {"TypeFile", ReadTypes};

}  // namespace zelvanor::fuzz
