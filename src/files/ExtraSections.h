#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// A section of the document that a room above adds. It stands behind the sections of every document, in the order of
// its adding, and only where there is something to write, so that a document without it has the bytes it always had.
struct ExtraSection {
  const char* Begin;  // keyword lines; readers that do not know them pass the section over
  const char* End;
  bool (*HasContent)();
  // The lines between the keywords. Both throw a Failure; Read takes the end line as well. What Read has taken in part
  // must be as good as nothing.
  void (*Write)(Integer FileNumber);
  void (*Read)(Integer FileNumber);
};

void AddExtraSection(const ExtraSection& Section);
const std::vector<ExtraSection>& ExtraSections();

}  // namespace zelvanor
