#pragma once

#include "basic/Array.h"
#include "basic/FixedText.h"
#include "typing/TypeRules.h"

namespace zelvanor {

// Atom types by the rules of the file nmrtype.rul, for the types of nmrtype.txt, both in NMRParmPath.
struct AtomTypingState {
  Htrc TypeRuleHandle = 0;  // 0: no rules are compiled
  // The words of the type file when the rules were compiled, its heading first.
  Array<FixedText<TypeNameLength>> KnownAtomTypes;
  Integer NumKnownAtomTypes;
  Array<Text> TypeFiles;  // from index 1: that of the calculation, then those of other force fields
  Text CompiledText;      // the rule file as it was compiled
  Text FileProblem;       // of a type file that disables its force field alone; told once
};

extern AtomTypingState AtomTyping;

void AddTypingVariables();

// When the rules are prepared: at start-up nothing is reported, at shutdown they go.
enum class TypingTime { StartUp, Calculation, Shutdown };

// Compiles the rules when there are none or the rule file has changed.
void PrepareTypeRules(TypingTime Time = TypingTime::Calculation);
// Whether the compiled rules fit the type file.
bool TypeFileMatches();
// False when the file lists just the known types, True otherwise.
Flag CompareTypeFile(const Text& Path);

// Gives the atoms of the atom table their types.
void CalculateAtomTypes();
void mnuEditCalculateTypes_Click();

}  // namespace zelvanor
