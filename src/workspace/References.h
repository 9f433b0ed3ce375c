#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// Reference shieldings that belong to a level of theory stand in for the user's own while results of that level are in
// the document. nmr.ini keeps the user's own.

struct ReferenceValue {
  int Element = 0;   // atomic number
  Single Value = 0;  // ppm
};

// Puts these in force; elements that the level does not know keep the user's own. Level is told to the user.
void UseLevelReferences(const Text& Level, const std::vector<ReferenceValue>& Values);
// Puts the user's own in force again.
void UseOwnReferences();
// The references in force become the user's own, unless they belong to a level.
void KeepReferencesAsOwn();
// What nmr.ini keeps.
Single OwnReference(int Entry);

// Lines "SYMBOL VALUE" from the text, the level before them; false for text that is none.
bool ReadReferenceLines(const std::vector<Text>& Lines);
std::vector<Text> ReferenceLines();

}  // namespace zelvanor
