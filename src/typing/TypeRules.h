#pragma once

#include <vector>

#include "files/MoleculeTree.h"

namespace zelvanor {

// The rule compiler: rules objects go by handles from 1 on, 0 is none. Operations give True or False; what went wrong
// is told by the two error texts. docs/manual/atom-types.md has the grammar.

using Htrc = Long;

inline constexpr std::size_t TypeNameLength = 4;
inline constexpr const char* UnknownAtomType = "**";
// Size of the buffer that error texts are fetched into, its end mark included.
inline constexpr std::size_t ErrorTextSize = 256;

Htrc HtrcCreate();
void DestroyHtrc(Htrc Rules);

// Declares a force field; types that are added then belong to it. Names of types are cut to four characters.
Flag FAddForceFieldHtrcLsz(Htrc Rules, TextView Name);
Flag FAddAtomTypeHtrcLsz(Htrc Rules, TextView Type);
// Makes a declared force field current.
Flag FSetForceFieldHtrcLsz(Htrc Rules, TextView Name);
// Compiles a rule file; the rules of a file with errors are not used at all.
Flag FCompileHtrcLsz(Htrc Rules, const Text& Path);
// Why the compiler has failed, each error with its line.
Text FTyperuleErrorLszCb(std::size_t Size);

// Gives every atom below the system node the type of the first rule of the force field that fits it. An atom that none
// fits gets "**", which makes the result False.
Flag FCalcTypesFromRules(Htrc Rules, TextView ForceField, Htr Tree, Id System);
// Why typing has failed.
Text CbTyperuleErrorLszCb(std::size_t Size);

}  // namespace zelvanor
